#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "qeltin/contour/TINContourCreator.h"
#include "qeltin/tin/TIN.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/reference/ReferenceContours.h"

// Contours against their plain version: the same lists, heights and marks, to the bit.

namespace {

using qeltin::testing::ALL_SURVEYS;
using qeltin::testing::Dice;
using qeltin::testing::ExtentOf;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Place;
using qeltin::testing::PLACES;
using qeltin::testing::ReferenceContourCreator;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;

std::atomic<bool> const RUNNING{true};

bool SameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

void ExpectSame(ContourList const& a, ContourList const& b) {
  ASSERT_EQ(a.Size(), b.Size());
  for (int i = 0; i < a.Size(); ++i) {
    ASSERT_EQ(a[i].Level(), b[i].Level());
    ASSERT_EQ(a[i].NumPoints(), b[i].NumPoints());
    for (int k = 0; k < a[i].NumPoints(); ++k) {
      ASSERT_TRUE(SameBits(a[i][k].x, b[i][k].x) && SameBits(a[i][k].y, b[i][k].y));
    }
  }
}

// The heights and marks that a run left, and how to go back to those before it.
class State {
 public:
  explicit State(TIN const& tin) {
    for (int i = 0; i < tin.GetNumberOfPoints(); ++i) m_Heights.push_back(tin.GetPoint(i)->z);
    for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
      m_Flags.push_back(tin.GetTriangle(i, true)->m_Flags);
    }
  }
  void Restore(TIN& tin) const {
    for (std::size_t i = 0; i < m_Heights.size(); ++i) {
      tin.GetPoint(static_cast<int>(i))->z = m_Heights[i];
    }
    for (std::size_t i = 0; i < m_Flags.size(); ++i) {
      tin.GetTriangle(static_cast<int>(i), true)->m_Flags = m_Flags[i];
    }
  }
  void ExpectSame(State const& other) const {
    ASSERT_EQ(m_Flags, other.m_Flags);
    for (std::size_t i = 0; i < m_Heights.size(); ++i) {
      ASSERT_TRUE(SameBits(m_Heights[i], other.m_Heights[i])) << "point " << i;
    }
  }

 private:
  std::vector<double> m_Heights;
  std::vector<unsigned char> m_Flags;
};

// Has the next run find its way as every other does.
void ForgetPlaces(TIN& tin) {
  TINPeer::Location(tin).Seat(&tin, TINPeer::Triangles(tin));
  std::srand(1);
}

void Build(TIN& tin, std::vector<TPoint> const& points) {
  auto const extent = ExtentOf(points);
  tin.Init(static_cast<int>(points.size()), extent.min, extent.max);
  for (TPoint const& p : points) tin.AddPoint(p);
}

// Heights on a coarse raster, so that vertices lie on levels, triangles are flat, and some heights
// are off by parts of a lift.
void Coarsen(TIN& tin, Dice& dice) {
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
    TPoint& p = *tin.GetPoint(i);
    p.z = std::floor(p.z);
    if (dice.OneIn(4)) p.z += (dice.Below(9) - 4) * 0.5e-8;
    if (dice.OneIn(500)) p.z = std::numeric_limits<double>::quiet_NaN();
  }
}

std::vector<double> LevelsFor(TIN const& tin, Dice& dice) {
  double lowest = 1e300;
  double highest = -1e300;
  for (int i = 0; i < tin.GetNumberOfPoints() - 4; ++i) {
    double const z = tin.GetPoint(i)->z;
    if (std::isnan(z)) continue;
    lowest = std::min(lowest, z);
    highest = std::max(highest, z);
  }
  std::vector<double> levels;
  for (int i = 0; i < 12; ++i) {
    double const level = dice.Between(lowest - 1, highest + 1);
    levels.push_back(dice.OneIn(2) ? std::floor(level) : level);
    if (dice.OneIn(3)) levels.push_back(levels.back() + (dice.Below(5) - 2) * 1e-8);
    if (dice.OneIn(6)) levels.push_back(levels[static_cast<std::size_t>(dice.Below(i + 1))]);
  }
  if (dice.OneIn(2)) levels.push_back(std::numeric_limits<double>::quiet_NaN());
  if (dice.OneIn(2)) levels.push_back(std::numeric_limits<double>::infinity());
  return levels;
}

// Runs the plain version and then ours from the same state, and returns how many lines there were.
int CompareRuns(TIN& tin, std::vector<double> const& levels) {
  State const before(tin);
  ForgetPlaces(tin);
  ContourList expected;
  ReferenceContourCreator(tin).AddLevels(levels, expected, RUNNING);
  State const expected_state(tin);
  before.Restore(tin);
  ForgetPlaces(tin);
  ContourList list;
  TINContourCreator(&tin).AddLevels(levels, list, RUNNING);
  ExpectSame(list, expected);
  State(tin).ExpectSame(expected_state);
  return list.Size();
}

class ContourReference : public ::testing::TestWithParam<std::tuple<Survey, Place>> {};

