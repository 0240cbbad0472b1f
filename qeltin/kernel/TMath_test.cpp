#include "qeltin/kernel/TMath.h"

#include <gtest/gtest.h>

#include <cmath>

#include "testing/Formula.h"

namespace {

using qeltin::testing::FormulaInputs;
using qeltin::testing::SameBits;

constexpr double HALF_PI = 1.5707963267948966;
constexpr double PI = 3.141592653589793;

TEST(TMath, ConstantsAreSinglePrecisionValues) {
  EXPECT_EQ(TMath::DEG_TO_RAD, 0.01745329238474369);
  EXPECT_EQ(TMath::RAD_TO_DEG, 57.295780181884766);
  EXPECT_EQ(TMath::MILSEC_TO_SEC, 0.0010000000474974513);
  EXPECT_EQ(TMath::DEG_TO_RAD, double{static_cast<float>(PI / 180.0)});
  EXPECT_EQ(TMath::RAD_TO_DEG, double{static_cast<float>(180.0 / PI)});
  EXPECT_EQ(TMath::MILSEC_TO_SEC, double{0.001f});
  EXPECT_NE(TMath::DEG_TO_RAD, PI / 180.0);
}

TEST(TMath, SquareIsTheProductWithItself) {
  EXPECT_EQ(TMath::sqr(-3.0), 9.0);
  EXPECT_EQ(TMath::sqr(0.1), 0.1 * 0.1);
}

TEST(TMath, RestoredAngleTakesItsSizeFromTheSine) {
  EXPECT_EQ(TMath::RestoreAngle(1.0, 0.0), 0.0);
  EXPECT_EQ(TMath::RestoreAngle(0.0, 1.0), HALF_PI);
  EXPECT_EQ(TMath::RestoreAngle(-1.0, 0.0), PI);
  EXPECT_EQ(TMath::RestoreAngle(0.0, -1.0), -HALF_PI);
  EXPECT_EQ(TMath::RestoreAngle(0.3, 0.5), std::asin(0.5));
  EXPECT_EQ(TMath::RestoreAngle(-0.3, 0.5), PI - std::asin(0.5));
}

TEST(TMath, RestoredAngleReachesThreeHalvesPi) {
  EXPECT_EQ(TMath::RestoreAngle(-0.1, -1.0), PI + HALF_PI);
}

TEST(TMath, RestoredAngleFollowsItsFormulaOnRandomValues) {
  FormulaInputs in;
  for (int i = 0; i < 2000; ++i) {
    double const cosine = in.Between(-1.2, 1.2);
    double const sine = in.Between(-1.2, 1.2);
    double const a = std::asin(sine);
    double const expected = std::acos(cosine) <= HALF_PI ? a : PI - a;
    EXPECT_TRUE(SameBits(TMath::RestoreAngle(cosine, sine), expected));
  }
}

}  // namespace
