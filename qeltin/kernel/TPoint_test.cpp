#include "qeltin/kernel/TPoint.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>

#include "testing/Formula.h"

namespace {

using qeltin::testing::FormulaInputs;
using qeltin::testing::SameBits;

constexpr double HALF_PI = 1.5707963267948966;
constexpr double PI = 3.141592653589793;
constexpr double THREE_HALVES_PI = 4.71238898038469;
constexpr double TWO_PI = 6.283185307179586;
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr int ROUNDS = 2000;

// --- The record
// -----------------------------------------------------------------------------------

TEST(TPoint, IsThreeDoublesInOrder) {
  EXPECT_EQ(sizeof(TPoint), 24u);
  EXPECT_EQ(offsetof(TPoint, x), 0u);
  EXPECT_EQ(offsetof(TPoint, y), 8u);
  EXPECT_EQ(offsetof(TPoint, z), 16u);
  EXPECT_TRUE(std::is_trivially_copyable_v<TPoint>);
  EXPECT_FALSE(std::is_polymorphic_v<TPoint>);
}

TEST(TPoint, CoordinatesDefaultToZero) {
  EXPECT_EQ(TPoint(), TPoint(0, 0, 0));
  EXPECT_EQ(TPoint(4), TPoint(4, 0, 0));
  EXPECT_EQ(TPoint(4, 5), TPoint(4, 5, 0));
}

TEST(TPoint, IsBuiltFromTheBoundaryRecordByFieldCopy) {
  IPoint record;
  record.x = 1.5;
  record.y = -2.5;
  record.z = 3.5;
  TPoint const p = record;
  EXPECT_EQ(p.x, 1.5);
  EXPECT_EQ(p.y, -2.5);
  EXPECT_EQ(p.z, 3.5);
  EXPECT_EQ(sizeof(IPoint), 24u);
}

TEST(TPoint, OffersHostsACoincidenceTolerance) { EXPECT_EQ(TPoint::TOLERANCE, 1e-09); }

// --- Min and Max
// ----------------------------------------------------------------------------------

TEST(TPoint, MinWritesTheHeightOfAOverXWhereBIsHigher) {
  EXPECT_EQ(TPoint::Min(TPoint(1, 2, 5), TPoint(3, 1, 9)), TPoint(5, 1, 0));
}

TEST(TPoint, MinTakesTheHeightOfBWhereBIsNotHigher) {
  EXPECT_EQ(TPoint::Min(TPoint(1, 2, 9), TPoint(3, 1, 5)), TPoint(1, 1, 5));
  EXPECT_EQ(TPoint::Min(TPoint(3, 1, 5), TPoint(1, 2, 5)), TPoint(1, 1, 5));
}

TEST(TPoint, MaxWritesTheHeightOfAOverXWhereAIsHigher) {
  EXPECT_EQ(TPoint::Max(TPoint(1, 2, 9), TPoint(3, 1, 5)), TPoint(9, 2, 0));
}

TEST(TPoint, MaxTakesTheHeightOfBWhereAIsNotHigher) {
  EXPECT_EQ(TPoint::Max(TPoint(1, 2, 5), TPoint(3, 1, 9)), TPoint(3, 2, 9));
  EXPECT_EQ(TPoint::Max(TPoint(3, 1, 5), TPoint(1, 2, 5)), TPoint(3, 2, 5));
}

TEST(TPoint, MinAndMaxFollowTheirRuleOnRandomPoints) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    TPoint const a = in.AnyPoint();
    TPoint const b = in.AnyPoint();
    TPoint min(std::fmin(a.x, b.x), std::fmin(a.y, b.y), 0.0);
    if (b.z > a.z) {
      min.x = a.z;
    } else {
      min.z = b.z;
    }
    TPoint max(std::fmax(a.x, b.x), std::fmax(a.y, b.y), 0.0);
    if (a.z > b.z) {
      max.x = a.z;
    } else {
      max.z = b.z;
    }
    EXPECT_EQ(TPoint::Min(a, b), min);
    EXPECT_EQ(TPoint::Max(a, b), max);
  }
}

// --- Comparison
// -----------------------------------------------------------------------------------

