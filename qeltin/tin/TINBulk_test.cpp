#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <set>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/ExpectSound.h"
#include "testing/Formula.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/VerifySurface.h"

namespace {

using qeltin::testing::ExpectSound;
using qeltin::testing::ExtentOf;
using qeltin::testing::FormulaInputs;
using qeltin::testing::MakeSurvey;
using qeltin::testing::SameBits;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;
using qeltin::testing::VerifySurface;

constexpr double LARGEST_FLOAT = 3.4028234663852886e38;

void Load(TIN& tin, std::vector<TPoint> const& points) {
  auto const box = ExtentOf(points);
  ASSERT_TRUE(tin.Init(static_cast<int>(points.size()), box.min, box.max));
  for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
}

std::vector<TPoint> const THREE = {TPoint(0, 0, 1), TPoint(50, 0, 2), TPoint(20, 40, 3)};

// The triangles of a surface by their corners, each turned to start with the least.
using Corners = std::array<std::array<double, 3>, 3>;
std::set<Corners> TrianglesOf(TIN const& tin) {
  std::set<Corners> result;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    Corners corners;
    for (std::size_t k = 0; k < 3; ++k) {
      TPoint const& p = *tin.GetTriangle(i, true)->m_pVertex[k];
      corners[k] = {p.x, p.y, p.z};
    }
    std::rotate(corners.begin(), std::min_element(corners.begin(), corners.end()), corners.end());
    result.insert(corners);
  }
  return result;
}

// --- LoadPoint
// ------------------------------------------------------------------------------------

TEST(TINBulk, LoadedPointStandsInThePoolWithoutTriangles) {
  TIN tin;
  tin.Init(3, TPoint(0, 0, 0), TPoint(10, 10, 10));
  tin.LoadPoint(4, 5, 6);
  tin.LoadPoint(500, 500, 500);
  EXPECT_EQ(tin.GetNumberOfPoints(), 2);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 0);
  EXPECT_EQ(*tin.GetPoint(0), TPoint(4, 5, 6));
  EXPECT_EQ(*tin.GetPoint(1), TPoint(500, 500, 500));
  double z = -7;
  EXPECT_FALSE(tin.GetZ(4, 5, z));
  EXPECT_EQ(z, -7.0);
  EXPECT_EQ(tin.GetTriangleWithPoint(TPoint(4, 5)), nullptr);
}

TEST(TINBulk, LoadedPointLeavesTheBoxes) {
  TIN tin;
  tin.Init(3, TPoint(0, 0, 0), TPoint(10, 10, 10));
  tin.LoadPoint(500, 500, 500);
  TPoint min;
  TPoint max;
  tin.GetBounds(min, max);
  EXPECT_EQ(min, TPoint(0, 0, 0));
  EXPECT_EQ(max, TPoint(10, 10, 10));
  tin.GetWorldBounds(min, max);
  EXPECT_EQ(min, TPoint(-100, -100, -100));
  EXPECT_EQ(max, TPoint(110, 110, 110));
}

TEST(TINBulk, PointPastTheCapacityIsDropped) {
  TIN tin;
  tin.Init(-999, TPoint(0, 0), TPoint(10, 10));
  ASSERT_EQ(TINPeer::Points(tin)->m_iCapacity, 5);
  for (int i = 0; i < 8; ++i) tin.LoadPoint(i, i, i);
  EXPECT_EQ(tin.GetNumberOfPoints(), 5);
  EXPECT_EQ(*tin.GetPoint(4), TPoint(4, 4, 4));
}

// --- Triangulate
// ----------------------------------------------------------------------------------

TEST(TINBulk, TriangulateAnswersFalseOnSuccess) {
  TIN tin;
  Load(tin, THREE);
  EXPECT_FALSE(tin.Triangulate());
  double z = 0;
  EXPECT_TRUE(tin.GetZ(20, 10, z));
  ExpectSound(tin);
}

TEST(TINBulk, TriangulateWithoutPointsLaysTheSeed) {
  TIN tin;
  tin.Init(3, TPoint(0, 0), TPoint(10, 10));
  EXPECT_FALSE(tin.Triangulate());
  EXPECT_EQ(tin.GetNumberOfPoints(), 4);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 2);
  EXPECT_EQ(TINPeer::LastTriangle(tin), tin.GetTriangle(0, true));
  ExpectSound(tin);
}

