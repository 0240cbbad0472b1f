#include <gtest/gtest.h>

#include <limits>

#include "qeltin/products/TPolygon.h"
#include "testing/Formula.h"
#include "testing/MakeFigure.h"
#include "testing/reference/StatedPolygon.h"

// Triangulate looks for ears in its own order and through indexes. What comes out must be what the
// search through all corners gives.
namespace {

using namespace qeltin::testing;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

void ExpectStatedTriangles(std::vector<TPoint> const& figure) {
  std::vector<TPoint> actual{TPoint(1, 2, 3)};
  std::vector<TPoint> expected;
  EXPECT_EQ(TPolygon(figure).Triangulate(actual), stated::Triangulate(figure, expected));
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    ASSERT_TRUE(SameBits(actual[i], expected[i])) << "at point " << i;
  }
}

class TriangulateOf : public ::testing::TestWithParam<Figure> {
 protected:
  // Runs `spoil` on each figure first.
  template <class Spoil>
  void Compare(int rounds, int smallest, int largest, Frame const& frame, Spoil spoil) {
    Dice dice(TestSeed());
    for (int round = 0; round < rounds && !HasFatalFailure(); ++round) {
      int const count = smallest + dice.Below(largest - smallest + 1);
      std::uint64_t const seed = dice.Bits();
      SCOPED_TRACE(::testing::Message() << "count " << count << ", figure seed " << seed);
      std::vector<TPoint> figure = MakeFigure(GetParam(), count, seed, frame);
      spoil(figure, dice);
      ExpectStatedTriangles(figure);
    }
  }
  void Compare(int rounds, int smallest, int largest, Frame const& frame) {
    Compare(rounds, smallest, largest, frame, [](auto&, auto&) {});
  }
};

TEST_P(TriangulateOf, SmallFigures) { Compare(300, 3, 30, AT_ORIGIN); }

TEST_P(TriangulateOf, MiddlingFigures) { Compare(20, 31, 60, AT_ORIGIN); }

TEST_P(TriangulateOf, LargeFigures) { Compare(1, 150, 200, AT_ORIGIN); }

TEST_P(TriangulateOf, FiguresInProjectedCoordinates) { Compare(100, 3, 40, AT_UTM); }

TEST_P(TriangulateOf, FiguresWhoseCoordinatesAreRoundedHard) { Compare(100, 3, 40, FAR_OUT); }

TEST_P(TriangulateOf, FiguresWithSomeHeightsNotANumber) {
  Compare(100, 3, 40, AT_ORIGIN, [](std::vector<TPoint>& figure, Dice& dice) {
    for (TPoint& v : figure) {
      if (dice.OneIn(3)) v.z = NOT_A_NUMBER;
    }
  });
}

TEST_P(TriangulateOf, FiguresWithSomeCoordinatesNotANumber) {
  Compare(100, 3, 40, AT_ORIGIN, [](std::vector<TPoint>& figure, Dice& dice) {
    for (TPoint& v : figure) {
      if (dice.OneIn(6)) (dice.OneIn(2) ? v.x : v.y) = NOT_A_NUMBER;
    }
  });
}

TEST_P(TriangulateOf, FiguresWithSomeCoordinatesOutOfScale) {
  static constexpr double ODD[] = {
      0.0,    -0.0,  5e-324, 1e-310, -1e-200,
      1e-120, 1e120, -1e160, 1e308,  std::numeric_limits<double>::infinity()};
  Compare(200, 3, 30, AT_ORIGIN, [](std::vector<TPoint>& figure, Dice& dice) {
    for (TPoint& v : figure) {
      if (dice.OneIn(5)) (dice.OneIn(2) ? v.x : v.y) = ODD[dice.Below(std::size(ODD))];
    }
  });
}

// A vertex a few rounding steps off the level of another one, or off an edge.
TEST_P(TriangulateOf, FiguresThatAreLevelUpToRounding) {
  Compare(200, 3, 30, AT_ORIGIN, [](std::vector<TPoint>& figure, Dice& dice) {
    for (TPoint& v : figure) {
      TPoint const& other = figure[dice.Below(static_cast<int>(figure.size()))];
      if (dice.OneIn(2)) v.y = other.y * (1.0 + dice.Below(5) * 2.3e-16);
      if (dice.OneIn(4)) v.x = other.x * (1.0 + dice.Below(5) * 2.3e-16);
    }
  });
}

TEST_P(TriangulateOf, FiguresOfExtremeSize) {
  for (double const scale : EXTREME_SCALES) {
    SCOPED_TRACE(scale);
    Compare(5, 3, 30, AT_ORIGIN, [=](std::vector<TPoint>& figure, Dice&) {
      for (TPoint& v : figure) v = v * scale;
    });
  }
}

INSTANTIATE_TEST_SUITE_P(All, TriangulateOf, ::testing::ValuesIn(ALL_FIGURES),
                         [](auto const& instance) { return NameOf(instance.param); });

}  // namespace
