#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/HandMadeMesh.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/VerifySurface.h"

namespace {

using qeltin::testing::AT_UTM;
using qeltin::testing::ExtentOf;
using qeltin::testing::HandMadeMesh;
using qeltin::testing::MakeSurvey;
using qeltin::testing::SurfaceRules;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;
using qeltin::testing::VerifySurface;

void ExpectSoundByNeighbours(TIN const& tin, bool seeded) {
  SurfaceRules rules;
  rules.seeded = seeded;
  rules.delaunay = false;
  rules.byNeighbours = true;
  auto const report = VerifySurface(tin, rules);
  EXPECT_TRUE(report.Ok()) << report;
}

// A hub within a ring of corners given clockwise, and a triangle outside each side of the ring.
// Slots below 80 are taken by triangles that lie elsewhere, so that no release finds its slot.
class Wheel : public HandMadeMesh {
 public:
  TPoint* hub;
  std::vector<TPoint*> ring;
  std::vector<TTriangle*> fan;    // fan[i] on the side from ring[i] to ring[i + 1]
  std::vector<TTriangle*> outer;  // outer[i] beyond it

  Wheel(TPoint const& middle, std::vector<TPoint> const& corners) {
    for (int i = 0; i < 80; ++i) {
      Lay(Point(-900, -900 + i), Point(-899, -899.5 + i), Point(-899, -900 + i));
    }
    hub = Point(middle.x, middle.y, 7);
    for (TPoint const& p : corners) ring.push_back(Point(p.x, p.y, p.z));
    std::size_t const n = ring.size();
    for (std::size_t i = 0; i < n; ++i) fan.push_back(Lay(ring[i], ring[(i + 1) % n], hub));
    for (std::size_t i = 0; i < n; ++i) {
      TPoint const& a = *ring[i];
      TPoint const& b = *ring[(i + 1) % n];
      TPoint* const apex = Point((a.x + b.x) - middle.x, (a.y + b.y) - middle.y);
      outer.push_back(Lay(ring[(i + 1) % n], ring[i], apex));
      Link(fan[i], outer[i]);
      Link(fan[i], fan[(i + 1) % n]);
    }
    tin.BuildPointMap();
  }

  // Returns true iff a triangle of the wheel has these three corners, in any order.
  TTriangle* With(TPoint* a, TPoint* b, TPoint* c) {
    for (TTriangle* t : fan) {
      if (t->XY_FindVertex(a) && t->XY_FindVertex(b) && t->XY_FindVertex(c)) return t;
    }
    return nullptr;
  }
};

std::vector<TPoint> const TRIANGLE = {TPoint(100, 110), TPoint(110, 95), TPoint(90, 95)};

// Everything that a removal may write.
struct State {
  std::vector<TTriangle> triangles;
  int points;
  int mapped;

  explicit State(TIN& tin)
      : points(tin.GetNumberOfPoints()), mapped(tin.GetMap().GetNumberOfPoints()) {
    for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
      triangles.push_back(*tin.GetTriangle(i, true));
    }
  }
};

void ExpectUnchanged(State const& before, TIN& tin) {
  State const after(tin);
  EXPECT_EQ(after.points, before.points);
  EXPECT_EQ(after.mapped, before.mapped);
  ASSERT_EQ(after.triangles.size(), before.triangles.size());
  for (std::size_t i = 0; i < after.triangles.size(); ++i) {
    TTriangle const& a = after.triangles[i];
    TTriangle const& b = before.triangles[i];
    EXPECT_TRUE(std::equal(a.m_pVertex, a.m_pVertex + 3, b.m_pVertex));
    EXPECT_TRUE(std::equal(a.m_pAdjacent, a.m_pAdjacent + 3, b.m_pAdjacent));
    EXPECT_EQ(a.m_Flags, b.m_Flags);
  }
}

TEST(TINRemovePoint, ValueFormsAnswerFalseAndChangeNothing) {
  Wheel wheel(TPoint(100, 100), TRIANGLE);
  State const before(wheel.tin);
  EXPECT_FALSE(wheel.tin.RemovePoint(*wheel.hub));
  EXPECT_FALSE(wheel.tin.RemovePoint(wheel.hub->x, wheel.hub->y, wheel.hub->z));
  ExpectUnchanged(before, wheel.tin);
}

TEST(TINRemovePoint, WithoutAMapAnswersFalse) {
  TIN tin;
  tin.Init(5, TPoint(0, 0), TPoint(10, 10));
  EXPECT_FALSE(tin.RemovePoint(tin.AddPoint(5, 5, 0)));
}

