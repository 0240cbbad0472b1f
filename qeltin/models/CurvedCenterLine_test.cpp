#include "qeltin/models/CurvedCenterLine.h"

#include <gtest/gtest.h>

#include <cmath>

#include "qeltin/platform/Bearing.h"
#include "qeltin/platform/Math.h"
#include "testing/MakeSurvey.h"

namespace {

using qeltin::testing::Dice;
using qeltin::testing::TestSeed;

double Distance(Point const& a, Point const& b) { return std::hypot(a.x - b.x, a.y - b.y); }

Point PositionOf(CenterLine const& line, int index) { return line.GetPoint(index).GetPosition(); }

Page PageAround(double size) {
  Page page;
  page.SetBottomLeft({-size, -size, 0});
  page.SetTopRight({size, size, 0});
  return page;
}

// North to a corner and east from there, rounded by a radius of 20.
CurvedCenterLine RightTurn(int append = 1) {
  CurvedCenterLine line;
  line.AddCurvedPoint(0, 0, 0, append);
  line.AddCurvedPoint(0, 100, 20, append);
  line.AddCurvedPoint(100, 100, 0, append);
  return line;
}

void Finish(CurvedCenterLine& line) {
  line.SetHaveCenterLine(true);
  line.Init(0.0, false);
}

TEST(CurvedCenterLine, StraightPlacesAreVertices) {
  CurvedCenterLine line;
  EXPECT_TRUE(line.AddCurvedPoint(1, 2, 0, 1));
  EXPECT_TRUE(line.AddCurvedPoint(3, 4, 0, 1));
  ASSERT_EQ(line.GetNumPoints(), 2);
  EXPECT_EQ(PositionOf(line, 0), Point(1, 2, 0));
  EXPECT_EQ(PositionOf(line, 1), Point(3, 4, 0));
  EXPECT_EQ(line.GetPoint(1).GetPointType(), POINT_STRAIGHT);
}

TEST(CurvedCenterLine, ACornerWaitsForThePlaceBehindIt) {
  CurvedCenterLine line;
  line.AddCurvedPoint(0, 0, 0, 1);
  EXPECT_TRUE(line.AddCurvedPoint(0, 100, 20, 1));
  EXPECT_TRUE(line.IsPending());
  EXPECT_EQ(line.GetNumPoints(), 1);
  EXPECT_TRUE(line.AddCurvedPoint(100, 100, 0, 1));
  EXPECT_FALSE(line.IsPending());
  EXPECT_EQ(line.GetNumPoints(), 5);
}

TEST(CurvedCenterLine, ARightAngleGivesTangentPointsAndTheCentreBetweenThem) {
  CurvedCenterLine const line = RightTurn();
  ASSERT_EQ(line.GetNumPoints(), 5);
  double const t = std::fabs(std::tan(90.0 * D_TO_R * 0.5) * 20.0);
  double const back = 180.0 * D_TO_R;
  double const right = 90.0 * D_TO_R;
  Point const first(0.0 + t * std::sin(back), 100.0 + t * std::cos(back), 0.0);
  Point const center(first.x + 20.0 * std::sin(right), first.y + 20.0 * std::cos(right), 0.0);
  Point const second(0.0 + t * std::sin(right), 100.0 + t * std::cos(right), 0.0);
  EXPECT_EQ(PositionOf(line, 0), Point(0, 0, 0));
  EXPECT_EQ(PositionOf(line, 1), first);
  EXPECT_EQ(PositionOf(line, 2), center);
  EXPECT_EQ(PositionOf(line, 3), second);
  EXPECT_EQ(PositionOf(line, 4), Point(100, 100, 0));
  EXPECT_NEAR(Distance(center, first), 20.0, 1e-12);
  EXPECT_NEAR(Distance(center, second), 20.0, 1e-12);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(line.GetPoint(i).GetPointType(), i == 2 ? POINT_ARC_CENTER : POINT_STRAIGHT);
    EXPECT_EQ(line.GetPoint(i).GetRadius(), i == 2 ? 20.0 : 0.0);
  }
}

