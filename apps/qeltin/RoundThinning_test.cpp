#include "apps/qeltin/RoundThinning.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <utility>
#include <vector>

#include "qeltin/decimate/TPlane.h"
#include "testing/ExpectSound.h"
#include "testing/HandMadeMesh.h"
#include "testing/MakeSurvey.h"

namespace qeltin::cli {
namespace {

using qeltin::testing::ALL_SURVEYS;
using qeltin::testing::Dice;
using qeltin::testing::ExpectSound;
using qeltin::testing::ExtentOf;
using qeltin::testing::HandMadeMesh;
using qeltin::testing::MakeSurvey;
using qeltin::testing::SurfaceRules;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;

constexpr RoundThinning::Limits ANY = {0.0f, std::numeric_limits<float>::max()};

void Build(TIN& tin, std::vector<TPoint> const& points) {
  auto const extent = ExtentOf(points);
  tin.Init(static_cast<int>(points.size()), extent.min, extent.max);
  for (TPoint const& p : points) tin.AddPoint(p);
  ASSERT_TRUE(tin.Compact());
}

int ThinTo(TIN& tin, int wanted) {
  RoundThinning thinning(tin);
  int removed = 0;
  for (int now = 1; now > 0 && removed < wanted; removed += now) {
    now = thinning.Round(wanted - removed, ANY);
  }
  return removed;
}

std::vector<TPoint> PointsOf(TIN const& tin) {
  std::vector<TPoint> points;
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) points.push_back(*tin.GetPoint(i));
  std::sort(points.begin(), points.end());
  return points;
}

std::vector<TPoint> WhatWent(std::vector<TPoint> const& before, std::vector<TPoint> const& after) {
  std::vector<TPoint> gone;
  std::set_difference(before.begin(), before.end(), after.begin(), after.end(),
                      std::back_inserter(gone));
  return gone;
}

// Pairs of points that a side joins.
std::set<std::pair<TPoint, TPoint>> SidesOf(TIN const& tin) {
  std::set<std::pair<TPoint, TPoint>> sides;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const t = tin.GetTriangle(i, true);
    for (int k = 0; k < 3; ++k) {
      sides.insert(std::minmax(*t->m_pVertex[k], *t->m_pVertex[(k + 1) % 3]));
    }
  }
  return sides;
}

class RoundThinningOf : public ::testing::TestWithParam<Survey> {};

TEST_P(RoundThinningOf, LeavesASurfaceThatCompactsToASoundOne) {
  TIN tin;
  ASSERT_NO_FATAL_FAILURE(Build(tin, MakeSurvey(GetParam(), 400, TestSeed())));
  ThinTo(tin, 360);
  ASSERT_TRUE(tin.Compact());
  SurfaceRules rules;
  rules.delaunay = false;
  ExpectSound(tin, rules);
}

INSTANTIATE_TEST_SUITE_P(Surveys, RoundThinningOf, ::testing::ValuesIn(ALL_SURVEYS),
                         [](::testing::TestParamInfo<Survey> const& survey) {
                           return std::string(NameOf(survey.param));
                         });

TEST(RoundThinning, RemovesAsManyAsAreWanted) {
  TIN tin;
  ASSERT_NO_FATAL_FAILURE(Build(tin, MakeSurvey(Survey::Uniform, 1000, TestSeed())));
  EXPECT_EQ(ThinTo(tin, 617), 617);
  ASSERT_TRUE(tin.Compact());
  EXPECT_EQ(tin.GetNumberOfPoints(), 1000 - 617 + 4);
}

TEST(RoundThinning, NoTwoThatGoInARoundAreNeighbours) {
  TIN tin;
  ASSERT_NO_FATAL_FAILURE(Build(tin, MakeSurvey(Survey::JitteredGrid, 900, TestSeed())));
  for (int round = 0; round < 3; ++round) {
    std::vector<TPoint> const before = PointsOf(tin);
    auto const sides = SidesOf(tin);
    int const removed = RoundThinning(tin).Round(900, ANY);
    ASSERT_TRUE(tin.Compact());
    std::vector<TPoint> const gone = WhatWent(before, PointsOf(tin));
    ASSERT_EQ(static_cast<int>(gone.size()), removed);
    EXPECT_GT(removed, 50);
    for (std::size_t i = 0; i < gone.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) EXPECT_EQ(sides.count(std::minmax(gone[j], gone[i])), 0u);
    }
  }
}

TEST(RoundThinning, PointsOnTheEdgeOfTheVisibleSurfaceStay) {
  TIN tin;
  ASSERT_NO_FATAL_FAILURE(Build(tin, MakeSurvey(Survey::Uniform, 300, TestSeed())));
  tin.BuildPointMap();
  std::vector<TPoint> edge;
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
    if (tin.PointIsOnHull(tin.GetPoint(i))) edge.push_back(*tin.GetPoint(i));
  }
  std::sort(edge.begin(), edge.end());
  EXPECT_GT(ThinTo(tin, 300), 200);
  ASSERT_TRUE(tin.Compact());
  std::vector<TPoint> const left = PointsOf(tin);
  EXPECT_TRUE(std::includes(left.begin(), left.end(), edge.begin(), edge.end()));
}

TEST(RoundThinning, NoPointGoesThatIsFartherThanTheLimit) {
  TIN tin;
  ASSERT_NO_FATAL_FAILURE(Build(tin, MakeSurvey(Survey::Uniform, 1000, TestSeed())));
  float const limit = [&tin] {
    TIN copy;
    Build(copy, PointsOf(tin));
    RoundThinning thinning(copy);
    thinning.Round(500, ANY);
    return static_cast<float>(thinning.Distances().mean);
  }();
  RoundThinning thinning(tin);
  int removed = 0;
  for (int now = 1; now > 0; removed += now) now = thinning.Round(1000, {0.0f, limit});
  EXPECT_GT(removed, 50);
  EXPECT_LT(removed, 900);
  EXPECT_EQ(thinning.Distances().count, static_cast<unsigned>(removed));
  EXPECT_LE(thinning.Distances().maximum, static_cast<double>(limit));
  EXPECT_EQ(thinning.Round(1000, {0.0f, limit}), 0);
}

