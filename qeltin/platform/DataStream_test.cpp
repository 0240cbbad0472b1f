#include "qeltin/platform/DataStream.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

namespace {

// Returns the place of a virtual operation in the table of its class, where the two entries of the
// destructor come first.
template <typename Operation>
int PlaceOf(Operation operation) {
  std::ptrdiff_t words[2] = {};  // the place in bytes plus 1, and an adjustment
  static_assert(sizeof operation == sizeof words);
  std::memcpy(words, &operation, sizeof words);
  return static_cast<int>((words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*)));
}

TEST(DataStream, VirtualOperationsKeepTheirOrder) {
  EXPECT_EQ(PlaceOf(&DataStream::Sync), 2);
  EXPECT_EQ(PlaceOf(&DataStream::Read), 3);
  EXPECT_EQ(PlaceOf(&DataStream::Write), 4);
  EXPECT_EQ(PlaceOf(&DataStream::Seek), 5);
  EXPECT_EQ(PlaceOf(&DataStream::Position), 6);
  EXPECT_EQ(PlaceOf(&DataStream::SetSize), 7);
}

}  // namespace
