#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/ExpectSound.h"
#include "testing/Formula.h"
#include "testing/HandMadeMesh.h"
#include "testing/TINPeer.h"

namespace {

using qeltin::testing::CentroidOf;
using qeltin::testing::ExpectSound;
using qeltin::testing::FormulaInputs;
using qeltin::testing::HandMadeMesh;
using qeltin::testing::SameBits;
using qeltin::testing::TINPeer;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr int ROUNDS = 3000;

// A sloping square of four corners and a middle: z = 5 + x + 2 y.
void BuildSlope(TIN& tin) {
  tin.Init(5, TPoint(0, 0, 0), TPoint(8, 8, 50));
  for (TPoint const& p : {TPoint(0, 0), TPoint(8, 0), TPoint(8, 8), TPoint(0, 8), TPoint(4, 4)}) {
    ASSERT_NE(tin.AddPoint(p.x, p.y, 5 + p.x + 2 * p.y), nullptr);
  }
}

// --- Intersect
// ------------------------------------------------------------------------------------

struct Segment {
  TPoint a;
  TPoint b;
};

bool Meets(double x, double y, double ux, double uy, Segment s, TPoint& out) {
  return TINPeer::Intersect(x, y, ux, uy, &s.a, &s.b, out);
}

TEST(TINIntersect, RayMeetsASegmentAheadWithTheHeightBetweenItsEnds) {
  TPoint out;
  EXPECT_TRUE(Meets(0, 0, 1, 0, {TPoint(4, 1, 10), TPoint(4, -3, 30)}, out));
  EXPECT_EQ(out, TPoint(4, 0, 15));
  EXPECT_TRUE(Meets(0, 0, 1, 0, {TPoint(4, -3, 30), TPoint(4, 1, 10)}, out));
  EXPECT_EQ(out, TPoint(4, 0, 15));
}

TEST(TINIntersect, SegmentBehindOrAtTheStartIsNotMet) {
  TPoint out(7, 7, 7);
  EXPECT_FALSE(Meets(0, 0, 1, 0, {TPoint(-4, 1), TPoint(-4, -3)}, out));
  EXPECT_FALSE(Meets(4, 0, 1, 0, {TPoint(4, 1), TPoint(4, -3)}, out));
  EXPECT_FALSE(Meets(0, 0, 1, 0, {TPoint(4, 1), TPoint(4, 3)}, out));
  EXPECT_EQ(out, TPoint(7, 7, 7));
}

TEST(TINIntersect, EndOnTheRayCountsWithTheSegmentOnItsLeftOnly) {
  TPoint out;
  EXPECT_TRUE(Meets(0, 0, 1, 0, {TPoint(4, 0, 9), TPoint(4, 3, 1)}, out));
  EXPECT_EQ(out, TPoint(4, 0, 9));
  EXPECT_TRUE(Meets(0, 0, 1, 0, {TPoint(4, 3, 1), TPoint(4, 0, 9)}, out));
  EXPECT_FALSE(Meets(0, 0, 1, 0, {TPoint(4, 0), TPoint(4, -3)}, out));
  EXPECT_FALSE(Meets(0, 0, 1, 0, {TPoint(4, -3), TPoint(4, 0)}, out));
}

TEST(TINIntersect, SegmentOnTheRayAnswersItsStartPointWhereverItLies) {
  TPoint out;
  EXPECT_TRUE(Meets(1, 0, 1, 0, {TPoint(5, 0, 10), TPoint(9, 0, 30)}, out));
  EXPECT_EQ(out, TPoint(1, 0, 10 + 20 * 4.0 / (4.0 - 8.0)));
  EXPECT_TRUE(Meets(1, 0, 1, 0, {TPoint(-9, 0, 10), TPoint(-5, 0, 30)}, out));
  EXPECT_EQ(out.x, 1.0);
  EXPECT_EQ(out.y, 0.0);
}

TEST(TINIntersect, SegmentOfNoLengthOrWithoutNumbersIsNotMet) {
  TPoint out;
  double const n = NOT_A_NUMBER;
  EXPECT_FALSE(Meets(0, 0, 1, 0, {TPoint(5, 0), TPoint(5, 0)}, out));
  EXPECT_FALSE(Meets(0, 0, 1, 0, {TPoint(5, n), TPoint(5, -1)}, out));
  EXPECT_FALSE(Meets(0, 0, n, n, {TPoint(5, 1), TPoint(5, -1)}, out));
  EXPECT_FALSE(Meets(n, 0, 1, 0, {TPoint(5, 1), TPoint(5, -1)}, out));
}

TEST(TINIntersect, FollowsItsFormulaOnRandomSegments) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    TPoint const start = in.AnyPoint();
    double const angle = i % 2 == 0 ? in.Between(0, 7) : in.Whole(0, 3) * 1.5707963267948966;
    double const ux = i % 4 == 1 ? 1.0 : std::cos(angle);
    double const uy = i % 4 == 1 ? 0.0 : std::sin(angle);
    Segment const s =
        i % 3 == 0 ? Segment{in.Node(), in.Node()} : Segment{in.AnyPoint(), in.AnyPoint()};
    TPoint const& a = s.a;
    TPoint const& b = s.b;
    double const along_a = (a.x - start.x) * ux + (a.y - start.y) * uy;
    double const along_b = (b.x - start.x) * ux + (b.y - start.y) * uy;
    double const across_a = (a.y - start.y) * ux - (a.x - start.x) * uy;
    double const across_b = (b.y - start.y) * ux - (b.x - start.x) * uy;
    bool met = false;
    TPoint expected(7, 7, 7);
    if ((across_a > 0 && across_b <= 0) || (across_a <= 0 && across_b > 0)) {
      double const f = across_a / (across_a - across_b);
      double const t = along_a + (along_b - along_a) * f;
      if (t > 0) {
        met = true;
        expected = TPoint(start.x + t * ux, start.y + t * uy, a.z + (b.z - a.z) * f);
      }
    } else if (across_a == 0 && across_b == 0 && along_a != along_b) {
      met = true;
      expected = TPoint(start.x, start.y, a.z + (b.z - a.z) * along_a / (along_a - along_b));
    }
    TPoint out(7, 7, 7);
    EXPECT_EQ(Meets(start.x, start.y, ux, uy, s, out), met);
    EXPECT_TRUE(SameBits(out, expected));
  }
}

