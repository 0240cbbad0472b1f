#include "qeltin/kernel/TEdge.h"

#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>

#include "testing/Formula.h"

namespace {

using qeltin::testing::FormulaInputs;
using qeltin::testing::SameBits;

constexpr double HALF_PI = 1.5707963267948966;
constexpr double THREE_HALVES_PI = 4.71238898038469;
constexpr int ROUNDS = 3000;

// An edge with points of its own.
struct Ends {
  TPoint a;
  TPoint b;
  TEdge Edge() { return {&a, &b}; }
};

Ends AnyEnds(FormulaInputs& in) {
  switch (in.Whole(0, 2)) {
    case 0:
      return {in.Point(), in.Point()};
    case 1:
      return {in.Sounding(), in.Sounding()};
    default:
      return {in.Node(), in.Node()};
  }
}

// --- The record
// -----------------------------------------------------------------------------------

TEST(TEdge, DefaultEdgeHasNoEnds) {
  TEdge const none;
  EXPECT_EQ(none.m_pStart, nullptr);
  EXPECT_EQ(none.m_pEnd, nullptr);
}

TEST(TEdge, HoldsTheTwoAddressesThatItWasGiven) {
  TPoint a(1, 2, 3);
  TPoint b(4, 5, 6);
  TEdge const edge(&a, &b);
  TEdge const copy = edge;
  EXPECT_EQ(edge.m_pStart, &a);
  EXPECT_EQ(edge.m_pEnd, &b);
  EXPECT_EQ(copy.m_pStart, &a);
  EXPECT_EQ(copy.m_pEnd, &b);
  EXPECT_EQ(sizeof(TEdge), 2 * sizeof(TPoint*));
  EXPECT_FALSE(std::is_polymorphic_v<TEdge>);
}

TEST(TEdge, FlipSwapsTheEnds) {
  TPoint a;
  TPoint b;
  TEdge edge(&a, &b);
  edge.Flip();
  EXPECT_EQ(edge.m_pStart, &b);
  EXPECT_EQ(edge.m_pEnd, &a);
}

// --- Comparison
// -----------------------------------------------------------------------------------

TEST(TEdge, EqualityIsUndirected) {
  TPoint a(1, 2, 3);
  TPoint b(4, 5, 6);
  TPoint c(7, 8, 9);
  EXPECT_TRUE(TEdge(&a, &b) == TEdge(&a, &b));
  EXPECT_TRUE(TEdge(&a, &b) == TEdge(&b, &a));
  EXPECT_FALSE(TEdge(&a, &b) != TEdge(&b, &a));
  EXPECT_FALSE(TEdge(&a, &b) == TEdge(&a, &c));
  EXPECT_TRUE(TEdge(&a, &b) != TEdge(&c, &b));
}

TEST(TEdge, EqualityIsByValueOnAllThreeCoordinates) {
  TPoint a(1, 2, 3);
  TPoint b(4, 5, 6);
  TPoint same_a = a;
  TPoint same_b = b;
  TPoint higher_b(4, 5, std::nextafter(6.0, 7.0));
  EXPECT_TRUE(TEdge(&a, &b) == TEdge(&same_b, &same_a));
  EXPECT_FALSE(TEdge(&a, &b) == TEdge(&a, &higher_b));
}

TEST(TEdge, EdgeFromAPointToItselfEqualsEveryEdgeWithThatPoint) {
  TPoint a(1, 2, 3);
  TPoint b(4, 5, 6);
  EXPECT_TRUE(TEdge(&a, &a) == TEdge(&a, &b));
  EXPECT_TRUE(TEdge(&a, &a) == TEdge(&b, &a));
  EXPECT_FALSE(TEdge(&a, &b) == TEdge(&a, &a));
}

TEST(TEdge, OrderIsDirectedAndLexicographic) {
  TPoint a(1, 2, 3);
  TPoint b(1, 2, 4);
  TPoint c(2, 0, 0);
  EXPECT_TRUE(TEdge(&a, &c) < TEdge(&b, &a));
  EXPECT_FALSE(TEdge(&b, &a) < TEdge(&a, &c));
  EXPECT_TRUE(TEdge(&b, &a) > TEdge(&a, &c));
  EXPECT_TRUE(TEdge(&a, &b) < TEdge(&a, &c));
  EXPECT_TRUE(TEdge(&a, &b) < TEdge(&b, &a));
  EXPECT_FALSE(TEdge(&a, &b) < TEdge(&a, &b));
  EXPECT_FALSE(TEdge(&a, &b) > TEdge(&a, &b));
}

TEST(TEdge, VertexIsAnEndOfEqualCoordinates) {
  TPoint a(1, 2, 3);
  TPoint b(4, 5, 6);
  TEdge const edge(&a, &b);
  EXPECT_TRUE(edge.HasVertex(TPoint(1, 2, 3)));
  EXPECT_TRUE(edge.HasVertex(TPoint(4, 5, 6)));
  EXPECT_FALSE(edge.HasVertex(TPoint(1, 2, 6)));
}

TEST(TEdge, VertexInPlanIgnoresTheHeightAndPrefersTheStart) {
  TPoint a(1, 2, 3);
  TPoint b(4, 5, 6);
  TPoint above_a(1, 2, 30);
  EXPECT_EQ(TEdge(&a, &b).XY_FindVertex(TPoint(1, 2, 99)), &a);
  EXPECT_EQ(TEdge(&a, &b).XY_FindVertex(TPoint(4, 5, 99)), &b);
  EXPECT_EQ(TEdge(&a, &above_a).XY_FindVertex(TPoint(1, 2, 30)), &a);
  EXPECT_EQ(TEdge(&above_a, &a).XY_FindVertex(TPoint(1, 2, 3)), &above_a);
  EXPECT_EQ(TEdge(&a, &b).XY_FindVertex(TPoint(1, std::nextafter(2.0, 3.0), 3)), nullptr);
}

// --- Classification
// -------------------------------------------------------------------------------

TEST(TEdge, ClassifiesTheSevenPlaces) {
  Ends e{TPoint(0, 0, 1), TPoint(10, 5, 2)};
  EXPECT_EQ(e.Edge().XY_ClassifyOrientationOf(TPoint(0, 0, 9)), ORIENT_ORIGIN);
  EXPECT_EQ(e.Edge().XY_ClassifyOrientationOf(TPoint(10, 5, 9)), ORIENT_DESTINATION);
  EXPECT_EQ(e.Edge().XY_ClassifyOrientationOf(TPoint(5, 3, 9)), ORIENT_LEFT);
  EXPECT_EQ(e.Edge().XY_ClassifyOrientationOf(TPoint(5, 2, 9)), ORIENT_RIGHT);
  EXPECT_EQ(e.Edge().XY_ClassifyOrientationOf(TPoint(-2, -1, 9)), ORIENT_BEHIND);
  EXPECT_EQ(e.Edge().XY_ClassifyOrientationOf(TPoint(12, 6, 9)), ORIENT_BEYOND);
  EXPECT_EQ(e.Edge().XY_ClassifyOrientationOf(TPoint(5, 2.5, 9)), ORIENT_BETWEEN);
}

TEST(TEdge, ClassificationValuesAreFixed) {
  EXPECT_EQ(ORIENT_ORIGIN, 0);
  EXPECT_EQ(ORIENT_DESTINATION, 1);
  EXPECT_EQ(ORIENT_LEFT, 2);
  EXPECT_EQ(ORIENT_RIGHT, 3);
  EXPECT_EQ(ORIENT_BEHIND, 4);
  EXPECT_EQ(ORIENT_BEYOND, 5);
  EXPECT_EQ(ORIENT_BETWEEN, 6);
}

TEST(TEdge, ClassificationHasNoBandAroundTheLine) {
  Ends e{TPoint(0, 0), TPoint(10, 0)};
  EXPECT_EQ(e.Edge().XY_ClassifyOrientationOf(TPoint(5, 1e-300)), ORIENT_LEFT);
  EXPECT_EQ(e.Edge().XY_ClassifyOrientationOf(TPoint(5, -1e-300)), ORIENT_RIGHT);
}

TEST(TEdge, ClassificationAgainstAnEdgeOfNoLengthIsBeyond) {
  Ends e{TPoint(1, 1), TPoint(1, 1)};
  EXPECT_EQ(e.Edge().XY_ClassifyOrientationOf(TPoint(1, 1)), ORIENT_ORIGIN);
  EXPECT_EQ(e.Edge().XY_ClassifyOrientationOf(TPoint(0, 0)), ORIENT_BEYOND);
}

int ClassByFormula(TPoint const& a, TPoint const& b, TPoint const& p) {
  if (p.x == a.x && p.y == a.y) return 0;
  if (p.x == b.x && p.y == b.y) return 1;
  double const c = (p.y - a.y) * (b.x - a.x) - (p.x - a.x) * (b.y - a.y);
  if (c > 0) return 2;
  if (c < 0) return 3;
  if ((p.x - a.x) * (b.x - a.x) < 0) return 4;
  if ((p.y - a.y) * (b.y - a.y) < 0) return 4;
  double const to_p = std::sqrt((a.x - p.x) * (a.x - p.x) + (a.y - p.y) * (a.y - p.y));
  double const length = std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y));
  return to_p > length ? 5 : 6;
}

