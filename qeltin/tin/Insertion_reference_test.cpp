#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/MakeSurvey.h"
#include "testing/VerifySurface.h"
#include "testing/reference/Twin.h"

// Insertion against its plain version: the same calls must leave the same surface, slot by slot and
// bit by bit.

namespace {

using qeltin::testing::ALL_SURVEYS;
using qeltin::testing::AT_UTM;
using qeltin::testing::Dice;
using qeltin::testing::Extent;
using qeltin::testing::ExtentOf;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Place;
using qeltin::testing::PLACES;
using qeltin::testing::SurfaceReport;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::Twin;
using qeltin::testing::VerifySurface;

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

void InitFor(Twin& twin, std::vector<TPoint> const& points) {
  Extent const extent = ExtentOf(points);
  twin.Init(static_cast<int>(points.size()), extent.min, extent.max);
}

TPoint Within(Extent const& extent, double margin, Dice& dice) {
  double const dx = margin * (extent.max.x - extent.min.x);
  double const dy = margin * (extent.max.y - extent.min.y);
  double const x = dice.Between(extent.min.x - dx, extent.max.x + dx);
  return {x, dice.Between(extent.min.y - dy, extent.max.y + dy), dice.Unit()};
}

using SurveyAtPlace = std::tuple<Survey, Place>;

class InsertionReference : public ::testing::TestWithParam<SurveyAtPlace> {
 protected:
  std::vector<TPoint> Points(int count, std::uint64_t seed) const {
    return MakeSurvey(std::get<0>(GetParam()), count, seed, std::get<1>(GetParam()).frame);
  }
};

TEST_P(InsertionReference, SmallSurfacesAreEqualAfterEveryPoint) {
  std::uint64_t const seed = TestSeed();
  for (int count : {1, 2, 3, 4, 5, 7, 10, 20, 33, 60, 100}) {
    for (std::uint64_t run = 0; run < 4; ++run) {
      std::vector<TPoint> const points = Points(count, seed + run);
      Twin twin;
      InitFor(twin, points);
      twin.AddPoints(points);
      ASSERT_EQ(twin.Fault(), "") << count << " points, run " << run;
      EXPECT_FALSE(twin.IsStopped());
    }
  }
}

TEST_P(InsertionReference, LargeSurfacesAreEqual) {
  std::uint64_t const seed = TestSeed();
  for (int count : {333, 1000, 3000}) {
    std::vector<TPoint> const points = Points(count, seed);
    Twin twin(count / 12);
    InitFor(twin, points);
    twin.AddPoints(points);
    twin.Compare();
    ASSERT_EQ(twin.Fault(), "") << count << " points";
    EXPECT_FALSE(twin.IsStopped());
  }
}

TEST_P(InsertionReference, QueriesBetweenInsertionsMakeNoDifference) {
  Dice dice(TestSeed());
  std::vector<TPoint> const points = Points(300, dice.Bits());
  Extent const extent = ExtentOf(points);
  Twin twin(7);
  InitFor(twin, points);
  for (TPoint const& p : points) {
    twin.AddPoint(p);
    if (dice.OneIn(2)) twin.Query(Within(extent, 0.3, dice));
    if (dice.OneIn(9)) twin.Query(Within(extent, 12.0, dice));  // past the world box, too
    if (dice.OneIn(9)) twin.Query(p);
  }
  twin.Compare();
  EXPECT_EQ(twin.Fault(), "");
}

TEST_P(InsertionReference, CreateIsEqual) {
  std::uint64_t const seed = TestSeed();
  int compared = 0;
  for (int count : {1, 2, 3, 4, 6, 9, 15, 30, 60}) {
    for (std::uint64_t run = 0; run < 4; ++run) {
      std::vector<IPoint> input;
      for (TPoint const& p : Points(count, seed + run)) input.push_back({p.x, p.y, p.z});
      Twin twin;
      twin.Create(input);
      ASSERT_EQ(twin.Fault(), "") << count << " points, run " << run;
      if (!twin.IsStopped()) ++compared;
    }
  }
  if (std::get<0>(GetParam()) != Survey::CollinearAxis) {
    EXPECT_GT(compared, 4);  // the others met a place that chance decides
  }
}

TEST_P(InsertionReference, BoundsThatStartAtTwoPointsAndGrowAreEqual) {
  std::vector<TPoint> const points = Points(400, TestSeed());
  Extent const extent = ExtentOf(points);
  Twin twin(11);
  twin.Create({{extent.min.x, extent.min.y, 0.0}, {extent.max.x, extent.max.y, 0.0}});
  twin.AddPoints(points);
  twin.Compare();
  EXPECT_EQ(twin.Fault(), "");
}

TEST_P(InsertionReference, TheSameSetTwiceIsEqual) {
  std::vector<TPoint> const points = Points(150, TestSeed());
  Twin twin(5);
  InitFor(twin, points);
  twin.AddPoints(points);
  twin.AddPoints(points);
  twin.Compare();
  EXPECT_EQ(twin.Fault(), "");
}

TEST_P(InsertionReference, ASurfaceWithAPointMapIsEqual) {
  std::vector<TPoint> const points = Points(200, TestSeed());
  Twin twin(9);
  InitFor(twin, points);
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (i % 70 == 40) twin.BuildPointMap();
    twin.AddPoint(points[i]);
  }
  twin.Compare();
  EXPECT_EQ(twin.Fault(), "");
}

