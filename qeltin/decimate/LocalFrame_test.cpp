#include "qeltin/decimate/LocalFrame.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "qeltin/decimate/TPlane.h"
#include "qeltin/tin/TIN.h"
#include "testing/MakeSurvey.h"
#include "testing/VerifySurface.h"

namespace {

using qeltin::testing::AT_ORIGIN;
using qeltin::testing::AT_UTM;
using qeltin::testing::ExtentOf;
using qeltin::testing::FAR_OUT;
using qeltin::testing::Frame;
using qeltin::testing::MakeSurvey;
using qeltin::testing::SurfaceReport;
using qeltin::testing::SurfaceRules;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::VerifySurface;

void Build(TIN& tin, Frame const& frame) {
  std::vector<TPoint> const points = MakeSurvey(Survey::Swaths, 2000, TestSeed(), frame);
  auto const extent = ExtentOf(points);
  tin.Init(static_cast<int>(points.size()), extent.min, extent.max);
  for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
  tin.Triangulate();
}

// Everything that has a coordinate in it.
std::vector<TPoint> CoordinatesOf(TIN const& tin) {
  std::vector<TPoint> all(4);
  tin.GetBounds(all[0], all[1]);
  tin.GetWorldBounds(all[2], all[3]);
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) all.push_back(*tin.GetPoint(i));
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const t = tin.GetTriangle(i, true);
    all.emplace_back(t->m_CentreX, t->m_CentreY, t->m_RadiusSq);
  }
  return all;
}

void ExpectSound(TIN const& tin) {
  SurfaceRules rules;
  rules.delaunay = false;
  SurfaceReport const report = VerifySurface(tin, rules);
  EXPECT_TRUE(report.Ok()) << report;
}

TEST(LocalFrame, LeadsBackToTheSameCoordinates) {
  for (Frame const& frame : {AT_ORIGIN, AT_UTM, FAR_OUT}) {
    TIN tin;
    Build(tin, frame);
    std::vector<TPoint> const before = CoordinatesOf(tin);
    { LocalFrame const here(tin); }
    std::vector<TPoint> const after = CoordinatesOf(tin);
    ASSERT_EQ(before.size(), after.size());
    for (std::size_t i = 0; i < before.size(); ++i) ASSERT_EQ(before[i], after[i]) << i;
    ExpectSound(tin);
  }
}

TEST(LocalFrame, PutsTheMiddleOfTheBoundsAtTheOrigin) {
  TIN tin;
  Build(tin, AT_UTM);
  TPoint min;
  TPoint max;
  tin.GetBounds(min, max);
  TPoint const p = *tin.GetPoint(7);
  LocalFrame const frame(tin);
  TPoint const& origin = frame.GetOrigin();
  EXPECT_EQ(origin.x, std::floor((min.x + max.x) / 2));
  EXPECT_EQ(origin.y, std::floor((min.y + max.y) / 2));
  EXPECT_EQ(tin.GetPoint(7)->x, p.x - origin.x);
  EXPECT_EQ(tin.GetPoint(7)->y, p.y - origin.y);
  EXPECT_EQ(tin.GetPoint(7)->z, p.z - origin.z);
  ExpectSound(tin);
}

TEST(LocalFrame, AnAxisThatWouldBeRoundedStays) {
  TIN tin;
  tin.Init(5, TPoint(0, 5000), TPoint(1000, 6000));
  for (double const x : {0.1, 1000.0}) {
    tin.AddPoint(x, 5000, 1);
    tin.AddPoint(x, 6000, 2);
  }
  LocalFrame const frame(tin);
  EXPECT_EQ(frame.GetOrigin().x, 0.0);
  EXPECT_EQ(frame.GetOrigin().y, 5500.0);
}

TEST(LocalFrame, DistancesKeepTheirDigits) {
  constexpr double EAST = 400000;
  constexpr double NORTH = 4900000;
  TIN tin;
  tin.Init(9, TPoint(EAST, NORTH), TPoint(EAST + 0.2, NORTH + 0.2));
  for (int i = 0; i < 9; ++i) {
    double const x = i % 3 * 0.1;
    double const y = i / 3 * 0.1;
    tin.AddPoint(EAST + x, NORTH + y, i == 4 ? 0.25 : 2 * x - y);
  }
  TPoint const* const middle = tin.GetPoint(8);
  ASSERT_EQ(middle->z, 0.25);
  auto const distance = [&] {
    std::vector<TPoint*> neighbours;
    tin.BuildPointMap();
    tin.GetNeighbours(middle, neighbours);
    TPlane plane;
    EXPECT_EQ(plane.Fit(neighbours), 1);
    return std::fabs(plane.a * middle->x + plane.b * middle->y + plane.c - middle->z) /
           std::sqrt(plane.a * plane.a + plane.b * plane.b + 1.0);
  };
  double const exact = 0.15 / std::sqrt(6.0);
  EXPECT_GT(std::fabs(distance() - exact), 1e-3);
  LocalFrame const frame(tin);
  EXPECT_NEAR(distance(), exact, 1e-8);
}

TEST(LocalFrame, ASurfaceMayBeThinnedInIt) {
  TIN tin;
  Build(tin, AT_UTM);
  std::vector<TPoint> const points = CoordinatesOf(tin);
  {
    LocalFrame const frame(tin);
    tin.BuildPointMap();
    for (int i = 0; i < 1000; ++i) {
      TPoint const* const p = tin.GetPoint(i);
      if (!tin.PointIsOnHull(p)) tin.RemovePoint(p);
    }
    ASSERT_TRUE(tin.Compact());
  }
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
    ASSERT_NE(std::find(points.begin(), points.end(), *tin.GetPoint(i)), points.end());
  }
  ExpectSound(tin);
}

TEST(LocalFrame, ASurfaceWithoutPoolsStaysAsItIs) {
  TIN tin;
  { LocalFrame const frame(tin); }
  EXPECT_EQ(tin.GetNumberOfPoints(), 0);
}

}  // namespace