TEST(TEdge, ClassificationFollowsItsRuleOnRandomPoints) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    Ends e = AnyEnds(in);
    TPoint p = in.AnyPoint();
    if (i % 3 == 0) p = e.a + (e.b - e.a) * (in.Whole(-4, 8) / 4.0);
    EXPECT_EQ(e.Edge().XY_ClassifyOrientationOf(p), ClassByFormula(e.a, e.b, p));
  }
}

// --- WhatSide
// -------------------------------------------------------------------------------------

TEST(TEdge, SideOfAFlatEdgeIsTheOffsetAlongYToTheRight) {
  Ends e{TPoint(0, 0), TPoint(10, 0)};
  EXPECT_EQ(e.Edge().WhatSide(TPoint(5, -3)), 3.0);
  EXPECT_EQ(e.Edge().WhatSide(TPoint(5, 3)), -3.0);
  Ends back{TPoint(10, 0), TPoint(0, 0)};
  EXPECT_EQ(back.Edge().WhatSide(TPoint(5, -3)), -3.0);
  EXPECT_EQ(back.Edge().WhatSide(TPoint(5, 3)), 3.0);
}

TEST(TEdge, SideOfASteepEdgeIsTheOffsetAlongXToTheRight) {
  Ends e{TPoint(0, 0), TPoint(1, 10)};
  EXPECT_EQ(e.Edge().WhatSide(TPoint(5, 5)), 4.5);  // not the perpendicular distance
  EXPECT_EQ(e.Edge().WhatSide(TPoint(-4, 5)), -4.5);
  Ends back{TPoint(1, 10), TPoint(0, 0)};
  EXPECT_EQ(back.Edge().WhatSide(TPoint(5, 5)), -4.5);
}