// --- FindTriangle
// ---------------------------------------------------------------------------------

TEST(TINFindTriangle, CrossesTriangleAfterTriangleOnTheStraightLine) {
  HandMadeMesh mesh;
  auto const strip = mesh.LayStrip(60);
  TPoint const p = CentroidOf(*strip[47]);
  EXPECT_EQ(mesh.tin.FindTriangle(strip[3], p.x, p.y), strip[47]);
  EXPECT_EQ(mesh.tin.FindTriangle(strip[59], p.x, p.y), strip[47]);
  EXPECT_EQ(mesh.tin.FindTriangle(strip[46], p.x, p.y), strip[47]);
}

TEST(TINFindTriangle, WithoutAStartIsNull) {
  HandMadeMesh mesh;
  mesh.LayStrip(3);
  EXPECT_EQ(mesh.tin.FindTriangle(nullptr, 1, 0.5), nullptr);
}

TEST(TINFindTriangle, TargetAtTheCentroidOfTheStartIsNull) {
  HandMadeMesh mesh;
  auto const strip = mesh.LayStrip(3);
  TPoint const centre = CentroidOf(*strip[1]);
  EXPECT_EQ(mesh.tin.FindTriangle(strip[1], centre.x, centre.y), nullptr);
}

TEST(TINFindTriangle, StartItselfIsNeverTheAnswer) {
  HandMadeMesh mesh;
  auto const strip = mesh.LayStrip(3);
  TPoint const centre = CentroidOf(*strip[1]);
  EXPECT_EQ(mesh.tin.FindTriangle(strip[1], centre.x + 0.01, centre.y), nullptr);
}

