#include "qeltin/kernel/TTriangle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>

#include "testing/Formula.h"

namespace {

using qeltin::testing::FormulaInputs;
using qeltin::testing::SameBits;

constexpr double LARGEST_FLOAT = 3.4028234663852886e38;
constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr int ROUNDS = 3000;

// A triangle with corners of its own. The default one is clockwise, with its right angle at corner
// 0 and the circle of centre (5, 5) and squared radius 50.
struct Cell : TTriangle {
  TPoint a{0, 0, 1};
  TPoint b{0, 10, 2};
  TPoint c{10, 0, 3};

  Cell() : Cell(TPoint(0, 0, 1), TPoint(0, 10, 2), TPoint(10, 0, 3)) {}
  Cell(TPoint const& a_, TPoint const& b_, TPoint const& c_) : a(a_), b(b_), c(c_) {
    m_pVertex[0] = &a;
    m_pVertex[1] = &b;
    m_pVertex[2] = &c;
    CalcTri();
  }
  Cell(Cell const&) = delete;
};

struct Corners {
  TPoint a;
  TPoint b;
  TPoint c;
};

Corners AnyCorners(FormulaInputs& in) {
  switch (in.Whole(0, 2)) {
    case 0:
      return {in.Point(), in.Point(), in.Point()};
    case 1:
      return {in.Sounding(), in.Sounding(), in.Sounding()};
    default:
      return {in.Node(), in.Node(), in.Node()};
  }
}

// A point at a corner, on a side, or anywhere.
TPoint AnyPlace(FormulaInputs& in, Corners const& k) {
  switch (in.Whole(0, 3)) {
    case 0:
      return k.a + (k.b - k.a) * in.Between(-0.5, 1.5);
    case 1:
      return k.c + (k.a - k.c) * (in.Whole(0, 2) / 2.0);
    case 2:
      return k.a * 0.25 + k.b * 0.25 + k.c * 0.5;
    default:
      return in.AnyPoint();
  }
}

// --- The record
// -----------------------------------------------------------------------------------

TEST(TTriangle, IsAFlatRecord) {
  EXPECT_EQ(offsetof(TTriangle, m_pVertex), 0u);
  EXPECT_EQ(offsetof(TTriangle, m_pAdjacent), 24u);
  EXPECT_EQ(offsetof(TTriangle, m_Flags), 48u);
  EXPECT_EQ(offsetof(TTriangle, m_CentreX), 56u);
  EXPECT_EQ(offsetof(TTriangle, m_CentreY), 64u);
  EXPECT_EQ(offsetof(TTriangle, m_RadiusSq), 72u);
  EXPECT_EQ(sizeof(TTriangle), 80u);
  EXPECT_TRUE(std::is_trivially_copyable_v<TTriangle>);
  EXPECT_FALSE(std::is_polymorphic_v<TTriangle>);
}

TEST(TTriangle, NewTriangleHasNoNeighboursFlagsOrCircle) {
  TPoint a;
  TPoint b;
  TPoint c;
  TTriangle const none;
  TTriangle const some(&a, &b, &c);
  for (TTriangle const* t : {&none, &some}) {
    for (TTriangle const* neighbour : t->m_pAdjacent) EXPECT_EQ(neighbour, nullptr);
    EXPECT_EQ(t->m_Flags, 0);
    EXPECT_EQ(t->m_CentreX, 0.0);
    EXPECT_EQ(t->m_CentreY, 0.0);
    EXPECT_EQ(t->m_RadiusSq, 0.0);
  }
  for (TPoint const* corner : none.m_pVertex) EXPECT_EQ(corner, nullptr);
  EXPECT_EQ(some.GetPoint(0), &a);
  EXPECT_EQ(some.GetPoint(1), &b);
  EXPECT_EQ(some.GetPoint(2), &c);
}

TEST(TTriangle, FlagValuesAreFixed) {
  EXPECT_EQ(TRI_VISITED, 1);
  EXPECT_EQ(TRI_FILTERED, 2);
  EXPECT_EQ(TRI_OUTSIDE, 4);
  EXPECT_EQ(TRI_CAVITY, 8);
}

TEST(TTriangle, FilteredAndOutsideHide) {
  TTriangle t;
  for (unsigned char flags = 0; flags < 16; ++flags) {
    t.m_Flags = flags;
    EXPECT_EQ(t.IsHidden(), (flags & 6) != 0) << int{flags};
  }
}

// --- Sides
// ----------------------------------------------------------------------------------------

TEST(TTriangle, SidesRunFromEachCornerToTheNext) {
  Cell t;
  EXPECT_EQ(t.GetEdge(0).m_pStart, &t.a);
  EXPECT_EQ(t.GetEdge(0).m_pEnd, &t.b);
  EXPECT_EQ(t.GetEdge(1).m_pStart, &t.b);
  EXPECT_EQ(t.GetEdge(1).m_pEnd, &t.c);
  EXPECT_EQ(t.GetEdge(2).m_pStart, &t.c);
  EXPECT_EQ(t.GetEdge(2).m_pEnd, &t.a);
}

TEST(TTriangle, AnyOtherSideIsTheNullEdge) {
  Cell t;
  for (int side : {3, 4, 1000, -1, -3}) {
    EXPECT_EQ(t.GetEdge(side).m_pStart, nullptr) << side;
    EXPECT_EQ(t.GetEdge(side).m_pEnd, nullptr) << side;
  }
}

TEST(TTriangle, HasAnEdgeByValueInEitherDirection) {
  Cell t;
  TPoint b = t.b;
  TPoint c = t.c;
  TPoint raised = t.c;
  raised.z += 1;
  EXPECT_TRUE(t.HasEdge(TEdge(&c, &b)));
  EXPECT_TRUE(t.HasEdge(TEdge(&b, &c)));
  EXPECT_FALSE(t.HasEdge(TEdge(&b, &raised)));
}

TEST(TTriangle, OpposingVertexIsTheCornerThatIsNoEnd) {
  Cell t;
  TPoint b = t.b;
  TPoint stranger(5, 5, 5);
  EXPECT_EQ(t.GetOpposingVertex(TEdge(&t.c, &b)), &t.a);
  EXPECT_EQ(t.GetOpposingVertex(TEdge(&t.a, &t.c)), &t.b);
  EXPECT_EQ(t.GetOpposingVertex(TEdge(&t.a, &t.b)), &t.c);
  EXPECT_EQ(t.GetOpposingVertex(TEdge(&t.a, &stranger)), nullptr);
}

// A triangle with a neighbour across each side.
struct Star {
  Cell centre;
  Cell across[3];

