#include "qeltin/platform/CenterLine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

#include "qeltin/platform/Bearing.h"
#include "qeltin/platform/Math.h"

namespace {

CenterLinePoint Vertex(double x, double y) {
  return {Point(x, y, 0), 0, 0, POINT_STRAIGHT, 0, 0, L""};
}

CenterLinePoint Center(double x, double y, double radius) {
  return {Point(x, y, 0), 0, 0, POINT_ARC_CENTER, radius, 0, L""};
}

CenterLine LineOf(std::initializer_list<CenterLinePoint> points) {
  CenterLine line;
  for (CenterLinePoint const& point : points) line.AddElem(point);
  return line;
}

TEST(CenterLinePoint, ReadsBackWhatItWasGiven) {
  CenterLinePoint const point({1, 2, 3}, 10, 20, POINT_ARC_CENTER, -30, 40, L"name");
  EXPECT_EQ(point.GetPosition(), Point(1, 2, 3));
  EXPECT_EQ(point.GetKP(), 0.0);
  EXPECT_EQ(point.GetStartAngle(), 10.0);
  EXPECT_EQ(point.GetEndAngle(), 20.0);
  EXPECT_EQ(point.GetPointType(), POINT_ARC_CENTER);
  EXPECT_EQ(point.GetRadius(), -30.0);
  EXPECT_EQ(point.GetCode(), 40);
  EXPECT_EQ(point.GetName(), L"name");
}

TEST(CenterLinePoint, TypesAreTheNumbersThatHostsStore) {
  EXPECT_EQ(static_cast<int>(POINT_STRAIGHT), 1);
  EXPECT_EQ(static_cast<int>(POINT_ARC_CENTER), 2);
}

TEST(CenterLine, KeepsPointsInOrder) {
  CenterLine line = LineOf({Vertex(1, 1), Vertex(2, 2)});
  line.InsertElem(0, Vertex(0, 0));
  line.InsertElem(2, Vertex(1.5, 1.5));
  line.InsertElem(99, Vertex(3, 3));
  line.InsertElem(-99, Vertex(-1, -1));
  double const expected[] = {-1, 0, 1, 1.5, 2, 3};
  ASSERT_EQ(line.GetNumPoints(), 6);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(line.GetPoint(i).GetPosition().x, expected[i]);
  line.Clear();
  EXPECT_EQ(line.GetNumPoints(), 0);
}

TEST(CenterLine, APointOutOfRangeIsAVertexAtTheOrigin) {
  CenterLine const line = LineOf({Vertex(1, 1)});
  for (int const index : {1, -1, std::numeric_limits<int>::max()}) {
    EXPECT_EQ(line.GetPoint(index).GetPosition(), Point(0, 0, 0));
    EXPECT_EQ(line.GetPoint(index).GetPointType(), POINT_STRAIGHT);
    EXPECT_EQ(line.GetPoint(index).GetRadius(), 0.0);
  }
}

TEST(CenterLine, TheFlagIsTheHosts) {
  CenterLine line;
  EXPECT_FALSE(line.HaveCenterLine());
  line.SetHaveCenterLine(true);
  line.Clear();
  EXPECT_TRUE(line.HaveCenterLine());
  line.SetHaveCenterLine(false);
  EXPECT_FALSE(line.HaveCenterLine());
}

// --- KPs and angles -----------------------------------------------------------------------------

TEST(CenterLineInit, KpsRiseFromTheStartAlongTheLine) {
  CenterLine line = LineOf({Vertex(0, 0), Vertex(3, 4), Vertex(3, 10)});
  line.SetStartKp(100);
  line.Init(0.0, false);
  EXPECT_EQ(line.GetPoint(0).GetKP(), 100);
  EXPECT_EQ(line.GetPoint(1).GetKP(), 105);
  EXPECT_EQ(line.GetPoint(2).GetKP(), 111);
}

TEST(CenterLineInit, KpsCanFallInstead) {
  CenterLine line = LineOf({Vertex(0, 0), Vertex(3, 4), Vertex(3, 10)});
  line.SetStartKp(100);
  line.Init(0.0, true);
  EXPECT_EQ(line.GetPoint(0).GetKP(), 100);
  EXPECT_EQ(line.GetPoint(1).GetKP(), 95);
  EXPECT_EQ(line.GetPoint(2).GetKP(), 89);
}

TEST(CenterLineInit, KpsRunAlongArcsAndACentreHasThatOfItsStart) {
  CenterLine line = LineOf({Vertex(0, 0), Vertex(0, 80), Center(20, 80, 20), Vertex(20, 100)});
  line.Init(0.0, false);
  EXPECT_EQ(line.GetPoint(2).GetKP(), 80);
  EXPECT_EQ(line.GetPoint(3).GetKP(), 80 + 20 * 90 * D_TO_R);
}

TEST(CenterLineInit, AnglesRunClockwiseOverTheArcThatIsMeant) {
  CenterLine right = LineOf({Vertex(0, 80), Center(20, 80, 20), Vertex(20, 100)});
  right.Init(0.0, false);
  EXPECT_EQ(right.GetPoint(1).GetStartAngle(), 270);
  EXPECT_EQ(right.GetPoint(1).GetEndAngle(), 0);
  CenterLine left = LineOf({Vertex(20, 100), Center(20, 80, 20), Vertex(0, 80)});
  left.Init(0.0, false);
  EXPECT_EQ(left.GetPoint(1).GetStartAngle(), 270);
  EXPECT_EQ(left.GetPoint(1).GetEndAngle(), 0);
  EXPECT_EQ(left.GetPoint(1).GetRadius(), 20);
}

TEST(CenterLineInit, WithANegativeRadiusAnglesAreThoseOfTheWay) {
  CenterLine line = LineOf({Vertex(20, 100), Center(20, 80, -20), Vertex(0, 80)});
  line.Init(0.0, false);
  EXPECT_EQ(line.GetPoint(1).GetStartAngle(), 0);
  EXPECT_EQ(line.GetPoint(1).GetEndAngle(), 270);
  EXPECT_EQ(line.GetPoint(2).GetKP(), 20 * 90 * D_TO_R);
}

TEST(CenterLineInit, ANegativeRadiusTurnsToTheLeftHoweverFar) {
  CenterLine line = LineOf({Vertex(0, 80), Center(20, 80, -20), Vertex(20, 100)});
  line.Init(0.0, false);
  EXPECT_EQ(line.GetPoint(1).GetStartAngle(), 270);
  EXPECT_EQ(line.GetPoint(1).GetEndAngle(), 0);
  EXPECT_EQ(line.GetPoint(2).GetKP(), 20 * 270 * D_TO_R);
}

TEST(CenterLineInit, AnArcBetweenVerticesInOnePlaceHasNoLength) {
  for (double const radius : {20.0, -20.0}) {
    CenterLine line = LineOf({Vertex(0, 80), Center(20, 80, radius), Vertex(0, 80 - 1e-9)});
    line.Init(0.0, false);
    EXPECT_EQ(line.GetPoint(1).GetStartAngle(), line.GetPoint(1).GetEndAngle());
    EXPECT_EQ(line.GetPoint(2).GetKP(), 0.0);
  }
}

// Half circles from (0, 0) to (20, 0), between legs to the north and to the south, and the other
// way round. Rounding must not choose.
TEST(CenterLineInit, AHalfCircleTurnsToTheSideOfItsCentre) {
  for (double const noise : {0.0, 1e-3, -1e-3}) {
    CenterLine right = LineOf({Vertex(0, -50), Vertex(0, 0), Center(10, noise, 10), Vertex(20, 0)});
    right.Init(0.0, false);
    EXPECT_NEAR(right.GetPoint(2).GetStartAngle(), 270, 0.01) << noise;
    EXPECT_NEAR(right.GetPoint(2).GetEndAngle(), 90, 0.01) << noise;
    CenterLine left = LineOf({Vertex(0, 50), Vertex(0, 0), Center(10, noise, 10), Vertex(20, 0)});
    left.Init(0.0, false);
    EXPECT_NEAR(left.GetPoint(2).GetStartAngle(), 90, 0.01) << noise;
    EXPECT_NEAR(left.GetPoint(2).GetEndAngle(), 270, 0.01) << noise;
  }
}

TEST(CenterLineInit, AHalfCircleAtTheStartGoesByTheLegBehindIt) {
  CenterLine right = LineOf({Vertex(0, 0), Center(10, 0, 10), Vertex(20, 0), Vertex(20, -50)});
  right.Init(0.0, false);
  EXPECT_EQ(right.GetPoint(1).GetStartAngle(), 270);
  CenterLine left = LineOf({Vertex(0, 0), Center(10, 0, 10), Vertex(20, 0), Vertex(20, 50)});
  left.Init(0.0, false);
  EXPECT_EQ(left.GetPoint(1).GetStartAngle(), 90);
  CenterLine alone = LineOf({Vertex(0, 0), Center(10, 0, 10), Vertex(20, 0)});
  alone.Init(0.0, false);
  EXPECT_EQ(alone.GetPoint(1).GetStartAngle(), 270);
}

TEST(CenterLineInit, AHalfCircleBehindAnArcGoesOnAsThatArcEnds) {
  CenterLine line = LineOf({Vertex(0, -50), Vertex(0, 0), Center(10, 0, 10), Vertex(20, 0),
                            Center(30, 0, 10), Vertex(40, 0)});
  line.Init(0.0, false);
  EXPECT_EQ(line.GetPoint(2).GetStartAngle(), 270);
  EXPECT_EQ(line.GetPoint(4).GetStartAngle(), 90);
}

TEST(CenterLineInit, ACentreWithoutTwoVerticesStandsForNothing) {
  CenterLinePoint const center({5, 5, 0}, 11, 22, POINT_ARC_CENTER, 5, 0, L"");
  CenterLine line = LineOf({center, Vertex(0, 0), center, center, Vertex(0, 10), center});
  line.Init(0.0, false);
  EXPECT_EQ(line.GetPoint(2).GetStartAngle(), 11);
  EXPECT_EQ(line.GetPoint(5).GetEndAngle(), 22);
  EXPECT_EQ(line.GetPoint(5).GetKP(), 0.0);
  double offset = 0.0;
  double travel = 0.0;
  EXPECT_FALSE(line.GetOffsetAndTravel({0, 5, 0}, offset, travel));
}

// --- Projection ---------------------------------------------------------------------------------

struct Projection {
  bool beside = false;
  double offset = 77.0;
  double travel = 77.0;
};

Projection Project(CenterLine const& line, double x, double y) {
  Projection p;
  p.beside = line.GetOffsetAndTravel({x, y, 123}, p.offset, p.travel);
  return p;
}

void ExpectBeside(CenterLine const& line, double x, double y, double offset, double travel) {
  SCOPED_TRACE(::testing::Message() << "at " << x << ", " << y);
  Projection const p = Project(line, x, y);
  EXPECT_TRUE(p.beside);
  EXPECT_NEAR(p.offset, offset, 1e-12);
  EXPECT_NEAR(p.travel, travel, 1e-12);
}

void ExpectOff(CenterLine const& line, double x, double y, double offset, double travel) {
  SCOPED_TRACE(::testing::Message() << "at " << x << ", " << y);
  Projection const p = Project(line, x, y);
  EXPECT_FALSE(p.beside);
  EXPECT_NEAR(p.offset, offset, 1e-12);
  EXPECT_NEAR(p.travel, travel, 1e-12);
}

CenterLine Prepared(std::initializer_list<CenterLinePoint> points) {
  CenterLine line = LineOf(points);
  line.Init(0.0, false);
  return line;
}

TEST(CenterLineProjection, IsPositiveToTheRightOfAStraightLine) {
  CenterLine const line = Prepared({Vertex(0, 0), Vertex(0, 100)});
  ExpectBeside(line, 7, 30, 7, 30);
  ExpectBeside(line, -7, 30, -7, 30);
  ExpectBeside(line, 0, 30, 0, 30);
  CenterLine const skew = Prepared({Vertex(10, 10), Vertex(40, 50)});
  ExpectBeside(skew, 10 + 0.6 * 20 + 0.8 * 5, 10 + 0.8 * 20 - 0.6 * 5, 5, 20);
}

TEST(CenterLineProjection, TravelIsFromTheFirstPointWhateverTheKp) {
  CenterLine line = LineOf({Vertex(0, 0), Vertex(0, 100)});
  line.SetStartKp(5000);
  line.Init(0.0, true);
  ExpectBeside(line, 7, 30, 7, 30);
}

TEST(CenterLineProjection, TakesBothEnds) {
  CenterLine const line = Prepared({Vertex(0, 0), Vertex(0, 100)});
  ExpectBeside(line, 0, 0, 0, 0);
  ExpectBeside(line, 9, 0, 9, 0);
  ExpectBeside(line, 0, 100, 0, 100);
  ExpectBeside(line, -9, 100, -9, 100);
}

TEST(CenterLineProjection, OffAnEndIsFalseAndRefersToTheLineDrawnOut) {
  CenterLine const line = Prepared({Vertex(0, 0), Vertex(0, 100)});
  ExpectOff(line, 0, -1, 0, -1);
  ExpectOff(line, 4, -30, 4, -30);
  ExpectOff(line, -4, 130, -4, 130);
}

TEST(CenterLineProjection, WithinToleranceOfAnEndIsTheEnd) {
  CenterLine const line = Prepared({Vertex(0, 0), Vertex(0, 100)});
  ExpectBeside(line, 4, -MATH::TOLERANCE / 2, 4, 0);
  ExpectBeside(line, 4, 100 + MATH::TOLERANCE / 2, 4, 100);
  EXPECT_FALSE(Project(line, 4, -2 * MATH::TOLERANCE).beside);
}

TEST(CenterLineProjection, TheExtensionTakesPlacesOffTheEnds) {
  CenterLine line = LineOf({Vertex(0, 0), Vertex(0, 100)});
  line.Init(20, false);
  ExpectBeside(line, 4, -20, 4, -20);
  ExpectBeside(line, 4, 115, 4, 115);
  ExpectOff(line, 4, -21, 4, -21);
  ExpectOff(line, 4, 121, 4, 121);
}

TEST(CenterLineProjection, OnALineWithoutLengthIsFalseAndZero) {
  for (CenterLine const& line : {CenterLine(), Prepared({}), Prepared({Vertex(1, 1)}),
                                 Prepared({Vertex(1, 1), Vertex(1, 1)})}) {
    ExpectOff(line, 1, 1, 0, 0);
    ExpectOff(line, 5, 6, 0, 0);
  }
}

TEST(CenterLineProjection, AtABendSeenFromOutsideIsTheVertex) {
  CenterLine const line = Prepared({Vertex(0, 0), Vertex(0, 100), Vertex(100, 100)});
  ExpectBeside(line, -3, 104, -5, 100);
  ExpectBeside(line, 0, 100, 0, 100);
  ExpectBeside(line, 0, 108, -8, 100);
  CenterLine const left = Prepared({Vertex(0, 0), Vertex(0, 100), Vertex(-100, 100)});
  ExpectBeside(left, 3, 104, 5, 100);
  CenterLine const sharp = Prepared({Vertex(0, 0), Vertex(0, 100), Vertex(10, 0)});
  ExpectBeside(sharp, 3, 104, -5, 100);
}

TEST(CenterLineProjection, AtABendSeenFromInsideIsTheNearerLeg) {
  CenterLine const line = Prepared({Vertex(0, 0), Vertex(0, 100), Vertex(100, 100)});
  ExpectBeside(line, 10, 80, 10, 80);
  ExpectBeside(line, 20, 90, 10, 120);
  ExpectBeside(line, 10, 90, 10, 90);  // as near to both: the first
}

TEST(CenterLineProjection, OfSeveralPlacesIsTheNearest) {
  CenterLine const line =
      Prepared({Vertex(0, 0), Vertex(0, 100), Vertex(30, 100), Vertex(30, 0), Vertex(60, 0)});
  ExpectBeside(line, 5, 50, 5, 50);
  ExpectBeside(line, 25, 50, 5, 100 + 30 + 50);
  ExpectBeside(line, 33, 50, -3, 100 + 30 + 50);
  ExpectBeside(line, 50, -4, 4, 100 + 30 + 100 + 20);
}

TEST(CenterLineProjection, OffAnEndIsFalseAlsoWhereAnotherLegIsAbreast) {
  CenterLine const line =
      Prepared({Vertex(0, 0), Vertex(0, 100), Vertex(50, 100), Vertex(50, -100)});
  ExpectOff(line, 0, -10, 0, -10);
  ExpectBeside(line, 40, -10, 10, 100 + 50 + 110);
}

double ArcLength(double radius, double degrees) { return radius * degrees * D_TO_R; }

TEST(CenterLineProjection, AlongARightTurnIsPositiveTowardsItsCentre) {
  CenterLine const line = Prepared({Vertex(0, 80), Center(20, 80, 20), Vertex(20, 100)});
  for (double const degrees : {0.0, 1.0, 30.0, 45.0, 89.0, 90.0}) {
    for (double const offset : {-50.0, -5.0, 0.0, 5.0, 19.0}) {
      double const bearing = (270 + degrees) * D_TO_R;
      double const r = 20 - offset;
      ExpectBeside(line, 20 + r * std::sin(bearing), 80 + r * std::cos(bearing), offset,
                   ArcLength(20, degrees));
    }
  }
}

TEST(CenterLineProjection, AlongALeftTurnIsNegativeTowardsItsCentre) {
  CenterLine const line = Prepared({Vertex(20, 100), Center(20, 80, 20), Vertex(0, 80)});
  for (double const degrees : {0.0, 1.0, 30.0, 45.0, 89.0, 90.0}) {
    for (double const offset : {50.0, 5.0, 0.0, -5.0, -19.0}) {
      double const bearing = -degrees * D_TO_R;
      double const r = 20 + offset;
      ExpectBeside(line, 20 + r * std::sin(bearing), 80 + r * std::cos(bearing), offset,
                   ArcLength(20, degrees));
    }
  }
}

TEST(CenterLineProjection, AlongALongTurnToTheLeft) {
  CenterLine const line = Prepared({Vertex(0, 80), Center(20, 80, -20), Vertex(20, 100)});
  ExpectBeside(line, 20, 58, 2, ArcLength(20, 90));
  ExpectBeside(line, 43, 80, 3, ArcLength(20, 180));
  ExpectBeside(line, 20, 99, -1, ArcLength(20, 270));
}

TEST(CenterLineProjection, OffTheEndsOfAnArcRefersToItsTangents) {
  CenterLine const line = Prepared({Vertex(0, 80), Center(20, 80, 20), Vertex(20, 100)});
  ExpectOff(line, 3, 70, 3, -10);
  ExpectOff(line, 30, 98, 2, ArcLength(20, 90) + 10);
}

TEST(CenterLineProjection, PassesFromLegToArcWithoutAGap) {
  CenterLine const line = Prepared(
      {Vertex(0, 0), Vertex(0, 80), Center(20, 80, 20), Vertex(20, 100), Vertex(100, 100)});
  for (double const offset : {-30.0, -1.0, 0.0, 1.0, 15.0}) {
    ExpectBeside(line, offset, 80, offset, 80);
    ExpectBeside(line, offset, 80 - 1e-3, offset, 80 - 1e-3);
    ExpectBeside(line, 20, 100 - offset, offset, 80 + ArcLength(20, 90));
    ExpectBeside(line, 20 + 1e-3, 100 - offset, offset, 80 + ArcLength(20, 90) + 1e-3);
    double const turned = 1e-3;
    double const bearing = (270 + turned) * D_TO_R;
    double const r = 20 - offset;
    ExpectBeside(line, 20 + r * std::sin(bearing), 80 + r * std::cos(bearing), offset,
                 80 + ArcLength(20, turned));
  }
}

TEST(CenterLineProjection, FromTheCentreOfAnArcIsOneRadius) {
  CenterLine const line = Prepared({Vertex(0, 80), Center(20, 80, 20), Vertex(20, 100)});
  Projection const p = Project(line, 20, 80);
  EXPECT_TRUE(p.beside);
  EXPECT_EQ(p.offset, 20.0);
  EXPECT_GE(p.travel, 0.0);
  EXPECT_LE(p.travel, ArcLength(20, 90));
}

TEST(CenterLineProjection, HoldsItsDigitsFarFromTheOrigin) {
  double const east = 500000;
  double const north = 5900000;
  CenterLine const line =
      Prepared({Vertex(east, north), Vertex(east, north + 80), Center(east + 20, north + 80, 20),
                Vertex(east + 20, north + 100)});
  ExpectBeside(line, east + 7.25, north + 30.5, 7.25, 30.5);
  ExpectBeside(line, east + 20, north + 97.5, 2.5, 80 + ArcLength(20, 90));
}

TEST(CenterLineProjection, OfAPlaceThatIsNotFiniteIsFalse) {
  CenterLine const line = Prepared({Vertex(0, 0), Vertex(0, 100)});
  ExpectOff(line, std::numeric_limits<double>::quiet_NaN(), 5, 0, 0);
  ExpectOff(line, std::numeric_limits<double>::infinity(), 5, 0, 0);
}

TEST(CenterLineProjection, FollowsEveryChangeAlsoWithoutInit) {
  CenterLine line = LineOf({Vertex(0, 0), Vertex(0, 100)});
  ExpectBeside(line, 7, 30, 7, 30);
  line.Init(0.0, false);
  line.AddElem(Vertex(100, 100));
  ExpectBeside(line, 50, 95, 5, 150);
  line.InsertElem(0, Vertex(0, -10));
  ExpectBeside(line, 50, 95, 5, 160);
  line.Clear();
  ExpectOff(line, 7, 30, 0, 0);
}

TEST(CenterLineProjection, SurvivesCopyAndMove) {
  CenterLine line = Prepared({Vertex(0, 0), Vertex(0, 100)});
  CenterLine copy = line;
  line.Clear();
  CenterLine const moved = std::move(copy);
  ExpectBeside(moved, 7, 30, 7, 30);
}

}  // namespace
