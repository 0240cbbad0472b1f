#include "qeltin/products/ContainmentIndex.h"

#include <gtest/gtest.h>

#include <limits>

#include "testing/FigureCases.h"
#include "testing/MakeFigure.h"
#include "testing/reference/StatedPolygon.h"

namespace {

using namespace qeltin::testing;
using qeltin::detail::ContainmentIndex;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

void ExpectSameAnswers(std::vector<TPoint> const& figure, int places, Dice& dice) {
  ContainmentIndex const index{TPolygon(figure)};
  for (int i = 0; i < places; ++i) {
    TPoint const place = PlaceAbout(figure, dice);
    ASSERT_EQ(index.Contains(place.x, place.y), stated::XY_Contains(figure, place.x, place.y))
        << "at " << place.x << ", " << place.y;
  }
}

class ContainmentIndexOf : public ::testing::TestWithParam<Figure> {
 protected:
  void Compare(int rounds, int largest, Frame const& frame) {
    OnFigures(GetParam(), rounds, largest, frame, ExpectSameAnswers);
  }
};

TEST_P(ContainmentIndexOf, SmallFigures) { Compare(200, 40, AT_ORIGIN); }

TEST_P(ContainmentIndexOf, LargeFigures) { Compare(10, 2000, AT_ORIGIN); }

TEST_P(ContainmentIndexOf, FiguresInProjectedCoordinates) { Compare(50, 300, AT_UTM); }

TEST_P(ContainmentIndexOf, FiguresWhoseCoordinatesAreRoundedHard) { Compare(50, 300, FAR_OUT); }

TEST_P(ContainmentIndexOf, FiguresWithNearlyLevelEdges) {
  Dice dice(TestSeed());
  for (int round = 0; round < 200 && !HasFatalFailure(); ++round) {
    std::vector<TPoint> figure = MakeFigure(GetParam(), 30, dice.Bits(), AT_UTM);
    for (TPoint& v : figure) {
      if (dice.OneIn(2)) v.y = 4.9e6 + dice.Below(12) * 1e-9;
    }
    ExpectSameAnswers(figure, 100, dice);
  }
}

TEST_P(ContainmentIndexOf, FiguresWithCoordinatesOutOfScale) {
  OnFiguresOutOfScale(GetParam(), ExpectSameAnswers);
}

TEST_P(ContainmentIndexOf, FiguresOfExtremeSize) {
  OnFiguresOfExtremeSize(GetParam(), ExpectSameAnswers);
}

INSTANTIATE_TEST_SUITE_P(All, ContainmentIndexOf, ::testing::ValuesIn(ALL_FIGURES),
                         [](auto const& instance) { return NameOf(instance.param); });

TEST(ContainmentIndex, HoldsNothingBelowThreeVertices) {
  TPolygon polygon;
  EXPECT_FALSE(ContainmentIndex(polygon).Contains(0, 0));
  polygon.Add(0, 0, 0);
  polygon.Add(0, 2, 0);
  EXPECT_FALSE(ContainmentIndex(polygon).Contains(0, 1));
}

TEST(ContainmentIndex, AnswersPlacesThatAreNoNumbersAsThePolygonDoes) {
  TPolygon const square({TPoint(0, 0), TPoint(0, 10), TPoint(10, 10), TPoint(10, 0)});
  ContainmentIndex const index(square);
  static constexpr double ODD[] = {5, INFINITE, -INFINITE, NOT_A_NUMBER};
  for (double const x : ODD) {
    for (double const y : ODD) EXPECT_EQ(index.Contains(x, y), square.XY_Contains(x, y)) << x << y;
  }
}

TEST(ContainmentIndex, KeepsThePolygonItWasMadeOf) {
  TPolygon polygon({TPoint(0, 0), TPoint(0, 10), TPoint(10, 10), TPoint(10, 0)});
  ContainmentIndex const index(polygon);
  polygon.RemoveAll();
  EXPECT_TRUE(index.Contains(5, 5));
}

}  // namespace