TEST(TINFindTriangle, LineThatReachesAMissingNeighbourIsNull) {
  HandMadeMesh mesh;
  auto const strip = mesh.LayStrip(60);
  EXPECT_EQ(mesh.tin.FindTriangle(strip[3], 30, 20), nullptr);
  EXPECT_EQ(mesh.tin.FindTriangle(strip[3], 100, 0.5), nullptr);
  EXPECT_EQ(mesh.tin.FindTriangle(strip[0], -5, 0.5), nullptr);
}

TEST(TINFindTriangle, TargetThatIsNotANumberIsNull) {
  HandMadeMesh mesh;
  auto const strip = mesh.LayStrip(5);
  EXPECT_EQ(mesh.tin.FindTriangle(strip[0], NOT_A_NUMBER, 0), nullptr);
}

TEST(TINFindTriangle, NeighbourThatDoesNotPointBackEndsTheWalk) {
  HandMadeMesh mesh;
  auto const strip = mesh.LayStrip(10);
  TPoint const p = CentroidOf(*strip[8]);
  for (TTriangle*& back : strip[5]->m_pAdjacent) {
    if (back == strip[4]) back = nullptr;
  }
  EXPECT_EQ(mesh.tin.FindTriangle(strip[0], p.x, p.y), nullptr);
}

TEST(TINFindTriangle, TakesATriangleWithACornerAtTheTarget) {
  HandMadeMesh mesh;
  auto const strip = mesh.LayStrip(4);
  TTriangle* const last = strip[3];  // corners (3, 1), (4, 0), (5, 1)
  ASSERT_FALSE(last->XY_HasPoint(TPoint(5, 1)));
  EXPECT_EQ(mesh.tin.FindTriangle(strip[0], 5, 1), last);
  EXPECT_EQ(mesh.tin.FindTriangle(strip[0], 5 + 0.9e-09, 1 + 0.9e-09), last);
  EXPECT_EQ(mesh.tin.FindTriangle(strip[0], 5 + 1.1e-09, 1), nullptr);
  EXPECT_EQ(mesh.tin.FindTriangle(strip[0], 5, 1 + 1.1e-09), nullptr);
}

TEST(TINFindTriangle, ExitOfTheStartIsTheFirstCrossedSideThatHasANeighbour) {
  HandMadeMesh mesh;
  auto const strip = mesh.LayStrip(10);
  TPoint const p = CentroidOf(*strip[8]);
  for (TTriangle*& neighbour : strip[3]->m_pAdjacent) {
    if (neighbour == strip[4]) neighbour = nullptr;
  }
  EXPECT_EQ(mesh.tin.FindTriangle(strip[3], p.x, p.y), nullptr);
}

TEST(TINFindTriangle, EndsOnAStructureThatWalksInCircles) {
  HandMadeMesh mesh;
  auto const strip = mesh.LayStrip(3);
  for (int side = 0; side < 3; ++side) {
    strip[0]->m_pAdjacent[side] = strip[1];
    strip[1]->m_pAdjacent[side] = side == 0 ? strip[0] : strip[2];
    strip[2]->m_pAdjacent[side] = strip[1];
  }
  EXPECT_EQ(mesh.tin.FindTriangle(strip[0], 500, 0.5), nullptr);
}

// --- Linear searches
// ------------------------------------------------------------------------------

TEST(TINFindPoint, TakesTheFirstLivePointOfExactlyTheseCoordinates) {
  HandMadeMesh mesh;
  mesh.Point(1, 2, 3);
  TPoint* const first = mesh.Point(4, 5, 6);
  TPoint* const second = mesh.Point(4, 5, 6);
  EXPECT_EQ(mesh.tin.FindPoint(TPoint(4, 5, 6)), first);
  TArray<TPoint>& points = *TINPeer::Points(mesh.tin);
  std::swap(points.m_pIndex[0], points.m_pIndex[2]);
  EXPECT_EQ(mesh.tin.FindPoint(TPoint(4, 5, 6)), second);
  EXPECT_EQ(mesh.tin.FindPoint(TPoint(4, 5, std::nextafter(6.0, 7.0))), nullptr);
}

