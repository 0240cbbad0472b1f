#include "testing/VerifySurface.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <initializer_list>
#include <limits>
#include <sstream>
#include <string>

#include "testing/ExactPlane.h"
#include "testing/MakeSurvey.h"

namespace {

using qeltin::testing::Dice;
using qeltin::testing::InCircleRounding;
using qeltin::testing::SurfaceReport;
using qeltin::testing::SurfaceRules;
using qeltin::testing::SurfaceView;
using qeltin::testing::TestSeed;
using qeltin::testing::VerifySurface;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// A surface made by hand. Neighbours follow from the corners, circles from CalcTri.
struct Mesh {
  std::deque<TPoint> points;
  std::deque<TTriangle> triangles;

  explicit Mesh(std::initializer_list<TPoint> corners) : points(corners) {}

  void Add(int a, int b, int c) {
    TTriangle& t = triangles.emplace_back(&points[a], &points[b], &points[c]);
    t.CalcTri();
    for (TTriangle& other : triangles) {
      if (&other == &t) continue;
      for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
          if (t.m_pVertex[i] != other.m_pVertex[(j + 1) % 3]) continue;
          if (t.m_pVertex[(i + 1) % 3] != other.m_pVertex[j]) continue;
          t.m_pAdjacent[i] = &other;
          other.m_pAdjacent[j] = &t;
        }
      }
    }
  }

  SurfaceView View() const {
    SurfaceView view;
    for (TTriangle const& t : triangles) view.triangles.push_back(&t);
    for (TPoint const& p : points) view.points.push_back(&p);
    view.worldMin = TPoint(0, 0);
    view.worldMax = TPoint(10, 10);
    view.boundsMin = TPoint(0, 0);
    view.boundsMax = TPoint(10, 10);
    return view;
  }

  SurfaceReport Verify(SurfaceRules const& rules = {}) const {
    return VerifySurface(View(), rules);
  }
};

// Four triangles about a point in a square.
//
//   1 ------- 2     0: (0, 1, 4)   1: (1, 2, 4)
//   | \  1  / |     2: (2, 3, 4)   3: (3, 0, 4)
//   |0  4  2  |
//   | /  3  \ |
//   0 ------- 3
Mesh Fan() {
  Mesh mesh({TPoint(0, 0), TPoint(0, 10), TPoint(10, 10), TPoint(10, 0), TPoint(5, 4)});
  mesh.Add(0, 1, 4);
  mesh.Add(1, 2, 4);
  mesh.Add(2, 3, 4);
  mesh.Add(3, 0, 4);
  return mesh;
}

void ExpectFault(SurfaceReport const& report, std::string const& text) {
  EXPECT_FALSE(report.Ok());
  EXPECT_THAT(report.firstFaults, Contains(HasSubstr(text))) << report;
}

TEST(VerifySurface, ASoundSurfacePasses) {
  SurfaceReport const report = Fan().Verify();
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(report.triangles, 4);
  EXPECT_EQ(report.vertices, 5);
  EXPECT_EQ(report.hullEdges, 4);
  EXPECT_EQ(report.hullLoops, 1);
  EXPECT_EQ(report.loosePoints, 0);
  EXPECT_EQ(report.flat, 0);
  EXPECT_EQ(report.notANumberCircles, 0);
  EXPECT_EQ(report.nearViolations, 0);
  EXPECT_EQ(report.overlap, 0.0);
  EXPECT_THAT(report.firstFaults, IsEmpty());
}

TEST(VerifySurface, AnEmptySurfacePassesWithoutASeedOnly) {
  EXPECT_TRUE(VerifySurface(SurfaceView(), SurfaceRules{.seeded = false}).Ok());
  EXPECT_FALSE(VerifySurface(SurfaceView()).Ok());
}

TEST(VerifySurface, ASurfaceBuiltByInsertionPasses) {
  TIN tin(TPoint(0, 0), TPoint(1000, 1000), 500);
  for (TPoint const& p : MakeSurvey(qeltin::testing::Survey::Uniform, 500, TestSeed())) {
    tin.AddPoint(p);
  }
  SurfaceReport const report = VerifySurface(tin);
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(report.vertices, 504);
  EXPECT_EQ(report.triangles, 2 * 500 + 2);
}

TEST(VerifySurface, CountsPointsWithoutTriangles) {
  Mesh mesh = Fan();
  mesh.points.emplace_back(5.0005, 4.0);
  SurfaceReport const report = mesh.Verify();
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(report.loosePoints, 1);
}

TEST(VerifySurface, CatchesALinkThatIsNotMutual) {
  Mesh mesh = Fan();
  mesh.triangles[0].m_pAdjacent[1] = nullptr;
  ExpectFault(mesh.Verify(), "triangle 1 is not the neighbour of its neighbour 2, triangle 0");
}