TEST(CurvedCenterLine, OfATurnToTheLeftTheCentreLiesLeft) {
  CurvedCenterLine line;
  line.AddCurvedPoint(0, 0, 0, 1);
  line.AddCurvedPoint(0, 100, 20, 1);
  line.AddCurvedPoint(-100, 100, 0, 1);
  Point const center = PositionOf(line, 2);
  EXPECT_NEAR(center.x, -20.0, 1e-12);
  EXPECT_NEAR(center.y, 80.0, 1e-12);
  EXPECT_EQ(line.GetPoint(2).GetRadius(), 20.0);
}

TEST(CurvedCenterLine, AStraightRunThroughACornerPutsBothTangentPointsOnIt) {
  CurvedCenterLine line;
  line.AddCurvedPoint(0, 0, 0, 1);
  line.AddCurvedPoint(0, 100, 20, 1);
  line.AddCurvedPoint(0, 150, 0, 1);
  ASSERT_EQ(line.GetNumPoints(), 5);
  EXPECT_EQ(PositionOf(line, 1), Point(0, 100, 0));
  EXPECT_EQ(PositionOf(line, 3), Point(0, 100, 0));
  EXPECT_NEAR(PositionOf(line, 2).x, -20.0, 1e-12);
}

TEST(CurvedCenterLine, TheRadiusOfThePlaceBehindACornerIsIgnored) {
  CurvedCenterLine line;
  line.AddCurvedPoint(0, 0, 0, 1);
  line.AddCurvedPoint(0, 100, 20, 1);
  line.AddCurvedPoint(100, 100, 55, 1);
  EXPECT_FALSE(line.IsPending());
  ASSERT_EQ(line.GetNumPoints(), 5);
  EXPECT_EQ(line.GetPoint(4).GetPointType(), POINT_STRAIGHT);
  EXPECT_EQ(line.GetPoint(4).GetRadius(), 0.0);
}

TEST(CurvedCenterLine, TheLegBeforeASecondCornerStartsAtTheLastStraightPlace) {
  CurvedCenterLine line = RightTurn();
  line.AddCurvedPoint(200, 100, 10, 1);
  line.AddCurvedPoint(200, 0, 0, 1);
  ASSERT_EQ(line.GetNumPoints(), 9);
  double const a1 = std::atan2(200.0, 100.0) / D_TO_R;  // from (0, 0), not from (100, 100)
  double const t = std::fabs(std::tan(std::fabs(a1 - 180.0) * D_TO_R * 0.5) * 10.0);
  double const back = std::fmod(a1 + 180.0, 360.0) * D_TO_R;
  EXPECT_EQ(PositionOf(line, 5),
            Point(200.0 + t * std::sin(back), 100.0 + t * std::cos(back), 0.0));
}

TEST(CurvedCenterLine, AnyOtherFlagBuildsBackwards) {
  CurvedCenterLine const forwards = RightTurn();
  for (int const append : {0, 2, -1}) {
    CurvedCenterLine const line = RightTurn(append);
    ASSERT_EQ(line.GetNumPoints(), 5);
    for (int i = 0; i < 5; ++i) {
      EXPECT_EQ(PositionOf(line, i), PositionOf(forwards, 4 - i));
      EXPECT_EQ(line.GetPoint(i).GetPointType(), forwards.GetPoint(4 - i).GetPointType());
    }
  }
}

TEST(CurvedCenterLine, ADeflectionAcrossNorthIsTheSmallerAngle) {
  CurvedCenterLine line;
  line.AddCurvedPoint(0, 0, 0, 1);
  line.AddCurvedPoint(-100, 100, 20, 1);
  line.AddCurvedPoint(0, 200, 0, 1);
  double const d = 180.0 - std::fmod(std::fabs(315.0 - 45.0), 180.0);
  double const t = std::fabs(std::tan(d * D_TO_R * 0.5) * 20.0);
  double const a2 = 45.0 * D_TO_R;
  EXPECT_EQ(PositionOf(line, 3), Point(-100 + t * std::sin(a2), 100 + t * std::cos(a2), 0));
}

