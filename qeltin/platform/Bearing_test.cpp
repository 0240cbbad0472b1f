#include "qeltin/platform/Bearing.h"

#include <gtest/gtest.h>

#include <cmath>

#include "qeltin/platform/Math.h"
#include "testing/MakeSurvey.h"

namespace {

TEST(Bearing, GrowsClockwiseFromNorth) {
  EXPECT_EQ(Bearing(0, 5), 0.0);
  EXPECT_EQ(Bearing(5, 5), 45.0);
  EXPECT_EQ(Bearing(5, 0), 90.0);
  EXPECT_EQ(Bearing(0, -5), 180.0);
  EXPECT_EQ(Bearing(-5, 0), 270.0);
  EXPECT_EQ(Bearing(-5, 5), 315.0);
}

TEST(Bearing, OfNoVectorIsNorth) {
  EXPECT_EQ(Bearing(0, 0), 0.0);
  EXPECT_EQ(Bearing(-0.0, -0.0), 0.0);
}

TEST(Bearing, AHairWestOfNorthRoundsToAWholeTurn) { EXPECT_EQ(Bearing(-1e-20, 1), 360.0); }

TEST(TurnDirection, IsMinusOneToTheRightAndOneToTheLeft) {
  EXPECT_EQ(TurnDirection(0, 90), -1);
  EXPECT_EQ(TurnDirection(90, 0), 1);
  EXPECT_EQ(TurnDirection(90, 180), -1);
  EXPECT_EQ(TurnDirection(180, 270), -1);
  EXPECT_EQ(TurnDirection(270, 180), 1);
  EXPECT_EQ(TurnDirection(350, 10), -1);
  EXPECT_EQ(TurnDirection(10, 350), 1);
  EXPECT_EQ(TurnDirection(270, 0), -1);
  EXPECT_EQ(TurnDirection(0, 270), 1);
}

TEST(TurnDirection, OfNoTurnAndOfATurnAboutIsOne) {
  for (double const bearing : {0.0, 45.0, 180.0, 270.0, 359.0}) {
    EXPECT_EQ(TurnDirection(bearing, bearing), 1);
  }
  EXPECT_EQ(TurnDirection(270, 90), 1);
  EXPECT_EQ(TurnDirection(180, 0), 1);
}

TEST(TurnDirection, OfATurnAboutFromNorthOrEastIsMinusOneWhereTheBearingsRiseAsHalvedOnes) {
  EXPECT_EQ(TurnDirection(0, 180), -1);
  EXPECT_EQ(TurnDirection(45, 225), 1);
}

TEST(TurnDirection, AgreesWithTheSideOfTheSecondLeg) {
  qeltin::testing::Dice dice(qeltin::testing::TestSeed());
  for (int i = 0; i < 10000; ++i) {
    double const from = dice.Between(0, 359.999);
    double const to = dice.Between(0, 359.999);
    double const side = std::sin((to - from) * D_TO_R);
    if (std::fabs(side) < 1e-9) continue;
    ASSERT_EQ(TurnDirection(from, to), side > 0 ? -1 : 1) << from << " to " << to;
  }
}

}  // namespace