TEST(VerifySurface, CatchesALinkAcrossTheWrongSide) {
  Mesh mesh = Fan();
  std::swap(mesh.triangles[0].m_pAdjacent[1], mesh.triangles[0].m_pAdjacent[2]);
  ExpectFault(mesh.Verify(), "triangle 0 is not the neighbour of its neighbour 1, triangle 3");
}

TEST(VerifySurface, CatchesATriangleThatIsItsOwnNeighbour) {
  Mesh mesh = Fan();
  mesh.triangles[0].m_pAdjacent[0] = &mesh.triangles[0];
  ExpectFault(mesh.Verify(), "triangle 0 is not the neighbour of its neighbour 0, triangle 0");
}

TEST(VerifySurface, CatchesANeighbourThatIsNotLive) {
  Mesh mesh = Fan();
  SurfaceView view = mesh.View();
  view.triangles.pop_back();
  ExpectFault(VerifySurface(view), "triangle 0 has a neighbour 2 that is not in the structure");
}

TEST(VerifySurface, CatchesATriangleThatIsLiveTwice) {
  Mesh mesh = Fan();
  SurfaceView view = mesh.View();
  view.triangles.push_back(&mesh.triangles[1]);
  ExpectFault(VerifySurface(view), "stands in the live order twice");
}

TEST(VerifySurface, CatchesCounterClockwiseCorners) {
  Mesh mesh = Fan();
  TTriangle& t = mesh.triangles[2];
  std::swap(t.m_pVertex[0], t.m_pVertex[1]);
  t.CalcTri();
  t.SortPointers();
  ExpectFault(mesh.Verify(), "triangle 2 runs counter-clockwise: (10, 0, 0)(10, 10, 0)(5, 4, 0)");
}

TEST(VerifySurface, CatchesATriangleThatCoversAnother) {
  Mesh mesh = Fan();
  mesh.points[4] = TPoint(-1, 4);  // pulled out over the side from 0 to 1
  for (TTriangle& t : mesh.triangles) t.CalcTri();
  SurfaceReport const report = mesh.Verify({.delaunay = false});
  ExpectFault(report, "triangle 0 runs counter-clockwise");
  ExpectFault(report, "the triangles cover 110, the hull 100");
  EXPECT_EQ(report.overlap, 5.0);
}

TEST(VerifySurface, CatchesAVertexSurroundedTwice) {
  Mesh mesh({TPoint(0, 0), TPoint(0, 10), TPoint(10, 10), TPoint(10, 0), TPoint(0, 0, 1),
             TPoint(0, 10, 1), TPoint(10, 10, 1), TPoint(10, 0, 1), TPoint(5, 4)});
  for (int i = 0; i < 8; ++i) mesh.Add(i, (i + 1) % 8, 8);
  ExpectFault(mesh.Verify({.seeded = false}), "2 turns about (5, 4, 0)");
}

TEST(VerifySurface, CatchesACircleThatIsOffByOneUnitInTheLastPlace) {
  for (double TTriangle::*field :
       {&TTriangle::m_CentreX, &TTriangle::m_CentreY, &TTriangle::m_RadiusSq}) {
    Mesh mesh = Fan();
    mesh.triangles[1].*field = std::nextafter(mesh.triangles[1].*field, 1e9);
    ExpectFault(mesh.Verify(), "triangle 1 has a cached circle that its corners do not give");
  }
}

TEST(VerifySurface, CatchesACircleThatIsNotANumberWhereItShouldBeOne) {
  Mesh mesh = Fan();
  mesh.triangles[1].m_RadiusSq = std::numeric_limits<double>::quiet_NaN();
  ExpectFault(mesh.Verify(), "triangle 1 has a cached circle that its corners do not give");
}

TEST(VerifySurface, CatchesACavityMark) {
  Mesh mesh = Fan();
  mesh.triangles[3].m_Flags = TRI_CAVITY;
  ExpectFault(mesh.Verify(), "triangle 3 is still marked TRI_CAVITY");
}

TEST(VerifySurface, CatchesUnknownFlags) {
  Mesh mesh = Fan();
  mesh.triangles[3].m_Flags = 16;
  ExpectFault(mesh.Verify(), "triangle 3 has unknown flags 16");
}

TEST(VerifySurface, AllowsTheFlagsOfVisitsFiltersAndTheOutside) {
  Mesh mesh = Fan();
  mesh.triangles[3].m_Flags = TRI_VISITED | TRI_FILTERED | TRI_OUTSIDE;
  EXPECT_TRUE(mesh.Verify().Ok()) << mesh.Verify();
}