TEST_P(InsertionReference, ASurfaceSeededAnewAfterRemoveAllPointsIsEqual) {
  std::vector<TPoint> const points = Points(60, TestSeed());
  Twin twin;
  InitFor(twin, points);
  twin.AddPoints(points);
  for (int round = 0; round < 3; ++round) {
    twin.RemoveAllPoints();
    twin.AddPoints(points);
  }
  EXPECT_EQ(twin.Fault(), "");
}

std::string NameOfParam(::testing::TestParamInfo<SurveyAtPlace> const& info) {
  return std::string(NameOf(std::get<0>(info.param))) + std::get<1>(info.param).name;
}

INSTANTIATE_TEST_SUITE_P(All, InsertionReference,
                         ::testing::Combine(::testing::ValuesIn(ALL_SURVEYS),
                                            ::testing::ValuesIn(PLACES)),
                         NameOfParam);

// --- Surfaces that a survey gives are sound, and nearly all locations were compared -----------

class SoundSurveys : public ::testing::TestWithParam<SurveyAtPlace> {};

TEST_P(SoundSurveys, AreSoundInBothVersions) {
  std::vector<TPoint> const points =
      MakeSurvey(std::get<0>(GetParam()), 1500, TestSeed(), std::get<1>(GetParam()).frame);
  Twin twin(500);
  InitFor(twin, points);
  twin.AddPoints(points);
  twin.Compare();
  ASSERT_EQ(twin.Fault(), "");
  SurfaceReport const report = VerifySurface(twin.Tin());
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(report.vertices + report.loosePoints, twin.Tin().GetNumberOfPoints());
}

INSTANTIATE_TEST_SUITE_P(All, SoundSurveys,
                         ::testing::Combine(::testing::Values(Survey::Uniform, Survey::Clusters,
                                                              Survey::Swaths, Survey::JitteredGrid,
                                                              Survey::ExactGrid, Survey::SingleBeam,
                                                              Survey::Cocircular,
                                                              Survey::TwoIslands, Survey::Spiral),
                                            ::testing::Values(PLACES[0], PLACES[1])),
                         NameOfParam);

TEST(InsertionReferenceShare, MostLocationsOfATrackAreComparedWithoutChance) {
  std::vector<TPoint> const points = MakeSurvey(Survey::Swaths, 3000, TestSeed(), AT_UTM);
  Twin twin(1000);
  InitFor(twin, points);
  twin.AddPoints(points);
  EXPECT_EQ(twin.Fault(), "");
  EXPECT_GT(twin.SureLocations(), 9 * twin.ChanceLocations());
}

// --- Inputs that ask for trouble --------------------------------------------------------------

TEST(InsertionReferenceEdge, NotANumberInPlanIsRefused) {
  Twin twin;
  twin.Init(50, TPoint(0, 0, 0), TPoint(10, 10, 10));
  for (double bad : {NOT_A_NUMBER, INF, -INF, 1e300}) {
    twin.AddPoint({bad, 5, 0});
    twin.AddPoint({5, bad, 0});
    twin.AddPoint({bad, bad, bad});
  }
  EXPECT_EQ(twin.Tin().GetNumberOfPoints(), 0);
  twin.AddPoint({5, 5, 0});
  twin.AddPoint({NOT_A_NUMBER, 5, 0});
  EXPECT_EQ(twin.Fault(), "");
}

TEST(InsertionReferenceEdge, HeightsThatAreNoNumbersAreEqual) {
  Dice dice(TestSeed());
  double const heights[] = {NOT_A_NUMBER, INF, -INF, 0.0, -0.0, 1.0, 1e308};
  for (int run = 0; run < 100; ++run) {
    Twin twin;
    twin.Init(60, TPoint(0, 0, 0), TPoint(10, 10, 10));
    for (int i = 0; i < 60; ++i) {
      double const x = dice.Between(-2.0, 12.0);
      double const y = dice.Between(-2.0, 12.0);
      twin.AddPoint({x, y, heights[dice.Below(run % 7 + 1)]});
    }
    ASSERT_EQ(twin.Fault(), "") << "run " << run;
  }
}

