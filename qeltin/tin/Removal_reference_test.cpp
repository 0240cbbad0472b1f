#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/MakeSurvey.h"
#include "testing/RealSurveys.h"
#include "testing/VerifySurface.h"
#include "testing/reference/Twin.h"

// Removal against its plain version: the same removals must leave the same surface and the same
// map, slot by slot and bit by bit.

namespace {

using qeltin::testing::ALL_SURVEYS;
using qeltin::testing::Dice;
using qeltin::testing::Extent;
using qeltin::testing::ExtentOf;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Place;
using qeltin::testing::PLACES;
using qeltin::testing::ReadPoints;
using qeltin::testing::RealSurveys;
using qeltin::testing::SurfaceRules;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::Twin;
using qeltin::testing::VerifySurface;

using SurveyAtPlace = std::tuple<Survey, Place>;

class RemovalReference : public ::testing::TestWithParam<SurveyAtPlace> {
 protected:
  static void Build(Twin& twin, int count, std::uint64_t seed) {
    std::vector<TPoint> const points =
        MakeSurvey(std::get<0>(GetParam()), count, seed, std::get<1>(GetParam()).frame);
    Extent const extent = ExtentOf(points);
    twin.Init(count, extent.min, extent.max);
    twin.AddPoints(points);
    twin.BuildPointMap();
  }
};

// Removes live points at random, in the interior or anywhere, until `rounds` are over.
int RemoveAtRandom(Twin& twin, int rounds, bool hullToo, Dice& dice) {
  int removed = 0;
  for (int i = 0; i < rounds && twin.Fault().empty(); ++i) {
    int const position = dice.Below(twin.Tin().GetNumberOfPoints());
    if (!hullToo && twin.Tin().PointIsOnHull(twin.Tin().GetPoint(position))) continue;
    if (twin.RemovePoint(position)) ++removed;
  }
  twin.CompareAllSlots();
  return removed;
}

TEST_P(RemovalReference, InteriorPointsUntilFewAreLeft) {
  Dice dice(TestSeed());
  for (int count : {5, 8, 13, 30, 100, 300}) {
    Twin twin(1 + count / 20);
    Build(twin, count, dice.Bits());
    RemoveAtRandom(twin, 6 * count, false, dice);
    ASSERT_EQ(twin.Fault(), "") << count << " points";
  }
}

TEST_P(RemovalReference, AnyPointsUntilFewAreLeft) {
  Dice dice(TestSeed());
  for (int count : {1, 2, 3, 5, 8, 13, 30, 100, 300}) {
    Twin twin(1 + count / 20);
    Build(twin, count, dice.Bits());
    RemoveAtRandom(twin, 6 * count, true, dice);
    ASSERT_EQ(twin.Fault(), "") << count << " points";
  }
}

std::string NameOfParam(::testing::TestParamInfo<SurveyAtPlace> const& info) {
  return std::string(NameOf(std::get<0>(info.param))) + std::get<1>(info.param).name;
}

INSTANTIATE_TEST_SUITE_P(All, RemovalReference,
                         ::testing::Combine(::testing::ValuesIn(ALL_SURVEYS),
                                            ::testing::ValuesIn(PLACES)),
                         NameOfParam);

// --- Real surveys -----------------------------------------------------------------------------

TEST(RemovalReferenceSurveys, AreEqualAndCompactToASoundSurface) {
  if (RealSurveys().empty()) GTEST_SKIP() << "QELTIN_SURVEYS names no folder of surveys";
  Dice dice(TestSeed());
  for (auto const& path : RealSurveys()) {
    std::vector<TPoint> const points = ReadPoints(path);
    Extent const extent = ExtentOf(points);
    int const count = static_cast<int>(points.size());
    Twin twin(count);
    twin.Init(count, extent.min, extent.max);
    twin.AddPoints(points);
    twin.BuildPointMap();
    EXPECT_GT(RemoveAtRandom(twin, 2 * count, false, dice), count / 4);
    ASSERT_EQ(twin.Fault(), "") << path;
    EXPECT_TRUE(twin.Tin().Compact()) << path;
    SurfaceRules rules;
    rules.delaunay = false;
    auto const report = VerifySurface(twin.Tin(), rules);
    EXPECT_TRUE(report.Ok()) << path << report;
  }
}

}  // namespace
