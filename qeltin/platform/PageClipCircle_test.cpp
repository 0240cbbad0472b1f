#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "qeltin/platform/Math.h"
#include "qeltin/platform/Page.h"
#include "testing/MakeSurvey.h"

namespace {

using qeltin::testing::Dice;
using qeltin::testing::TestSeed;

struct Piece {
  double start;
  double end;
};

Page PageOf(double left, double bottom, double right, double top) {
  Page page;
  page.SetBottomLeft({left, bottom, 0});
  page.SetTopRight({right, top, 0});
  return page;
}

std::vector<Piece> Clip(Page const& page, Point const& center, double radius, double start,
                        double end) {
  long count = 77;
  double starts[5];
  double ends[5];
  page.ClipCircle(center, radius, start, end, count, starts, ends);
  std::vector<Piece> pieces;
  for (long i = 0; i < count; ++i) pieces.push_back({starts[i], ends[i]});
  return pieces;
}

void ExpectPieces(std::vector<Piece> const& pieces, std::vector<Piece> const& expected) {
  ASSERT_EQ(pieces.size(), expected.size());
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    EXPECT_NEAR(pieces[i].start, expected[i].start, 1e-12);
    EXPECT_NEAR(pieces[i].end, expected[i].end, 1e-12);
  }
}

void ExpectExactly(std::vector<Piece> const& pieces, double start, double end) {
  ASSERT_EQ(pieces.size(), 1u);
  EXPECT_EQ(pieces[0].start, start);
  EXPECT_EQ(pieces[0].end, end);
}

Page const LARGE = PageOf(-100, -100, 100, 100);

TEST(PageClipCircle, AnArcOnThePageKeepsItsExactEnds) {
  ExpectExactly(Clip(LARGE, {0, 0, 0}, 10, 12.3, 45.6), 12.3, 45.6);
  ExpectExactly(Clip(LARGE, {0, 0, 0}, 10, 350.1, 20.2), 350.1, 20.2);
}

TEST(PageClipCircle, BearingsComeBackWithinOneTurn) {
  ExpectExactly(Clip(LARGE, {0, 0, 0}, 10, -30, 30), 330, 30);
  ExpectExactly(Clip(LARGE, {0, 0, 0}, 10, 370, 400), 10, 40);
  ExpectExactly(Clip(LARGE, {0, 0, 0}, 10, 90, 360), 90, 0);
}

TEST(PageClipCircle, AWholeCircleHasItsEndsEqual) {
  ExpectExactly(Clip(LARGE, {0, 0, 0}, 10, 0, 360), 0, 0);
  ExpectExactly(Clip(LARGE, {0, 0, 0}, 10, 33, 33), 33, 33);
  ExpectExactly(Clip(LARGE, {0, 0, 0}, 10, 50, 700), 50, 340);
}

TEST(PageClipCircle, AnArcBesideThePageLeavesNothing) {
  EXPECT_TRUE(Clip(LARGE, {500, 0, 0}, 10, 0, 360).empty());
  EXPECT_TRUE(Clip(LARGE, {0, 0, 0}, 1000, 0, 360).empty());
  EXPECT_TRUE(Clip(LARGE, {100, 0, 0}, 10, 10, 170).empty());
}

TEST(PageClipCircle, AnArcThatLeavesThePageIsCutAtTheEdge) {
  Page const page = PageOf(0, -100, 100, 100);
  ExpectPieces(Clip(page, {0, 0, 0}, 10, 350, 20), {{0, 20}});
  ExpectPieces(Clip(page, {0, 0, 0}, 10, 170, 200), {{170, 180}});
  ExpectPieces(Clip(page, {-5, 0, 0}, 10, 0, 360), {{30, 150}});
  ExpectPieces(Clip(page, {5, 0, 0}, 10, 180, 0), {{180, 210}, {330, 0}});
}

TEST(PageClipCircle, ACircleCrossesEveryEdgeTwice) {
  double const a = std::acos(0.8) / D_TO_R;
  ExpectPieces(Clip(PageOf(-8, -8, 8, 8), {0, 0, 0}, 10, 0, 360),
               {{a, 90 - a}, {90 + a, 180 - a}, {180 + a, 270 - a}, {270 + a, 360 - a}});
}

TEST(PageClipCircle, AnArcThatStartsWithinAPieceHasFive) {
  double const a = std::acos(0.8) / D_TO_R;
  ExpectPieces(Clip(PageOf(-8, -8, 8, 8), {0, 0, 0}, 10, 45, 45),
               {{45, 90 - a}, {90 + a, 180 - a}, {180 + a, 270 - a}, {270 + a, 360 - a}, {a, 45}});
}

TEST(PageClipCircle, ATouchFromOutsideLeavesNothing) {
  EXPECT_TRUE(Clip(PageOf(10, -5, 20, 5), {0, 0, 0}, 10, 0, 360).empty());
  EXPECT_TRUE(Clip(PageOf(8, 6, 20, 20), {0, 0, 0}, 10, 0, 360).empty());
  Point const far(500000.1, 5900000.3, 0);
  Page const page = PageOf(far.x + 10, far.y - 5, far.x + 20, far.y + 5);
  for (Piece const& piece : Clip(page, far, 10, 0, 360)) {
    EXPECT_NE(piece.start, piece.end);
    EXPECT_NEAR(piece.start, piece.end, 1e-3);
  }
}