// A square with one point inside, whose plane is that of TPlane.
TEST(RoundThinning, TheDistanceIsThatToThePlaneOfTheNeighbours) {
  TIN tin;
  std::vector<TPoint> corners = {{0, 0, 1}, {10, 1, 2}, {11, 12, -1}, {-1, 9, 4}};
  TPoint const middle(4.5, 5.25, 9);
  tin.Init(10, {-20, -20, 0}, {20, 20, 0});
  for (TPoint const& p : corners) tin.AddPoint(p);
  tin.AddPoint(middle);
  ASSERT_TRUE(tin.Compact());
  TPlane plane;
  ASSERT_EQ(plane.Fit({&corners[0], &corners[1], &corners[2], &corners[3]}), 1);
  double const distance = std::fabs(plane.a * middle.x + plane.b * middle.y + plane.c - middle.z) /
                          std::sqrt(plane.a * plane.a + plane.b * plane.b + 1.0);

  RoundThinning thinning(tin);
  auto const below = static_cast<float>(distance * (1.0 - 1e-5));
  EXPECT_EQ(thinning.Round(1, {0.0f, below}), 0);
  EXPECT_EQ(thinning.Round(1, {0.0f, static_cast<float>(distance * (1.0 + 1e-5))}), 1);
  EXPECT_NEAR(thinning.Distances().maximum, distance, 1e-5);
}

TEST(RoundThinning, APointWithThreeNeighboursStays) {
  TIN tin;
  tin.Init(10, {-20, -20, 0}, {20, 20, 0});
  for (TPoint const& p : {TPoint(0, 10, 0), TPoint(9, -5, 0), TPoint(-9, -5, 0), TPoint(0, 0, 0)}) {
    tin.AddPoint(p);
  }
  ASSERT_TRUE(tin.Compact());
  EXPECT_EQ(RoundThinning(tin).Round(1, ANY), 0);
}

TEST(RoundThinning, FarFromTheOriginTheSamePointsGo) {
  std::vector<TPoint> near = MakeSurvey(Survey::JitteredGrid, 600, TestSeed());
  std::vector<TPoint> far;
  for (TPoint& p : near) {
    p = {std::round(p.x * 256.0) / 256.0 + 4096.0, std::round(p.y * 256.0) / 256.0 + 4096.0, p.z};
    far.push_back(p + TPoint(524288.0, 4194304.0, 0.0));
  }
  TIN here;
  TIN there;
  ASSERT_NO_FATAL_FAILURE(Build(here, near));
  ASSERT_NO_FATAL_FAILURE(Build(there, far));
  EXPECT_EQ(ThinTo(here, 400), 400);
  EXPECT_EQ(ThinTo(there, 400), 400);
  ASSERT_TRUE(here.Compact() && there.Compact());
  ASSERT_EQ(here.GetNumberOfPoints(), there.GetNumberOfPoints());
  std::vector<TPoint> const left = PointsOf(here);
  int same = 0;
  for (TPoint const& p : PointsOf(there)) {
    TPoint const back(p.x - 524288.0, p.y - 4194304.0, p.z);
    if (std::binary_search(left.begin(), left.end(), back)) ++same;
  }
  EXPECT_GE(same, 190);  // of 204, the seed corners aside, where a tie went another way
}

// A middle at (500, 500), the ring around it, from there, and a triangle beyond each side of the
// ring, without a seed rectangle. Returns how many points go.
int GoneFromWheel(std::vector<TPoint> const& places) {
  HandMadeMesh mesh;
  TPoint* const middle = mesh.Point(500, 500);
  std::vector<TPoint*> ring;
  for (TPoint const& p : places) ring.push_back(mesh.Point(500 + p.x, 500 + p.y));
  std::vector<TTriangle*> spokes;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    TPoint* const next = ring[(i + 1) % ring.size()];
    spokes.push_back(mesh.LayClockwise(middle, ring[i], next));
    TPoint* const beyond =
        mesh.Point(3 * (ring[i]->x + next->x) / 2 - 1000, 3 * (ring[i]->y + next->y) / 2 - 1000);
    HandMadeMesh::Link(spokes.back(), mesh.LayClockwise(ring[i], next, beyond));
  }
  for (std::size_t i = 0; i < spokes.size(); ++i) {
    HandMadeMesh::Link(spokes[i], spokes[(i + 1) % spokes.size()]);
  }
  return RoundThinning(mesh.tin).Round(100, ANY);
}

TEST(RoundThinning, WithoutASeedAPointStaysWhoseHoleCannotBeFilledCleanly) {
  EXPECT_EQ(GoneFromWheel({{0, 4}, {4, 1}, {3, -4}, {-3, -4}, {-4, 1}}), 1);
  EXPECT_EQ(GoneFromWheel({{-1.325083, -3.2933726},
                           {-4.0776448, -0.269416073},
                           {-0.0240024268, 0.00130958075},
                           {-0.0974077651, 0.0579179262},
                           {4.14196136, 0.273665565},
                           {0.394361827, -1.57796315}}),
            0);
}

TEST(RoundThinning, OfAnEmptySurfaceRemovesNothing) {
  TIN tin;
  tin.Init(10, {0, 0, 0}, {1, 1, 1});
  EXPECT_EQ(RoundThinning(tin).Round(5, ANY), 0);
}

}  // namespace
}  // namespace qeltin::cli
