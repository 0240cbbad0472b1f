#include "qeltin/tin/RingTable.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using qeltin::detail::RingTable;

TEST(RingTable, FindsByValue) {
  TPoint const a(1, 2, 3);
  TPoint const b(1, 2, 4);
  RingTable table;
  table.Start(2);
  EXPECT_TRUE(table.Add(&a, 0));
  EXPECT_TRUE(table.Add(&b, 1));
  EXPECT_EQ(table.Find(TPoint(1, 2, 3)), 0);
  EXPECT_EQ(table.Find(TPoint(1, 2, 4)), 1);
  EXPECT_EQ(table.Find(TPoint(1, 2, 5)), RingTable::NONE);
}

TEST(RingTable, TakesAValueOnce) {
  TPoint const a(1, 2, 3);
  TPoint const again = a;
  RingTable table;
  table.Start(2);
  EXPECT_TRUE(table.Add(&a, 0));
  EXPECT_FALSE(table.Add(&again, 1));
  EXPECT_EQ(table.Find(a), 0);
}

TEST(RingTable, ZeroAndMinusZeroAreOneValue) {
  TPoint const zero(0.0, 0.0, 0.0);
  TPoint const minus(-0.0, -0.0, -0.0);
  EXPECT_EQ(RingTable::Hash(zero), RingTable::Hash(minus));
  RingTable table;
  table.Start(2);
  EXPECT_TRUE(table.Add(&zero, 7));
  EXPECT_EQ(table.Find(minus), 7);
}

TEST(RingTable, TakesNothingThatDoesNotEqualItself) {
  TPoint const odd(1, 2, std::nan(""));
  RingTable table;
  table.Start(1);
  EXPECT_FALSE(table.Add(&odd, 0));
  EXPECT_EQ(table.Find(odd), RingTable::NONE);
}

TEST(RingTable, StartForgets) {
  TPoint const a(1, 2, 3);
  RingTable table;
  table.Start(100);
  EXPECT_TRUE(table.Add(&a, 0));
  table.Start(1);
  EXPECT_EQ(table.Find(a), RingTable::NONE);
}

}  // namespace