TEST(TINRemovePoint, VertexOfDegreeThreeLeavesOneTriangleInASlotOfTheFan) {
  Wheel wheel(TPoint(100, 100), TRIANGLE);
  ASSERT_TRUE(wheel.tin.RemovePoint(wheel.hub));
  TTriangle* const filling = wheel.fan[2];  // the last one in the list of the map
  EXPECT_EQ(wheel.With(wheel.ring[0], wheel.ring[1], wheel.ring[2]), filling);
  EXPECT_EQ(filling->m_Flags, 0);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(wheel.outer[i]->m_pAdjacent[0], filling);
    EXPECT_NE(std::find(filling->m_pAdjacent, filling->m_pAdjacent + 3, wheel.outer[i]),
              filling->m_pAdjacent + 3);
  }
  ExpectSoundByNeighbours(wheel.tin, false);
}

TEST(TINRemovePoint, CutOffTrianglesKeepTheirCornersAndLeaveTheMap) {
  Wheel wheel(TPoint(100, 100), TRIANGLE);
  ASSERT_TRUE(wheel.tin.RemovePoint(wheel.hub));
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_TRUE(wheel.fan[i]->XY_FindVertex(wheel.hub));
    for (TTriangle* n : wheel.fan[i]->m_pAdjacent) {
      if (n == nullptr) continue;
      EXPECT_EQ(std::find(n->m_pAdjacent, n->m_pAdjacent + 3, wheel.fan[i]), n->m_pAdjacent + 3);
    }
    for (TPoint* p : wheel.ring) {
      auto const& known = wheel.tin.GetMap().FindPoint(p).GetTriangles();
      EXPECT_EQ(std::count(known.begin(), known.end(), wheel.fan[i]), 0);
    }
  }
}

TEST(TINRemovePoint, MapDoesNotKnowThePointAfterwards) {
  Wheel wheel(TPoint(100, 100), TRIANGLE);
  ASSERT_TRUE(wheel.tin.RemovePoint(wheel.hub));
  EXPECT_FALSE(wheel.tin.GetMap().FindPoint(wheel.hub).IsValid());
  EXPECT_EQ(wheel.tin.GetMap().FindPoint(wheel.hub).NumberOfTriangles(), 0);
  State const before(wheel.tin);
  EXPECT_FALSE(wheel.tin.RemovePoint(wheel.hub));
  ExpectUnchanged(before, wheel.tin);
}

TEST(TINRemovePoint, NumberOfTrianglesAndPointsDoesNotFall) {
  Wheel wheel(TPoint(100, 100), TRIANGLE);
  State const before(wheel.tin);
  ASSERT_TRUE(wheel.tin.RemovePoint(wheel.hub));
  State const after(wheel.tin);
  EXPECT_EQ(after.triangles.size(), before.triangles.size());
  EXPECT_EQ(after.points, before.points);
  EXPECT_EQ(*wheel.hub, TPoint(100, 100, 7));
}

TEST(TINRemovePoint, ReleasesTheSlotsWhoseNumbersAreTheDistancesInBytes) {
  HandMadeMesh mesh;  // room for 3004 points and 6008 triangles
  TPoint* const ring[] = {mesh.Point(0, 10), mesh.Point(10, -5), mesh.Point(-10, -5)};
  TPoint* const hub = mesh.Point(0, 0);
  for (int i = 0; i < 3; ++i) mesh.Lay(ring[i], ring[(i + 1) % 3], hub);
  for (int i = 0; i < 200; ++i) {
    mesh.Lay(mesh.Point(100, i), mesh.Point(101, i + 0.5), mesh.Point(101, i));
  }
  mesh.tin.BuildPointMap();
  TArray<TTriangle> const& triangles = *TINPeer::Triangles(mesh.tin);
  TArray<TPoint> const& points = *TINPeer::Points(mesh.tin);
  ASSERT_TRUE(mesh.tin.RemovePoint(hub));
  EXPECT_EQ(triangles.m_iCount, 201);      // of 203
  EXPECT_EQ(triangles.m_pIndex[0], 202);   // slot 0 went for itself
  EXPECT_EQ(triangles.m_pIndex[1], 1);     // slot 1 stays live
  EXPECT_EQ(triangles.m_pIndex[80], 201);  // slot 80 went instead
  EXPECT_EQ(points.m_iCount, 603);         // of 604
  EXPECT_EQ(points.m_pIndex[3], 3);        // the hub stays live
  EXPECT_EQ(points.m_pIndex[72], 603);     // slot 72 went instead, a corner in use
}

