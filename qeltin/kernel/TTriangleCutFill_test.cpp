#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "qeltin/kernel/TTriangle.h"
#include "testing/Formula.h"
#include "testing/reference/StatedGeometry.h"

namespace {

using qeltin::testing::FormulaInputs;
using qeltin::testing::SameBits;

struct Parts {
  double first = -7.0;
  double second = -7.0;
};

Parts PartsOf(TPoint a, TPoint b, TPoint c) {
  Parts parts;
  TTriangle(&a, &b, &c).CutFill(&parts.first, &parts.second);
  return parts;
}

// Clockwise, with its right angle at corner 0 and 50 in area.
Parts WithHeights(double z1, double z2, double z3) {
  return PartsOf({0, 0, z1}, {0, 10, z2}, {10, 0, z3});
}

void ExpectParts(Parts const& parts, double first, double second) {
  EXPECT_TRUE(SameBits(parts.first, first));
  EXPECT_TRUE(SameBits(parts.second, second));
}

TEST(TTriangleCutFill, OfEqualPositiveHeightsIsHeightTimesArea) {
  ExpectParts(WithHeights(6, 6, 6), 300, 0);
}

TEST(TTriangleCutFill, AtHeight0OnlyIsNothing) { ExpectParts(WithHeights(0, 0, 0), 0, 0); }

TEST(TTriangleCutFill, AtOrAbovePutsAllIntoTheFirst) {
  ExpectParts(WithHeights(0, 2, 4), 6 * 100.0 / 6, 0);
}

TEST(TTriangleCutFill, AtOrBelowPutsAllIntoTheSecondNegative) {
  ExpectParts(WithHeights(-1, -2, 0), 0, -3 * 100.0 / 6);
}

TEST(TTriangleCutFill, CounterClockwiseCornersTurnTheSign) {
  ExpectParts(PartsOf({0, 0, 6}, {10, 0, 6}, {0, 10, 6}), -300, 0);
}

// The pyramid at the lone corner has a quarter of the area and a height of 10.
constexpr double PYRAMID = 25 * 0.5 * 10 / 3;
constexpr double WHOLE = 10 * 100.0 / 6;  // of heights 10, 10, -10; the far part has 5 pyramids

TEST(TTriangleCutFill, FarPartBelowALoneCornerAboveEntersAsPositive) {
  Parts const expected{PYRAMID, PYRAMID + WHOLE};  // truly below: -(PYRAMID + WHOLE)
  ExpectParts(WithHeights(10, -10, -10), expected.first, expected.second);
  ExpectParts(WithHeights(-10, 10, -10), expected.first, expected.second);
  ExpectParts(WithHeights(-10, -10, 10), expected.first, expected.second);
}

TEST(TTriangleCutFill, FarPartAboveALoneCornerBelowEntersAsNegative) {
  Parts const expected{-PYRAMID - WHOLE, -PYRAMID};  // truly above: PYRAMID + WHOLE
  ExpectParts(WithHeights(-10, 10, 10), expected.first, expected.second);
  ExpectParts(WithHeights(10, -10, 10), expected.first, expected.second);
  ExpectParts(WithHeights(10, 10, -10), expected.first, expected.second);
}

// A corner at the plane between two on either side: the plane meets one side only, halfway, and
// each half is a pyramid of 25 * 10 / 3. Which corner counts as the lone one decides the signs.
constexpr double HALF = 50 * 0.5 * 10 / 3;

TEST(TTriangleCutFill, Corner1AtThePlaneMakesCorner3TheLoneOne) {
  ExpectParts(WithHeights(0, 10, -10), -HALF, -HALF);
  ExpectParts(WithHeights(0, -10, 10), HALF, HALF);
}

TEST(TTriangleCutFill, Corner2AtThePlaneMakesCorner3TheLoneOne) {
  ExpectParts(WithHeights(10, 0, -10), -HALF, -HALF);
  ExpectParts(WithHeights(-10, 0, 10), HALF, HALF);
}

TEST(TTriangleCutFill, Corner3AtThePlaneMakesCorner1TheLoneOne) {
  ExpectParts(WithHeights(10, -10, 0), HALF, HALF);
  ExpectParts(WithHeights(-10, 10, 0), -HALF, -HALF);
}

TEST(TTriangleCutFill, OfAHeightWithoutANumberIsNotANumber) {
  Parts const parts = WithHeights(1, 2, std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(std::isnan(parts.first));
  EXPECT_TRUE(std::isnan(parts.second));
}

TEST(TTriangleCutFill, FollowsItsFormulaOnRandomTriangles) {
  FormulaInputs in;
  for (int i = 0; i < 20000; ++i) {
    TPoint corner[3] = {in.AnyPoint(), in.AnyPoint(), in.AnyPoint()};
    for (TPoint& p : corner) {
      if (in.Whole(0, 1) == 0) p.z = in.Whole(0, 1) == 0 ? in.Whole(-1, 1) : in.Between(-9, 9);
    }
    TTriangle const t(&corner[0], &corner[1], &corner[2]);
    Parts parts;
    Parts expected;
    t.CutFill(&parts.first, &parts.second);
    qeltin::testing::stated::CutFill(t, expected.first, expected.second);
    ASSERT_TRUE(SameBits(parts.first, expected.first)) << i;
    ASSERT_TRUE(SameBits(parts.second, expected.second)) << i;
  }
}

}  // namespace
