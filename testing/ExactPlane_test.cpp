#include "testing/ExactPlane.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "testing/MakeSurvey.h"

namespace {

using qeltin::testing::Dice;
using qeltin::testing::ExactAreas;
using qeltin::testing::InCircle;
using qeltin::testing::TestSeed;
using qeltin::testing::TwiceAreaClockwise;

constexpr double ULP_AT_ONE = 1.0 / 4503599627370496.0;

int Sign(double value) { return value > 0.0 ? 1 : value < 0.0 ? -1 : 0; }

TEST(ExactPlane, AreaIsPositiveForClockwiseCorners) {
  TPoint const a(0, 0);
  TPoint const b(0, 4);
  TPoint const c(6, 0);
  EXPECT_EQ(TwiceAreaClockwise(a, b, c), 24.0);
  EXPECT_EQ(TwiceAreaClockwise(b, a, c), -24.0);
  EXPECT_EQ(TwiceAreaClockwise(a, c, TPoint(3, 0)), 0.0);
}

TEST(ExactPlane, AreaSeesTheLastBit) {
  TPoint const a(1, 1);
  TPoint const b(2, 2);
  EXPECT_EQ(TwiceAreaClockwise(a, b, TPoint(3, 3)), 0.0);
  EXPECT_GT(TwiceAreaClockwise(a, b, TPoint(1 + ULP_AT_ONE, 1)), 0.0);
  EXPECT_LT(TwiceAreaClockwise(a, b, TPoint(1, 1 + ULP_AT_ONE)), 0.0);
  EXPECT_EQ(TwiceAreaClockwise(a, b, TPoint(1 + ULP_AT_ONE, 1)), ULP_AT_ONE);
}

TEST(ExactPlane, AreaOfNumbersTooSmallToMultiply) {
  double const tiny = std::numeric_limits<double>::denorm_min();
  EXPECT_GT(TwiceAreaClockwise(TPoint(0, 0), TPoint(0, tiny), TPoint(tiny, 0)), 0.0);
  EXPECT_EQ(TwiceAreaClockwise(TPoint(0, 0), TPoint(tiny, tiny), TPoint(-tiny, -tiny)), 0.0);
}

TEST(ExactPlane, AreaOfNumbersOfVeryDifferentSize) {
  TPoint const far(1e15, 1e15);
  EXPECT_EQ(Sign(TwiceAreaClockwise(TPoint(0, 0), far, TPoint(1e-15, 1e-15))), 0);
  EXPECT_EQ(Sign(TwiceAreaClockwise(TPoint(0, 0), far, TPoint(1e-15, 1.1e-15))), -1);
}

TEST(ExactPlane, InCircleIsTheAreaTimesThePower) {
  TPoint const a(-5, 0);
  TPoint const b(0, 5);
  TPoint const c(5, 0);
  EXPECT_EQ(InCircle(a, b, c, TPoint(0, 0)), 50.0 * 25.0);
  EXPECT_EQ(InCircle(a, b, c, TPoint(0, -5)), 0.0);
  EXPECT_EQ(InCircle(a, b, c, TPoint(3, -4)), 0.0);
  EXPECT_EQ(InCircle(a, b, c, TPoint(0, -6)), 50.0 * -11.0);
  EXPECT_EQ(InCircle(b, a, c, TPoint(0, 0)), -50.0 * 25.0);
}

TEST(ExactPlane, InCircleSeesTheLastBit) {
  for (double shift : {0.0, 400000.0, 4900000.0}) {
    TPoint const a(shift - 5, shift);
    TPoint const b(shift, shift + 5);
    TPoint const c(shift + 5, shift);
    TPoint const on(shift + 3, shift - 4);
    EXPECT_EQ(InCircle(a, b, c, on), 0.0);
    EXPECT_GT(InCircle(a, b, c, TPoint(std::nextafter(on.x, shift), on.y)), 0.0);
    EXPECT_LT(InCircle(a, b, c, TPoint(std::nextafter(on.x, 1e9), on.y)), 0.0);
  }
}

TEST(ExactPlane, InCircleDoesNotDependOnTheOrderOfTheCorners) {
  Dice dice(TestSeed());
  for (int i = 0; i < 20000; ++i) {
    TPoint p[4];
    for (TPoint& q : p) q = TPoint(4e5 + 0.01 * dice.Below(20), 4.9e6 + 0.01 * dice.Below(20));
    int const sign = Sign(InCircle(p[0], p[1], p[2], p[3]));
    EXPECT_EQ(Sign(InCircle(p[1], p[2], p[0], p[3])), sign);
    EXPECT_EQ(Sign(InCircle(p[1], p[0], p[2], p[3])), -sign);
    EXPECT_EQ(Sign(InCircle(p[0], p[1], p[3], p[2])), -sign);
  }
}

TEST(ExactPlane, AreasAddUpExactly) {
  TPoint const a(0.1, 0.2);
  TPoint const b(0.3, 1e6);
  TPoint const c(4e5 / 3, 0.7);
  TPoint const d(11.1, 12.3);  // anywhere
  std::vector<TPoint const*> const points = {&a, &b, &c, &d};
  ExactAreas const areas(points);
  mpz_class const whole = areas.Twice(0, 1, 2);
  EXPECT_EQ(areas.Twice(0, 1, 3) + areas.Twice(1, 2, 3) + areas.Twice(2, 0, 3), whole);
  EXPECT_EQ(areas.Side(0, 1) + areas.Side(1, 2) + areas.Side(2, 0), whole);
  EXPECT_DOUBLE_EQ(areas.Area(whole), TwiceAreaClockwise(a, b, c) / 2);
}

}  // namespace