TEST(TINRemovePoint, VertexOfDegreeFourCutsTheEarOfTheSmallerCircleFirst) {
  for (double const west : {75.0, 85.0}) {
    Wheel wheel(TPoint(100, 100),
                {TPoint(100, 106), TPoint(120, 100), TPoint(100, 95), TPoint(west, 100)});
    ASSERT_TRUE(wheel.tin.RemovePoint(wheel.hub));
    // North and south are the sharper diagonal: the circles through it are the smaller ones. The
    // ear cut first goes into the last triangle of the fan.
    std::size_t const first = west < 80.0 ? 3 : 2;
    EXPECT_EQ(wheel.With(wheel.ring[0], wheel.ring[1], wheel.ring[2]), wheel.fan[first]);
    EXPECT_EQ(wheel.With(wheel.ring[2], wheel.ring[3], wheel.ring[0]), wheel.fan[5 - first]);
    ExpectSoundByNeighbours(wheel.tin, false);
  }
}

TEST(TINRemovePoint, OfTwoEarsWithOneRadiusTheEarlierInTheRingIsCutFirst) {
  std::vector<TPoint> const square = {TPoint(95, 95), TPoint(95, 105), TPoint(105, 105),
                                      TPoint(105, 95)};
  Wheel wheel(TPoint(100, 100), square);
  ASSERT_TRUE(wheel.tin.RemovePoint(wheel.hub));
  // The side laid last begins the ring: corners 3, 0, 1, 2.
  EXPECT_EQ(wheel.With(wheel.ring[3], wheel.ring[0], wheel.ring[1]), wheel.fan[3]);
  EXPECT_EQ(wheel.With(wheel.ring[3], wheel.ring[1], wheel.ring[2]), wheel.fan[2]);
  ExpectSoundByNeighbours(wheel.tin, false);
}

TEST(TINRemovePoint, DiagonalsKeepOutOfTheConcaveSide) {
  // A dart: its tip at ring[2] points into the figure.
  Wheel wheel(TPoint(100, 107),
              {TPoint(100, 120), TPoint(120, 95), TPoint(100, 104), TPoint(80, 95)});
  ASSERT_TRUE(wheel.tin.RemovePoint(wheel.hub));
  EXPECT_NE(wheel.With(wheel.ring[0], wheel.ring[1], wheel.ring[2]), nullptr);
  EXPECT_NE(wheel.With(wheel.ring[2], wheel.ring[3], wheel.ring[0]), nullptr);
  ExpectSoundByNeighbours(wheel.tin, false);
}

TEST(TINRemovePoint, NewTrianglesAreClockwiseWithAValidCircle) {
  std::vector<TPoint> const points = MakeSurvey(Survey::JitteredGrid, 400, TestSeed(), AT_UTM);
  auto const extent = ExtentOf(points);
  TIN tin;
  tin.Init(400, extent.min, extent.max);
  for (TPoint const& p : points) tin.AddPoint(p);
  tin.BuildPointMap();
  int removed = 0;
  for (int i = 0; i < tin.GetNumberOfPoints(); i += 9) {
    TPoint const* const p = tin.GetPoint(i);
    if (!tin.PointIsOnHull(p) && tin.RemovePoint(p)) ++removed;
  }
  EXPECT_GT(removed, 20);
  ExpectSoundByNeighbours(tin, true);
}

TEST(TINRemovePoint, NewTriangleOutsideOfTheBoundsIsHidden) {
  Wheel wheel(TPoint(1000, 100), {TPoint(1000, 110), TPoint(1010, 95), TPoint(990, 95)});
  ASSERT_TRUE(wheel.tin.RemovePoint(wheel.hub));
  EXPECT_EQ(wheel.fan[2]->m_Flags, TRI_OUTSIDE);
}

TEST(TINRemovePoint, FiltersAndOtherMarksOfTheFanAreGone) {
  Wheel wheel(TPoint(100, 100), TRIANGLE);
  for (TTriangle* t : wheel.fan) t->m_Flags = TRI_FILTERED | TRI_VISITED;
  ASSERT_TRUE(wheel.tin.RemovePoint(wheel.hub));
  EXPECT_EQ(wheel.fan[2]->m_Flags, 0);
  EXPECT_EQ(wheel.fan[0]->m_Flags, TRI_FILTERED | TRI_VISITED);
}

TEST(TINRemovePoint, BoundsAndLocationStay) {
  Wheel wheel(TPoint(100, 100), TRIANGLE);
  Triangulator& location = TINPeer::Location(wheel.tin);
  location.m_pCurrent = wheel.fan[0];
  TPoint min, max;
  wheel.tin.GetBounds(min, max);
  ASSERT_TRUE(wheel.tin.RemovePoint(wheel.hub));
  EXPECT_EQ(location.m_pCurrent, wheel.fan[0]);
  EXPECT_EQ(TINPeer::Min(wheel.tin), min);
  EXPECT_EQ(TINPeer::Max(wheel.tin), max);
}