TEST(TINBulk, SeedCornersComeLastAtHeightZero) {
  TIN tin;
  Load(tin, THREE);
  tin.Triangulate();
  ASSERT_EQ(tin.GetNumberOfPoints(), 7);
  EXPECT_EQ(*tin.GetPoint(3), TPoint(-500, -400, 0));
  EXPECT_EQ(*tin.GetPoint(4), TPoint(550, -400, 0));
  EXPECT_EQ(*tin.GetPoint(5), TPoint(550, 440, 0));
  EXPECT_EQ(*tin.GetPoint(6), TPoint(-500, 440, 0));
  ExpectSound(tin);
}

TEST(TINBulk, OnlyTheTriangleAmongTheRealPointsIsVisible) {
  TIN tin;
  Load(tin, THREE);
  tin.Triangulate();
  ASSERT_EQ(tin.GetNumberOfTriangles(), 8);
  int visible = 0;
  for (int i = 0; i < 8; ++i) {
    bool reaches_seed = false;
    for (int corner = 3; corner < 7; ++corner) {
      reaches_seed = reaches_seed || tin.GetTriangle(i, true)->XY_FindVertex(tin.GetPoint(corner));
    }
    EXPECT_EQ(tin.GetTriangle(i, false) == nullptr, reaches_seed);
    if (!reaches_seed) ++visible;
  }
  EXPECT_EQ(visible, 1);
  ExpectSound(tin);
}

TEST(TINBulk, PointLoadedTwiceStaysUnconnected) {
  TIN tin;
  std::vector<TPoint> points = THREE;
  points.emplace_back(50, 0, 99);
  Load(tin, points);
  EXPECT_FALSE(tin.Triangulate());
  EXPECT_EQ(tin.GetNumberOfPoints(), 8);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 8);
  auto const report = VerifySurface(tin);
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(report.loosePoints, 1);
}

TEST(TINBulk, PointOutsideTheWorldBoxStaysUnconnected) {
  TIN tin;
  tin.Init(4, TPoint(0, 0, 0), TPoint(50, 40, 9));
  for (TPoint const& p : THREE) tin.LoadPoint(p.x, p.y, p.z);
  tin.LoadPoint(1e6, 1e6, 5);
  EXPECT_FALSE(tin.Triangulate());
  EXPECT_EQ(tin.GetNumberOfPoints(), 8);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 8);
  TPoint min;
  TPoint max;
  tin.GetBounds(min, max);
  EXPECT_EQ(max, TPoint(50, 40, 9));
  auto const report = VerifySurface(tin);
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(report.loosePoints, 1);
}

TEST(TINBulk, PointsKeepTheirSlotsAndTheLiveOrderIsAPermutationWithTheSeedLast) {
  auto const points = MakeSurvey(Survey::Uniform, 3000, TestSeed());
  TIN tin;
  Load(tin, points);
  tin.Triangulate();
  TArray<TPoint> const& pool = *TINPeer::Points(tin);
  ASSERT_EQ(pool.m_iCount, 3004);
  std::vector<int> order(pool.m_pIndex, pool.m_pIndex + pool.m_iCapacity);
  EXPECT_FALSE(std::is_sorted(order.begin(), order.begin() + 3000));
  EXPECT_TRUE(std::is_sorted(order.begin() + 3000, order.end()));
  std::sort(order.begin(), order.begin() + 3000);
  for (std::size_t i = 0; i < order.size(); ++i) ASSERT_EQ(order[i], static_cast<int>(i));
  for (std::size_t i = 0; i < points.size(); ++i) EXPECT_EQ(pool.m_pData[i], points[i]);
  ExpectSound(tin);
}

TEST(TINBulk, SeedCornersWidenNothing) {
  auto const points = MakeSurvey(Survey::Uniform, 300, TestSeed());
  TIN tin;
  Load(tin, points);
  tin.Triangulate();
  TPoint min;
  TPoint max;
  tin.GetBounds(min, max);
  EXPECT_EQ(min, ExtentOf(points).min);
  EXPECT_EQ(max, ExtentOf(points).max);
  ExpectSound(tin);
}

TEST(TINBulk, TwoRunsDifferInOrderAndAgreeInTheirTriangles) {
  auto const points = MakeSurvey(Survey::Uniform, 1000, TestSeed());
  TIN first;
  TIN second;
  Load(first, points);
  Load(second, points);
  first.Triangulate();
  second.Triangulate();
  int const* const order = TINPeer::Points(first)->m_pIndex;
  EXPECT_FALSE(std::equal(order, order + 1000, TINPeer::Points(second)->m_pIndex));
  EXPECT_EQ(first.GetNumberOfTriangles(), 2002);
  EXPECT_EQ(TrianglesOf(first), TrianglesOf(second));
  ExpectSound(first);
  ExpectSound(second);
}