TEST(TEdge, SideOfAnEdgeAtFortyFiveDegreesIsMeasuredAlongY) {
  Ends e{TPoint(0, 0), TPoint(4, 4)};
  EXPECT_EQ(e.Edge().WhatSide(TPoint(3, 1)), 2.0);
  // The terms are rounded in the order of the rule for flat edges: (0.1 - 0.3) + 0.7, less 0.2.
  Ends rounding{TPoint(0.3, 0.1), TPoint(1.3, 1.1)};
  double const m = (1.1 - 0.1) / (1.3 - 0.3);
  EXPECT_TRUE(
      SameBits(rounding.Edge().WhatSide(TPoint(0.7, 0.2)), (0.1 - 0.3 * m + m * 0.7) - 0.2));
}

TEST(TEdge, SideOnTheLineIsZero) {
  Ends e{TPoint(0, 0), TPoint(10, 5)};
  EXPECT_EQ(e.Edge().WhatSide(TPoint(4, 2)), 0.0);
  EXPECT_EQ(e.Edge().WhatSide(TPoint(-4, -2)), 0.0);
}

TEST(TEdge, SideOfAnEdgeOfNoLengthIsNotANumber) {
  Ends e{TPoint(1, 2), TPoint(1, 2)};
  double const side = e.Edge().WhatSide(TPoint(5, 5));
  EXPECT_TRUE(std::isnan(side));
  EXPECT_FALSE(side >= 0.0);
  EXPECT_FALSE(side < 0.0);
}