TEST(TPoint, EqualityIsExactOnAllThreeCoordinates) {
  TPoint const p(1, 2, 3);
  double const above = std::nextafter(1.0, 2.0);
  EXPECT_TRUE(p == TPoint(1, 2, 3));
  EXPECT_FALSE(p != TPoint(1, 2, 3));
  EXPECT_TRUE(p != TPoint(above, 2, 3));
  EXPECT_TRUE(p != TPoint(1, std::nextafter(2.0, 3.0), 3));
  EXPECT_TRUE(p != TPoint(1, 2, std::nextafter(3.0, 4.0)));
  EXPECT_FALSE(TPoint(NOT_A_NUMBER) == TPoint(NOT_A_NUMBER));
}

TEST(TPoint, PlanEqualityIgnoresTheHeight) {
  EXPECT_TRUE(TPoint(1, 2, 3).XY_EqualsTo(TPoint(1, 2, 99)));
  EXPECT_FALSE(TPoint(1, 2, 3).XY_EqualsTo(TPoint(std::nextafter(1.0, 2.0), 2, 3)));
  EXPECT_FALSE(TPoint(1, 2, 3).XY_EqualsTo(TPoint(1, std::nextafter(2.0, 3.0), 3)));
}

TEST(TPoint, LessIsLexicographic) {
  EXPECT_TRUE(TPoint(1, 9, 9) < TPoint(2, 0, 0));
  EXPECT_TRUE(TPoint(1, 2, 9) < TPoint(1, 3, 0));
  EXPECT_TRUE(TPoint(1, 2, 3) < TPoint(1, 2, 4));
  EXPECT_FALSE(TPoint(1, 2, 3) < TPoint(1, 2, 3));
  EXPECT_FALSE(TPoint(1, 3, 0) < TPoint(1, 2, 9));
  EXPECT_TRUE(TPoint(2, 0, 0) > TPoint(1, 9, 9));
  EXPECT_TRUE(TPoint(1, 3, 0) > TPoint(1, 2, 9));
  EXPECT_TRUE(TPoint(1, 2, 4) > TPoint(1, 2, 3));
  EXPECT_FALSE(TPoint(1, 2, 3) > TPoint(1, 2, 3));
}

TEST(TPoint, LessOrEqualLooksAtXAlone) {
  EXPECT_TRUE(TPoint(1, 5, 0) <= TPoint(1, 2, 0));
  EXPECT_FALSE(TPoint(1, 5, 0) < TPoint(1, 2, 0));
  EXPECT_TRUE(TPoint(1, 5, 9) <= TPoint(1, 5, 0));
  EXPECT_TRUE(TPoint(0, 5, 9) <= TPoint(1, 2, 0));
  EXPECT_FALSE(TPoint(2, 0, 0) <= TPoint(1, 2, 3));
}

TEST(TPoint, GreaterOrEqualLooksAtXAlone) {
  EXPECT_TRUE(TPoint(1, 2, 0) >= TPoint(1, 5, 0));
  EXPECT_FALSE(TPoint(1, 2, 0) > TPoint(1, 5, 0));
  EXPECT_TRUE(TPoint(1, 5, 0) >= TPoint(1, 5, 9));
  EXPECT_TRUE(TPoint(2, 0, 0) >= TPoint(1, 2, 3));
  EXPECT_FALSE(TPoint(0, 5, 9) >= TPoint(1, 2, 0));
}

TEST(TPoint, LessOrEqualReachesYAndZOnlyPastNotANumber) {
  double const n = NOT_A_NUMBER;
  EXPECT_TRUE(TPoint(n, 1, 9) <= TPoint(0, 2, 0));
  EXPECT_FALSE(TPoint(0, 2, 0) <= TPoint(n, 1, 9));
  EXPECT_TRUE(TPoint(n, n, 1) <= TPoint(n, n, 1));
  EXPECT_FALSE(TPoint(n, n, 2) <= TPoint(n, n, 1));
  EXPECT_TRUE(TPoint(n, 2, 0) >= TPoint(0, 1, 9));
  EXPECT_FALSE(TPoint(n, n, 1) >= TPoint(n, n, 2));
}

// --- Arithmetic
// -----------------------------------------------------------------------------------

TEST(TPoint, ArithmeticWorksOnAllThreeCoordinates) {
  TPoint const a(1, 2, 3);
  TPoint const b(10, 20, 40);
  EXPECT_EQ(a + b, TPoint(11, 22, 43));
  EXPECT_EQ(a - b, TPoint(-9, -18, -37));
  EXPECT_EQ(a * 2.0, TPoint(2, 4, 6));
  EXPECT_EQ(b / 4.0, TPoint(2.5, 5, 10));
}

