#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <memory>
#include <vector>

#include "qeltin/tin/PointMap.h"
#include "qeltin/tin/TIN.h"
#include "testing/MakeSurvey.h"

// The map against a plain tree of the same nodes.

namespace {

using qeltin::testing::Dice;
using qeltin::testing::TestSeed;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

using Tree = std::map<PointMapNode, TPoint const*>;

TPoint const* FindIn(Tree const& tree, TPoint const* p) {
  auto const at = tree.find(PointMapNode(p));
  return at == tree.end() ? nullptr : at->second;
}

bool EraseFrom(Tree& tree, TPoint const* p) {
  auto const at = tree.find(PointMapNode(p));
  if (at == tree.end()) return false;
  tree.erase(at);
  return true;
}

void ExpectEqual(PointMap& map, Tree const& tree, std::vector<TPoint> const& points) {
  ASSERT_EQ(map.GetNumberOfPoints(), static_cast<int>(tree.size()));
  for (TPoint const& p : points) ASSERT_EQ(map.FindPoint(&p).GetPoint(), FindIn(tree, &p));
}

// Points on a coarse lattice, so that many share a place, a height, or both.
std::vector<TPoint> Lattice(int count, int notNumbers, Dice& dice) {
  std::vector<TPoint> points;
  for (int i = 0; i < count; ++i) {
    TPoint p(dice.Below(12), dice.Below(12) - 0.0, dice.Below(3));
    if (dice.OneIn(9)) p.x = -0.0;
    if (notNumbers > 0 && dice.OneIn(30)) p.z = NOT_A_NUMBER;
    if (notNumbers > 1 && dice.OneIn(60)) p.x = NOT_A_NUMBER;
    points.push_back(p);
  }
  return points;
}

TEST(PointMapReference, EntriesAreThoseOfATree) {
  Dice dice(TestSeed());
  for (int run = 0; run < 60; ++run) {
    std::vector<TPoint> const points = Lattice(5 + dice.Below(400), run % 3, dice);
    PointMap map;
    Tree tree;
    for (int i = 0; i < 600; ++i) {
      TPoint const* const p =
          &points[static_cast<std::size_t>(dice.Below(static_cast<int>(points.size())))];
      if (dice.OneIn(3)) {
        ASSERT_EQ(map.RemovePoint(p), EraseFrom(tree, p)) << "run " << run;
      } else {
        ASSERT_EQ(map.AddPoint(p), tree.emplace(PointMapNode(p), p).second) << "run " << run;
      }
    }
    ExpectEqual(map, tree, points);
    PointMap copy(map);
    map.Clear();
    ExpectEqual(copy, tree, points);
    PointMap assigned;
    assigned.AddPoint(&points[0]);
    assigned = copy;
    ExpectEqual(assigned, tree, points);
  }
}

TEST(PointMapReference, BuildEntersThePointsThatCameFirst) {
  Dice dice(TestSeed());
  for (int run = 0; run < 60; ++run) {
    std::vector<TPoint> const points = Lattice(5 + dice.Below(400), run % 3, dice);
    TIN tin;
    tin.Init(static_cast<int>(points.size()), TPoint(0, 0), TPoint(12, 12));
    Tree tree;
    for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
    for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
      tree.emplace(PointMapNode(tin.GetPoint(i)), tin.GetPoint(i));
    }
    PointMap map;
    EXPECT_FALSE(map.Build(tin));
    ExpectEqual(map, tree, points);
    for (int i = 0; i < tin.GetNumberOfPoints(); i += 3) {
      TPoint const* const p = tin.GetPoint(i);
      ASSERT_EQ(map.RemovePoint(p), EraseFrom(tree, p)) << "run " << run;
    }
    ExpectEqual(map, tree, points);
    PointMap copy(map);
    ExpectEqual(copy, tree, points);
    EXPECT_FALSE(map.Build(tin));  // on top of itself
    for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
      tree.emplace(PointMapNode(tin.GetPoint(i)), tin.GetPoint(i));
    }
    ExpectEqual(map, tree, points);
  }
}

// Points that share a place in plan have no place of their own in the index.
TEST(PointMapReference, OrderAndRemovalsAreThoseOfATree) {
  Dice dice(TestSeed());
  for (int run = 0; run < 60; ++run) {
    std::vector<TPoint> points = Lattice(5 + dice.Below(400), 0, dice);
    if (run % 10 == 0) points.assign(points.size(), TPoint(3, 4));
    for (std::size_t i = 0; run % 10 == 0 && i < points.size(); ++i)
      points[i].z = static_cast<double>(i % 300);
    TIN tin;
    tin.Init(static_cast<int>(points.size()), TPoint(0, 0), TPoint(12, 12));
    for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
    Tree tree;
    PointMap map;
    for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
      tree.emplace(PointMapNode(tin.GetPoint(i)), tin.GetPoint(i));
    }
    map.Build(tin);
    for (int i = 0; i < tin.GetNumberOfPoints(); i += 2) {
      ASSERT_EQ(map.RemovePoint(tin.GetPoint(i)), EraseFrom(tree, tin.GetPoint(i)));
    }
    ExpectEqual(map, tree, points);
    for (TPoint const& p : Lattice(50, 0, dice)) {
      auto const at = tree.lower_bound(PointMapNode(&p));
      ASSERT_EQ(map.FindLeft(p).GetPoint(), at == tree.end() ? nullptr : at->second);
      ASSERT_EQ(map.RemovePoint(&p), EraseFrom(tree, &p));
    }
    ExpectEqual(map, tree, points);
  }
}

}  // namespace