TEST(TINNearestEdge, WithoutTrianglesIsTheNullEdge) {
  TIN tin(TPoint(0, 0), TPoint(1, 1), 5);
  TEdge const edge = tin.GetNearestEdge(TPoint(0, 0));
  EXPECT_EQ(edge.m_pStart, nullptr);
  EXPECT_EQ(edge.m_pEnd, nullptr);
}

TEST(TINNearestEdge, IsMeasuredToTheInfiniteLine) {
  HandMadeMesh mesh;
  TPoint* const a = mesh.Point(0, 0);
  TPoint* const b = mesh.Point(0, 10);
  TPoint* const c = mesh.Point(10, 0);
  mesh.Lay(a, b, c);
  TEdge const edge = mesh.tin.GetNearestEdge(TPoint(500, 0.5));
  EXPECT_EQ(edge.m_pStart, c);
  EXPECT_EQ(edge.m_pEnd, a);
}

TEST(TINNearestEdge, IsTheEarliestOfEqualOnesAmongHiddenTrianglesToo) {
  HandMadeMesh mesh;
  TPoint* const a = mesh.Point(0, 0);
  TPoint* const b = mesh.Point(0, 10);
  TPoint* const c = mesh.Point(10, 0);
  TPoint* const d = mesh.Point(0, -10);
  TTriangle* const first = mesh.Lay(a, b, c);
  mesh.Lay(c, d, a);
  first->m_Flags = TRI_OUTSIDE | TRI_FILTERED;
  TEdge edge = mesh.tin.GetNearestEdge(TPoint(3, 0));
  EXPECT_EQ(edge.m_pStart, c);  // side 2 of the first, not side 2 of the second
  EXPECT_EQ(edge.m_pEnd, a);
  std::swap(TINPeer::Triangles(mesh.tin)->m_pIndex[0], TINPeer::Triangles(mesh.tin)->m_pIndex[1]);
  edge = mesh.tin.GetNearestEdge(TPoint(3, 0));
  EXPECT_EQ(edge.m_pStart, a);
  EXPECT_EQ(edge.m_pEnd, c);
}

TEST(TINTrianglesWithEdge, EdgeOnTheHullHasOne) {
  TIN tin;
  BuildSlope(tin);
  TTriangle* first = nullptr;
  TTriangle* second = tin.GetTriangle(0, true);
  TEdge const hull(tin.GetPoint(1), tin.GetPoint(0));
  EXPECT_EQ(tin.GetTrianglesWithEdge(hull, first, second), 1);
  ASSERT_NE(first, nullptr);
  EXPECT_TRUE(first->HasEdge(hull));
  EXPECT_EQ(second, nullptr);
}

TEST(TINTrianglesWithEdge, InnerEdgeHasTwoByValueInLiveOrder) {
  TIN tin;
  BuildSlope(tin);
  TPoint middle = *tin.GetPoint(8);
  TPoint corner = *tin.GetPoint(4);
  TTriangle* first = nullptr;
  TTriangle* second = nullptr;
  ASSERT_EQ(tin.GetTrianglesWithEdge(TEdge(&middle, &corner), first, second), 2);
  ASSERT_NE(first, second);
  int position = 0;
  while (tin.GetTriangle(position, true) != first) {
    EXPECT_NE(tin.GetTriangle(position, true), second);
    ++position;
  }
  TTriangle* again = nullptr;
  TTriangle* other = nullptr;
  EXPECT_EQ(tin.GetTrianglesWithEdge(TEdge(&corner, &middle), again, other), 2);
  EXPECT_EQ(again, first);
  EXPECT_EQ(other, second);
}

TEST(TINTrianglesWithEdge, EdgeOfNoTriangleHasNone) {
  TIN tin;
  BuildSlope(tin);
  TTriangle* first = tin.GetTriangle(0, true);
  TTriangle* second = first;
  EXPECT_EQ(tin.GetTrianglesWithEdge(TEdge(tin.GetPoint(0), tin.GetPoint(8)), first, second), 0);
  EXPECT_EQ(first, nullptr);
  EXPECT_EQ(second, nullptr);
}

