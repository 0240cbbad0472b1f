#include <gtest/gtest.h>

#include <deque>
#include <utility>
#include <vector>

#include "qeltin/tin/Triangulator.h"
#include "testing/MakeFigure.h"
#include "testing/reference/StatedPolygon.h"

namespace {

using qeltin::testing::ALL_FIGURES;
using qeltin::testing::AT_ORIGIN;
using qeltin::testing::AT_UTM;
using qeltin::testing::Dice;
using qeltin::testing::Figure;
using qeltin::testing::Frame;
using qeltin::testing::MakeFigure;
using qeltin::testing::TestSeed;
namespace stated = qeltin::testing::stated;

std::deque<TPoint*> RingOf(std::vector<TPoint>& points) {
  std::deque<TPoint*> ring;
  for (TPoint& p : points) ring.push_back(&p);
  return ring;
}

std::vector<TTriangle> Fill(std::vector<TPoint>& points) {
  std::vector<TTriangle> result;
  std::deque<TPoint*> ring = RingOf(points);
  Triangulator::FillHole(result, ring);
  return result;
}

bool HasCorners(TTriangle const& t, TPoint const& a, TPoint const& b, TPoint const& c) {
  return t.XY_FindVertex(&a) && t.XY_FindVertex(&b) && t.XY_FindVertex(&c);
}

TEST(TriangulatorFillHole, EarliestOfEqualEarsWins) {
  std::vector<TPoint> square = {{0, 0}, {0, 10}, {10, 10}, {10, 0}};
  for (TPoint& p : square) p = p + TPoint(500, 500);
  double radius[4];
  for (std::size_t i = 0; i < 4; ++i) {
    radius[i] =
        TTriangle(&square[i], &square[(i + 1) % 4], &square[(i + 2) % 4]).XY_CircumcircleRadius();
  }
  ASSERT_EQ(radius[0], radius[1]);
  ASSERT_EQ(radius[0], radius[2]);
  ASSERT_EQ(radius[0], radius[3]);
  std::vector<TTriangle> const result = Fill(square);
  ASSERT_EQ(result.size(), 2u);
  EXPECT_TRUE(HasCorners(result[0], square[0], square[1], square[2]));
  EXPECT_TRUE(HasCorners(result[1], square[0], square[2], square[3]));
}

TEST(TriangulatorFillHole, CornersInTheEarDoNotCountAwayFromTheOrigin) {
  // The ear at the corner 1 has the smallest circle, and corner 4 lies in it.
  std::vector<TPoint> const figure = {{-1, 0}, {0, 1.5}, {1, 0}, {0, -3}, {-0.45, 0.3}};
  std::vector<TPoint> away = figure;
  for (TPoint& p : away) p = p + TPoint(1000, 1000);
  EXPECT_TRUE(HasCorners(Fill(away)[0], away[0], away[1], away[2]));
}

TEST(TriangulatorFillHole, CornersInTheEarCountNearTheOrigin) {
  std::vector<TPoint> near = {{-1, 0}, {0, 1.5}, {1, 0}, {0, -3}, {-0.45, 0.3}};
  EXPECT_FALSE(HasCorners(Fill(near)[0], near[0], near[1], near[2]));
}

TEST(TriangulatorFillHole, RadiusItselfIsTheSquareOfTheDistanceThatCounts) {
  // The same figure ten times as large: the radius grows tenfold, the square of the distance of
  // corner 4 from the origin a hundredfold, past it.
  std::vector<TPoint> large = {{-10, 0}, {0, 15}, {10, 0}, {0, -30}, {-4.5, 3}};
  EXPECT_TRUE(HasCorners(Fill(large)[0], large[0], large[1], large[2]));
}

TEST(TriangulatorFillHole, FirstRoundWithoutAnEarTakesTheFirstThreeCorners) {
  std::vector<TPoint> line = {{500, 500}, {501, 500}, {502, 500}, {503, 500}, {504, 500}};
  std::vector<TTriangle> const result = Fill(line);
  ASSERT_EQ(result.size(), 3u);
  EXPECT_TRUE(HasCorners(result[0], line[0], line[1], line[2]));
}

TEST(TriangulatorFillHole, LaterRoundWithoutAnEarRepeatsTheTriangleOfTheRoundBefore) {
  std::vector<TPoint> line = {{500, 500}, {501, 500}, {502, 500}, {503, 500}, {504, 500}};
  std::vector<TTriangle> const result = Fill(line);
  ASSERT_EQ(result.size(), 3u);
  EXPECT_TRUE(HasCorners(result[1], line[0], line[1], line[2]));  // corner 2 was clipped
  EXPECT_TRUE(HasCorners(result[2], line[0], line[3], line[4]));
}

TEST(TriangulatorFillHole, AnswersTrueForFiveToSevenCornersOnly) {
  for (int corners = 0; corners <= 12; ++corners) {
    std::vector<TPoint> figure = MakeFigure(Figure::Simple, corners, 7, AT_UTM);
    std::vector<TTriangle> result(3);
    std::deque<TPoint*> ring = RingOf(figure);
    EXPECT_EQ(Triangulator::FillHole(result, ring), corners >= 5 && corners <= 7) << corners;
    EXPECT_EQ(result.size(), corners < 3 ? 0u : static_cast<std::size_t>(corners - 2));
  }
}

TEST(TriangulatorFillHole, TrianglesAreClockwiseWithTheirCirclesAndNothingElse) {
  std::vector<TPoint> square = {{500, 500}, {510, 500}, {510, 510}, {500, 510}};
  for (TTriangle const& t : Fill(square)) {
    EXPECT_LT(t.Area(), 0.0);
    EXPECT_EQ(t.m_CentreX, 505.0);
    EXPECT_EQ(t.m_CentreY, 505.0);
    EXPECT_EQ(t.m_RadiusSq, 50.0);
    EXPECT_EQ(t.m_Flags, 0);
    for (TTriangle const* n : t.m_pAdjacent) EXPECT_EQ(n, nullptr);
  }
}

TEST(TriangulatorFillHole, EqualsItsPlainVersion) {
  Dice dice(TestSeed());
  for (int run = 0; run < 3000; ++run) {
    Figure const kind = ALL_FIGURES[dice.Below(static_cast<int>(std::size(ALL_FIGURES)))];
    Frame const frame = dice.OneIn(3) ? AT_UTM : AT_ORIGIN;
    std::vector<TPoint> figure =
        MakeFigure(kind, 3 + dice.Below(dice.OneIn(20) ? 60 : 12), dice.Bits(), frame);
    double const scale = dice.OneIn(2) ? 1.0 : dice.Unit() * 0.01;
    for (TPoint& p : figure) p = p * scale;
    if (dice.OneIn(4)) figure[0] = figure.back();
    std::deque<TPoint*> here = RingOf(figure);
    if (dice.OneIn(8)) here.push_back(here[static_cast<std::size_t>(dice.Below(3))]);
    std::deque<TPoint*> there = here;
    std::vector<TTriangle> result, expected;
    bool const answer = Triangulator::FillHole(result, here);
    ASSERT_EQ(answer, stated::FillHole(expected, there));
    ASSERT_EQ(result.size(), expected.size());
    for (std::size_t i = 0; i < result.size(); ++i) {
      for (int k = 0; k < 3; ++k) {
        ASSERT_EQ(result[i].m_pVertex[k], expected[i].m_pVertex[k]) << kind << " run " << run;
      }
    }
  }
}

}  // namespace