  Star() {
    TPoint const far[3] = {TPoint(-10, 5), TPoint(10, 10), TPoint(5, -10)};
    for (int side = 0; side < 3; ++side) {
      across[side].m_pVertex[0] = centre.m_pVertex[(side + 1) % 3];
      across[side].m_pVertex[1] = centre.m_pVertex[side];
      across[side].c = far[side];
      across[side].CalcTri();
      across[side].m_pAdjacent[0] = &centre;
      centre.m_pAdjacent[side] = &across[side];
    }
  }
};

void ExpectEnds(TEdge const& edge, TPoint const* start, TPoint const* end) {
  EXPECT_EQ(edge.m_pStart, start);
  EXPECT_EQ(edge.m_pEnd, end);
}

TEST(TTriangle, EdgeWithANeighbourRunsUpTheCornerNumbers) {
  Star s;
  ExpectEnds(s.centre.GetEdgeWithTri(0), &s.centre.a, &s.centre.b);
  ExpectEnds(s.centre.GetEdgeWithTri(1), &s.centre.b, &s.centre.c);
  ExpectEnds(s.centre.GetEdgeWithTri(2), &s.centre.a, &s.centre.c);  // side 2 runs the other way
}

TEST(TTriangle, EdgeWithANeighbourThatSharesNoneIsTheLastOne) {
  Star s;
  Cell stranger(TPoint(50, 50), TPoint(50, 60), TPoint(60, 50));
  s.centre.m_pAdjacent[0] = &stranger;
  ExpectEnds(s.centre.GetEdgeWithTri(0), &s.centre.b, &s.centre.c);
}

TEST(TTriangle, EdgeWithAMissingNeighbourIsTheOnlyFreeSide) {
  Star s;
  s.centre.m_pAdjacent[0] = nullptr;
  ExpectEnds(s.centre.GetEdgeWithTri(0), &s.centre.a, &s.centre.b);
  s.centre.m_pAdjacent[0] = &s.across[0];
  s.centre.m_pAdjacent[1] = nullptr;
  ExpectEnds(s.centre.GetEdgeWithTri(1), &s.centre.b, &s.centre.c);
  s.centre.m_pAdjacent[1] = &s.across[1];
  s.centre.m_pAdjacent[2] = nullptr;
  ExpectEnds(s.centre.GetEdgeWithTri(2), &s.centre.a, &s.centre.c);
}

TEST(TTriangle, FreeSideIsFoundByTheEdgesOfTheNeighboursAndNotByTheirPlace) {
  Star s;
  s.centre.m_pAdjacent[0] = &s.across[1];
  s.centre.m_pAdjacent[1] = &s.across[2];
  s.centre.m_pAdjacent[2] = nullptr;
  ExpectEnds(s.centre.GetEdgeWithTri(2), &s.centre.a, &s.centre.b);
}

TEST(TTriangle, EdgeWithAMissingNeighbourIsNullWhereTwoAreMissing) {
  Star s;
  s.centre.m_pAdjacent[0] = nullptr;
  s.centre.m_pAdjacent[2] = nullptr;
  ExpectEnds(s.centre.GetEdgeWithTri(0), nullptr, nullptr);
  ExpectEnds(s.centre.GetEdgeWithTri(2), nullptr, nullptr);
  ExpectEnds(s.centre.GetEdgeWithTri(1), &s.centre.b, &s.centre.c);
}

TEST(TTriangle, EdgeWithNeighbourThreeIsNull) {
  Star s;
  ExpectEnds(s.centre.GetEdgeWithTri(3), nullptr, nullptr);
  ExpectEnds(s.centre.GetEdgeWithTri(99), nullptr, nullptr);
}

// --- Comparison
// -----------------------------------------------------------------------------------

TEST(TTriangle, EqualsATriangleWithTheSameCornersInAnotherOrder) {
  Cell t;
  Cell turned(t.c, t.a, t.b);
  Cell mirrored(t.b, t.a, t.c);
  EXPECT_TRUE(t == turned);
  EXPECT_TRUE(t == mirrored);
  turned.a.z += 1;
  EXPECT_FALSE(t == turned);
}

TEST(TTriangle, EqualityDoesNotAskForThreeDistinctMatches) {
  Cell t;
  Cell folded(t.a, t.a, t.b);
  EXPECT_TRUE(folded == t);
  EXPECT_FALSE(t == folded);
}

TEST(TTriangle, OrderLooksAtCornerZeroOnly) {
  Cell low(TPoint(1, 2, 3), TPoint(90, 0), TPoint(91, 0));
  Cell high(TPoint(1, 2, 4), TPoint(-90, 0), TPoint(-91, 0));
  EXPECT_TRUE(low < high);
  EXPECT_FALSE(high < low);
  EXPECT_TRUE(high > low);
  EXPECT_FALSE(low > high);
  EXPECT_FALSE(low < low);
}

TEST(TTriangle, OrderWithEqualityLooksAtXAlone) {
  Cell low(TPoint(1, 2, 3), TPoint(), TPoint());
  Cell high(TPoint(1, 9, 9), TPoint(), TPoint());
  EXPECT_TRUE(high <= low);
  EXPECT_TRUE(low >= high);
  EXPECT_TRUE(low <= high);
  Cell further(TPoint(2, 0, 0), TPoint(), TPoint());
  EXPECT_FALSE(further <= low);
  EXPECT_FALSE(low >= further);
}

// --- Plane and sizes
// ------------------------------------------------------------------------------

TEST(TTriangle, HeightIsThatOfThePlaneEverywhere) {
  Cell t(TPoint(0, 0, 1), TPoint(0, 8, 5), TPoint(4, 0, 3));
  EXPECT_EQ(t.GetZ(0, 0), 1.0);
  EXPECT_EQ(t.GetZ(0, 8), 5.0);
  EXPECT_EQ(t.GetZ(4, 0), 3.0);
  EXPECT_EQ(t.GetZ(8, 16), 13.0);
}

TEST(TTriangle, HeightWithoutPlanAreaIsZero) {
  Cell line(TPoint(0, 0, 5), TPoint(1, 1, 6), TPoint(2, 2, 7));
  EXPECT_EQ(line.GetZ(0, 0), 0.0);
  Cell wall(TPoint(0, 0, 5), TPoint(0, 0, 6), TPoint(0, 1, 7));
  EXPECT_EQ(wall.GetZ(0, 0), 0.0);
}

TEST(TTriangle, HeightFollowsItsFormulaOnRandomTriangles) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    Corners const k = AnyCorners(in);
    Cell t(k.a, k.b, k.c);
    TPoint const A = k.a;
    TPoint const B = k.b;
    TPoint const C = k.c;
    TPoint const at = AnyPlace(in, k);
    double const d = (C.y - A.y) * (B.x - A.x) - (C.x - A.x) * (B.y - A.y);
    double expected = 0.0;
    if (d != 0) {
      double const p = ((C.y - A.y) * (B.z - A.z) - (C.z - A.z) * (B.y - A.y)) / d;
      double const q = -((C.x - A.x) * (B.z - A.z) - (C.z - A.z) * (B.x - A.x)) / d;
      expected = A.z - A.x * p - A.y * q + (p * at.x + q * at.y);
    }
    EXPECT_TRUE(SameBits(t.GetZ(at.x, at.y), expected));
  }
}

