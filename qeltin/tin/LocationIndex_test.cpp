#include "qeltin/tin/LocationIndex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"

namespace {

using qeltin::detail::LocationIndex;
using qeltin::testing::Dice;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;

LocationIndex IndexOf(TIN& tin, int stride = 1) {
  TPoint min;
  TPoint max;
  tin.GetBounds(min, max);
  return LocationIndex(*TINPeer::Triangles(tin), min, max, stride);
}

void Build(TIN& tin, std::vector<IPoint> const& points) {
  TPoint min(points[0]);
  TPoint max(points[0]);
  for (IPoint const& p : points) {
    min = TPoint(std::min(min.x, p.x), std::min(min.y, p.y));
    max = TPoint(std::max(max.x, p.x), std::max(max.y, p.y));
  }
  tin.Init(static_cast<int>(points.size()), min, max);
  for (IPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
  tin.Triangulate();
}

// Returns the steps from `start` to the triangle that holds `p`, or to where a walk would turn
// back: rounding can send a place on a side to and fro.
int StepsTo(TPoint const& p, TTriangle const* start) {
  TTriangle const* previous = nullptr;
  int steps = 0;
  for (int side = start->WhereTri(p); side != 3; side = start->WhereTri(p)) {
    TTriangle const* const next = start->m_pAdjacent[side];
    if (next == nullptr || next == previous) break;
    previous = std::exchange(start, next);
    ++steps;
  }
  return steps;
}

double MeanSteps(TIN& tin, std::vector<IPoint> const& places, int stride = 1) {
  LocationIndex const index = IndexOf(tin, stride);
  double steps = 0.0;
  for (IPoint const& p : places) steps += StepsTo(TPoint(p), index.Near(p.x, p.y));
  return steps / static_cast<double>(places.size());
}

TEST(LocationIndex, AnEmptyPoolHasNothingNear) {
  TIN tin(TPoint(0, 0), TPoint(1, 1), 10);
  EXPECT_EQ(IndexOf(tin).Near(0.5, 0.5), nullptr);
}

TEST(LocationIndex, LeadsToWithinAFewSteps) {
  Dice dice(TestSeed());
  std::vector<IPoint> points;
  for (int i = 0; i < 20000; ++i) points.push_back({dice.Unit(), dice.Unit(), 0});
  TIN tin;
  Build(tin, points);
  EXPECT_LT(MeanSteps(tin, points), 6.0);
}

TEST(LocationIndex, LeadsNearWhereItKnowsOneTriangleInSixteen) {
  Dice dice(TestSeed());
  std::vector<IPoint> points;
  for (int i = 0; i < 20000; ++i) points.push_back({dice.Unit(), dice.Unit(), 0});
  TIN tin;
  Build(tin, points);
  double const steps = MeanSteps(tin, points, 16);
  EXPECT_GT(steps, MeanSteps(tin, points));
  EXPECT_LT(steps, 12.0);
}

TEST(LocationIndex, LeadsToWithinAFewStepsInClustersAThousandKilometresApart) {
  Dice dice(TestSeed());
  std::vector<IPoint> points;
  for (int i = 0; i < 20000; ++i) {
    points.push_back({(i % 2 == 0 ? 0.0 : 1e6) + dice.Unit(), dice.Unit(), 0});
  }
  TIN tin;
  Build(tin, points);
  EXPECT_LT(MeanSteps(tin, points), 6.0);
}

TEST(LocationIndex, AnyPlaceHasATriangleNear) {
  double const inf = std::numeric_limits<double>::infinity();
  Dice dice(TestSeed());
  std::vector<IPoint> points;
  for (int i = 0; i < 3000; ++i) points.push_back({dice.Unit(), dice.Unit(), 0});
  TIN tin;
  Build(tin, points);
  LocationIndex const index = IndexOf(tin);
  for (double x : {-inf, -1e300, 0.0, 0.5, 1e300, inf, std::nan("")}) {
    for (double y : {-inf, -1e300, 0.0, 0.5, 1e300, inf, std::nan("")}) {
      EXPECT_NE(index.Near(x, y), nullptr) << x << " " << y;
    }
  }
}

}  // namespace