TEST(TINBulk, EverySurveyGivesASoundSurface) {
  std::uint64_t const seed = TestSeed();
  for (Survey const survey : qeltin::testing::ALL_SURVEYS) {
    for (auto const& frame : {qeltin::testing::AT_ORIGIN, qeltin::testing::AT_UTM}) {
      SCOPED_TRACE(survey);
      SCOPED_TRACE(frame.east);
      TIN tin;
      Load(tin, MakeSurvey(survey, 2000, seed, frame));
      EXPECT_FALSE(tin.Triangulate());
      EXPECT_EQ(tin.GetNumberOfPoints(), 2004);
      ExpectSound(tin);
    }
  }
}

TEST(TINBulk, BoundsThatAreTooNarrowAreWidened) {
  auto const points = MakeSurvey(Survey::Uniform, 1000, TestSeed());
  auto const box = ExtentOf(points);
  TPoint const middle((box.min.x + box.max.x) / 2, (box.min.y + box.max.y) / 2, box.min.z);
  TIN tin;
  tin.Init(1000, box.min, middle);
  for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
  EXPECT_FALSE(tin.Triangulate());
  EXPECT_EQ(tin.GetNumberOfTriangles(), 2 * 1000 + 2);
  TPoint min;
  TPoint max;
  tin.GetBounds(min, max);
  EXPECT_EQ(min, box.min);
  EXPECT_EQ(max, box.max);
  ExpectSound(tin);
}

TEST(TINBulk, PointWithoutAHeightIsTriangulatedAsAnyOther) {
  auto points = MakeSurvey(Survey::Uniform, 500, TestSeed());
  auto const box = ExtentOf(points);
  points[50].z = std::nan("");
  TIN tin;
  tin.Init(500, box.min, box.max);
  for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
  EXPECT_FALSE(tin.Triangulate());
  EXPECT_EQ(tin.GetNumberOfTriangles(), 2 * 500 + 2);
  TPoint const* const pool = TINPeer::Points(tin)->m_pData;
  int around = 0;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    around += tin.GetTriangle(i, true)->XY_FindVertex(pool + 50) ? 1 : 0;
  }
  EXPECT_GE(around, 3);
}

TEST(TINBulk, MapThatIsThereGetsThePoints) {
  TIN tin;
  Load(tin, THREE);
  tin.Triangulate();
  tin.BuildPointMap();
  Load(tin, MakeSurvey(Survey::Uniform, 300, TestSeed()));
  EXPECT_FALSE(tin.Triangulate());
  EXPECT_EQ(tin.GetNumberOfTriangles(), 2 * 300 + 2);
  EXPECT_EQ(TINPeer::Map(tin)->GetNumberOfPoints(), 304);
  ExpectSound(tin);
}

// --- Create
// ---------------------------------------------------------------------------------------

TEST(TINCreate, WorldBoxReachesTenWidthsDownAndAHundredAndTenUp) {
  std::vector<IPoint> points = {{0, 0, 0}, {1, 2, 4}, {0.5, 1.5, 3}};
  TIN tin;
  EXPECT_TRUE(tin.Create(&points));
  TPoint min;
  TPoint max;
  tin.GetWorldBounds(min, max);
  EXPECT_EQ(min, TPoint(-10, -20, -40));
  EXPECT_EQ(max, TPoint(111, 222, 444));
  tin.GetBounds(min, max);
  EXPECT_EQ(min, TPoint(0, 0, 0));
  EXPECT_EQ(max, TPoint(1, 2, 4));
  ExpectSound(tin);
}

TEST(TINCreate, WorldBoxFollowsItsFormulaOnRandomPoints) {
  FormulaInputs in;
  for (int i = 0; i < 100; ++i) {
    std::vector<IPoint> points;
    for (int k = 0; k < 3; ++k) {
      TPoint const p = i % 2 == 0 ? in.Sounding() : in.Point();
      points.push_back({p.x, p.y, p.z});
    }
    TIN tin;
    EXPECT_TRUE(tin.Create(&points));
    auto const expect = [&](double low, double high, double IPoint::*axis) {
      auto const by_axis = [&](IPoint const& a, IPoint const& b) { return a.*axis < b.*axis; };
      double const min = (*std::min_element(points.begin(), points.end(), by_axis)).*axis;
      double const max = (*std::max_element(points.begin(), points.end(), by_axis)).*axis;
      double const world_min = min - (max - min) * 10;
      double const world_max = max + (max - world_min) * 10;
      EXPECT_TRUE(SameBits(low, world_min));
      EXPECT_TRUE(SameBits(high, world_max));
    };
    TPoint min;
    TPoint max;
    tin.GetWorldBounds(min, max);
    expect(min.x, max.x, &IPoint::x);
    expect(min.y, max.y, &IPoint::y);
    expect(min.z, max.z, &IPoint::z);
  }
}

