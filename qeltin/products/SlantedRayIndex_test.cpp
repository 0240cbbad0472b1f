#include "qeltin/products/SlantedRayIndex.h"

#include <gtest/gtest.h>

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

TEST(SlantedRayIndex, HoldsNothingWithoutVertices) {
  EXPECT_FALSE(SlantedRayIndex({}).Contains(TPoint(0, 0)));
}

}  // namespace
