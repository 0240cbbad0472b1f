#pragma once

#include <gtest/gtest.h>

#include <iterator>
#include <limits>
#include <vector>

#include "testing/MakeFigure.h"

// Figures of one kind that an index over a figure has to answer for as its plain version does.
// `expect` is called with a figure, a number of places to ask about, and dice.
namespace qeltin::testing {

template <typename Expect>
void OnFigures(Figure kind, int rounds, int largest, Frame const& frame, Expect const& expect) {
  Dice dice(TestSeed());
  for (int round = 0; round < rounds && !::testing::Test::HasFatalFailure(); ++round) {
    int const count = 1 + dice.Below(largest);
    std::uint64_t const seed = dice.Bits();
    SCOPED_TRACE(::testing::Message() << "count " << count << ", figure seed " << seed);
    expect(MakeFigure(kind, count, seed, frame), 100, dice);
  }
}

template <typename Expect>
void OnFiguresOutOfScale(Figure kind, Expect const& expect) {
  static constexpr double ODD[] = {-0.0,
                                   5e-324,
                                   1e-200,
                                   1e120,
                                   1e308,
                                   std::numeric_limits<double>::infinity(),
                                   std::numeric_limits<double>::quiet_NaN()};
  Dice dice(TestSeed());
  for (int round = 0; round < 100 && !::testing::Test::HasFatalFailure(); ++round) {
    std::vector<TPoint> figure = MakeFigure(kind, 20, dice.Bits());
    for (TPoint& v : figure) {
      if (dice.OneIn(8)) (dice.OneIn(2) ? v.x : v.y) = ODD[dice.Below(std::size(ODD))];
    }
    expect(figure, 50, dice);
  }
}

template <typename Expect>
void OnFiguresOfExtremeSize(Figure kind, Expect const& expect) {
  Dice dice(TestSeed());
  for (double const scale : EXTREME_SCALES) {
    for (int round = 0; round < 10 && !::testing::Test::HasFatalFailure(); ++round) {
      std::vector<TPoint> figure = MakeFigure(kind, 20, dice.Bits());
      for (TPoint& v : figure) v = v * scale;
      SCOPED_TRACE(scale);
      expect(figure, 100, dice);
    }
  }
}

}  // namespace qeltin::testing