TEST(TINCreate, PoolsHaveMarginsOfTheirOwn) {
  std::vector<IPoint> points = {{0, 0, 0}, {1, 2, 4}, {0.5, 1.5, 3}};
  TIN tin;
  tin.Create(&points);
  EXPECT_EQ(TINPeer::Points(tin)->m_iCapacity, 3 + 1004);
  EXPECT_EQ(TINPeer::Triangles(tin)->m_iCapacity, 2 * 3 + 1000);
}

TEST(TINCreate, PointsStandInTheirOrderAfterTheSeed) {
  auto const survey = MakeSurvey(Survey::Uniform, 500, TestSeed());
  std::vector<IPoint> points;
  for (TPoint const& p : survey) points.push_back({p.x, p.y, p.z});
  points.push_back(points[0]);
  TIN tin;
  EXPECT_TRUE(tin.Create(&points));
  ASSERT_EQ(tin.GetNumberOfPoints(), 4 + 501);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 2 * 500 + 2);
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
    EXPECT_EQ(TINPeer::Points(tin)->m_pIndex[i], i);
  }
  for (std::size_t i = 0; i < points.size(); ++i) {
    EXPECT_EQ(*tin.GetPoint(static_cast<int>(i) + 4), TPoint(points[i]));
  }
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    EXPECT_EQ(TINPeer::Triangles(tin)->m_pIndex[i], i);
  }
  ExpectSound(tin);
}

// What a slot of the triangle pool holds: slots of corners and of neighbours (-1 for none), flags.
struct Slot {
  int corners[3];
  int neighbours[3];
  int flags;
};

TEST(TINCreate, FourPointsOfGeneralPositionFillThePoolInAFixedOrder) {
  std::vector<IPoint> points = {{0, 20, 1}, {100, 0, 2}, {30, 80, 3}, {40, 30, 4}};
  TIN tin;
  ASSERT_TRUE(tin.Create(&points));
  Slot const expected[] = {
      {{7, 4, 6}, {9, 6, 8}, 0},
      {{5, 0, 4}, {2, 6, 9}, TRI_OUTSIDE},
      {{0, 5, 1}, {1, 3, -1}, TRI_OUTSIDE},
      {{1, 5, 2}, {2, 5, -1}, TRI_OUTSIDE},
      {{2, 6, 3}, {5, 7, -1}, TRI_OUTSIDE},
      {{6, 2, 5}, {4, 3, 8}, TRI_OUTSIDE},
      {{0, 6, 4}, {7, 0, 1}, TRI_OUTSIDE},
      {{6, 0, 3}, {6, -1, 4}, TRI_OUTSIDE},
      {{5, 7, 6}, {9, 0, 5}, 0},
      {{4, 7, 5}, {0, 8, 1}, 0},
  };
  ASSERT_EQ(tin.GetNumberOfTriangles(), 10);
  TTriangle const* const slots = TINPeer::Triangles(tin)->m_pData;
  TPoint const* const corners = TINPeer::Points(tin)->m_pData;
  for (int i = 0; i < 10; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(tin.GetTriangle(i, true), slots + i);
    for (int k = 0; k < 3; ++k) {
      EXPECT_EQ(slots[i].m_pVertex[k] - corners, expected[i].corners[k]);
      int const neighbour = expected[i].neighbours[k];
      EXPECT_EQ(slots[i].m_pAdjacent[k], neighbour < 0 ? nullptr : slots + neighbour);
    }
    EXPECT_EQ(slots[i].m_Flags, expected[i].flags);
  }
  ExpectSound(tin);
}

TEST(TINCreate, ReseedsTheRandomGenerator) {
  std::vector<IPoint> points = {{0, 0, 1}, {100, 0, 2}, {30, 80, 3}};
  TIN tin;
  std::srand(1);
  int const first = std::rand();
  std::srand(1);
  tin.Create(&points);
  EXPECT_NE(std::rand(), first);
}