TEST(InsertionReferenceEdge, AHeightThatTheHostMakesNotANumberIsEqual) {
  Twin twin;
  twin.Init(59, TPoint(400000, 4900000, 0), TPoint(405000, 4905000, 0));
  twin.AddPoint({403315.55820254429, 4901226.7565349415, INF});
  twin.SetHeight(4, NOT_A_NUMBER);
  twin.AddPoint({403814.34550824593, 4901411.3078380506, 0});
  EXPECT_EQ(twin.Fault(), "");
}

TEST(InsertionReferenceEdge, ASlotInUseThatIsTakenAsANewOneIsEqual) {
  Twin twin;
  twin.Init(84, TPoint(0, 0, 0), TPoint(600, 600, 0));
  twin.AddPoint({332.23146535204887, 122.92564218025808, 1});
  twin.RemoveTriangle(2, true);  // drops the last triangle from the live order instead
  twin.AddPoint({372.60895245140142, 137.86531240701851, 0.60285903259869089});
  EXPECT_EQ(twin.Fault(), "");
}

TEST(InsertionReferenceEdge, AHoleThatSwallowsVerticesLeavesMarkedTrianglesBehind) {
  Twin twin;
  twin.Init(107, TPoint(400000, 4900000, 0), TPoint(402000, 4902000, 0));
  twin.AddPoint({400000, 4901000, 0.5});
  twin.AddFrom({401000, 4902000, 0}, 3);
  twin.AddPoint({401000, 4900000, 0.75});
  twin.AddFrom({400000, 4902000, 1}, 2);
  twin.AddFrom({400000, 4901000, 0}, 8);
  twin.AddPoint({402000, 4901000, 0});
  twin.AddFrom({400000, 4901000, 0.875}, 8);  // a marked triangle as the start
  EXPECT_EQ(twin.Fault(), "");
}

TEST(InsertionReferenceEdge, PointsOnTheWorldBoxAndItsCornersAreEqual) {
  Dice dice(TestSeed());
  for (Place const& place : PLACES) {
    TPoint const min(place.frame.east, place.frame.north);
    TPoint const max(min.x + 10, min.y + 20);
    TPoint const low(min.x - 10 * (max.x - min.x), min.y - 10 * (max.y - min.y));
    TPoint const high(max.x + 10 * (max.x - min.x), max.y + 10 * (max.y - min.y));
    Twin twin;
    twin.Init(100, min, max);
    for (int i = 0; i < 60; ++i) {
      TPoint p(dice.Between(low.x, high.x), dice.Between(low.y, high.y), dice.Unit());
      (dice.OneIn(2) ? p.x : p.y) = 0.0;
      if (p.x == 0.0) p.x = dice.OneIn(2) ? low.x : high.x;
      if (p.y == 0.0) p.y = dice.OneIn(2) ? low.y : high.y;
      twin.AddPoint(p);
    }
    for (double x : {low.x, high.x}) {
      for (double y : {low.y, high.y}) {
        twin.AddPoint({x, y, 7});
        twin.AddPoint({std::nextafter(x, INF), y, 7});
        twin.AddPoint({x, std::nextafter(y, -INF), 7});
        twin.AddPoint({x + 0.002, y - 0.002, 7});
        twin.AddPoint({x - 0.002, y + 0.002, 7});
      }
    }
    EXPECT_EQ(twin.Fault(), "") << place.name;
  }
}

TEST(InsertionReferenceEdge, ExtentsOfAnySizeAreEqual) {
  std::uint64_t const seed = TestSeed();
  double const sizes[] = {1e-300, 1e-200, 1e-160, 1e-20, 1e-9,  1e-7,  1e-5,  1e-3, 1e5,
                          1e9,    1e12,   1e75,   1e100, 1e154, 1e200, 1e305, 1e308};
  for (double size : sizes) {
    for (Survey survey : {Survey::Uniform, Survey::ExactGrid, Survey::CollinearSkew}) {
      std::vector<TPoint> points = MakeSurvey(survey, 120, seed);
      for (TPoint& p : points) p = TPoint(p.x / 1000 * size, p.y / 1000 * size, p.z);
      Twin twin(3);
      InitFor(twin, points);
      twin.AddPoints(points);
      twin.Compare();
      ASSERT_EQ(twin.Fault(), "") << survey << " of size " << size;
    }
  }
}

TEST(InsertionReferenceEdge, BoxesWithoutWidthOrTurnedOverAreEqual) {
  for (TPoint const& max : {TPoint(0, 0), TPoint(0, 5), TPoint(5, 0), TPoint(-5, -5),
                            TPoint(NOT_A_NUMBER, 5), TPoint(INF, INF), TPoint(5, -5)}) {
    Twin twin;
    twin.Init(30, TPoint(0, 0), max);
    for (int i = 0; i < 30; ++i) twin.AddPoint(TPoint(i % 6 - 1.0, i / 6 - 1.0, i));
    twin.Compare();
    EXPECT_EQ(twin.Fault(), "") << max.x << " " << max.y;
  }
}