TEST(TPoint, DivisionRoundsOnceACoordinate) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    TPoint const p = in.Point();
    double const d = in.Between(0.1, 10.0);
    EXPECT_TRUE(SameBits(p / d, TPoint(p.x / d, p.y / d, p.z / d)));
  }
}

TEST(TPoint, DivisionByZeroLeavesThePoint) {
  EXPECT_EQ(TPoint(1, -2, 3) / 0.0, TPoint(1, -2, 3));
  EXPECT_EQ(TPoint(1, -2, 3) / -0.0, TPoint(1, -2, 3));
}

TEST(TPoint, PlanLengthDistanceAndProductIgnoreTheHeight) {
  TPoint const a(3, 4, 100);
  EXPECT_EQ(a.XY_Length(), 5.0);
  EXPECT_EQ(a.XY_Distance(TPoint(0, 8, -100), false), 5.0);
  EXPECT_EQ(a.XY_Distance(TPoint(0, 8, -100), true), 25.0);
  EXPECT_EQ(a.XY_DotProduct(TPoint(2, 5, 7)), 26.0);
}

TEST(TPoint, PlanMeasuresFollowTheirFormulasOnRandomPoints) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    TPoint const a = in.AnyPoint();
    TPoint const b = in.AnyPoint();
    double const squared = (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
    EXPECT_TRUE(SameBits(a.XY_Length(), std::sqrt(a.x * a.x + a.y * a.y)));
    EXPECT_TRUE(SameBits(a.XY_Distance(b, true), squared));
    EXPECT_TRUE(SameBits(a.XY_Distance(b, false), std::sqrt(squared)));
    EXPECT_TRUE(SameBits(a.XY_DotProduct(b), a.x * b.x + a.y * b.y));
  }
}

// --- Directions
// -----------------------------------------------------------------------------------

TEST(TPoint, DirectionOfTheNullVectorIsMinusOne) {
  EXPECT_EQ(TPoint(0, 0, 0).XY_Angle(), -1.0);
  EXPECT_EQ(TPoint(0, 0, 7).XY_Angle(), -1.0);
  EXPECT_EQ(TPoint(-0.0, -0.0, 7).XY_Angle(), -1.0);
}

TEST(TPoint, DirectionsAlongTheAxesAreExact) {
  EXPECT_EQ(TPoint(2, 0).XY_Angle(), 0.0);
  EXPECT_EQ(TPoint(0, 2).XY_Angle(), HALF_PI);
  EXPECT_EQ(TPoint(-2, 0).XY_Angle(), PI);
  EXPECT_EQ(TPoint(0, -2).XY_Angle(), THREE_HALVES_PI);
}

TEST(TPoint, DirectionRunsCounterClockwiseThroughTheQuadrants) {
  EXPECT_EQ(TPoint(1, 2).XY_Angle(), std::atan(2.0));
  EXPECT_EQ(TPoint(-1, 2).XY_Angle(), std::atan(-2.0) + PI);
  EXPECT_EQ(TPoint(-1, -2).XY_Angle(), std::atan(2.0) + PI);
  EXPECT_EQ(TPoint(1, -2).XY_Angle(), std::atan(-2.0) + TWO_PI);
}

TEST(TPoint, DirectionJustBelowTheXAxisRoundsToAWholeTurn) {
  EXPECT_EQ(TPoint(1, -1e-20).XY_Angle(), TWO_PI);
  EXPECT_EQ(TPoint(0, 0).PolarDir(TPoint(1, -1e-20)), TWO_PI);
  EXPECT_EQ(TPoint(1, 0).XY_Angle(TPoint(1, -1e-20)), TWO_PI);
}

double DirectionByFormula(TPoint const& v) {
  if (v.x == 0 && v.y == 0) return -1.0;
  if (v.x == 0) return v.y > 0 ? HALF_PI : THREE_HALVES_PI;
  if (v.y == 0) return v.x > 0 ? 0 : PI;
  double const a = std::atan(v.y / v.x);
  if (v.x > 0) {
    if (v.y > 0) return a;
    return a + TWO_PI;
  }
  return a + PI;
}

TEST(TPoint, DirectionFollowsItsFormulaOnRandomVectors) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    TPoint const v = in.AnyPoint();
    EXPECT_TRUE(SameBits(v.XY_Angle(), DirectionByFormula(v)));
  }
}

