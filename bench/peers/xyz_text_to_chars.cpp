// std::to_chars into a block: what a program of few lines can reach.
#include <charconv>
#include <cstdio>
#include <string>

#include "bench/XyzTextTask.h"

using namespace qeltin::bench;

namespace {

[[gnu::noinline]] void WriteByToChars(ScratchFile const& file, std::vector<IPoint> const& points) {
  constexpr std::size_t BLOCK = 1 << 16;
  constexpr std::size_t LONGEST_LINE = 3 * 320;
  std::FILE* const stream = std::fopen(file.Name(), "w");
  if (stream == nullptr) return;
  std::string block(BLOCK, '\0');
  char* at = block.data();
  char* const end = at + BLOCK;
  for (IPoint const& p : points) {
    for (double value : {p.x, p.y, p.z}) {
      at = std::to_chars(at, end, value, std::chars_format::fixed, 6).ptr;
      *at++ = ',';
    }
    at[-1] = '\n';
    if (end - at < static_cast<std::ptrdiff_t>(LONGEST_LINE)) {
      std::fwrite(block.data(), 1, static_cast<std::size_t>(at - block.data()), stream);
      at = block.data();
    }
  }
  std::fwrite(block.data(), 1, static_cast<std::size_t>(at - block.data()), stream);
  std::fclose(stream);
  file.Sync();
}

}  // namespace

int main(int argc, char** argv) { return RunXyzText(argc, argv, nullptr, WriteByToChars); }