TEST(InsertionReferenceEdge, TheHubOfAWheelOpensAHoleOfAnySize) {
  for (Place const& place : PLACES) {
    for (int spokes : {3, 5, 14, 15, 16, 17, 18, 31, 32, 33, 64, 200, 700}) {
      std::vector<TPoint> points;
      for (int i = 0; i < spokes; ++i) {
        double const angle = 6.283185307179586 * i / spokes;
        points.emplace_back(place.frame.east + 50 + 40 * std::cos(angle),
                            place.frame.north + 50 + 40 * std::sin(angle), i);
      }
      points.emplace_back(place.frame.east + 50.1, place.frame.north + 49.9, -1);
      Twin twin(spokes / 4);
      InitFor(twin, points);
      twin.AddPoints(points);
      twin.Compare();
      ASSERT_EQ(twin.Fault(), "") << place.name << ", " << spokes << " spokes";
    }
  }
}

// A sounding each half metre on nearly straight tracks 20 m apart, to the centimetre. In a wide
// world box, rounding decides about circles through its corners.
std::vector<TPoint> LongTracks(int count, int per_track) {
  std::vector<TPoint> points;
  for (int i = 0; i < count; ++i) {
    int const track = i / per_track;
    int const step = track % 2 == 0 ? i % per_track : per_track - 1 - i % per_track;
    double const along = 0.5 * step + 0.02 * std::sin(7.0 * i);
    double const across = 20.0 * track + 0.4 * std::sin(along / 40.0);
    double const x = 4.0e5 + 0.8 * along - 0.6 * across;
    double const y = 4.9e6 + 0.6 * along + 0.8 * across;
    points.emplace_back(std::round(x * 100.0) / 100.0, std::round(y * 100.0) / 100.0, step);
  }
  return points;
}

// As in a world box that reaches more than a hundred widths beyond the points.
void AddInWideBox(Twin& twin, std::vector<TPoint> const& points) {
  Extent const extent = ExtentOf(points);
  TPoint const max(extent.min.x + 11 * (extent.max.x - extent.min.x),
                   extent.min.y + 11 * (extent.max.y - extent.min.y));
  twin.Init(static_cast<int>(points.size()), extent.min, max);
  twin.AddPoints(points);
  twin.Compare();
}

TEST(InsertionReferenceEdge, LongTracksThatRoundingBreaksAreEqual) {
  Twin twin(1000);
  AddInWideBox(twin, LongTracks(2000, 1000));
  ASSERT_EQ(twin.Fault(), "");
  EXPECT_FALSE(VerifySurface(twin.Tin()).Ok());
}

TEST(InsertionReferenceEdge, RowsOfAGridThatMeetTheWholeRowBeforeAreEqual) {
  for (Place const& place : PLACES) {
    std::vector<TPoint> points;
    for (int i = 0; i < 1200; ++i) {
      points.emplace_back(place.frame.east + i % 150, place.frame.north + i / 150, i);
    }
    Twin twin(400);
    AddInWideBox(twin, points);
    ASSERT_EQ(twin.Fault(), "") << place.name;
    EXPECT_GT(twin.SureLocations(), 0);
  }
}

TEST(InsertionReferenceEdge, AFullPointPoolIsEqual) {
  Twin twin;
  twin.Init(-990, TPoint(0, 0, 0), TPoint(10, 10, 10));  // room for 14 points
  Dice dice(TestSeed());
  for (int i = 0; i < 40; ++i) {
    twin.AddPoint({dice.Between(0.0, 10.0), dice.Between(0.0, 10.0), 0});
  }
  EXPECT_EQ(twin.Tin().GetNumberOfPoints(), 14);
  EXPECT_EQ(twin.Fault(), "");
}

TEST(InsertionReferenceEdge, ZerosOfBothSignsAreEqual) {
  Dice dice(TestSeed());
  double const coordinates[] = {0.0, -0.0, 1.0, -1.0, 0.5, -0.5};
  for (int run = 0; run < 50; ++run) {
    Twin twin;
    twin.Init(40, TPoint(-1, -1, -1), TPoint(1, 1, 1));
    for (int i = 0; i < 40; ++i) {
      double const x = coordinates[dice.Below(6)];
      double const y = coordinates[dice.Below(6)];
      twin.AddPoint({x, y, coordinates[dice.Below(6)]});
    }
    ASSERT_EQ(twin.Fault(), "") << "run " << run;
  }
}

}  // namespace
