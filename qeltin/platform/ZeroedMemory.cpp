#include "qeltin/platform/ZeroedMemory.h"

#include <sys/mman.h>

#include <cstdlib>

namespace qeltin::detail {

namespace {

// From here on a block is mapped. Smaller ones come from the allocator, which the sanitizers watch.
constexpr std::size_t MAPPED_FROM = std::size_t{4} << 20;

// A virtual machine may have to ask its host for fresh huge pages, which then take longer to clear
// than a large surface takes to build.
constexpr std::size_t HUGE_PAGES_UP_TO = std::size_t{512} << 20;

}  // namespace

void* AllocateZeroed(std::size_t bytes) {
  if (bytes < MAPPED_FROM) return std::calloc(bytes == 0 ? 1 : bytes, 1);
  void* const block =
      mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (block == MAP_FAILED) return nullptr;
  if (bytes <= HUGE_PAGES_UP_TO) {
    madvise(block, bytes, MADV_HUGEPAGE);  // walks jump about in it: fewer misses in page tables
  }
  return block;
}

void FreeZeroed(void* block, std::size_t bytes) {
  if (block == nullptr) return;
  if (bytes < MAPPED_FROM) {
    std::free(block);
  } else {
    munmap(block, bytes);
  }
}

}  // namespace qeltin::detail
