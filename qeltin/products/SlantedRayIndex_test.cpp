#include "qeltin/products/SlantedRayIndex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "testing/FigureCases.h"
#include "testing/MakeFigure.h"
#include "testing/reference/StatedPolygon.h"

namespace {

using namespace qeltin::testing;
using qeltin::detail::SlantedRayIndex;

void ExpectSameAnswers(std::vector<TPoint> const& figure, int places, Dice& dice) {
  SlantedRayIndex const index(figure);
  for (int i = 0; i < places; ++i) {
    TPoint const place = PlaceAbout(figure, dice);
    ASSERT_EQ(index.Contains(place), stated::PointInPolygon(figure, place))
        << "at " << place.x << ", " << place.y;
  }
}

class SlantedRayIndexOf : public ::testing::TestWithParam<Figure> {
 protected:
  void Compare(int rounds, int largest, Frame const& frame) {
    OnFigures(GetParam(), rounds, largest, frame, ExpectSameAnswers);
  }
};

TEST_P(SlantedRayIndexOf, SmallFigures) { Compare(200, 40, AT_ORIGIN); }

TEST_P(SlantedRayIndexOf, LargeFigures) { Compare(10, 2000, AT_ORIGIN); }

TEST_P(SlantedRayIndexOf, FiguresInProjectedCoordinates) { Compare(50, 300, AT_UTM); }

TEST_P(SlantedRayIndexOf, FiguresWhoseCoordinatesAreRoundedHard) { Compare(50, 300, FAR_OUT); }

// The ray then rises by next to nothing, and rounding decides on many edges.
TEST_P(SlantedRayIndexOf, FiguresThatAreLevelUpToRounding) {
  Dice dice(TestSeed());
  for (int round = 0; round < 300 && !HasFatalFailure(); ++round) {
    std::vector<TPoint> figure = MakeFigure(GetParam(), 30, dice.Bits());
    double const step = dice.OneIn(2) ? 2.3e-16 : 1e-13;
    for (TPoint& v : figure) {
      TPoint const& other = figure[dice.Below(static_cast<int>(figure.size()))];
      if (dice.OneIn(2)) v.y = other.y * (1.0 + dice.Below(5) * step);
      if (dice.OneIn(4)) v.x = other.x * (1.0 + dice.Below(5) * step);
    }
    ExpectSameAnswers(figure, 100, dice);
  }
}

TEST_P(SlantedRayIndexOf, FiguresWithCoordinatesOutOfScale) {
  OnFiguresOutOfScale(GetParam(), ExpectSameAnswers);
}

TEST_P(SlantedRayIndexOf, FiguresOfExtremeSize) {
  OnFiguresOfExtremeSize(GetParam(), ExpectSameAnswers);
}

INSTANTIATE_TEST_SUITE_P(All, SlantedRayIndexOf, ::testing::ValuesIn(ALL_FIGURES),
                         [](auto const& instance) { return NameOf(instance.param); });

// Vertices in pairs whose levels differ by rounding only, asked at the middle of two that are.
TEST(SlantedRayIndex, AMirroredFigureIsAskedBetweenItsVertices) {
  Dice dice(TestSeed());
  for (Frame const& frame : {AT_ORIGIN, AT_UTM}) {
    for (int round = 0; round < 60; ++round) {
      int const count = 4 + dice.Below(200);
      double const bend = dice.Between(-50.0, 50.0);
      std::vector<TPoint> figure;
      for (int i = 0; i <= count; ++i) {
        double const t = static_cast<double>(i) / count;
        figure.emplace_back(frame.east + 100 * t, frame.north + bend * t * (1 - t));
      }
      figure.emplace_back(frame.east + 100, frame.north - 80);
      figure.emplace_back(frame.east, frame.north - 80);
      SlantedRayIndex const index(figure);
      for (std::size_t i = 0; i < figure.size(); ++i) {
        TPoint const& a = figure[i];
        for (std::size_t j :
             {i, i + 1, i + 2, figure.size() - 3 - std::min(i, figure.size() - 3)}) {
          TPoint const& b = figure[j % figure.size()];
          TPoint const place((a.x + b.x) / 2, (a.y + b.y) / 2);
          ASSERT_EQ(index.Contains(place), stated::PointInPolygon(figure, place))
              << i << " and " << j << " of " << count << ", bend " << bend;
        }
      }
    }
  }
}

TEST(SlantedRayIndex, AFigureWithoutHeightHoldsNothing) {
  std::vector<TPoint> const figure{{0, 5}, {10, 5}, {3, 5}};
  for (double x : {0.0, 3.0, 5.0, 10.0}) {
    EXPECT_FALSE(SlantedRayIndex(figure).Contains(TPoint(x, 5)));
    EXPECT_FALSE(stated::PointInPolygon(figure, TPoint(x, 5)));
  }
}

TEST(SlantedRayIndex, HoldsNothingWithoutVertices) {
  EXPECT_FALSE(SlantedRayIndex({}).Contains(TPoint(0, 0)));
}

}  // namespace