TEST(CurvedCenterLine, BearingsOfZeroAndAWholeTurnCountAsATurnAbout) {
  CurvedCenterLine line;
  line.AddCurvedPoint(1e-20, 0, 0, 1);
  line.AddCurvedPoint(0, 100, 20, 1);
  line.AddCurvedPoint(0, 200, 0, 1);
  double const t = std::fabs(std::tan(180.0 * D_TO_R * 0.5) * 20.0);
  EXPECT_EQ(PositionOf(line, 3).y, 100.0 + t * std::cos(0.0));
}

TEST(CurvedCenterLine, ACopyGoesOnWithTheCornerThatWaits) {
  CurvedCenterLine line;
  line.AddCurvedPoint(0, 0, 0, 1);
  line.AddCurvedPoint(0, 100, 20, 1);
  CurvedCenterLine copy = line;
  copy.AddCurvedPoint(100, 100, 0, 1);
  EXPECT_EQ(copy.GetNumPoints(), 5);
  EXPECT_EQ(PositionOf(copy, 2), PositionOf(RightTurn(), 2));
  EXPECT_TRUE(line.IsPending());
  EXPECT_EQ(line.GetNumPoints(), 1);
}

// --- Lines for a page ---------------------------------------------------------------------------

// The page lines of one arc about the origin with the given angles.
std::vector<Line> LinesOfArc(double start, double end, double radius, Page const& page) {
  CurvedCenterLine line;
  line.AddCurvedPoint(0, 0, 0, 1);
  line.AddElem({Point(0, 0, 0), start, end, POINT_ARC_CENTER, radius, 0, L""});
  line.SetHaveCenterLine(true);
  std::vector<Line> lines;
  line.BuildPageLines(page, lines);
  return lines;
}

// What a walk over the arc gives, in degrees, in steps of one.
std::vector<Line> Walk(double start, double end, double radius) {
  std::vector<Line> lines;
  double angle = start * D_TO_R;
  double const last = end * D_TO_R;
  Point before(0.0 + radius * std::sin(angle), 0.0 + radius * std::cos(angle), 0);
  while (angle < last) {
    angle = std::fmin(angle + D_TO_R, last);
    Point const here(0.0 + radius * std::sin(angle), 0.0 + radius * std::cos(angle), 0);
    lines.emplace_back(before, here);
    before = here;
  }
  return lines;
}

TEST(CurvedCenterLinePageLines, AreNoneWhereTheLineIsNotMarkedAsPresent) {
  CurvedCenterLine line = RightTurn();
  line.Init(0.0, false);
  std::vector<Line> lines;
  line.BuildPageLines(PageAround(1000), lines);
  EXPECT_TRUE(lines.empty());
}

TEST(CurvedCenterLinePageLines, StraightLegsAreNotClippedAndAreAppended) {
  CurvedCenterLine line;
  line.AddCurvedPoint(0, 0, 0, 1);
  line.AddCurvedPoint(0, 900, 0, 1);
  line.AddCurvedPoint(900, 900, 0, 1);
  Finish(line);
  std::vector<Line> lines(1);
  line.BuildPageLines(PageAround(1), lines);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[1], Line({0, 0, 0}, {0, 900, 0}));
  EXPECT_EQ(lines[2], Line({0, 900, 0}, {900, 900, 0}));
}

TEST(CurvedCenterLinePageLines, ArcsRunClockwiseInStepsOfOneDegreeAndEndAtTheirEnd) {
  std::vector<Line> const lines = LinesOfArc(10, 13.5, 50, PageAround(100));
  EXPECT_EQ(lines, Walk(10, 13.5, 50));
  EXPECT_EQ(lines.size(), 4u);
}

