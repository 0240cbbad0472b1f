#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"
#include "testing/ExpectSound.h"
#include "testing/Formula.h"
#include "testing/HandMadeMesh.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/VerifySurface.h"

namespace {

using qeltin::testing::Dice;
using qeltin::testing::ExpectSound;
using qeltin::testing::ExtentOf;
using qeltin::testing::HandMadeMesh;
using qeltin::testing::MakeSurvey;
using qeltin::testing::SameBits;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;
using qeltin::testing::VerifySurface;

// The square from 0 to 30 in two visible triangles.
struct Square {
  TIN tin;

  Square() {
    tin.Init(4, TPoint(0, 0, 0), TPoint(30, 30, 9));
    tin.AddPoint(0, 0, 1);
    tin.AddPoint(30, 0, 2);
    tin.AddPoint(30, 30, 6);
    tin.AddPoint(0.5, 30, 4);
  }

  std::unique_ptr<TIN> Smooth(TPolygon const* polygon = nullptr) const {
    return std::unique_ptr<TIN>(tin.CreateSmooth(polygon));
  }
};

// The centroids that count, in the order of the pool.
std::vector<TPoint> CentroidsOf(TIN const& tin, TPolygon const* polygon) {
  std::vector<TPoint> centroids;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const& t = *tin.GetTriangle(i, true);
    if (!tin.InBounds(t)) continue;
    TPoint const c((t.m_pVertex[0]->x + t.m_pVertex[1]->x + t.m_pVertex[2]->x) / 3.0,
                   (t.m_pVertex[0]->y + t.m_pVertex[1]->y + t.m_pVertex[2]->y) / 3.0,
                   (t.m_pVertex[0]->z + t.m_pVertex[1]->z + t.m_pVertex[2]->z) / 3.0);
    if (polygon == nullptr || polygon->XY_Contains(c.x, c.y)) centroids.push_back(c);
  }
  return centroids;
}

TEST(TINSmooth, HasOnePointForEachTriangleWithinTheBoundsAndTheSeed) {
  Square s;
  auto const smooth = s.Smooth();
  ASSERT_EQ(smooth->GetNumberOfPoints(), 4 + 2);
  auto const expected = CentroidsOf(s.tin, nullptr);
  ASSERT_EQ(expected.size(), 2U);
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(SameBits(*smooth->GetPoint(4 + i), expected[static_cast<std::size_t>(i)]));
  }
  EXPECT_EQ(smooth->FindPoint(TPoint(30, 30, 6)), nullptr);
  ExpectSound(*smooth);
}

TEST(TINSmooth, DataBoundsAreTheOldWorldBoxAndTheNewOneReachesTenTimesAsFar) {
  Square s;
  auto const smooth = s.Smooth();
  TPoint min;
  TPoint max;
  smooth->GetBounds(min, max);
  EXPECT_EQ(min, TPoint(-300, -300, -90));
  EXPECT_EQ(max, TPoint(330, 330, 99));
  smooth->GetWorldBounds(min, max);
  EXPECT_EQ(min, TPoint(-6600, -6600, -1980));
  EXPECT_EQ(max, TPoint(6630, 6630, 1989));
}

TEST(TINSmooth, PoolsHaveRoomForAPointATriangleAndTheMargin) {
  Square s;
  auto const smooth = s.Smooth();
  EXPECT_EQ(TINPeer::Points(*smooth)->m_iCapacity, 10 + 1000 + 1004);
}

TEST(TINSmooth, CountsTrianglesThatAreHiddenWithinTheBounds) {
  Square s;
  s.tin.FilterTriangles(1.0);
  EXPECT_EQ(s.Smooth()->GetNumberOfPoints(), 6);
}

TEST(TINSmooth, LeavesOutWhatReachesBeyondTheBounds) {
  TIN tin(TPoint(0, 0, 0), TPoint(9, 9, 1), 3);
  tin.AddPoint(1, 1, 1);
  tin.AddPoint(8, 1, 1);
  std::unique_ptr<TIN> const smooth(tin.CreateSmooth(nullptr));
  EXPECT_EQ(smooth->GetNumberOfPoints(), 0);
  EXPECT_EQ(smooth->GetNumberOfTriangles(), 0);
}

TEST(TINSmooth, PolygonLimitsItToItsInterior) {
  Square s;
  TPolygon const lower({{0, 0}, {30, 0}, {30, 14}, {0, 14}});
  auto const smooth = s.Smooth(&lower);
  ASSERT_EQ(smooth->GetNumberOfPoints(), 5);
  EXPECT_EQ(smooth->GetPoint(4)->y, 10.0);
  ExpectSound(*smooth);
}

TEST(TINSmooth, PolygonWithoutACentroidGivesASurfaceWithoutPoints) {
  Square s;
  for (TPolygon const& polygon :
       {TPolygon(), TPolygon({{0, 0}, {30, 30}}), TPolygon({{0, 0}, {1, 0}, {0, 1}})}) {
    auto const smooth = s.Smooth(&polygon);
    ASSERT_NE(smooth, nullptr);
    EXPECT_EQ(smooth->GetNumberOfPoints(), 0);
  }
}

TEST(TINSmooth, CentroidAtAnotherStaysUnconnected) {
  HandMadeMesh mesh;
  TPoint* const a = mesh.Point(0, 0, 3);
  TPoint* const b = mesh.Point(0, 9, 3);
  TPoint* const c = mesh.Point(9, 0, 3);
  mesh.Lay(a, b, c);
  mesh.Lay(a, b, c);
  std::unique_ptr<TIN> const smooth(mesh.tin.CreateSmooth(nullptr));
  EXPECT_EQ(smooth->GetNumberOfPoints(), 6);
  auto const report = VerifySurface(*smooth);
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(report.loosePoints, 1);
}

TEST(TINSmooth, OfASurfaceWithoutPoolsIsEmpty) {
  TIN const none;
  std::unique_ptr<TIN> const smooth(none.CreateSmooth(nullptr));
  ASSERT_NE(smooth, nullptr);
  EXPECT_EQ(smooth->GetNumberOfPoints(), 0);
}

TEST(TINSmooth, TakesTheCentroidsThatThePolygonTakesInTheOrderOfThePool) {
  Dice dice(TestSeed());
  for (int round = 0; round < 60; ++round) {
    Survey const survey = qeltin::testing::ALL_SURVEYS[dice.Below(13)];
    if (survey == Survey::TwoIslands) continue;  // so wide that the band of the side test has area
    auto const points = MakeSurvey(survey, 3 + dice.Below(200), dice.Bits());
    auto const box = ExtentOf(points);
    TIN tin(box.min, box.max, static_cast<int>(points.size()));
    for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
    tin.Triangulate();
    TPolygon polygon;
    for (int i = 0; i < 12; ++i) {
      polygon.Add(dice.Between(box.min.x, box.max.x), dice.Between(box.min.y, box.max.y), 0);
    }
    std::unique_ptr<TIN> const smooth(tin.CreateSmooth(&polygon));
    auto const expected = CentroidsOf(tin, &polygon);
    ASSERT_EQ(smooth->GetNumberOfPoints(),
              static_cast<int>(expected.size()) + (expected.empty() ? 0 : 4))
        << "round " << round;
    for (std::size_t i = 0; i < expected.size(); ++i) {
      ASSERT_TRUE(SameBits(*smooth->GetPoint(static_cast<int>(i) + 4), expected[i])) << round;
    }
    if (!expected.empty()) ExpectSound(*smooth);
  }
}

}  // namespace