TEST(TTriangle, NormalOfClockwiseCornersPointsUp) {
  Cell flat(TPoint(0, 0, 3), TPoint(0, 5, 3), TPoint(7, 0, 3));
  EXPECT_EQ(flat.GetNormal(), TPoint(0, 0, 1));
  Cell slope(TPoint(0, 0, 0), TPoint(0, 1, 0), TPoint(1, 0, 1));  // rises to the east
  double const length = std::sqrt(2.0);
  EXPECT_EQ(slope.GetNormal(), TPoint(-1 / length, 0, 1 / length));
}

TEST(TTriangle, NormalWithoutAreaIsNotANumber) {
  Cell line(TPoint(0, 0, 0), TPoint(1, 1, 1), TPoint(2, 2, 2));
  TPoint const n = line.GetNormal();
  EXPECT_TRUE(std::isnan(n.x));
  EXPECT_TRUE(std::isnan(n.y));
  EXPECT_TRUE(std::isnan(n.z));
}

TEST(TTriangle, NormalFollowsItsFormulaOnRandomTriangles) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    Corners const k = AnyCorners(in);
    Cell t(k.a, k.b, k.c);
    TPoint const u(k.b.x - k.a.x, k.b.y - k.a.y, k.b.z - k.a.z);
    TPoint const w(k.c.x - k.a.x, k.c.y - k.a.y, k.c.z - k.a.z);
    double const x = u.z * w.y - u.y * w.z;
    double const y = u.x * w.z - u.z * w.x;
    double const z = u.y * w.x - u.x * w.y;
    double const l = std::sqrt(x * x + y * y + z * z);
    EXPECT_TRUE(SameBits(t.GetNormal(), TPoint(x / l, y / l, z / l)));
  }
}