TEST(VerifySurface, CatchesAVisibleTriangleThatReachesOutOfTheBounds) {
  Mesh mesh = Fan();
  for (int i : {0, 1, 2}) mesh.triangles[i].m_Flags = TRI_OUTSIDE;
  SurfaceView view = mesh.View();
  view.boundsMin = TPoint(1, 1);
  ExpectFault(VerifySurface(view), "triangle 3 reaches out of the data bounds without TRI_OUTSIDE");
  mesh.triangles[3].m_Flags = TRI_OUTSIDE;
  EXPECT_TRUE(VerifySurface(view).Ok());
}

TEST(VerifySurface, CatchesACornerThatIsNoLivePoint) {
  Mesh mesh = Fan();
  SurfaceView view = mesh.View();
  view.points.pop_back();
  ExpectFault(VerifySurface(view), "triangle 0 has a corner 2 that is no live point");
}

TEST(VerifySurface, CatchesAMissingCorner) {
  Mesh mesh = Fan();
  mesh.triangles[1].m_pVertex[2] = nullptr;
  ExpectFault(mesh.Verify(), "triangle 1 has no corner 2");
}

TEST(VerifySurface, CatchesACornerThatIsNotFinite) {
  Mesh mesh = Fan();
  mesh.points[4].y = std::numeric_limits<double>::quiet_NaN();
  ExpectFault(mesh.Verify(), "triangle 1 has a corner 2 at (5, nan, 0)");
}

TEST(VerifySurface, CatchesOnePointAsTwoCorners) {
  Mesh mesh = Fan();
  mesh.triangles[1].m_pVertex[2] = mesh.triangles[1].m_pVertex[1];
  ExpectFault(mesh.Verify(), "triangle 1 has one point as two corners");
}

TEST(VerifySurface, CatchesAHullThatIsNotTheWorldBox) {
  Mesh mesh({TPoint(0, 0), TPoint(0, 10), TPoint(10, 10)});
  mesh.Add(0, 1, 2);
  ExpectFault(mesh.Verify(), "the hull is not the rectangle of the world box");
  EXPECT_TRUE(mesh.Verify({.seeded = false}).Ok());
}

TEST(VerifySurface, CatchesAPinchedHull) {
  Mesh mesh({TPoint(0, 0), TPoint(0, 10), TPoint(5, 5), TPoint(10, 10), TPoint(10, 0)});
  mesh.Add(0, 1, 2);
  mesh.Add(2, 3, 4);
  ExpectFault(mesh.Verify({.seeded = false}), "the hull is pinched at (5, 5, 0)");
}

TEST(VerifySurface, CatchesAStructureInTwoParts) {
  Mesh mesh(
      {TPoint(0, 0), TPoint(0, 10), TPoint(5, 5), TPoint(20, 0), TPoint(20, 10), TPoint(25, 5)});
  mesh.Add(0, 1, 2);
  mesh.Add(3, 4, 5);
  ExpectFault(mesh.Verify({.seeded = false}), "the structure is in 2 parts");
}

TEST(VerifySurface, CatchesATriangleTooMany) {
  Mesh mesh = Fan();  // and two triangles back to back, a closed part without a hull
  mesh.points.emplace_back(5, 9);
  mesh.triangles.emplace_back(&mesh.points[1], &mesh.points[2], &mesh.points[5]);
  mesh.triangles.emplace_back(&mesh.points[1], &mesh.points[2], &mesh.points[5]);
  for (int i : {4, 5}) {
    mesh.triangles[i].CalcTri();
    for (TTriangle*& n : mesh.triangles[i].m_pAdjacent) n = &mesh.triangles[9 - i];
  }
  SurfaceReport const report = mesh.Verify({.delaunay = false});
  ExpectFault(report, "the structure is in 2 parts");
  ExpectFault(report, "the triangles cover 110, the hull 100");
}

// The diagonal of a kite that a Delaunay triangulation does not take.
Mesh KiteWithTheLongDiagonal(double height) {
  Mesh mesh({TPoint(0, 0), TPoint(0, 10), TPoint(10, 10), TPoint(10, height)});
  mesh.Add(0, 1, 2);
  mesh.Add(0, 2, 3);
  return mesh;
}

TEST(VerifySurface, CatchesAViolationOfTheDelaunayProperty) {
  SurfaceReport const report = KiteWithTheLongDiagonal(0.5).Verify({.seeded = false});
  ExpectFault(report,
              "triangle 0 has (10, 0.5, 0) across side 2 inside its circle, with a power of "
              "4.75");
  EXPECT_EQ(report.violations, 1);
  EXPECT_EQ(report.worstDepth, 4.75);
  EXPECT_TRUE(KiteWithTheLongDiagonal(0.5).Verify({.seeded = false, .delaunay = false}).Ok());
}