double SideByFormula(TPoint const& a, TPoint const& b, TPoint const& p) {
  double const dx = b.x - a.x;
  double const dy = b.y - a.y;
  if (std::fabs(dx) >= std::fabs(dy)) {
    double const m = dy / dx;
    double const d = (a.y - a.x * m + m * p.x) - p.y;
    if (dx > 0) return d;
    return -d;
  }
  double const m = dx / dy;
  double const d = (a.x - a.y * m + m * p.y) - p.x;
  if (dy > 0) return -d;
  return d;
}

TEST(TEdge, SideFollowsItsFormulaOnRandomPoints) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    Ends e = AnyEnds(in);
    TPoint const p = i % 3 == 0 ? e.a + (e.b - e.a) * in.Between(-1.0, 2.0) : in.AnyPoint();
    EXPECT_TRUE(SameBits(e.Edge().WhatSide(p), SideByFormula(e.a, e.b, p)));
  }
}

// --- Bisector, crossing, direction, distance
// ------------------------------------------------------

TEST(TEdge, BisectorTurnsTheEdgeClockwiseAboutItsMidpointAndKeepsHeights) {
  Ends e{TPoint(0, 0, 7), TPoint(4, 2, 8)};
  TEdge edge = e.Edge();
  edge.XY_ConvertToBisector();
  EXPECT_EQ(edge.m_pStart, &e.a);
  EXPECT_EQ(edge.m_pEnd, &e.b);
  EXPECT_EQ(e.a, TPoint(1, 3, 7));
  EXPECT_EQ(e.b, TPoint(3, -1, 8));
}

TEST(TEdge, BisectorFollowsItsFormulaOnRandomEdges) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    Ends e = AnyEnds(in);
    TPoint const a = e.a;
    TPoint const b = e.b;
    double const mx = (a.x + b.x) / 2;
    double const my = (a.y + b.y) / 2;
    double const dx = b.x - a.x;
    double const dy = b.y - a.y;
    e.Edge().XY_ConvertToBisector();
    EXPECT_TRUE(SameBits(e.a, TPoint(mx - dy / 2, my + dx / 2, a.z)));
    EXPECT_TRUE(SameBits(e.b, TPoint(mx + dy / 2, my - dx / 2, b.z)));
  }
}

TEST(TEdge, CrossingIsTheParameterAlongThisEdge) {
  Ends e{TPoint(0, 0), TPoint(10, 0)};
  Ends other{TPoint(4, -1), TPoint(4, 1)};
  double t = -7;
  EXPECT_TRUE(e.Edge().XY_Intersect(other.Edge(), t));
  EXPECT_EQ(t, 0.4);
}

TEST(TEdge, CrossingIsNotLimitedToEitherEdge) {
  Ends e{TPoint(0, 0), TPoint(10, 0)};
  Ends other{TPoint(-20, 5), TPoint(-20, 6)};
  double t = -7;
  EXPECT_TRUE(e.Edge().XY_Intersect(other.Edge(), t));
  EXPECT_EQ(t, -2.0);
}

TEST(TEdge, CrossingOfParallelLinesIsFalseAndLeavesTheParameter) {
  Ends e{TPoint(0, 0), TPoint(10, 5)};
  Ends beside{TPoint(0, 1), TPoint(2, 2)};
  Ends along{TPoint(2, 1), TPoint(4, 2)};
  Ends point{TPoint(3, 9), TPoint(3, 9)};
  for (Ends* other : {&beside, &along, &point}) {
    double t = -7;
    EXPECT_FALSE(e.Edge().XY_Intersect(other->Edge(), t));
    EXPECT_EQ(t, -7.0);
  }
}