TEST(TTriangle, AreaOfClockwiseCornersIsNegative) {
  Cell t;
  EXPECT_EQ(t.Area(), -50.0);
  Cell mirrored(t.b, t.a, t.c);
  EXPECT_EQ(mirrored.Area(), 50.0);
}

TEST(TTriangle, AreaFollowsItsFormulaOnRandomTriangles) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    Corners const k = AnyCorners(in);
    Cell t(k.a, k.b, k.c);
    double const expected = (k.a.x * k.b.y - k.a.y * k.b.x + k.b.x * k.c.y - k.c.x * k.b.y +
                             k.a.y * k.c.x - k.a.x * k.c.y) /
                            2;
    EXPECT_TRUE(SameBits(t.Area(), expected));
  }
}

TEST(TTriangle, CircumradiusComesFromTheCornersAndNotFromTheCache) {
  Cell t;
  double const expected = std::sqrt(200.0) / 2;
  TTriangle const uncached(&t.b, &t.c, &t.a);  // the right angle at corner 2
  EXPECT_EQ(uncached.XY_CircumcircleRadius(), expected);
  EXPECT_EQ(uncached.m_RadiusSq, 0.0);
  EXPECT_DOUBLE_EQ(t.XY_CircumcircleRadius(), expected);
}

TEST(TTriangle, CircumradiusOfCornersInLineIsTheLargestSinglePrecisionNumber) {
  Cell beyond(TPoint(1, 1), TPoint(2, 2), TPoint(0, 0));
  EXPECT_EQ(beyond.XY_CircumcircleRadius(), LARGEST_FLOAT);
  Cell between(TPoint(-1, -1), TPoint(2, 2), TPoint(0, 0));
  EXPECT_EQ(between.XY_CircumcircleRadius(), LARGEST_FLOAT);
}

TEST(TTriangle, CircumradiusWithCornerTwoOnAnotherCornerTakesTheSineOfOne) {
  Cell t(TPoint(0, 0), TPoint(3, 4), TPoint(0, 0));
  EXPECT_EQ(t.XY_CircumcircleRadius(), std::fabs(5.0 / (2 * std::sin(-1.0))));
}

TEST(TTriangle, CircumradiusFollowsItsFormulaOnRandomTriangles) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    Corners const k = AnyCorners(in);
    Cell t(k.a, k.b, k.c);
    double const s = std::sin((k.a - k.c).XY_Angle(k.b - k.c));
    double const l = k.a.XY_Distance(k.b, false);
    EXPECT_TRUE(
        SameBits(t.XY_CircumcircleRadius(), s == 0 ? LARGEST_FLOAT : std::fabs(l / (2 * s))));
  }
}

TEST(TTriangle, InradiusFollowsItsFormulaOnRandomTriangles) {
  Cell right(TPoint(0, 0), TPoint(0, 3), TPoint(4, 0));
  EXPECT_EQ(right.XY_IncircleRadius(), 1.0);
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    Corners const k = AnyCorners(in);
    Cell t(k.a, k.b, k.c);
    double const a = k.a.XY_Distance(k.b, false);
    double const b = k.b.XY_Distance(k.c, false);
    double const c = k.c.XY_Distance(k.a, false);
    double const s = (a + b + c) / 2;
    EXPECT_TRUE(SameBits(t.XY_IncircleRadius(), std::sqrt((s - a) * (s - b) * (s - c) / s)));
  }
}

// --- The cached circle
// ----------------------------------------------------------------------------

TEST(TTriangle, CircleFollowsItsFormulaOnRandomTriangles) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    Corners const k = AnyCorners(in);
    Cell t(k.a, k.b, k.c);
    TPoint const A = k.a;
    TPoint const B = k.b;
    TPoint const C = k.c;
    double const a = B.y - A.y;
    double const b = C.x - A.x;
    double const c = C.y - A.y;
    double const d = B.x - A.x;
    double const e = (A.y + B.y) * a + (A.x + B.x) * d;
    double const f = (C.y + A.y) * c + (C.x + A.x) * b;
    double const g = (C.y - B.y) * d - (C.x - B.x) * a;
    double const x = (e * c - f * a) / (2 * g);
    double const y = (f * d - e * b) / (2 * g);
    EXPECT_TRUE(SameBits(t.m_CentreX, x));
    EXPECT_TRUE(SameBits(t.m_CentreY, y));
    EXPECT_TRUE(SameBits(t.m_RadiusSq, (x - A.x) * (x - A.x) + (y - A.y) * (y - A.y)));
  }
}

TEST(TTriangle, PointOnTheCircleIsInside) {
  Cell t;
  EXPECT_EQ(t.m_CentreX, 5.0);
  EXPECT_EQ(t.m_CentreY, 5.0);
  EXPECT_EQ(t.m_RadiusSq, 50.0);
  EXPECT_EQ(t.TestCalcTri(TPoint(10, 10)), 1);
  EXPECT_EQ(t.TestCalcTri(TPoint(10, std::nextafter(10.0, 11.0))), 0);
  EXPECT_EQ(t.TestCalcTri(TPoint(5, 5)), 1);
  EXPECT_EQ(t.TestCalcTri(TPoint(-4, 5)), 0);
}

