#include "testing/MakeSurvey.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using qeltin::testing::ALL_SURVEYS;
using qeltin::testing::AT_ORIGIN;
using qeltin::testing::AT_UTM;
using qeltin::testing::Dice;
using qeltin::testing::ExtentOf;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;

class MakeSurveyTest : public ::testing::TestWithParam<Survey> {};

TEST_P(MakeSurveyTest, MakesAsManyPointsAsAsked) {
  for (int count : {0, 1, 2, 100, 1000}) {
    EXPECT_EQ(MakeSurvey(GetParam(), count, 1).size(), static_cast<std::size_t>(count));
  }
}

TEST_P(MakeSurveyTest, TheSeedDecides) {
  EXPECT_EQ(MakeSurvey(GetParam(), 200, 7), MakeSurvey(GetParam(), 200, 7));
  if (GetParam() == Survey::ExactGrid || GetParam() == Survey::Spiral) return;
  EXPECT_NE(MakeSurvey(GetParam(), 200, 7), MakeSurvey(GetParam(), 200, 8));
}

TEST_P(MakeSurveyTest, TheFrameMovesThePoints) {
  auto const here = ExtentOf(MakeSurvey(GetParam(), 200, 7, AT_ORIGIN));
  auto const there = ExtentOf(MakeSurvey(GetParam(), 200, 7, AT_UTM));
  EXPECT_NEAR(there.min.x - here.min.x, 4.0e5, 0.02);
  EXPECT_NEAR(there.max.y - here.max.y, 4.9e6, 0.02);
}

INSTANTIATE_TEST_SUITE_P(All, MakeSurveyTest, ::testing::ValuesIn(ALL_SURVEYS),
                         [](auto const& kind) { return std::string(NameOf(kind.param)); });

TEST(MakeSurvey, ExactGridStandsOnWholeUnits) {
  std::vector<TPoint> const points = MakeSurvey(Survey::ExactGrid, 2500, 1);
  EXPECT_EQ(points[0].x, 0.0);
  EXPECT_EQ(points[51].x, 1.0);
  EXPECT_EQ(points[51].y, 1.0);
  EXPECT_EQ(points[2499].x, 49.0);
  EXPECT_EQ(points[2499].y, 49.0);
}

TEST(MakeSurvey, SingleBeamIsRoundedToCentimetres) {
  for (TPoint const& p : MakeSurvey(Survey::SingleBeam, 500, 1, AT_UTM)) {
    EXPECT_EQ(p.x, std::round(p.x * 100.0) / 100.0);
    EXPECT_EQ(p.y, std::round(p.y * 100.0) / 100.0);
  }
}

TEST(MakeSurvey, CocircularIsExactlyOnOneCircle) {
  double const radiusSq = 32045.0 * 32045.0;
  std::vector<TPoint> const points = MakeSurvey(Survey::Cocircular, 108, 1);
  for (TPoint const& p : points) EXPECT_EQ(p.x * p.x + p.y * p.y, radiusSq);
  for (std::size_t i = 0; i < points.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) EXPECT_FALSE(points[i].XY_EqualsTo(points[j]));
  }
}

TEST(MakeSurvey, DuplicatesComeExactlyAndNearly) {
  std::vector<TPoint> const points = MakeSurvey(Survey::Duplicates, 400, TestSeed());
  int exact = 0;
  int near = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (points[i].XY_EqualsTo(points[j])) {
        ++exact;
      } else if (points[i].XY_Distance(points[j]) < 0.003) {
        ++near;
      }
    }
  }
  EXPECT_GT(exact, 20);
  EXPECT_GT(near, 60);
}

TEST(MakeSurvey, CollinearAxisIsOnOneLine) {
  for (TPoint const& p : MakeSurvey(Survey::CollinearAxis, 100, 1, AT_UTM)) EXPECT_EQ(p.y, 4.9e6);
}

TEST(Dice, GivesTheSameNumbersEverywhere) {
  Dice dice(1);
  EXPECT_EQ(dice.Bits(), 10451216379200822465u);
  EXPECT_EQ(dice.Bits(), 13757245211066428519u);
}

TEST(Dice, StaysWithinItsLimits) {
  Dice dice(TestSeed());
  double sum = 0.0;
  for (int i = 0; i < 10000; ++i) {
    double const unit = dice.Unit();
    EXPECT_TRUE(unit >= 0.0 && unit < 1.0);
    int const below = dice.Below(7);
    EXPECT_TRUE(below >= 0 && below < 7);
    double const between = dice.Between(-3.0, 5.0);
    EXPECT_TRUE(between >= -3.0 && between <= 5.0);
    sum += dice.Normal();
  }
  EXPECT_LT(std::fabs(sum / 10000), 0.1);
}

TEST(TestSeed, ComesFromTheEnvironment) {
  char const* const before = std::getenv("QELTIN_TEST_SEED");
  std::string const kept = before == nullptr ? "" : before;
  setenv("QELTIN_TEST_SEED", "18446744073709551615", 1);
  EXPECT_EQ(TestSeed(), 18446744073709551615u);
  unsetenv("QELTIN_TEST_SEED");
  EXPECT_EQ(TestSeed(), TestSeed());
  if (before != nullptr) setenv("QELTIN_TEST_SEED", kept.c_str(), 1);
}

}  // namespace