TEST(TINRemovePoint, PointThatIsNotInTheMapAnswersFalse) {
  Wheel wheel(TPoint(100, 100), TRIANGLE);
  State const before(wheel.tin);
  TPoint const stranger(1, 2, 3);
  EXPECT_FALSE(wheel.tin.RemovePoint(&stranger));
  ExpectUnchanged(before, wheel.tin);
}

TEST(TINRemovePoint, PointWithoutTrianglesAnswersFalse) {
  Wheel wheel(TPoint(100, 100), TRIANGLE);
  TPoint* const loose = wheel.Point(500, 500);
  wheel.tin.GetMap().AddPoint(loose);
  State const before(wheel.tin);
  EXPECT_FALSE(wheel.tin.RemovePoint(loose));
  ExpectUnchanged(before, wheel.tin);
}

TEST(TINRemovePoint, DuplicateThatSharesTheEntryOfAVertexAnswersFalse) {
  Wheel wheel(TPoint(100, 100), TRIANGLE);
  TPoint* const duplicate = wheel.Point(wheel.hub->x, wheel.hub->y, wheel.hub->z);
  State const before(wheel.tin);
  EXPECT_FALSE(wheel.tin.RemovePoint(duplicate));
  ExpectUnchanged(before, wheel.tin);
}

TEST(TINRemovePoint, FanInTwoPiecesAnswersFalse) {
  Wheel wheel(TPoint(100, 100), {TPoint(100, 110), TPoint(108, 105), TPoint(108, 95),
                                 TPoint(100, 90), TPoint(92, 95), TPoint(92, 105)});
  TINPeer::RemoveTriangle(wheel.tin, wheel.fan[1], false);
  TINPeer::RemoveTriangle(wheel.tin, wheel.fan[4], false);
  State const before(wheel.tin);
  EXPECT_FALSE(wheel.tin.RemovePoint(wheel.hub));
  ExpectUnchanged(before, wheel.tin);
}

TEST(TINRemovePoint, OpenFanOfTwoTrianglesAnswersFalse) {
  Wheel wheel(TPoint(100, 100), TRIANGLE);
  TINPeer::RemoveTriangle(wheel.tin, wheel.fan[1], false);
  State const before(wheel.tin);
  EXPECT_FALSE(wheel.tin.RemovePoint(wheel.hub));
  ExpectUnchanged(before, wheel.tin);
}

TEST(TINRemovePoint, OpenFanLosesACornerOfItsHole) {
  Wheel wheel(TPoint(100, 100),
              {TPoint(100, 110), TPoint(110, 100), TPoint(100, 90), TPoint(90, 100)});
  TINPeer::RemoveTriangle(wheel.tin, wheel.fan[3], false);
  ASSERT_TRUE(wheel.tin.RemovePoint(wheel.hub));
  // Joined from the last side back: corners 3 and 2 begin the ring, 1 and 0 stand before them, and
  // the last one goes.
  EXPECT_EQ(wheel.With(wheel.ring[0], wheel.ring[1], wheel.ring[2]), wheel.fan[2]);
}

TEST(TINPointIsOnHull, IsTrueNextToASeedCorner) {
  TIN tin;
  tin.Init(5, TPoint(0, 0), TPoint(8, 8));
  TPoint* const corner = tin.AddPoint(0, 0, 1);
  for (TPoint const& p : {TPoint(8, 0, 2), TPoint(8, 8, 3), TPoint(0, 8, 4)}) tin.AddPoint(p);
  TPoint* const middle = tin.AddPoint(4, 4, 5);
  tin.BuildPointMap();
  EXPECT_TRUE(tin.PointIsOnHull(corner));
  EXPECT_FALSE(tin.PointIsOnHull(middle));
  for (int i = 0; i < 4; ++i) EXPECT_TRUE(tin.PointIsOnHull(tin.GetPoint(i)));  // the seed itself
}

TEST(TINPointIsOnHull, IsTrueWhereANeighbourIsMissing) {
  Wheel wheel(TPoint(100, 100), TRIANGLE);
  EXPECT_FALSE(wheel.tin.PointIsOnHull(wheel.hub));
  EXPECT_TRUE(wheel.tin.PointIsOnHull(wheel.ring[0]));
  wheel.fan[1]->m_pAdjacent[0] = nullptr;
  EXPECT_TRUE(wheel.tin.PointIsOnHull(wheel.hub));
}

TEST(TINPointIsOnHull, IsFalseForAPointThatIsNotInTheMap) {
  Wheel wheel(TPoint(100, 100), TRIANGLE);
  TPoint const stranger(1, 2, 3);
  EXPECT_FALSE(wheel.tin.PointIsOnHull(&stranger));
}

}  // namespace
