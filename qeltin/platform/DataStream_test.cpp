#include "qeltin/platform/DataStream.h"

#include <gtest/gtest.h>

#include "testing/PlaceInTable.h"

namespace {

using qeltin::testing::PlaceInTable;

TEST(DataStream, VirtualOperationsKeepTheirOrder) {
  EXPECT_EQ(PlaceInTable(&DataStream::Sync), 2);
  EXPECT_EQ(PlaceInTable(&DataStream::Read), 3);
  EXPECT_EQ(PlaceInTable(&DataStream::Write), 4);
  EXPECT_EQ(PlaceInTable(&DataStream::Seek), 5);
  EXPECT_EQ(PlaceInTable(&DataStream::Position), 6);
  EXPECT_EQ(PlaceInTable(&DataStream::SetSize), 7);
}

}  // namespace