TEST(VerifySurface, PointsOnOneCircleViolateNothing) {
  SurfaceReport const report = KiteWithTheLongDiagonal(0.0).Verify({.seeded = false});
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(report.nearViolations, 0);
}

TEST(VerifySurface, AViolationWithinTheRoundingIsCountedApart) {
  SurfaceReport const near = KiteWithTheLongDiagonal(1e-15).Verify({.seeded = false});
  EXPECT_TRUE(near.Ok()) << near;
  EXPECT_EQ(near.nearViolations, 1);
  EXPECT_GT(near.worstNear, 0.0);
  EXPECT_LE(near.worstNear, 1.0);
  EXPECT_FALSE(KiteWithTheLongDiagonal(1e-11).Verify({.seeded = false}).Ok());
}

TEST(VerifySurface, FlatTrianglesAndTheirCirclesAreCountedApart) {
  Mesh mesh({TPoint(0, 0), TPoint(0, 10), TPoint(10, 10), TPoint(10, 0), TPoint(5, 10)});
  mesh.Add(0, 1, 4);
  mesh.Add(1, 2, 4);  // in line
  mesh.Add(2, 3, 4);
  mesh.Add(3, 0, 4);
  SurfaceReport const report = mesh.Verify();
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(report.flat, 1);
  EXPECT_EQ(report.notANumberCircles, 1);
}

TEST(VerifySurface, ByNeighboursLeavesOutWhatIsCutOff) {
  Mesh mesh = Fan();
  mesh.points.emplace_back(5, 9);
  TTriangle& surplus =
      mesh.triangles.emplace_back(&mesh.points[1], &mesh.points[2], &mesh.points[5]);
  surplus.m_pAdjacent[0] = &mesh.triangles[1];  // which does not point back
  EXPECT_FALSE(mesh.Verify().Ok());
  SurfaceReport const report = mesh.Verify({.byNeighbours = true});
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(report.triangles, 4);
  EXPECT_EQ(report.cutOffTriangles, 1);
}

TEST(VerifySurface, ByNeighboursFindsWhatTheLiveOrderLost) {
  Mesh mesh = Fan();
  SurfaceView view = mesh.View();
  view.triangles.pop_back();
  view.points.pop_back();
  SurfaceReport const report = VerifySurface(view, {.byNeighbours = true});
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(report.triangles, 4);
}

TEST(VerifySurface, TheReportIsReadable) {
  Mesh mesh = Fan();
  mesh.triangles[3].m_Flags = TRI_CAVITY;
  std::ostringstream text;
  text << mesh.Verify();
  EXPECT_THAT(text.str(), HasSubstr("UNSOUND: 4 triangles, 5 vertices"));
  EXPECT_THAT(text.str(), HasSubstr("\n  triangle 3 is still marked TRI_CAVITY"));
}

TEST(VerifySurface, ShowsTheFirstFaultsAndCountsAll) {
  TIN tin(TPoint(0, 0), TPoint(1000, 1000), 100);
  for (TPoint const& p : MakeSurvey(qeltin::testing::Survey::Uniform, 100, 1)) tin.AddPoint(p);
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    tin.GetTriangle(i, true)->m_Flags |= TRI_CAVITY;
  }
  SurfaceReport const report = VerifySurface(tin);
  EXPECT_EQ(report.faults, 202);
  EXPECT_EQ(report.firstFaults.size(), 8u);
}

TEST(VerifySurface, TheRoundingBoundHoldsEveryDecisionOfTheCachedCircle) {
  Dice dice(TestSeed());
  for (int i = 0; i < 100000; ++i) {
    double const east = i % 2 == 0 ? 0.0 : 4.0e5;
    double const north = i % 2 == 0 ? 0.0 : 4.9e6;
    TPoint corner[4];
    for (TPoint& p : corner) {
      double const angle = dice.Between(0.0, 6.283185307179586);
      p = TPoint(east + 10.0 * std::cos(angle), north + 10.0 * std::sin(angle));
    }
    TTriangle t(&corner[0], &corner[1], &corner[2]);
    t.SortVertices();
    t.CalcTri();
    double const determinant =
        qeltin::testing::InCircle(*t.m_pVertex[0], *t.m_pVertex[1], *t.m_pVertex[2], corner[3]);
    bool const decided = t.TestCalcTri(corner[3]) == 1;
    double const bound = InCircleRounding(corner[0], corner[1], corner[2], corner[3]);
    if (decided != (determinant >= 0.0)) {
      ASSERT_LE(std::fabs(determinant), bound);
    }
  }
}

}  // namespace