TEST(TINTrianglesWithEdge, ScanStopsAtTheSecond) {
  HandMadeMesh mesh;
  TPoint* const a = mesh.Point(0, 0);
  TPoint* const b = mesh.Point(0, 10);
  TTriangle* expected[3] = {};
  for (TTriangle*& t : expected) t = mesh.Lay(a, b, mesh.Point(10, 0));
  TTriangle* first = nullptr;
  TTriangle* second = nullptr;
  EXPECT_EQ(mesh.tin.GetTrianglesWithEdge(TEdge(a, b), first, second), 2);
  EXPECT_EQ(first, expected[0]);
  EXPECT_EQ(second, expected[1]);
}

// --- Heights
// --------------------------------------------------------------------------------------

TEST(TINGetZ, HeightIsThatOfThePlaneOfTheTriangle) {
  TIN tin;
  BuildSlope(tin);
  double z = 0;
  EXPECT_TRUE(tin.GetZ(2, 1, z));
  EXPECT_EQ(z, 9.0);
  EXPECT_TRUE(tin.GetZ(TPoint(5, 6, -99), z, nullptr));
  EXPECT_EQ(z, 22.0);
  EXPECT_TRUE(tin.GetZ(0, 0, z));
  EXPECT_EQ(z, 5.0);
  EXPECT_TRUE(tin.GetZ(8, 8, z));
  EXPECT_EQ(z, 29.0);
  ExpectSound(tin);
}

TEST(TINGetZ, JustOutsideTheDataBoundsIsFalseWithoutAnyLocation) {
  TIN tin;
  BuildSlope(tin);
  double z = -7;
  Triangulator& location = TINPeer::Location(tin);
  location.m_pCurrent = nullptr;
  for (TPoint const& p : {TPoint(std::nextafter(8.0, 9.0), 4), TPoint(-1e-300, 4),
                          TPoint(4, std::nextafter(8.0, 9.0)), TPoint(4, -1e-300)}) {
    EXPECT_FALSE(tin.GetZ(p, z, nullptr));
    EXPECT_FALSE(tin.GetZ(p, z, tin.GetTriangle(0, true)));
  }
  EXPECT_EQ(location.m_pCurrent, nullptr);
  EXPECT_EQ(z, -7.0);
}

TEST(TINGetZ, InAHiddenTriangleIsFalseAlthoughTheTriangleIsFound) {
  TIN tin;
  tin.Init(3, TPoint(0, 0), TPoint(8, 8));
  for (TPoint const& p : {TPoint(0, 0), TPoint(8, 0), TPoint(0, 8)}) tin.AddPoint(p);
  double z = -7;
  EXPECT_FALSE(tin.GetZ(7, 7, z));
  TTriangle* const found = tin.GetTriangleWithPoint(TPoint(7, 7));
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->m_Flags, TRI_OUTSIDE);
  EXPECT_TRUE(tin.GetZ(1, 1, z));
  tin.GetTriangleWithPoint(TPoint(1, 1))->m_Flags = TRI_FILTERED;
  z = -7;
  EXPECT_FALSE(tin.GetZ(1, 1, z));
  EXPECT_EQ(z, -7.0);
  ExpectSound(tin);
}

TEST(TINGetZ, TriangleThatIsHandedInIsNotCheckedForThePoint) {
  TIN tin;
  tin.Init(4, TPoint(0, 0), TPoint(8, 8));
  tin.AddPoint(0, 0, 1);
  tin.AddPoint(8, 0, 1);
  tin.AddPoint(0, 8, 1);
  tin.AddPoint(8, 8, 100);
  TTriangle* const low = tin.GetTriangleWithPoint(TPoint(1, 3));
  Triangulator& location = TINPeer::Location(tin);
  location.m_pCurrent = nullptr;
  double z = 0;
  EXPECT_TRUE(tin.GetZ(TPoint(7, 2), z, low));
  EXPECT_EQ(z, low->GetZ(7, 2));
  EXPECT_EQ(location.m_pCurrent, nullptr);
  double located = 0;
  EXPECT_TRUE(tin.GetZ(7, 2, located));
  EXPECT_NE(located, z);
  ExpectSound(tin);
}

