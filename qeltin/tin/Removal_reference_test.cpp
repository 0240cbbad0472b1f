#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/RealSurveys.h"
#include "testing/SurveyAtPlace.h"
#include "testing/VerifySurface.h"
#include "testing/reference/Twin.h"

// Removal against its plain version: the same removals must leave the same surface and the same
// map, slot by slot and bit by bit.

namespace {

using qeltin::testing::AllSurveysAtAllPlaces;
using qeltin::testing::Dice;
using qeltin::testing::MakeSurvey;
using qeltin::testing::NameOfParam;
using qeltin::testing::ReadPoints;
using qeltin::testing::RealSurveys;
using qeltin::testing::SurfaceRules;
using qeltin::testing::SurveyAtPlace;
using qeltin::testing::TestSeed;
using qeltin::testing::Twin;
using qeltin::testing::VerifySurface;

class RemovalReference : public ::testing::TestWithParam<SurveyAtPlace> {};

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
    twin.Build(MakeSurvey(GetParam(), count, dice.Bits()));
    twin.BuildPointMap();
    RemoveAtRandom(twin, 6 * count, false, dice);
    ASSERT_EQ(twin.Fault(), "") << count << " points";
  }
}

TEST_P(RemovalReference, AnyPointsUntilFewAreLeft) {
  Dice dice(TestSeed());
  for (int count : {1, 2, 3, 5, 8, 13, 30, 100, 300}) {
    Twin twin(1 + count / 20);
    twin.Build(MakeSurvey(GetParam(), count, dice.Bits()));
    twin.BuildPointMap();
    RemoveAtRandom(twin, 6 * count, true, dice);
    ASSERT_EQ(twin.Fault(), "") << count << " points";
  }
}

INSTANTIATE_TEST_SUITE_P(All, RemovalReference, AllSurveysAtAllPlaces(), NameOfParam);

// --- Real surveys -----------------------------------------------------------------------------

TEST(RemovalReferenceSurveys, AreEqualAndCompactToASoundSurface) {
  if (RealSurveys().empty()) GTEST_SKIP() << "QELTIN_SURVEYS names no folder of surveys";
  Dice dice(TestSeed());
  for (auto const& path : RealSurveys()) {
    std::vector<TPoint> const points = ReadPoints(path);
    int const count = static_cast<int>(points.size());
    Twin twin(count);
    twin.Build(points);
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