TEST(TPoint, DirectionToItselfIsThreeHalvesPi) {
  EXPECT_EQ(TPoint(3, 4, 5).PolarDir(TPoint(3, 4, 5)), THREE_HALVES_PI);
  EXPECT_EQ(TPoint(3, 4, 5).PolarDir(TPoint(3, 4, 9)), THREE_HALVES_PI);
}

TEST(TPoint, DirectionToAnotherPointRunsThroughTheQuadrants) {
  TPoint const p(10, 10);
  EXPECT_EQ(p.PolarDir(TPoint(12, 10)), 0.0);
  EXPECT_EQ(p.PolarDir(TPoint(10, 12)), HALF_PI);
  EXPECT_EQ(p.PolarDir(TPoint(8, 10)), PI);
  EXPECT_EQ(p.PolarDir(TPoint(10, 8)), THREE_HALVES_PI);
  EXPECT_EQ(p.PolarDir(TPoint(11, 12)), std::atan(2.0));
  EXPECT_EQ(p.PolarDir(TPoint(9, 12)), std::atan(-2.0) + PI);
  EXPECT_EQ(p.PolarDir(TPoint(9, 8)), std::atan(2.0) + PI);
  EXPECT_EQ(p.PolarDir(TPoint(11, 8)), std::atan(-2.0) + TWO_PI);
}

double PolarDirByFormula(TPoint const& from, TPoint const& to) {
  if (to.x == from.x) {
    if (to.y > from.y) return HALF_PI;
    return THREE_HALVES_PI;
  }
  if (to.y == from.y) {
    if (to.x > from.x) return 0;
    return PI;
  }
  double const a = std::atan((to.y - from.y) / (to.x - from.x));
  if (from.y > to.y && to.x > from.x) return a + TWO_PI;
  if (from.x > to.x) return a + PI;
  return a;
}

TEST(TPoint, DirectionToAnotherPointFollowsItsFormulaOnRandomPoints) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    TPoint const p = in.AnyPoint();
    TPoint const q = in.AnyPoint();
    EXPECT_TRUE(SameBits(p.PolarDir(q), PolarDirByFormula(p, q)));
  }
}

TEST(TPoint, AngleBetweenVectorsFoldsAnObtuseTurnOntoTheAcuteOne) {
  EXPECT_EQ(TPoint(1, 0).XY_Angle(TPoint(-1, 1)), std::asin(1.0 / std::sqrt(2.0)));
  EXPECT_EQ(TPoint(1, 0).XY_Angle(TPoint(-1, 1)), TPoint(1, 0).XY_Angle(TPoint(1, 1)));
  EXPECT_EQ(TPoint(1, 0).XY_Angle(TPoint(-1, 0)), 0.0);
}

TEST(TPoint, AngleBetweenVectorsFoldsAClockwiseTurnBelowTwoPi) {
  double const expected = std::asin(-1.0 / std::sqrt(2.0)) + TWO_PI;
  EXPECT_EQ(TPoint(1, 0).XY_Angle(TPoint(1, -1)), expected);
  EXPECT_EQ(TPoint(1, 0).XY_Angle(TPoint(-1, -1)), expected);
  EXPECT_EQ(TPoint(1, 0).XY_Angle(TPoint(0, -1)), -HALF_PI + TWO_PI);
}

TEST(TPoint, AngleWithANullVectorIsMinusOne) {
  EXPECT_EQ(TPoint(1, 0).XY_Angle(TPoint(0, 0, 9)), -1.0);
  EXPECT_EQ(TPoint(0, 0, 9).XY_Angle(TPoint(1, 0)), -1.0);
}

TEST(TPoint, AngleIsNotANumberWhereRoundingTakesTheSinePastOne) {
  EXPECT_TRUE(std::isnan(TPoint(1, 5).XY_Angle(TPoint(-5, 1))));
  EXPECT_TRUE(std::isnan(TPoint(-5, 1).XY_Angle(TPoint(1, 5))));
}

TEST(TPoint, AngleBetweenVectorsFollowsItsFormulaOnRandomVectors) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    TPoint const v = in.AnyPoint();
    TPoint const o = in.AnyPoint();
    double const l1 = v.XY_Length();
    double const l2 = o.XY_Length();
    double expected = -1.0;
    if (l1 != 0 && l2 != 0) {
      double const s = (o.y * v.x - o.x * v.y) / (l2 * l1);
      double const a = std::asin(s);
      expected = a < 0 ? a + TWO_PI : a;
    }
    EXPECT_TRUE(SameBits(v.XY_Angle(o), expected));
  }
}