TEST(TINGetZ, TriangleWithoutPlanAreaIsFalse) {
  HandMadeMesh mesh;
  TTriangle* const line = mesh.Lay(mesh.Point(0, 0, 1), mesh.Point(1, 1, 2), mesh.Point(2, 2, 3));
  double z = -7;
  EXPECT_FALSE(mesh.tin.GetZ(TPoint(1, 1), z, line));
  EXPECT_EQ(z, -7.0);
}

TEST(TINGetZ, WhereNothingIsFoundIsFalse) {
  HandMadeMesh mesh;
  mesh.LayStrip(3);
  double z = -7;
  EXPECT_FALSE(mesh.tin.GetZ(500, 500, z));
  EXPECT_EQ(z, -7.0);
}

TEST(TINGetZ, FollowsItsFormulaOnRandomTriangles) {
  FormulaInputs in;
  HandMadeMesh mesh;
  TINPeer::Min(mesh.tin) = TPoint(-1e300, -1e300);
  TINPeer::Max(mesh.tin) = TPoint(1e300, 1e300);
  for (int i = 0; i < ROUNDS; ++i) {
    TPoint A = in.AnyPoint();
    TPoint B = i % 2 == 0 ? in.Sounding() : in.AnyPoint();
    TPoint C = i % 2 == 0 ? in.Sounding() : in.AnyPoint();
    TPoint const at = in.AnyPoint();
    TTriangle t(&A, &B, &C);
    double const d = (C.y - A.y) * (B.x - A.x) - (C.x - A.x) * (B.y - A.y);
    double const p = ((C.y - A.y) * (B.z - A.z) - (C.z - A.z) * (B.y - A.y)) / d;
    double const q = -((C.x - A.x) * (B.z - A.z) - (C.z - A.z) * (B.x - A.x)) / d;
    double z = -7;
    EXPECT_EQ(mesh.tin.GetZ(at, z, &t), d != 0);
    EXPECT_TRUE(SameBits(z, d == 0 ? -7 : A.z - A.x * p - A.y * q + (p * at.x + q * at.y)));
  }
}

// --- Fans
// -----------------------------------------------------------------------------------------

// A surface in which a vertex has exactly `spokes` triangles; returns that vertex.
TPoint* BuildWheel(TIN& tin, int spokes) {
  tin.Init(spokes + 1, TPoint(-1, -1), TPoint(1, 1));
  TPoint* const hub = tin.AddPoint(0, 0, 9);
  for (int i = 0; i < spokes; ++i) {
    double const angle = 6.283185307179586 * i / spokes;
    EXPECT_NE(tin.AddPoint(std::cos(angle), std::sin(angle), i), nullptr);
  }
  return hub;
}

std::deque<TTriangle*> Fan(TIN& tin, TPoint const* p) {
  std::deque<TTriangle*> result(3, nullptr);
  TINPeer::GetTrianglesWithPoint(tin, p, result);
  return result;
}

TEST(TINFan, ClosedFanIsWalkedFromNeighbourToNeighbour) {
  TIN tin;
  TPoint* const hub = BuildWheel(tin, 7);
  std::deque<TTriangle*> const fan = Fan(tin, hub);
  ASSERT_EQ(fan.size(), 7u);
  for (std::size_t i = 0; i < fan.size(); ++i) {
    EXPECT_TRUE(fan[i]->XY_FindVertex(hub));
    EXPECT_EQ(std::count(fan.begin(), fan.end(), fan[i]), 1);
    TTriangle* const* const next = fan[i]->m_pAdjacent;
    EXPECT_NE(std::find(next, next + 3, fan[(i + 1) % fan.size()]), next + 3);
  }
  TTriangle* const* const first =
      std::find_if(fan[0]->m_pAdjacent, fan[0]->m_pAdjacent + 3,
                   [&](TTriangle const* t) { return t != nullptr && t->XY_FindVertex(hub); });
  EXPECT_EQ(fan[1], *first);  // the lowest side first
  ExpectSound(tin);
}