TEST(PageClipCircle, ATouchFromInsideCutsNothing) {
  ExpectExactly(Clip(PageOf(-10, -10, 10, 10), {0, 0, 0}, 10, 20, 300), 20, 300);
  ExpectExactly(Clip(PageOf(-50, -50, 10, 50), {0, 0, 0}, 10, 0, 360), 0, 0);
}

TEST(PageClipCircle, ACircleThroughTheCornersLeavesThemAlone) {
  EXPECT_TRUE(Clip(PageOf(-6, -8, 6, 8), {0, 0, 0}, 10, 0, 360).empty());
  EXPECT_TRUE(Clip(PageOf(-3, -4, 3, 4), {0, 0, 0}, 5, 100, 99).empty());
}

TEST(PageClipCircle, ARadiusOfZeroIsTheCentre) {
  ExpectExactly(Clip(LARGE, {1, 1, 0}, 0, 10, 20), 10, 20);
  EXPECT_TRUE(Clip(LARGE, {1, 101, 0}, 0, 10, 20).empty());
}

TEST(PageClipCircle, ANegativeRadiusLooksBackAtTheCentre) {
  Page const page = PageOf(0, -100, 100, 100);
  ExpectPieces(Clip(page, {0, 0, 0}, -10, 0, 360), {{180, 0}});
}

TEST(PageClipCircle, AnArcShorterThanEpsilonIsNoPiece) {
  EXPECT_TRUE(Clip(LARGE, {0, 0, 0}, 10, 45, 45 + EPSILON / 2).empty());
  EXPECT_EQ(Clip(LARGE, {0, 0, 0}, 10, 45, 45 + EPSILON * 2).size(), 1u);
}

TEST(PageClipCircle, NumbersThatAreNotFiniteLeaveNothing) {
  double const inf = std::numeric_limits<double>::infinity();
  double const nan = std::numeric_limits<double>::quiet_NaN();
  for (double const bad : {inf, -inf, nan}) {
    EXPECT_TRUE(Clip(LARGE, {bad, 0, 0}, 10, 0, 360).empty());
    EXPECT_TRUE(Clip(LARGE, {0, bad, 0}, 10, 0, 360).empty());
    EXPECT_TRUE(Clip(LARGE, {0, 0, 0}, bad, 0, 360).empty());
    EXPECT_TRUE(Clip(LARGE, {0, 0, 0}, 10, bad, 360).empty());
    EXPECT_TRUE(Clip(LARGE, {0, 0, 0}, 10, 0, bad).empty());
  }
}

TEST(PageClipCircle, APageOfOnePlaceLeavesNothing) {
  EXPECT_TRUE(Clip(PageOf(0, 10, 0, 10), {0, 0, 0}, 10, 0, 360).empty());
}

// Returns how far, in degrees clockwise, `to` is behind `from`.
double Behind(double from, double to) {
  double const turn = std::fmod(to - from + 720.0, 360.0);
  return turn;
}

bool IsIn(std::vector<Piece> const& pieces, double bearing) {
  for (Piece const& piece : pieces) {
    double const sweep = piece.start == piece.end ? 360.0 : Behind(piece.start, piece.end);
    if (Behind(piece.start, bearing) <= sweep) return true;
  }
  return false;
}

TEST(PageClipCircle, PiecesAreWhatSamplesOfTheArcSee) {
  Dice dice(TestSeed());
  int most = 0;
  for (int round = 0; round < 20000; ++round) {
    Point const center(500000 + dice.Between(-12, 12), 5900000 + dice.Between(-12, 12), 0);
    double const width = dice.Between(0, 20);
    double const height = dice.OneIn(3) ? width : dice.Between(0, 20);
    double const left = dice.OneIn(2) ? center.x - width / 2 : 500000 - width / 2;
    double const bottom = dice.OneIn(2) ? center.y - height / 2 : 5900000 - height / 2;
    Page const page = PageOf(left, bottom, left + width, bottom + height);
    double const radius = dice.Between(0, 14);
    double const start = dice.Between(0, 360);
    double const sweep = dice.OneIn(4) ? 360 : dice.Between(0.1, 359.9);
    double const end = sweep == 360 ? start : std::fmod(start + sweep, 360);
    std::vector<Piece> const pieces = Clip(page, center, radius, start, end);
    most = std::max(most, static_cast<int>(pieces.size()));
    for (int i = 0; i < 50; ++i) {
      double const bearing = start + sweep * dice.Unit();
      double const x = center.x + radius * std::sin(bearing * D_TO_R);
      double const y = center.y + radius * std::cos(bearing * D_TO_R);
      double const inside = std::min({x - left, left + width - x, y - bottom, bottom + height - y});
      if (std::fabs(inside) < 1e-6) continue;
      ASSERT_EQ(IsIn(pieces, bearing), inside > 0)
          << "radius " << radius << " from " << start << " over " << sweep << " at " << bearing;
    }
  }
  EXPECT_EQ(most, 5);
}

}  // namespace