TEST(TTriangle, CircleOfOneRepeatedCornerHoldsNothing) {
  Cell t(TPoint(3, 3), TPoint(3, 3), TPoint(3, 3));
  EXPECT_TRUE(std::isnan(t.m_RadiusSq));
  EXPECT_EQ(t.TestCalcTri(TPoint(3, 3)), 0);
  EXPECT_FALSE(t.XY_HasPoint(TPoint(3, 3)));
}

TEST(TTriangle, CircleOfCornersInLineIsInfinite) {
  Cell t(TPoint(0, 0), TPoint(1, 1), TPoint(2, 2));
  EXPECT_EQ(t.m_CentreX, -INFINITE);
  EXPECT_EQ(t.m_CentreY, INFINITE);
  EXPECT_EQ(t.m_RadiusSq, INFINITE);
  EXPECT_EQ(t.TestCalcTri(TPoint(7, -9)), 1);  // infinity is at least infinity
  EXPECT_FALSE(t.XY_HasPoint(TPoint(7, -9)));
}

TEST(TTriangle, CircleTestIsExactOnRandomPoints) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    Corners const k = AnyCorners(in);
    Cell t(k.a, k.b, k.c);
    TPoint const p = AnyPlace(in, k);
    bool const in_circle = t.m_RadiusSq >= (p.x - t.m_CentreX) * (p.x - t.m_CentreX) +
                                               (p.y - t.m_CentreY) * (p.y - t.m_CentreY);
    EXPECT_EQ(t.TestCalcTri(p), in_circle ? 1 : 0);
  }
}

// --- WhereTri
// -------------------------------------------------------------------------------------

TEST(TTriangle, WalkStopsInside) {
  Cell t;
  EXPECT_EQ(t.WhereTri(TPoint(2, 2)), 3);
  EXPECT_EQ(t.WhereTri(TPoint(0, 0)), 3);
  EXPECT_EQ(t.WhereTri(TPoint(5, 5)), 3);
}

TEST(TTriangle, WalkCrossesTheOneSideThatFails) {
  Cell t;
  EXPECT_EQ(t.WhereTri(TPoint(-1, 5)), 0);
  EXPECT_EQ(t.WhereTri(TPoint(8, 8)), 1);
  EXPECT_EQ(t.WhereTri(TPoint(5, -1)), 2);
}

TEST(TTriangle, WalkCrossesTheFirstFailingSideAfterTheOneThatPasses) {
  Cell t;
  EXPECT_EQ(t.WhereTri(TPoint(30, -1)), 1);  // side 0 passes
  EXPECT_EQ(t.WhereTri(TPoint(-1, -1)), 2);  // side 1 passes
  EXPECT_EQ(t.WhereTri(TPoint(-1, 30)), 0);  // side 2 passes
}

TEST(TTriangle, WalkStopsWhereAllSidesFail) {
  Cell turned(TPoint(0, 0), TPoint(10, 0), TPoint(0, 10));  // counter-clockwise
  EXPECT_EQ(turned.WhereTri(TPoint(2, 2)), 3);
  Cell point(TPoint(3, 3), TPoint(3, 3), TPoint(3, 3));
  EXPECT_EQ(point.WhereTri(TPoint(100, 100)), 3);
}

TEST(TTriangle, WalkStopsInABandOutsideEachSide) {
  Cell t;
  EXPECT_EQ(t.WhereTri(TPoint(-0.9e-09, 5)), 3);
  EXPECT_EQ(t.WhereTri(TPoint(-1e-09, 5)), 3);
  EXPECT_EQ(t.WhereTri(TPoint(-std::nextafter(1e-09, 1.0), 5)), 0);
  EXPECT_EQ(t.WhereTri(TPoint(5, -1e-09)), 3);
  EXPECT_EQ(t.WhereTri(TPoint(5, -std::nextafter(1e-09, 1.0))), 2);
}

TEST(TTriangle, SideThatIsNotANumberDoesNotPass) {
  Cell folded(TPoint(0, 0), TPoint(0, 0), TPoint(10, 0));  // side 0 has no length
  EXPECT_EQ(folded.WhereTri(TPoint(5, 0)), 0);
  Cell t;
  EXPECT_EQ(t.WhereTri(TPoint(NOT_A_NUMBER, 5)), 3);
}

int WhereByTable(Corners const& k, TPoint const& p) {
  TPoint a = k.a;
  TPoint b = k.b;
  TPoint c = k.c;
  int code = 0;
  if (TEdge(&a, &b).WhatSide(p) >= -1e-09) code += 1;
  if (TEdge(&b, &c).WhatSide(p) >= -1e-09) code += 2;
  if (TEdge(&c, &a).WhatSide(p) >= -1e-09) code += 4;
  switch (code) {
    case 1:
    case 5:
      return 1;
    case 2:
    case 3:
      return 2;
    case 4:
    case 6:
      return 0;
    default:
      return 3;
  }
}

