#include "qeltin/platform/ZeroedMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

using qeltin::detail::AllocateZeroed;
using qeltin::detail::FreeZeroed;

constexpr std::size_t SIZES[] = {1, 7, 4096, (4u << 20) - 1, 4u << 20, (4u << 20) + 1, 20u << 20};

bool IsZero(unsigned char const* bytes, std::size_t size) {
  return std::all_of(bytes, bytes + size, [](unsigned char byte) { return byte == 0; });
}

TEST(ZeroedMemory, BlockIsZeroToItsLastByte) {
  for (std::size_t const size : SIZES) {
    auto* const block = static_cast<unsigned char*>(AllocateZeroed(size));
    ASSERT_NE(block, nullptr);
    EXPECT_TRUE(IsZero(block, size)) << size;
    FreeZeroed(block, size);
  }
}

TEST(ZeroedMemory, BlockIsZeroAgainAfterUse) {
  for (std::size_t const size : SIZES) {
    for (int round = 0; round < 4; ++round) {
      auto* const block = static_cast<unsigned char*>(AllocateZeroed(size));
      ASSERT_NE(block, nullptr);
      EXPECT_TRUE(IsZero(block, size)) << size;
      std::memset(block, 0xA5, size);
      FreeZeroed(block, size);
    }
  }
}

TEST(ZeroedMemory, BlockIsAlignedForEveryRecord) {
  for (std::size_t const size : SIZES) {
    void* const block = AllocateZeroed(size);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0u) << size;
    FreeZeroed(block, size);
  }
}

TEST(ZeroedMemory, BlockOfNoBytesCanBeGivenBack) {
  void* const block = AllocateZeroed(0);
  EXPECT_NE(block, nullptr);
  FreeZeroed(block, 0);
}

TEST(ZeroedMemory, NullCanBeGivenBack) {
  FreeZeroed(nullptr, 0);
  FreeZeroed(nullptr, 20u << 20);
}

TEST(ZeroedMemory, BlockThatNoMachineHasIsNull) {
  EXPECT_EQ(AllocateZeroed(std::numeric_limits<std::size_t>::max() / 2), nullptr);
}

TEST(ZeroedMemory, UntouchedPagesCostNothing) {
  std::size_t const size = std::size_t{16} << 30;
  void* const block = AllocateZeroed(size);
  if (block == nullptr) GTEST_SKIP() << "the system does not promise 16 GiB";
  static_cast<unsigned char*>(block)[size - 1] = 1;
  FreeZeroed(block, size);
}

}  // namespace