TEST(TINCreate, PointThatExtendsTheBoundsHidesItsTriangles) {
  std::vector<IPoint> points = {{0, 0, 1}, {100, 0, 2}, {30, 80, 3}};
  TIN tin;
  EXPECT_TRUE(tin.Create(&points));
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    EXPECT_EQ(tin.GetTriangle(i, false), nullptr);
  }
  double z = 0;
  EXPECT_FALSE(tin.GetZ(40, 20, z));
  points.push_back({40, 20, 9});  // rebuilds the triangle inside the bounds
  EXPECT_TRUE(tin.Create(&points));
  EXPECT_TRUE(tin.GetZ(41, 20, z));
  ExpectSound(tin);
}

TEST(TINCreate, ReplacesTheSurfaceAndKeepsTheMapWithoutItsEntries) {
  std::vector<IPoint> points = {{0, 0, 1}, {100, 0, 2}, {30, 80, 3}};
  TIN tin;
  tin.Create(&points);
  tin.BuildPointMap();
  PointMap* const map = TINPeer::Map(tin);
  points = {{7, 7, 7}, {9, 9, 9}};
  EXPECT_TRUE(tin.Create(&points));
  EXPECT_EQ(tin.GetNumberOfPoints(), 6);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 6);
  EXPECT_EQ(TINPeer::Map(tin), map);
  EXPECT_EQ(map->GetNumberOfPoints(), 6);
  EXPECT_EQ(*map->FindPoint(tin.GetPoint(4)).GetPoint(), TPoint(7, 7, 7));
  ExpectSound(tin);
}

TEST(TINCreate, NoPointsGiveEmptyPoolsAndAnInvertedWorldBox) {
  std::vector<IPoint> points;
  TIN tin;
  EXPECT_TRUE(tin.Create(&points));
  EXPECT_EQ(tin.GetNumberOfPoints(), 0);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 0);
  EXPECT_EQ(TINPeer::Points(tin)->m_iCapacity, 1004);
  EXPECT_EQ(TINPeer::Triangles(tin)->m_iCapacity, 1000);
  EXPECT_EQ(TINPeer::LastTriangle(tin), nullptr);
  TPoint min;
  TPoint max;
  tin.GetWorldBounds(min, max);
  double const low = LARGEST_FLOAT - (-LARGEST_FLOAT - LARGEST_FLOAT) * 10;
  double const high = -LARGEST_FLOAT + (-LARGEST_FLOAT - low) * 10;
  EXPECT_EQ(min, TPoint(low, low, low));
  EXPECT_EQ(max, TPoint(high, high, high));
  EXPECT_GT(low, high);
  tin.GetBounds(min, max);
  EXPECT_EQ(min, TPoint(LARGEST_FLOAT, LARGEST_FLOAT, LARGEST_FLOAT));
  EXPECT_EQ(max, TPoint(-LARGEST_FLOAT, -LARGEST_FLOAT, -LARGEST_FLOAT));
  EXPECT_EQ(tin.AddPoint(0, 0, 0), nullptr);
}

// The world box has no width, so the seed has no area and its circles are no numbers: there is no
// surface to verify.
TEST(TINCreate, PointsOnOneValueOfXAreTakenWithoutHarm) {
  for (bool const swap : {false, true}) {
    std::vector<IPoint> points;
    for (int i = 0; i < 50; ++i) {
      points.push_back(swap ? IPoint{i * 3.0, 7, 1} : IPoint{7, i * 3.0, 1});
    }
    TIN tin;
    EXPECT_TRUE(tin.Create(&points));
    EXPECT_GE(tin.GetNumberOfPoints(), 4);
    double z = 0;
    tin.GetZ(7, 7, z);
    tin.GetZ(70, 7, z);
  }
}

TEST(TINCreate, OnePointAndItsRepetitionsAreTakenWithoutHarm) {
  for (std::size_t const count : {1u, 2u, 100u}) {
    std::vector<IPoint> points(count, IPoint{5, 6, 7});
    TIN tin;
    EXPECT_TRUE(tin.Create(&points));
    double z = 0;
    tin.GetZ(5, 6, z);
  }
}

TEST(TINCreate, PointThatIsNotANumberIsPassedOver) {
  double const n = std::numeric_limits<double>::quiet_NaN();
  std::vector<IPoint> points = {{0, 0, 1}, {n, 5, 2}, {100, 0, 2}, {5, n, 3}, {30, 80, 3}};
  TIN tin;
  EXPECT_TRUE(tin.Create(&points));
  EXPECT_EQ(tin.GetNumberOfPoints(), 7);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 8);
  ExpectSound(tin);
}

}  // namespace