TEST(TTriangle, WalkFollowsItsTableOnRandomPoints) {
  FormulaInputs in;
  for (int i = 0; i < 10 * ROUNDS; ++i) {
    Corners const k = AnyCorners(in);
    Cell t(k.a, k.b, k.c);
    TPoint p = AnyPlace(in, k);
    if (i % 4 == 0) p.x += in.Between(-3e-09, 3e-09);
    if (i % 4 == 1) p.y += in.Between(-3e-09, 3e-09);
    EXPECT_EQ(t.WhereTri(p), WhereByTable(k, p));
  }
}

// --- Containment
// ----------------------------------------------------------------------------------

TEST(TTriangle, HasNoPointButTheOriginBeforeItsCircleIsKnown) {
  TPoint a(-10, -10);
  TPoint b(0, 10);
  TPoint c(10, -10);
  TTriangle const t(&a, &b, &c);
  EXPECT_TRUE(t.XY_HasPoint(TPoint(0, 0)));
  EXPECT_FALSE(t.XY_HasPoint(TPoint(1, 0)));
  EXPECT_FALSE(t.XY_HasPoint(TPoint(0, -1e-9)));
  EXPECT_FALSE(t.XY_HasPoint(a));
}

TEST(TTriangle, HasItsLowerLeftCornerAndNotItsUpperCorner) {
  Cell t(TPoint(0, 0), TPoint(4, 8), TPoint(8, 0));
  EXPECT_TRUE(t.XY_HasPoint(t.a));
  EXPECT_FALSE(t.XY_HasPoint(t.b));
  EXPECT_FALSE(t.XY_HasPoint(t.c));
}

TEST(TTriangle, HasItsLeftAndLowerSidesAndNotItsRightAndUpperSides) {
  Cell t(TPoint(0, 0), TPoint(4, 8), TPoint(8, 0));
  EXPECT_TRUE(t.XY_HasPoint(TPoint(2, 4)));
  EXPECT_FALSE(t.XY_HasPoint(TPoint(6, 4)));
  EXPECT_TRUE(t.XY_HasPoint(TPoint(4, 0)));
  Cell hanging(TPoint(0, 8), TPoint(8, 8), TPoint(4, 0));
  EXPECT_FALSE(hanging.XY_HasPoint(TPoint(4, 8)));
}

bool HasByFormula(TTriangle const& t, TPoint const& p) {
  double const dx = p.x - t.m_CentreX;
  double const dy = p.y - t.m_CentreY;
  if (!(t.m_RadiusSq >= dx * dx + dy * dy)) return false;
  bool inside = false;
  int const from[3] = {0, 1, 2};
  int const to[3] = {2, 0, 1};
  for (int i = 0; i < 3; ++i) {
    TPoint const& u = *t.m_pVertex[from[i]];
    TPoint const& v = *t.m_pVertex[to[i]];
    if (!((p.y >= u.y && v.y > p.y) || (p.y >= v.y && u.y > p.y))) continue;
    double const crossing = (p.y - u.y) * (v.x - u.x) / (v.y - u.y) + u.x;
    if (crossing > p.x) inside = !inside;
  }
  return inside;
}

TEST(TTriangle, ContainmentFollowsItsRuleOnRandomPoints) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    Corners const k = AnyCorners(in);
    Cell t(k.a, k.b, k.c);
    TPoint const p = AnyPlace(in, k);
    EXPECT_EQ(t.XY_HasPoint(p), HasByFormula(t, p));
  }
}

// --- Vertices and sides by place
// ------------------------------------------------------------------

TEST(TTriangle, VertexMatchesBelowAThousandthOnBothAxes) {
  Cell t;
  EXPECT_EQ(t.XY_FindVertex(TPoint(0.0009, 0.0009, 77)), &t.a);
  EXPECT_EQ(t.XY_FindVertex(TPoint(-0.0009, 10.0009)), &t.b);
  EXPECT_EQ(t.XY_FindVertex(TPoint(0.001, 0)), nullptr);  // the product is 1
  EXPECT_EQ(t.XY_FindVertex(TPoint(0, -0.001)), nullptr);
  EXPECT_EQ(t.XY_FindVertex(TPoint(std::nextafter(0.001, 0.0), 0)), &t.a);
}

TEST(TTriangle, VertexSearchTakesTheFirstOfSeveral) {
  Cell t(TPoint(0, 0, 1), TPoint(0.0005, 0, 2), TPoint(0.0004, 0, 3));
  EXPECT_EQ(t.XY_FindVertex(TPoint(0.0005, 0, 2)), &t.a);
  EXPECT_EQ(t.XY_FindVertex(TPoint(0.0012, 0)), &t.b);
}

TEST(TTriangle, VertexFartherThanAnIntegerHoldsNeverMatches) {
  Cell t;
  for (double far : {2147483.648, 4294967.296, 1e300, INFINITE, -INFINITE, NOT_A_NUMBER}) {
    EXPECT_EQ(t.XY_FindVertex(TPoint(far, 0)), nullptr) << far;
    EXPECT_EQ(t.XY_FindVertex(TPoint(0, far)), nullptr) << far;
  }
}

