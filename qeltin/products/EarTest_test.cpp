#include "qeltin/products/EarTest.h"

#include <gtest/gtest.h>

#include "testing/MakeFigure.h"
#include "testing/reference/StatedPolygon.h"

namespace {

using namespace qeltin::testing;
using qeltin::detail::EarTest;

class EarTestOf : public ::testing::TestWithParam<Figure> {
 protected:
  // Three vertices in the order of the figure: side by side, near each other or anywhere.
  void Compare(int count, int ears, Frame const& frame) {
    Dice dice(TestSeed());
    std::vector<TPoint> const figure = MakeFigure(GetParam(), count, dice.Bits(), frame);
    EarTest const test(figure);
    for (int i = 0; i < ears; ++i) {
      int const reach = dice.OneIn(2) ? 1 : dice.OneIn(2) ? 10 : count / 3;
      int const a = dice.Below(count);
      int const b = a + 1 + dice.Below(reach);
      int const c = b + 1 + dice.Below(reach);
      TPoint const* const v = figure.data();
      ASSERT_EQ(test.IsEar(v[a], v[b % count], v[c % count]),
                stated::IsEar(figure, v[a], v[b % count], v[c % count]))
          << a << ", " << b << ", " << c;
    }
  }
};

TEST_P(EarTestOf, LargeFigures) { Compare(1500, 1500, AT_ORIGIN); }

TEST_P(EarTestOf, FiguresInProjectedCoordinates) { Compare(400, 1500, AT_UTM); }

TEST_P(EarTestOf, FiguresWhoseCoordinatesAreRoundedHard) { Compare(400, 1500, FAR_OUT); }

INSTANTIATE_TEST_SUITE_P(All, EarTestOf, ::testing::ValuesIn(ALL_FIGURES),
                         [](auto const& instance) { return NameOf(instance.param); });

TEST(EarTest, LowerLeftCornerThatStandsAgainAtAnotherHeightIsNoEar) {
  std::vector<TPoint> const figure{TPoint(0, 0, 0), TPoint(0, 10, 0), TPoint(10, 10, 0),
                                   TPoint(10, 0, 0)};
  EXPECT_TRUE(EarTest(figure).IsEar(figure[3], figure[0], figure[1]));
  std::vector<TPoint> doubled = figure;
  doubled.emplace_back(0, 0, 1);
  EXPECT_FALSE(EarTest(doubled).IsEar(figure[3], figure[0], figure[1]));
}

}  // namespace
