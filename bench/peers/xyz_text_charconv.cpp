// std::from_chars over the whole file at once, std::to_chars into a block: what a program of few
// lines can reach that trusts its input.
#include <charconv>
#include <cstdio>
#include <string>

#include "bench/XyzTextTask.h"

using namespace qeltin::bench;

namespace {

std::string ReadWhole(ScratchFile const& file) {
  std::string text(static_cast<std::size_t>(file.Size()), '\0');
  std::FILE* const stream = std::fopen(file.Name(), "r");
  if (stream == nullptr) return {};
  text.resize(std::fread(text.data(), 1, text.size(), stream));
  std::fclose(stream);
  return text;
}

[[gnu::noinline]] void ReadByFromChars(ScratchFile const& file, TextForm,
                                       std::vector<IPoint>& points) {
  std::string const text = ReadWhole(file);
  char const* at = text.data();
  char const* const end = at + text.size();
  while (at < end) {
    double values[3];
    for (double& value : values) at = std::from_chars(at, end, value).ptr + 1;  // and a separator
    points.push_back({values[0], values[1], values[2]});
  }
}

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

int main(int argc, char** argv) { return RunXyzText(argc, argv, ReadByFromChars, WriteByToChars); }