TEST(TTriangle, VertexSearchFollowsItsRuleOnRandomPoints) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    TPoint const base = i % 2 == 0 ? in.Sounding() : in.Node();
    Cell t(base, base + TPoint(in.Between(-0.003, 0.003), in.Between(-0.003, 0.003)),
           base + TPoint(0.001, -0.001));
    TPoint const p = base + TPoint(in.Between(-0.003, 0.003), in.Between(-0.003, 0.003));
    TPoint* expected = nullptr;
    for (TPoint* corner : {&t.c, &t.b, &t.a}) {
      if (std::trunc((corner->x - p.x) * 1000) == 0 && std::trunc((corner->y - p.y) * 1000) == 0) {
        expected = corner;
      }
    }
    EXPECT_EQ(t.XY_FindVertex(p), expected);
  }
}

TEST(TTriangle, VertexByAddressIsNoCopyOfIt) {
  Cell t;
  TPoint const copy = t.a;
  EXPECT_TRUE(t.XY_FindVertex(&t.a));
  EXPECT_TRUE(t.XY_FindVertex(&t.b));
  EXPECT_TRUE(t.XY_FindVertex(&t.c));
  EXPECT_FALSE(t.XY_FindVertex(&copy));
}

TEST(TTriangle, EdgeWithAPointIsTheFirstThatHasItExactly) {
  Cell t;
  TEdge edge;
  EXPECT_TRUE(t.XY_EdgeHasPoint(TPoint(0, 5), edge));
  ExpectEnds(edge, &t.a, &t.b);
  EXPECT_TRUE(t.XY_EdgeHasPoint(TPoint(5, 5), edge));
  ExpectEnds(edge, &t.b, &t.c);
  EXPECT_TRUE(t.XY_EdgeHasPoint(TPoint(5, 0), edge));
  ExpectEnds(edge, &t.c, &t.a);
  EXPECT_TRUE(t.XY_EdgeHasPoint(TPoint(0, 0), edge));
  ExpectEnds(edge, &t.a, &t.b);
  EXPECT_TRUE(t.XY_EdgeHasPoint(TPoint(0, 10), edge));
  ExpectEnds(edge, &t.a, &t.b);
  EXPECT_TRUE(t.XY_EdgeHasPoint(TPoint(10, 0), edge));
  ExpectEnds(edge, &t.b, &t.c);
}

TEST(TTriangle, PointOnNoEdgeLeavesTheLastSide) {
  Cell t;
  for (TPoint const& p : {TPoint(2, 2), TPoint(0, 11), TPoint(0, -1), TPoint(1e-300, 5)}) {
    TEdge edge;
    EXPECT_FALSE(t.XY_EdgeHasPoint(p, edge));
    ExpectEnds(edge, &t.c, &t.a);
  }
}

TEST(TTriangle, NearestSideIsTheEarliestOfEqualOnes) {
  Cell t;
  TEdge edge;
  EXPECT_EQ(t.XY_Distance(TPoint(4, 1), edge), t.GetEdge(2).XY_Distance(TPoint(4, 1)));
  ExpectEnds(edge, &t.c, &t.a);
  Cell line(TPoint(0, 0), TPoint(1, 0), TPoint(2, 0));
  EXPECT_EQ(line.XY_Distance(TPoint(5, 0), edge), 0.0);
  ExpectEnds(edge, &line.a, &line.b);
}

TEST(TTriangle, NearestSideIsMeasuredToItsInfiniteLine) {
  Cell t;
  TEdge edge;
  EXPECT_EQ(t.XY_Distance(TPoint(0, 500), edge), 0.0);
  ExpectEnds(edge, &t.a, &t.b);
}

TEST(TTriangle, NearestSideFollowsItsRuleOnRandomPoints) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    Corners const k = AnyCorners(in);
    Cell t(k.a, k.b, k.c);
    TPoint const p = AnyPlace(in, k);
    int nearest = 0;
    for (int side = 1; side < 3; ++side) {
      if (t.GetEdge(side).XY_Distance(p) < t.GetEdge(nearest).XY_Distance(p)) nearest = side;
    }
    TEdge edge;
    EXPECT_TRUE(SameBits(t.XY_Distance(p, edge), t.GetEdge(nearest).XY_Distance(p)));
    EXPECT_EQ(edge.m_pStart, t.m_pVertex[nearest]);
  }
}

// --- Links
// ----------------------------------------------------------------------------------------

TEST(TTriangle, SideBackIsThatOfTheNeighbour) {
  Star s;
  s.across[1].m_pAdjacent[0] = nullptr;
  s.across[1].m_pAdjacent[2] = &s.centre;
  EXPECT_EQ(s.centre.TriSide(0), 0);
  EXPECT_EQ(s.centre.TriSide(1), 2);
  s.across[1].m_pAdjacent[1] = &s.centre;
  EXPECT_EQ(s.centre.TriSide(1), 1);  // the lowest of two
}

TEST(TTriangle, SideBackIsThreeWithoutAWayBack) {
  Star s;
  s.across[0].m_pAdjacent[0] = nullptr;
  s.centre.m_pAdjacent[1] = nullptr;
  EXPECT_EQ(s.centre.TriSide(0), 3);
  EXPECT_EQ(s.centre.TriSide(1), 3);
}