TEST(TINFan, VertexWithMoreThanTwoHundredAndFiftyTrianglesGivesNone) {
  TIN most;
  EXPECT_EQ(Fan(most, BuildWheel(most, 250)).size(), 250u);
  ExpectSound(most);
  TIN more;
  EXPECT_TRUE(Fan(more, BuildWheel(more, 251)).empty());
  ExpectSound(more);
}

TEST(TINFan, OpenFanGivesNone) {
  TIN tin;
  BuildSlope(tin);
  EXPECT_TRUE(Fan(tin, tin.GetPoint(0)).empty());  // a seed corner
  EXPECT_EQ(Fan(tin, tin.GetPoint(8)).size(), 4u);
}

TEST(TINFan, PointThatIsNotFoundGivesNone) {
  TIN tin;
  BuildSlope(tin);
  TPoint const outside(1e6, 1e6);
  EXPECT_TRUE(Fan(tin, &outside).empty());
}

TEST(TINFan, PointThatIsNoVertexByAddressGivesTheTriangleThatHoldsIt) {
  TIN tin;
  BuildSlope(tin);
  TPoint const copy = *tin.GetPoint(8);
  std::deque<TTriangle*> const fan = Fan(tin, &copy);
  ASSERT_EQ(fan.size(), 1u);
  EXPECT_EQ(fan[0], tin.GetTriangleWithPoint(copy));
}

// --- The second walk
// ------------------------------------------------------------------------------

TEST(TINTraverseFind, WalksFromTheLastTriangleAndLeavesTheLocationObject) {
  HandMadeMesh mesh;
  auto const strip = mesh.LayStrip(40);
  TINPeer::SetLastTriangle(mesh.tin, strip[0]);
  TINPeer::Location(mesh.tin).m_pCurrent = strip[30];
  EXPECT_EQ(TINPeer::TraverseFind(mesh.tin, CentroidOf(*strip[20]), 20), nullptr);
  EXPECT_EQ(TINPeer::LastTriangle(mesh.tin), strip[0]);
  EXPECT_EQ(TINPeer::TraverseFind(mesh.tin, CentroidOf(*strip[19]), 20), strip[19]);
  EXPECT_EQ(TINPeer::LastTriangle(mesh.tin), strip[19]);
  EXPECT_EQ(TINPeer::TraverseFind(mesh.tin, TPoint(500, 500), 20), nullptr);
  EXPECT_EQ(TINPeer::LastTriangle(mesh.tin), strip[19]);
  EXPECT_EQ(TINPeer::Location(mesh.tin).m_pCurrent, strip[30]);
  EXPECT_EQ(TINPeer::TraverseFind(mesh.tin, CentroidOf(*strip[19]), 0), nullptr);
}

TEST(TINTraverseFind, JumpMayLandOnTheLastTriangle) {
  HandMadeMesh mesh;
  TTriangle* const left = mesh.LayClockwise(mesh.Point(0, 0), mesh.Point(0, 10), mesh.Point(10, 0));
  TTriangle* const right =
      mesh.LayClockwise(mesh.Point(20, 0), mesh.Point(20, 10), mesh.Point(30, 0));
  for (int side = 0; side < 3; ++side) {
    left->m_pAdjacent[side] = right;
    right->m_pAdjacent[side] = left;
  }
  TTriangle* const holder =
      mesh.LayClockwise(mesh.Point(90, -10), mesh.Point(100, 20), mesh.Point(110, -10));
  TINPeer::SetLastTriangle(mesh.tin, left);
  EXPECT_EQ(TINPeer::TraverseFind(mesh.tin, TPoint(100, 0), 10000), holder);
  EXPECT_EQ(TINPeer::LastTriangle(mesh.tin), holder);
}

}  // namespace