TEST(TEdge, CrossingFollowsItsFormulaOnRandomEdges) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    Ends e = AnyEnds(in);
    Ends o = AnyEnds(in);
    double const nx = o.b.y - o.a.y;
    double const ny = o.a.x - o.b.x;
    double const q = nx * (e.b.x - e.a.x) + ny * (e.b.y - e.a.y);
    double t = -7;
    EXPECT_EQ(e.Edge().XY_Intersect(o.Edge(), t), q != 0);
    double const crossing = -(nx * (e.a.x - o.a.x) + ny * (e.a.y - o.a.y)) / q;
    EXPECT_TRUE(SameBits(t, q == 0 ? -7 : crossing));
  }
}

TEST(TEdge, DirectionIsThatFromStartToEnd) {
  Ends e{TPoint(5, 5), TPoint(4, 3)};
  EXPECT_EQ(e.Edge().XY_Angle(), TPoint(-1, -2).XY_Angle());
  Ends point{TPoint(5, 5, 1), TPoint(5, 5, 2)};
  EXPECT_EQ(point.Edge().XY_Angle(), -1.0);
}

TEST(TEdge, DistanceIsToTheInfiniteLine) {
  Ends e{TPoint(0, 0), TPoint(1, 0)};
  EXPECT_EQ(e.Edge().XY_Distance(TPoint(5, 0)), 0.0);
  double const sine = 2.0 / std::sqrt(29.0);
  EXPECT_EQ(e.Edge().XY_Distance(TPoint(5, 2)), std::sqrt(29.0) * std::sin(std::asin(sine)));
  EXPECT_DOUBLE_EQ(e.Edge().XY_Distance(TPoint(5, 2)), 2.0);
  EXPECT_DOUBLE_EQ(e.Edge().XY_Distance(TPoint(-5, 2)), 2.0);
  EXPECT_DOUBLE_EQ(e.Edge().XY_Distance(TPoint(-5, -2)), 2.0);
}

TEST(TEdge, DistanceFromTheStartIsZero) {
  Ends e{TPoint(3, 4), TPoint(8, 1)};
  EXPECT_EQ(e.Edge().XY_Distance(TPoint(3, 4)), 0.0);
}

TEST(TEdge, DistanceToAnEdgeOfNoLengthIsShortenedByTheSineOfOne) {
  Ends e{TPoint(1, 1), TPoint(1, 1)};
  EXPECT_EQ(e.Edge().XY_Distance(TPoint(4, 5)), 5.0 * std::fabs(std::sin(-1.0)));
}

TEST(TEdge, DistanceIsThatToTheStartWhereTheAngleIsNotANumber) {
  // The sine between (1, 5) and (-5, 1) rounds to a value past 1.
  Ends e{TPoint(0, 0), TPoint(1, 5)};
  EXPECT_EQ(e.Edge().XY_Distance(TPoint(-5, 1)), std::sqrt(26.0));
}

double DistanceByFormula(TPoint const& a, TPoint const& b, TPoint const& p) {
  double const theta = (b - a).XY_Angle(p - a);
  double const d = std::sqrt((a.x - p.x) * (a.x - p.x) + (a.y - p.y) * (a.y - p.y));
  bool const ahead = theta <= HALF_PI;
  bool const folded = theta >= THREE_HALVES_PI;
  if (!ahead && !folded) return d;
  double const r = d * std::fabs(std::sin(theta));
  double const phi = (a - b).XY_Angle(p - b);
  if (phi > HALF_PI && phi < THREE_HALVES_PI) {
    return std::sqrt((b.x - p.x) * (b.x - p.x) + (b.y - p.y) * (b.y - p.y));
  }
  return r;
}

TEST(TEdge, DistanceFollowsItsFormulaOnRandomPoints) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    Ends e = AnyEnds(in);
    TPoint const p = in.AnyPoint();
    EXPECT_TRUE(SameBits(e.Edge().XY_Distance(p), DistanceByFormula(e.a, e.b, p)));
  }
}

}  // namespace
