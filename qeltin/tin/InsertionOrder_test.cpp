#include "qeltin/tin/InsertionOrder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "testing/MakeSurvey.h"

namespace {

using qeltin::detail::OrderedPoint;
using qeltin::detail::OrderInRounds;
using qeltin::detail::RandomOrder;
using qeltin::testing::Dice;
using qeltin::testing::TestSeed;

std::vector<int> Shuffled(int count, Dice& dice) {
  std::vector<int> slots(static_cast<std::size_t>(count));
  std::iota(slots.begin(), slots.end(), 0);
  for (int i = count - 1; i > 0; --i) {
    std::swap(slots[static_cast<std::size_t>(i)],
              slots[static_cast<std::size_t>(dice.Below(i + 1))]);
  }
  return slots;
}

std::vector<int> Order(std::vector<TPoint> const& points, std::vector<int> const& shuffled) {
  return OrderInRounds(points.data(), shuffled.data(), static_cast<int>(shuffled.size()));
}

double PathLength(std::vector<TPoint> const& points, std::vector<int> const& order) {
  double length = 0.0;
  for (std::size_t i = 1; i < order.size(); ++i) {
    TPoint const& from = points[static_cast<std::size_t>(order[i - 1])];
    length += from.XY_Distance(points[static_cast<std::size_t>(order[i])]);
  }
  return length;
}

TEST(InsertionOrder, ARoundGoesFromEachCellToANeighbour) {
  constexpr int SIDE = 16;
  std::vector<TPoint> points;
  for (int i = 0; i < SIDE * SIDE; ++i) points.emplace_back(i % SIDE, i / SIDE);
  Dice dice(TestSeed());
  std::vector<int> const order = Order(points, Shuffled(SIDE * SIDE, dice));
  ASSERT_EQ(order.size(), points.size());
  for (std::size_t i = 1; i < order.size(); ++i) {
    TPoint const& from = points[static_cast<std::size_t>(order[i - 1])];
    EXPECT_EQ(from.XY_Distance(points[static_cast<std::size_t>(order[i])]), 1.0) << i;
  }
}

TEST(InsertionOrder, EverySlotComesOnceWhateverThePoints) {
  double const inf = std::numeric_limits<double>::infinity();
  double const odd[] = {0.0, -0.0, 1.0, inf, -inf, std::nan(""), 1e308, -1e308, 1e-308};
  Dice dice(TestSeed());
  for (int count : {0, 1, 2, 3, 255, 256, 257, 5000}) {
    std::vector<TPoint> points;
    for (int i = 0; i < count; ++i) points.emplace_back(odd[dice.Below(9)], odd[dice.Below(9)]);
    std::vector<int> order = Order(points, Shuffled(count, dice));
    std::sort(order.begin(), order.end());
    std::vector<int> slots(static_cast<std::size_t>(count));
    std::iota(slots.begin(), slots.end(), 0);
    EXPECT_EQ(order, slots) << count;
  }
}

TEST(InsertionOrder, PointsComeWithTheirSlotsAndHeights) {
  Dice dice(TestSeed());
  std::vector<TPoint> points;
  for (int i = 0; i < 3000; ++i) points.emplace_back(dice.Unit(), dice.Unit(), i);
  std::vector<int> const shuffled = Shuffled(3000, dice);
  std::vector<OrderedPoint> ordered(3000);
  std::vector<OrderedPoint> scratch(3000);
  OrderInRounds(points.data(), shuffled.data(), 3000, ordered.data(), scratch.data());
  std::vector<int> const order = Order(points, shuffled);
  for (std::size_t i = 0; i < 3000; ++i) {
    ASSERT_EQ(ordered[i].slot, order[i]);
    EXPECT_EQ(TPoint(ordered[i].x, ordered[i].y, ordered[i].z),
              points[static_cast<std::size_t>(order[i])]);
  }
}

TEST(InsertionOrder, SlotsThatAreNotAskedForDoNotCome) {
  std::vector<TPoint> const points = {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}};
  EXPECT_EQ(Order(points, {3, 1}), Order(points, {1, 3}));
  EXPECT_EQ(Order(points, {3, 1}).size(), 2U);
}

TEST(InsertionOrder, RoundsKeepTheShuffle) {
  Dice dice(TestSeed());
  std::vector<TPoint> points;
  for (int i = 0; i < 4096; ++i) points.emplace_back(dice.Unit(), dice.Unit());
  std::vector<int> const shuffled = Shuffled(4096, dice);
  std::vector<int> order = Order(points, shuffled);
  // The last round takes seven eighths, and those before it the first points of the shuffle.
  std::vector<int> first(shuffled.begin(), shuffled.begin() + 512);
  std::sort(first.begin(), first.end());
  std::sort(order.begin(), order.begin() + 512);
  EXPECT_TRUE(std::equal(first.begin(), first.end(), order.begin()));
}

TEST(InsertionOrder, ClustersFarApartAreEachFollowed) {
  Dice dice(TestSeed());
  std::vector<TPoint> points;
  for (int i = 0; i < 20000; ++i) {
    points.emplace_back((i % 2 == 0 ? 0.0 : 1e9) + dice.Unit(), dice.Unit());
  }
  std::vector<int> const shuffled = Shuffled(20000, dice);
  // A path through n places in a unit square takes about sqrt(n), in random order about n / 2. The
  // four rounds jump between the two clusters once or twice each.
  std::vector<int> const order = Order(points, shuffled);
  double const jumps = std::floor(PathLength(points, order) / 1e9);
  EXPECT_LE(jumps, 8.0);
  EXPECT_LT(PathLength(points, order) - jumps * 1e9, 1000.0);
}

std::vector<int> Sorted(std::vector<int> order) {
  std::sort(order.begin(), order.end());
  return order;
}

// A path through n places in a unit square takes about sqrt(n) along a curve, in random order about
// n / 2.
TEST(InsertionOrder, FewPointsComeAsTheyAreShuffledAndMoreInRounds) {
  Dice dice(TestSeed());
  std::vector<TPoint> points;
  for (int i = 0; i < 8193; ++i) points.emplace_back(dice.Unit(), dice.Unit());
  std::vector<int> const few = RandomOrder(points.data(), 8192);
  std::vector<int> const more = RandomOrder(points.data(), 8193);
  EXPECT_GT(PathLength(points, few), 3000.0);
  EXPECT_LT(PathLength(points, more), 600.0);
  std::vector<int> slots(8193);
  std::iota(slots.begin(), slots.end(), 0);
  EXPECT_EQ(Sorted(more), slots);
  slots.pop_back();
  EXPECT_EQ(Sorted(few), slots);
}

TEST(InsertionOrder, RandomOrderDiffersFromRunToRun) {
  std::vector<TPoint> points;
  for (int i = 0; i < 100; ++i) points.emplace_back(i, i * i % 17);
  EXPECT_NE(RandomOrder(points.data(), 100), RandomOrder(points.data(), 100));
  EXPECT_TRUE(RandomOrder(points.data(), 0).empty());
}

}  // namespace