TEST(CurvedCenterLinePageLines, AnArcAcrossNorthGoesOnBehindIt) {
  EXPECT_EQ(LinesOfArc(350, 20, 50, PageAround(100)), Walk(350, 380, 50));
}

TEST(CurvedCenterLinePageLines, ANegativeRadiusSwapsTheAngles) {
  EXPECT_EQ(LinesOfArc(90, 30, -50, PageAround(100)), Walk(30, 90, 50));
  EXPECT_EQ(LinesOfArc(30, 90, -50, PageAround(100)), Walk(90, 390, 50));
}

TEST(CurvedCenterLinePageLines, AnglesThatAgreeWithinTwiceEpsilonAreNoArc) {
  Page const page = PageAround(100);
  EXPECT_TRUE(LinesOfArc(90, 90, 50, page).empty());
  EXPECT_TRUE(LinesOfArc(0, 2 * EPSILON, 50, page).empty());
  EXPECT_EQ(LinesOfArc(0, 3 * EPSILON, 50, page).size(), 1u);
}

TEST(CurvedCenterLinePageLines, AWholeCircleIsFromZeroToAWholeTurn) {
  EXPECT_EQ(LinesOfArc(0, 360, 50, PageAround(100)), Walk(0, 360, 50));
}

TEST(CurvedCenterLinePageLines, ArcsAreClippedToThePage) {
  Page page;
  page.SetBottomLeft({0, -100, 0});
  page.SetTopRight({100, 100, 0});
  EXPECT_EQ(LinesOfArc(350, 20, 50, page).front().start, Point(0, 50, 0));
  page.SetBottomLeft({60, -100, 0});
  EXPECT_TRUE(LinesOfArc(0, 360, 50, page).empty());
}

TEST(CurvedCenterLinePageLines, OfAStepFromACentreToAVertexThereAreNone) {
  CurvedCenterLine line = RightTurn();
  Finish(line);
  std::vector<Line> lines;
  line.BuildPageLines(PageAround(1000), lines);
  EXPECT_EQ(lines.front(), Line(PositionOf(line, 0), PositionOf(line, 1)));
  EXPECT_EQ(lines.back(), Line(PositionOf(line, 3), PositionOf(line, 4)));
  EXPECT_NEAR(Distance(lines[1].start, PositionOf(line, 1)), 0.0, 1e-12);
  EXPECT_NEAR(Distance(lines[lines.size() - 2].end, PositionOf(line, 3)), 0.0, 1e-12);
}

TEST(CurvedCenterLinePageLines, LieOnTheLineAndCoverIt) {
  Dice dice(TestSeed());
  for (int round = 0; round < 200; ++round) {
    int const append = dice.Below(2);
    CurvedCenterLine line;
    double bearing = dice.Between(0, 360);
    Point at(500000, 5900000, 0);
    for (int i = 0; i < 6; ++i) {
      line.AddCurvedPoint(at.x, at.y, i % 3 == 1 ? dice.Between(5, 30) : 0, append);
      at.x += 100 * std::sin(bearing * D_TO_R);
      at.y += 100 * std::cos(bearing * D_TO_R);
      if (i % 3 == 0) bearing += dice.Between(-120, 120);
    }
    Finish(line);
    Page page;
    page.SetTopRight({1e9, 1e9, 0});
    std::vector<Line> lines;
    line.BuildPageLines(page, lines);
    double drawn = 0.0;
    for (Line const& piece : lines) {
      double offset = 0.0;
      double travel = 0.0;
      ASSERT_TRUE(line.GetOffsetAndTravel(piece.start, offset, travel));
      ASSERT_NEAR(offset, 0.0, 1e-6);
      drawn += Distance(piece.start, piece.end);
    }
    double const length = line.GetPoint(line.GetNumPoints() - 1).GetKP();
    ASSERT_NEAR(drawn, length, 1e-4 * length);
  }
}

}  // namespace
