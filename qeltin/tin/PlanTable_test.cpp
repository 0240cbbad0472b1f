#include "qeltin/tin/PlanTable.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>

#include "testing/MakeSurvey.h"

namespace {

using qeltin::detail::PlanTable;
using qeltin::testing::Dice;
using qeltin::testing::TestSeed;

TEST(PlanTable, FindsByPlanAlone) {
  PlanTable<int> table;
  EXPECT_EQ(table.Find(TPoint(1, 2)), nullptr);
  table.Add(TPoint(1, 2, 3), 7);
  ASSERT_NE(table.Find(TPoint(1, 2, 9)), nullptr);
  EXPECT_EQ(table.Find(TPoint(1, 2, 9))->handle, 7);
  EXPECT_EQ(table.Find(TPoint(2, 1, 3)), nullptr);
}

TEST(PlanTable, ZeroAndMinusZeroAreOnePlace) {
  PlanTable<int> table;
  table.Add(TPoint(0.0, -0.0), 7);
  EXPECT_NE(table.Find(TPoint(-0.0, 0.0)), nullptr);
}

TEST(PlanTable, KeepsItsEntriesThroughGrowthAndRemovals) {
  Dice dice(TestSeed());
  PlanTable<int> table;
  std::map<std::pair<int, int>, int> expected;
  for (int i = 0; i < 50000; ++i) {
    int const x = dice.Below(60);
    int const y = dice.Below(60);
    auto const at = expected.find({x, y});
    auto* const entry = table.Find(TPoint(x, y));
    ASSERT_EQ(entry != nullptr, at != expected.end());
    if (entry == nullptr) {
      table.Add(TPoint(x, y), i);
      expected[{x, y}] = i;
      continue;
    }
    ASSERT_EQ(entry->handle, at->second);
    if (i % 10000 < 5000 && dice.OneIn(4)) continue;
    table.Remove(entry);
    expected.erase(at);
  }
  for (auto const& [place, handle] : expected) {
    auto* const entry = table.Find(TPoint(place.first, place.second));
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->handle, handle);
  }
}

TEST(PlanTable, ClearForgetsEverything) {
  PlanTable<int> table;
  table.Add(TPoint(1, 2), 7);
  table.Clear();
  EXPECT_EQ(table.Find(TPoint(1, 2)), nullptr);
}

}  // namespace