TEST_P(ContourReference, SameLinesHeightsAndMarks) {
  auto const& [survey, place] = GetParam();
  Dice dice(TestSeed());
  int lines = 0;
  for (int round = 0; round < 6; ++round) {
    TIN tin;
    Build(tin, MakeSurvey(survey, 600, dice.Bits(), place.frame));
    if (round % 2 == 1) Coarsen(tin, dice);
    for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
      if (round > 2 && dice.OneIn(40)) tin.GetTriangle(i, true)->m_Flags |= TRI_FILTERED;
    }
    std::vector<double> const levels = LevelsFor(tin, dice);
    State const before(tin);
    ForgetPlaces(tin);
    ContourList expected;
    ReferenceContourCreator reference(tin);
    int const expected_count = reference.AddLevels(levels, expected, RUNNING);
    State const expected_state(tin);
    before.Restore(tin);
    ForgetPlaces(tin);

    ContourList list;
    TINContourCreator creator(&tin);
    EXPECT_EQ(creator.AddLevels(levels, list, RUNNING), expected_count);
    ExpectSame(list, expected);
    State(tin).ExpectSame(expected_state);
    lines += list.Size();

    before.Restore(tin);
    ForgetPlaces(tin);
    ContourList one_by_one;
    for (double const level : levels) creator.AddLevel(level, one_by_one, RUNNING);
    ExpectSame(one_by_one, expected);
    State(tin).ExpectSame(expected_state);
    if (HasFatalFailure()) return;
  }
  if (survey != Survey::CollinearAxis && survey != Survey::CollinearSkew) {
    EXPECT_GT(lines, 5);
  }
}

INSTANTIATE_TEST_SUITE_P(Surveys, ContourReference,
                         ::testing::Combine(::testing::ValuesIn(ALL_SURVEYS),
                                            ::testing::ValuesIn(PLACES)),
                         [](auto const& test) {
                           return std::string(NameOf(std::get<0>(test.param))) +
                                  std::get<1>(test.param).name;
                         });

// However far the run has come when another thread stops it: all levels before the last one that
// was begun are whole, and nothing comes after it.
TEST(ContourStop, WholeLevelsUpToTheOneUnderWork) {
  Dice dice(TestSeed());
  TIN tin;
  Build(tin, MakeSurvey(Survey::Uniform, 3000, dice.Bits()));
  std::vector<double> levels;
  for (int i = 0; i < 80; ++i) levels.push_back(-20.0 + 0.5 * i);
  State const before(tin);
  ForgetPlaces(tin);
  ContourList whole;
  TINContourCreator(&tin).AddLevels(levels, whole, RUNNING);
  ASSERT_GT(whole.Size(), 80);

  for (int round = 0; round < 30; ++round) {
    before.Restore(tin);
    ForgetPlaces(tin);
    std::atomic<bool> running{true};
    int const spins = dice.Below(400000);
    ContourList list;
    std::thread stopper([&running, spins] {
      for (std::atomic<int> i = 0; i < spins; ++i) {
      }
      running = false;
    });
    int const added = TINContourCreator(&tin).AddLevels(levels, list, running);
    stopper.join();
    EXPECT_EQ(added, list.Size());
    if (list.IsEmpty()) continue;
    double const last = list[list.Size() - 1].Level();
    int same = 0;
    for (; same < list.Size() && list[same].Level() < last; ++same) {
      ASSERT_EQ(list[same].Level(), whole[same].Level());
      ASSERT_EQ(list[same].NumPoints(), whole[same].NumPoints());
      ASSERT_EQ(list[same][0], whole[same][0]);
    }
    EXPECT_EQ(whole.Find(last, 0), same);
  }
}

TEST(ContourReferenceOnSurveys, SameLinesHeightsAndMarks) {
  char const* const folder = std::getenv("QELTIN_SURVEYS");
  if (folder == nullptr) GTEST_SKIP() << "QELTIN_SURVEYS names no folder of surveys";
  for (char const* name :
       {"dem_volcano_5k.xyz", "topo_original_ground_4k.xyz", "sbes_opinicon_20k.xyz",
        "mbes_riverbed_100k.xyz", "original_ground_4155.ttm", "carrs_basins_600.ttm"}) {
    TIN tin;
    std::string const file = std::string(folder) + '/' + name;
    ASSERT_TRUE(tin.Load(std::wstring(file.begin(), file.end()).c_str())) << file;
    double low = 1e300;
    double high = -1e300;
    for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
      TTriangle const* const t = tin.GetTriangle(i, false);
      if (t == nullptr) continue;
      low = std::min(low, t->m_pVertex[0]->z);
      high = std::max(high, t->m_pVertex[0]->z);
    }
    std::vector<double> levels;
    for (int i = 0; i < 8; ++i) levels.push_back(std::floor(low + (high - low) * i / 8));
    levels.push_back((low + high) / 2);
    EXPECT_GT(CompareRuns(tin, levels), 0) << name;
  }
}

// One-sided and missing neighbours, as files may have them.
TEST(ContourReferenceOnBrokenStructures, SameLinesHeightsAndMarks) {
  Dice dice(TestSeed());
  for (int round = 0; round < 30; ++round) {
    TIN tin;
    Build(tin, MakeSurvey(Survey::Uniform, 200, dice.Bits()));
    Coarsen(tin, dice);
    for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
      if (!dice.OneIn(10)) continue;
      TTriangle*& link = tin.GetTriangle(i, true)->m_pAdjacent[dice.Below(3)];
      link =
          dice.OneIn(2) ? nullptr : tin.GetTriangle(dice.Below(tin.GetNumberOfTriangles()), true);
    }
    std::vector<double> const levels = LevelsFor(tin, dice);
    CompareRuns(tin, levels);
    if (HasFatalFailure()) return;
  }
}

}  // namespace
