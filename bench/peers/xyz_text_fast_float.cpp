// The fast_float library over the file mapped into memory: what a program of few lines can reach
// that trusts its input.
#include <fast_float/fast_float.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "bench/XyzTextTask.h"

using namespace qeltin::bench;

namespace {

// All points of a text without a fault: one separator after each number.
void Parse(char const* at, char const* end, std::vector<IPoint>& points) {
  while (at < end) {
    double values[3];
    for (double& value : values) at = fast_float::from_chars(at, end, value).ptr + 1;
    points.push_back({values[0], values[1], values[2]});
  }
}

[[gnu::noinline]] void ReadByFastFloat(ScratchFile const& file, TextForm,
                                       std::vector<IPoint>& points) {
  auto const size = static_cast<std::size_t>(file.Size());
  int const descriptor = open(file.Name(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return;
  void* const text = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
  close(descriptor);
  if (text == MAP_FAILED) return;
  auto const* const first = static_cast<char const*>(text);
  Parse(first, first + size, points);
  munmap(text, size);
}

}  // namespace

int main(int argc, char** argv) { return RunXyzText(argc, argv, ReadByFastFloat, nullptr); }
