#include <gtest/gtest.h>

#include <string>

#include "testing/MakeSurvey.h"
#include "testing/reference/TwinScript.h"

// Insertion and removal against their plain versions on surfaces that no survey gives: start
// triangles that do not hold the point, vertices in one place, turned triangles, pinched holes,
// triangles cut out.

namespace {

using qeltin::testing::Dice;
using qeltin::testing::TestSeed;
using qeltin::testing::Twin;
using qeltin::testing::TwinScript;

#ifdef NDEBUG
constexpr int RUNS = 1000;
#else
constexpr int RUNS = 150;  // asserts and sanitizers cost their time
#endif

struct Life {
  char const* name;
  TwinScript::Shares shares;
};

void PrintTo(Life const& life, std::ostream* out) { *out << life.name; }

constexpr Life LIVES[] = {
    {"PlainPoints", {.find = 10}},
    {"WrongStarts", {.addFrom = 30, .find = 10}},
    {"MostlyWrongStarts", {.addFrom = 300, .find = 30}},
    {"HeightsWithoutNumbers", {.find = 10, .heightsWithoutNumbers = true}},
    {"WrongStartsAndHeightsWithoutNumbers", {.addFrom = 30, .heightsWithoutNumbers = true}},
    {"HeightsMoved", {.setHeight = 5}},
    {"HeightsMadeNotANumber", {.setHeight = 5, .heightsWithoutNumbers = true}},
    {"TrianglesCutOff", {.find = 5, .cutOff = 3}},
    {"TrianglesCutOffAndWrongStarts", {.addFrom = 20, .cutOff = 3}},
    {"TrianglesReleased", {.find = 5, .release = 3}},
    {"WithAMap", {.addFrom = 5, .buildMap = 3}},
    {"PointsTakenOut", {.find = 5, .buildMap = 10, .takeOut = 60}},
    {"PointsTakenOutOfBrokenFans",
     {.addFrom = 20, .cutOff = 5, .release = 1, .buildMap = 10, .takeOut = 60}},
    {"PointsTakenOutWithHeightsWithoutNumbers",
     {.setHeight = 5, .buildMap = 10, .takeOut = 60, .heightsWithoutNumbers = true}},
    {"PointsRemoved", {.addFrom = 5, .find = 5, .removeAll = 1}},
    {"SavedAndLoaded", {.find = 5, .saveAndLoad = 3}},
    {"WrongStartsSavedAndLoaded", {.addFrom = 30, .removeAll = 1, .saveAndLoad = 3}},
    {"Everything",
     {.addFrom = 20,
      .find = 10,
      .cutOff = 1,
      .release = 1,
      .setHeight = 2,
      .buildMap = 1,
      .takeOut = 3,
      .removeAll = 1,
      .saveAndLoad = 1,
      .heightsWithoutNumbers = true}},
};

class InsertionFuzz : public ::testing::TestWithParam<Life> {};

TEST_P(InsertionFuzz, EndsInEqualSurfaces) {
  Dice dice(TestSeed());
  int sure = 0;
  int stopped = 0;
  for (int run = 0; run < RUNS; ++run) {
    TwinScript const script = TwinScript::Draw(dice, GetParam().shares);
    Twin twin;
    std::string const difference = script.Play(twin);
    ASSERT_EQ(difference, "") << "run " << run << ", in short:\n"
                              << script.Shrunk() << script.Shrunk().Play();
    sure += twin.SureLocations();
    if (twin.IsStopped()) ++stopped;
  }
  EXPECT_GT(sure, RUNS * 5);
  EXPECT_LT(stopped, RUNS / 20);  // the pool of triangles was full
}

INSTANTIATE_TEST_SUITE_P(Lives, InsertionFuzz, ::testing::ValuesIn(LIVES),
                         [](auto const& life) { return std::string(life.param.name); });

}  // namespace