TEST(TTriangle, LinkGoesAcrossTheSideSharedByValueAndWritesOneTriangleOnly) {
  Cell t;
  for (int side = 0; side < 3; ++side) {
    Cell other(*t.m_pVertex[(side + 1) % 3], *t.m_pVertex[side], TPoint(70, 70, 70));
    EXPECT_EQ(t.SetAdjacentPointer(&other), side);
    EXPECT_EQ(t.m_pAdjacent[side], &other);
    EXPECT_EQ(other.m_pAdjacent[0], nullptr);
    EXPECT_EQ(other.m_pAdjacent[1], nullptr);
    EXPECT_EQ(other.m_pAdjacent[2], nullptr);
    t.m_pAdjacent[side] = nullptr;
  }
}

TEST(TTriangle, LinkTakesTheFirstSharedSide) {
  Cell t;
  Cell twin(t.c, t.b, t.a);
  EXPECT_EQ(t.SetAdjacentPointer(&twin), 0);
  EXPECT_EQ(t.m_pAdjacent[0], &twin);
  EXPECT_EQ(t.m_pAdjacent[1], nullptr);
  EXPECT_EQ(t.m_pAdjacent[2], nullptr);
}

TEST(TTriangle, LinkOfTrianglesThatShareOneCornerIsRefused) {
  Star s;
  Cell other(s.centre.a, TPoint(-5, 0), TPoint(0, -5));
  EXPECT_EQ(s.centre.SetAdjacentPointer(&other), -1);
  for (int side = 0; side < 3; ++side) EXPECT_EQ(s.centre.m_pAdjacent[side], &s.across[side]);
}

TEST(TTriangle, LinkComparesHeightsToo) {
  Cell t;
  Cell other(t.b + TPoint(0, 0, 1), t.a, TPoint(-10, 5));
  EXPECT_EQ(t.SetAdjacentPointer(&other), -1);
}

TEST(TTriangle, SortedVerticesRunClockwise) {
  Cell t(TPoint(0, 10, 1), TPoint(0, 0, 2), TPoint(10, 0, 3));
  t.m_pAdjacent[0] = &t;
  double const radius = t.m_RadiusSq;
  t.SortVertices();
  EXPECT_EQ(t.m_pVertex[0], &t.b);
  EXPECT_EQ(t.m_pVertex[1], &t.a);
  EXPECT_EQ(t.m_pVertex[2], &t.c);
  EXPECT_EQ(t.m_pAdjacent[0], &t);
  EXPECT_EQ(t.m_RadiusSq, radius);
  t.SortVertices();
  EXPECT_EQ(t.m_pVertex[0], &t.b);
}

TEST(TTriangle, SortLeavesCornersInLineAndRepeatedCorners) {
  Cell line(TPoint(0, 0), TPoint(1, 1), TPoint(2, 2));
  line.SortVertices();
  EXPECT_EQ(line.m_pVertex[0], &line.a);
  Cell folded(TPoint(0, 0), TPoint(0, 0), TPoint(2, 2));
  folded.SortVertices();
  EXPECT_EQ(folded.m_pVertex[0], &folded.a);
}

TEST(TTriangle, SortedNeighboursStandAcrossTheirSides) {
  Star s;
  s.centre.m_pAdjacent[0] = &s.across[2];
  s.centre.m_pAdjacent[1] = &s.across[0];
  s.centre.m_pAdjacent[2] = &s.across[1];
  s.centre.SortPointers();
  for (int side = 0; side < 3; ++side) EXPECT_EQ(s.centre.m_pAdjacent[side], &s.across[side]);
}

TEST(TTriangle, SortDropsANeighbourThatSharesNoSide) {
  Star s;
  Cell stranger(TPoint(50, 50), TPoint(50, 60), TPoint(60, 50));
  s.centre.m_pAdjacent[1] = &stranger;
  s.centre.SortPointers();
  EXPECT_EQ(s.centre.m_pAdjacent[0], &s.across[0]);
  EXPECT_EQ(s.centre.m_pAdjacent[1], nullptr);
  EXPECT_EQ(s.centre.m_pAdjacent[2], &s.across[2]);
}

TEST(TTriangle, SortLetsALaterNeighbourOverrideAnEarlierOne) {
  Star s;
  Cell twin(s.centre.b, s.centre.a, TPoint(-3, 3, 3));
  s.centre.m_pAdjacent[2] = &twin;
  s.centre.SortPointers();
  EXPECT_EQ(s.centre.m_pAdjacent[0], &twin);
  EXPECT_EQ(s.centre.m_pAdjacent[1], &s.across[1]);
  EXPECT_EQ(s.centre.m_pAdjacent[2], nullptr);
}

TEST(TTriangle, SortPutsANeighbourAcrossEverySideThatItShares) {
  Cell t;
  Cell twin(t.c, t.b, t.a);
  t.m_pAdjacent[1] = &twin;
  t.SortPointers();
  for (TTriangle* neighbour : t.m_pAdjacent) EXPECT_EQ(neighbour, &twin);
}

}  // namespace