// --- Rotation
// -------------------------------------------------------------------------------------

TPoint Rotated(TPoint p, double angle, TPoint const& axis, TPoint const& origin) {
  p.Rotate(angle, axis, origin);
  return p;
}

TEST(TPoint, RotateByWholeTurnsLeavesThePoint) {
  TPoint const p(1, 2, 3);
  for (double const turns : {0.0, 1.0, -1.0, 2.0, 4.0}) {
    EXPECT_EQ(Rotated(p, turns * TWO_PI, TPoint(1, 1, 1), TPoint(5, 5, 5)), p);
  }
}

TEST(TPoint, RotateAboutAnAxisOfNoLengthLeavesThePoint) {
  TPoint const p(1, 2, 3);
  EXPECT_EQ(Rotated(p, 1.0, TPoint(0, 0, 0), TPoint(5, 5, 5)), p);
}

TEST(TPoint, RotateByHalfATurnIsExact) {
  EXPECT_EQ(Rotated(TPoint(1, 2, 3), PI, TPoint(0, 0, 2), TPoint()), TPoint(-1, -2, 3));
  EXPECT_EQ(Rotated(TPoint(1, 2, 3), -3 * PI, TPoint(0, 0, 2), TPoint()), TPoint(-1, -2, 3));
}

TEST(TPoint, RotateOnTheAxisLeavesThePoint) {
  TPoint const p(0, 0, 3);
  EXPECT_EQ(Rotated(p, 1.0, TPoint(0, 0, 2), TPoint()), p);
}

TEST(TPoint, RotateProjectsThePointItselfAndNotItsOffsetFromTheOrigin) {
  // Half a turn about a vertical axis takes z from 1 to 21. The part along the axis, 1, is kept;
  // the other -10 of the offset from the origin are turned as if they were across the axis.
  EXPECT_EQ(Rotated(TPoint(1, 2, 1), PI, TPoint(0, 0, 1), TPoint(0, 0, 10)), TPoint(-1, -2, 21));
}

TPoint RotatedByFormula(TPoint const& v, double angle, TPoint const& k, TPoint const& o) {
  double const n = k.x * k.x + k.y * k.y + k.z * k.z;
  if (std::fmod(angle, TWO_PI) == 0 || n == 0) return v;
  double const t = (v.x * k.x + v.y * k.y + v.z * k.z) / n;
  double const px = k.x * t;
  double const py = k.y * t;
  double const pz = k.z * t;
  double const wx = v.x - o.x - px;
  double const wy = v.y - o.y - py;
  double const wz = v.z - o.z - pz;
  if (std::fmod(angle, PI) == 0) return {px - wx + o.x, py - wy + o.y, pz - wz + o.z};
  double const m = wx * wx + wy * wy + wz * wz;
  if (m == 0) return v;
  double const c = std::cos(angle) * m;
  double const s = std::sin(angle) * m / std::sqrt(n);
  return {(s * k.y * wz - s * k.z * wy + c * wx) / m + px + o.x,
          (s * k.z * wx - s * k.x * wz + c * wy) / m + py + o.y,
          (s * k.x * wy - s * k.y * wx + c * wz) / m + pz + o.z};
}

TEST(TPoint, RotateFollowsItsFormulaOnRandomPoints) {
  FormulaInputs in;
  for (int i = 0; i < ROUNDS; ++i) {
    TPoint const p = in.AnyPoint();
    TPoint const axis = in.AnyPoint();
    TPoint const origin = in.AnyPoint();
    double const angle = i % 4 == 0 ? in.Whole(-4, 4) * HALF_PI : in.Between(-10.0, 10.0);
    EXPECT_TRUE(
        SameBits(Rotated(p, angle, axis, origin), RotatedByFormula(p, angle, axis, origin)));
  }
}

TEST(TPoint, RotateMayTakeThePointItselfAsAxisOrOrigin) {
  TPoint p(1, 2, 3);
  p.Rotate(1.0, TPoint(0, 0, 1), p);
  EXPECT_TRUE(
      SameBits(p, RotatedByFormula(TPoint(1, 2, 3), 1.0, TPoint(0, 0, 1), TPoint(1, 2, 3))));
}

}  // namespace
