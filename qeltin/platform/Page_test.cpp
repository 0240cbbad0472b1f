#include "qeltin/platform/Page.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

class PageTest : public ::testing::Test {
 protected:
  PageTest() {
    m_Page.SetBottomLeft(Point(0, 0, 0));
    m_Page.SetTopRight(Point(10, 5, 0));
  }

  void ExpectKept(Line const& in, Line const& expected) {
    Line out;
    ASSERT_TRUE(m_Page.ClipLine(in, &out));
    EXPECT_EQ(out, expected);
  }

  void ExpectNothing(Line const& in) {
    Line const before({7, 7, 7}, {8, 8, 8});
    Line out = before;
    EXPECT_FALSE(m_Page.ClipLine(in, &out));
    EXPECT_EQ(out, before);
  }

  Page m_Page;
};

TEST_F(PageTest, LineOnThePageKeepsItsExactCoordinates) {
  Line const line({0.1, 0.2, 0.3}, {9.7, 4.9, -0.3});
  ExpectKept(line, line);
  Line const edge({0, 5, 1}, {10, 5, 2});
  ExpectKept(edge, edge);
}

TEST_F(PageTest, LineAcrossThePageIsCutAtBothEdges) {
  ExpectKept({{-5, 1, 0}, {15, 3, 40}}, {{0, 1.5, 10}, {10, 2.5, 30}});
  ExpectKept({{4, 9, 0}, {4, -1, 10}}, {{4, 5, 4}, {4, 0, 9}});
}

TEST_F(PageTest, CutEndStandsAtItsShareOfTheWholeLineAndTheOtherStays) {
  Line const in({0.3, 0.7, 0}, {23.1, 4.4, 0});
  double const t = (10 - 0.3) / (23.1 - 0.3);
  ExpectKept(in, {in.start, {0.3 + t * (23.1 - 0.3), 0.7 + t * (4.4 - 0.7), 0}});
}

TEST_F(PageTest, LineBesideThePageLeavesNothing) {
  ExpectNothing({{-1, 1, 0}, {-1, 4, 0}});
  ExpectNothing({{2, 6, 0}, {8, 6, 0}});
  ExpectNothing({{-4, 1, 0}, {-1, 2, 0}});
  ExpectNothing({{-1, 4, 0}, {3, 9, 0}});
  ExpectNothing({{11, 1, 0}, {9, -5, 0}});
}

TEST_F(PageTest, LineThatTouchesACornerLeavesThatPlaceAtBothEnds) {
  ExpectKept({{-5, 0, 0}, {0, 0, 0}}, {{0, 0, 0}, {0, 0, 0}});
  ExpectKept({{-1, 4, 0}, {1, 6, 0}}, {{0, 5, 0}, {0, 5, 0}});
}

TEST_F(PageTest, PlaceIsALineWithoutLength) {
  ExpectKept({{3, 3, 0}, {3, 3, 9}}, {{3, 3, 0}, {3, 3, 9}});
  ExpectNothing({{3, 6, 0}, {3, 6, 9}});
}

TEST_F(PageTest, LineWithoutAFiniteExtentLeavesNothing) {
  double const largest = std::numeric_limits<double>::max();
  for (double const bad : {NOT_A_NUMBER, INF, -INF}) {
    ExpectNothing({{bad, 1, 0}, {3, 3, 0}});
    ExpectNothing({{1, 1, 0}, {3, bad, 0}});
    ExpectNothing({{bad, bad, 0}, {bad, bad, 0}});
  }
  ExpectNothing({{-largest, 1, 0}, {largest, 1, 0}});
}

TEST_F(PageTest, HeightHasNoSay) {
  Line out;
  ASSERT_TRUE(m_Page.ClipLine({{-5, 1, NOT_A_NUMBER}, {5, 1, 0}}, &out));
  EXPECT_EQ(out.start.x, 0.0);
  EXPECT_EQ(out.end, Point(5, 1, 0));
}

TEST_F(PageTest, LineIsClippedInItsOwnPlace) {
  Line line({-5, 2, 0}, {15, 2, 0});
  ASSERT_TRUE(m_Page.ClipLine(line, &line));
  EXPECT_EQ(line, Line({0, 2, 0}, {10, 2, 0}));
}

TEST(Page, NewPageIsOnePlace) {
  Line out;
  EXPECT_TRUE(Page().ClipLine({{-1, -1, 0}, {1, 1, 0}}, &out));
  EXPECT_EQ(out, Line({0, 0, 0}, {0, 0, 0}));
  EXPECT_FALSE(Page().ClipLine({{-1, -1, 0}, {1, 1.5, 0}}, &out));
}

}  // namespace
