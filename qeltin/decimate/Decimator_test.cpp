#include "qeltin/decimate/Decimator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "testing/DecimatorPeer.h"
#include "testing/MakeSurvey.h"
#include "testing/VerifySurface.h"

namespace {

using namespace std::chrono_literals;
using qeltin::testing::DecimatorPeer;
using qeltin::testing::Dice;
using qeltin::testing::Extent;
using qeltin::testing::ExtentOf;
using qeltin::testing::MakeSurvey;
using qeltin::testing::SurfaceReport;
using qeltin::testing::SurfaceRules;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::VerifySurface;

constexpr auto LONG_ENOUGH = 60s;
constexpr unsigned int MESSAGE = 0x8001;

using Pair = std::pair<std::int64_t, std::int64_t>;
constexpr Pair END{-1, -1};

Pair PairOf(PlatformMessage const& message) {
  return {static_cast<std::int64_t>(message.wParam), message.lParam};
}

std::vector<Pair> Drain(MessageTarget& window) {
  std::vector<Pair> pairs;
  for (PlatformMessage message; window.Take(message);) pairs.push_back(PairOf(message));
  return pairs;
}

void Build(TIN& tin, std::vector<TPoint> const& points) {
  Extent const extent = ExtentOf(points);
  tin.Init(static_cast<int>(points.size()), extent.min, extent.max);
  for (TPoint const& p : points) tin.AddPoint(p);
}

// `side` by `side` points at whole units, at height 0 but the middle one.
void BuildLevel(TIN& tin, int side, double bump = 0.0) {
  std::vector<TPoint> points;
  for (int i = 0; i < side; ++i) {
    for (int j = 0; j < side; ++j) points.emplace_back(i, j, 0.0);
  }
  points[points.size() / 2].z += bump;
  Build(tin, points);
}

void ExpectSoundStructure(TIN const& tin) {
  SurfaceRules rules;
  rules.delaunay = false;
  rules.byNeighbours = true;
  SurfaceReport const report = VerifySurface(tin, rules);
  EXPECT_TRUE(report.Ok()) << report;
}

// A run that the test itself drives.
class Steps {
 public:
  explicit Steps(Decimator& decimator) : m_Decimator(decimator) { DecimatorPeer::Begin(decimator); }

  DecimationInfo Info() const { return DecimatorPeer::Info(m_Decimator); }

  // Steps to the start of the next phase. Returns the number of steps.
  int FinishPhase() {
    bool const evaluating = Info().evaluating;
    int steps = 0;
    do {
      EXPECT_EQ(m_Decimator.ThreadFunction(), 1);
      ++steps;
    } while (Info().evaluating == evaluating);
    return steps;
  }

 private:
  Decimator& m_Decimator;
};

TEST(DecimatorSettings, HaveTheirDefaults) {
  Decimator const decimator;
  EXPECT_EQ(decimator.NumberOfPasses(), 1);
  EXPECT_EQ(decimator.MinimumFeatureAngle(), 0.0f);
  EXPECT_EQ(decimator.MaximumFeatureAngle(), 0.0f);
  EXPECT_EQ(decimator.FeatureAngleIncrement(), 0.0f);
  EXPECT_EQ(decimator.MinimumError(), 0.0f);
  EXPECT_EQ(decimator.MaximumError(), 0.0f);
  EXPECT_EQ(decimator.ErrorIncrement(), 0.0f);
  EXPECT_FALSE(decimator.RemoveBoundaryPoints());
  EXPECT_TRUE(decimator.PreserveEdges());
  EXPECT_EQ(decimator.GetDecimatedTIN(), nullptr);
  EXPECT_EQ(DecimatorPeer::Interval(decimator), 250u);
}

TEST(DecimatorSettings, ARefusedValueChangesNothing) {
  Decimator decimator;
  decimator.NumberOfPasses(3);
  decimator.NumberOfPasses(0);
  decimator.NumberOfPasses(-2);
  EXPECT_EQ(decimator.NumberOfPasses(), 3);
  decimator.MinimumError(2.0f);
  for (float const refused : {-1.0f, 0.0f, std::nanf("")}) {
    decimator.MinimumError(refused);
    decimator.MaximumError(refused);
    decimator.ErrorIncrement(refused);
    decimator.MinimumFeatureAngle(refused);
    decimator.FeatureAngleIncrement(refused);
  }
  EXPECT_EQ(decimator.MinimumError(), 2.0f);
  EXPECT_EQ(decimator.MaximumError(), 0.0f);
  EXPECT_EQ(decimator.ErrorIncrement(), 0.0f);
  EXPECT_EQ(decimator.MinimumFeatureAngle(), 0.0f);
  EXPECT_EQ(decimator.FeatureAngleIncrement(), 0.0f);
}

TEST(DecimatorSettings, AnglesEndBelow360Degrees) {
  Decimator decimator;
  decimator.MaximumFeatureAngle(360.0f);
  decimator.MinimumFeatureAngle(360.0f);
  EXPECT_EQ(decimator.MaximumFeatureAngle(), 0.0f);
  EXPECT_EQ(decimator.MinimumFeatureAngle(), 0.0f);
  decimator.FeatureAngleIncrement(400.0f);
  EXPECT_GT(decimator.FeatureAngleIncrement(), 399.0f);
}

TEST(DecimatorSettings, AnglesAreStoredInRadiansInSinglePrecision) {
  Decimator decimator;
  decimator.MaximumFeatureAngle(359.0f);
  auto const radians = static_cast<float>(359.0 * 0.01745329238474369);
  EXPECT_EQ(decimator.MaximumFeatureAngle(),
            static_cast<float>(static_cast<double>(radians) * 57.295780181884766));
  decimator.MinimumFeatureAngle(100.0f);
  TIN tin;
  BuildLevel(tin, 3);
  decimator.SetSource(&tin);
  DecimatorPeer::Begin(decimator);
  EXPECT_EQ(DecimatorPeer::CurrentFeatureAngle(decimator),
            static_cast<float>(100.0 * 0.01745329238474369));
}

TEST(DecimatorSettings, TheDecimatedSurfaceIsTheSource) {
  TIN tin;
  Decimator decimator;
  decimator.SetSource(&tin);
  EXPECT_EQ(decimator.GetDecimatedTIN(), &tin);
}

TEST(DecimatorIdle, WithoutASourceThereIsNoRun) { EXPECT_EQ(Decimator().Decimate(), -1); }

TEST(DecimatorIdle, ThereIsNoInfoAndNothingToStop) {
  Decimator decimator;
  DecimationInfo info{1, 2, 3, 4, true};
  EXPECT_FALSE(decimator.GetDecimationInfo(info));
  EXPECT_EQ(info.count, 1);
  EXPECT_EQ(info.index, 2);
  EXPECT_EQ(info.pass, 3);
  EXPECT_EQ(info.numberOfPasses, 4);
  EXPECT_TRUE(info.evaluating);
  decimator.Stop();
  EXPECT_FALSE(decimator.GetDecimationInfo(info));
}

TEST(DecimatorRun, ByDefaultOnlyPointsAtADistanceOfExactlyZeroGo) {
  TIN tin;
  BuildLevel(tin, 9, 0.5);
  Decimator decimator;
  decimator.SetSource(&tin);
  decimator.RemoveBoundaryPoints(true);
  Steps steps(decimator);
  steps.FinishPhase();
  CStatist const& statistics = decimator.GetErrorStat();
  EXPECT_GT(statistics.count, 4u);
  EXPECT_EQ(statistics.maximum, 0.0);
  EXPECT_EQ(DecimatorPeer::Candidates(decimator).size(), statistics.count);  // none by the line
  steps.FinishPhase();
  EXPECT_EQ(steps.Info().pass, 1);
  EXPECT_FALSE(DecimatorPeer::IsRunning(decimator));
  ExpectSoundStructure(tin);
}

TEST(DecimatorRun, TheErrorGrowsByItsIncrement) {
  TIN tin;
  BuildLevel(tin, 4);
  Decimator decimator;
  decimator.SetSource(&tin);
  decimator.NumberOfPasses(4);
  decimator.MinimumError(1.0f);
  decimator.MaximumError(2.0f);
  Steps steps(decimator);
  EXPECT_EQ(decimator.ErrorIncrement(), 0.25f);
  for (float const error : {1.0f, 1.25f, 1.5f, 1.75f}) {
    EXPECT_TRUE(DecimatorPeer::IsRunning(decimator));
    EXPECT_EQ(DecimatorPeer::CurrentError(decimator), error);
    steps.FinishPhase();
    steps.FinishPhase();
  }
  EXPECT_FALSE(DecimatorPeer::IsRunning(decimator));
}

TEST(DecimatorRun, AComputedIncrementStays) {
  TIN tin;
  BuildLevel(tin, 3);
  Decimator decimator;
  decimator.SetSource(&tin);
  decimator.MaximumError(2.0f);
  DecimatorPeer::Begin(decimator);
  EXPECT_EQ(decimator.ErrorIncrement(), 2.0f);
  decimator.MaximumError(8.0f);
  DecimatorPeer::Begin(decimator);
  EXPECT_EQ(decimator.ErrorIncrement(), 2.0f);
}

TEST(DecimatorRun, WithoutARangeItMakesAllItsPasses) {
  TIN tin;
  BuildLevel(tin, 5);
  Decimator decimator;
  decimator.SetSource(&tin);
  decimator.NumberOfPasses(5);
  decimator.MinimumError(0.5f);
  decimator.MaximumError(0.5f);
  Steps steps(decimator);
  for (int pass = 0; pass < 5; ++pass) {
    EXPECT_TRUE(DecimatorPeer::IsRunning(decimator));
    EXPECT_EQ(steps.Info().pass, pass);
    steps.FinishPhase();
    steps.FinishPhase();
  }
  EXPECT_FALSE(DecimatorPeer::IsRunning(decimator));
  EXPECT_EQ(decimator.ErrorIncrement(), 0.0f);
}

TEST(DecimatorRun, EndsEarlyWhereBothThresholdsPassTheirCeilings) {
  TIN tin;
  BuildLevel(tin, 4);
  Decimator decimator;
  decimator.SetSource(&tin);
  decimator.NumberOfPasses(10);
  decimator.MinimumError(1.0f);
  decimator.MaximumError(2.0f);
  decimator.ErrorIncrement(1.0f);
  decimator.MaximumFeatureAngle(10.0f);
  decimator.FeatureAngleIncrement(20.0f);
  Steps steps(decimator);
  int passes = 0;
  while (DecimatorPeer::IsRunning(decimator)) {
    steps.FinishPhase();
    steps.FinishPhase();
    ++passes;
  }
  EXPECT_EQ(passes, 2);  // the first one ends with the error exactly at its ceiling
}

TEST(DecimatorRun, APassWithoutCandidatesRemovesNothingInOneStep) {
  TIN tin;
  Build(tin, MakeSurvey(Survey::Uniform, 30, 1));
  Decimator decimator;
  decimator.SetSource(&tin);
  decimator.NumberOfPasses(2);
  Steps steps(decimator);
  int const points = tin.GetMap().GetNumberOfPoints();
  steps.FinishPhase();
  ASSERT_TRUE(DecimatorPeer::Candidates(decimator).empty());
  EXPECT_EQ(steps.FinishPhase(), 1);
  EXPECT_TRUE(DecimatorPeer::IsRunning(decimator));
  EXPECT_TRUE(steps.Info().evaluating);
  EXPECT_EQ(tin.GetMap().GetNumberOfPoints(), points);
}

TEST(DecimatorRun, TheFirstFourCandidatesOfEveryPassStay) {
  TIN tin;
  BuildLevel(tin, 9);
  Decimator decimator;
  decimator.SetSource(&tin);
  Steps steps(decimator);
  steps.FinishPhase();
  std::vector<TPoint*> const candidates = DecimatorPeer::Candidates(decimator);
  ASSERT_GT(candidates.size(), 4u);
  int const before = tin.GetMap().GetNumberOfPoints();
  EXPECT_EQ(steps.FinishPhase(), static_cast<int>(candidates.size()) - 4);
  EXPECT_EQ(tin.GetMap().GetNumberOfPoints(), before - static_cast<int>(candidates.size()) + 4);
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    EXPECT_EQ(tin.GetMap().FindPoint(candidates[i]).IsValid(), i < 4);
  }
}

TEST(DecimatorRun, StartsOverWithoutTheCandidatesOfAStoppedRun) {
  TIN tin;
  BuildLevel(tin, 9);
  Decimator decimator;
  decimator.SetSource(&tin);
  Steps steps(decimator);
  while (DecimatorPeer::Candidates(decimator).empty()) decimator.ThreadFunction();
  decimator.Stop();
  DecimatorPeer::Begin(decimator);
  EXPECT_TRUE(DecimatorPeer::Candidates(decimator).empty());
}

TEST(DecimatorRun, TheFirstFourPositionsAreLeftOutWhateverStandsThere) {
  TIN tin;
  std::vector<TPoint> const points = MakeSurvey(Survey::ExactGrid, 100, 1);
  Extent const extent = ExtentOf(points);
  tin.Init(100, extent.min, extent.max);
  for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, 1.0);
  tin.Triangulate();
  Decimator decimator;
  decimator.SetSource(&tin);
  Steps steps(decimator);
  EXPECT_EQ(steps.FinishPhase(), 100);  // 104 points with the seed corners, which come last
  for (TPoint const* candidate : DecimatorPeer::Candidates(decimator)) {
    for (int i = 0; i < 4; ++i) EXPECT_NE(candidate, tin.GetPoint(i));
  }
}

TEST(DecimatorRun, SurfacesWithoutPointsOrPoolsDoNoHarm) {
  for (bool const pools : {false, true}) {
    TIN tin;
    if (pools) tin.Init(5, TPoint(0, 0), TPoint(1, 1));
    MessageTarget window;
    Decimator decimator;
    decimator.SetSource(&tin);
    decimator.SetProgressHandler(&window, MESSAGE);
    Steps steps(decimator);
    EXPECT_EQ(steps.Info().count, 0);
    EXPECT_EQ(steps.FinishPhase(), 1);
    EXPECT_EQ(steps.FinishPhase(), 1);
    EXPECT_FALSE(DecimatorPeer::IsRunning(decimator));
  }
}

TEST(DecimatorProgress, IsZeroWhileCollectingAndRisesWhileRemoving) {
  TIN tin;
  BuildLevel(tin, 7);
  MessageTarget window;
  Decimator decimator;
  decimator.SetSource(&tin);
  decimator.NumberOfPasses(2);
  decimator.SetProgressHandler(&window, MESSAGE);
  Steps steps(decimator);
  while (steps.Info().evaluating) {
    DecimatorPeer::OpenGate(decimator);
    decimator.ThreadFunction();
    if (steps.Info().evaluating) {
      EXPECT_EQ(Drain(window), (std::vector<Pair>{Pair(0, 0)}));
    }
  }
  int const count = steps.Info().count;
  ASSERT_GT(count, 6);
  auto const percent = [count](int index) {
    float const share = static_cast<float>(index * 100) / static_cast<float>(count);
    return Pair(100, static_cast<std::int64_t>(share));
  };
  EXPECT_EQ(Drain(window), std::vector<Pair>{percent(4)});
  for (int index = 5; index < count; ++index) {
    DecimatorPeer::OpenGate(decimator);
    decimator.ThreadFunction();
    EXPECT_EQ(Drain(window), std::vector<Pair>{percent(index)});
  }
}

// A 4 by 4 grid has four points inside.
TEST(DecimatorProgress, FourCandidatesLookLikeTheEnd) {
  TIN tin;
  BuildLevel(tin, 4);
  MessageTarget window;
  Decimator decimator;
  decimator.SetSource(&tin);
  decimator.NumberOfPasses(2);
  decimator.MinimumError(1.0f);
  Steps steps(decimator);
  while (steps.Info().index < steps.Info().count - 1) decimator.ThreadFunction();
  decimator.SetProgressHandler(&window, MESSAGE);
  decimator.ThreadFunction();
  ASSERT_EQ(DecimatorPeer::Candidates(decimator).size(), 4u);
  EXPECT_EQ(Drain(window), std::vector<Pair>{END});
  EXPECT_TRUE(DecimatorPeer::IsRunning(decimator));
  int const points = tin.GetMap().GetNumberOfPoints();
  EXPECT_EQ(steps.FinishPhase(), 1);
  EXPECT_TRUE(DecimatorPeer::IsRunning(decimator));
  EXPECT_EQ(tin.GetMap().GetNumberOfPoints(), points);
}

TEST(DecimatorProgress, WithoutCandidatesItIsAtAHundred) {
  TIN tin;
  Build(tin, MakeSurvey(Survey::Uniform, 30, 1));
  MessageTarget window;
  Decimator decimator;
  decimator.SetSource(&tin);
  Steps steps(decimator);
  while (steps.Info().index < steps.Info().count - 1) decimator.ThreadFunction();
  decimator.SetProgressHandler(&window, MESSAGE);
  decimator.ThreadFunction();
  EXPECT_EQ(Drain(window), (std::vector<Pair>{Pair(100, 100)}));
}

TEST(DecimatorProgress, PassesTheGateOnceIn250Milliseconds) {
  TIN tin;
  BuildLevel(tin, 5);
  MessageTarget window;
  Decimator decimator;
  decimator.SetSource(&tin);
  decimator.SetProgressHandler(&window, MESSAGE);
  DecimatorPeer::Begin(decimator);
  DecimatorPeer::OpenGate(decimator);
  auto const start = std::chrono::steady_clock::now();
  decimator.ThreadFunction();
  decimator.ThreadFunction();
  auto const elapsed = std::chrono::steady_clock::now() - start;
  if (elapsed < 250ms) {
    EXPECT_EQ(Drain(window).size(), 1u);
  }
}

TEST(DecimatorProgress, WithoutAMessageNumberOnlyTheEndIsPosted) {
  TIN tin;
  BuildLevel(tin, 5);
  MessageTarget window;
  Decimator decimator;
  decimator.SetSource(&tin);
  decimator.SetProgressHandler(&window, 0);
  DecimatorPeer::Begin(decimator);
  while (decimator.ThreadFunction() != 0) {
  }
  for (int i = 0; i < 2; ++i) {
    PlatformMessage message;
    ASSERT_TRUE(window.Take(message));
    EXPECT_EQ(message.message, 0u);
    EXPECT_EQ(PairOf(message), END);
  }
  EXPECT_TRUE(Drain(window).empty());
}

TEST(DecimatorProgress, WithoutAWindowARunComesToItsEnd) {
  TIN tin;
  BuildLevel(tin, 5);
  Decimator decimator;
  decimator.SetSource(&tin);
  decimator.SetProgressHandler(nullptr, MESSAGE);
  DecimatorPeer::Begin(decimator);
  while (decimator.ThreadFunction() != 0) {
  }
  EXPECT_FALSE(DecimatorPeer::IsRunning(decimator));
}

class DecimatorThread : public ::testing::Test {
 protected:
  DecimatorThread() {
    m_Decimator.SetSource(&m_Tin);
    m_Decimator.SetProgressHandler(&m_Window, MESSAGE);
  }

  // Takes messages up to the one that ends the run.
  void WaitForEnd() {
    PlatformMessage message;
    do {
      ASSERT_TRUE(m_Window.Wait(message, LONG_ENOUGH));
    } while (PairOf(message) != END || DecimatorPeer::IsRunning(m_Decimator));
  }

  MessageTarget m_Window;
  TIN m_Tin;
  Decimator m_Decimator;
};

TEST_F(DecimatorThread, ARunThatComesToItsEndPostsItTwice) {
  BuildLevel(m_Tin, 9);
  EXPECT_EQ(m_Decimator.Decimate(), 85);
  int ends = 0;
  for (PlatformMessage message; ends < 2;) {
    ASSERT_TRUE(m_Window.Wait(message, LONG_ENOUGH));
    if (PairOf(message) == END) ++ends;
  }
  DecimatorPeer::WaitForEnd(m_Decimator);
  EXPECT_TRUE(Drain(m_Window).empty());
  EXPECT_LT(m_Tin.GetMap().GetNumberOfPoints(), 85);
  ExpectSoundStructure(m_Tin);
}

TEST_F(DecimatorThread, StartsOverAfterARun) {
  BuildLevel(m_Tin, 9);
  m_Decimator.MinimumError(0.5f);
  for (int run = 0; run < 3; ++run) {
    EXPECT_GT(m_Decimator.Decimate(), 0);
    EXPECT_EQ(DecimatorPeer::ErrorIncrement(m_Decimator), -0.5f);
    WaitForEnd();
  }
  ExpectSoundStructure(m_Tin);
}

TEST_F(DecimatorThread, AStoppedRunEndsWithinAStepAndPostsItsEndOnce) {
  BuildLevel(m_Tin, 9);
  m_Decimator.NumberOfPasses(1000000);
  m_Decimator.MinimumError(0.5f);
  m_Decimator.MaximumError(0.5f);
  std::vector<Pair> heard;
  m_Window.SetCallback([&](PlatformMessage const& message) {
    heard.push_back(PairOf(message));
    m_Decimator.Stop();
  });
  m_Decimator.Decimate();
  DecimatorPeer::WaitForEnd(m_Decimator);
  EXPECT_EQ(heard, (std::vector<Pair>{Pair(0, 0), END}));
}

TEST_F(DecimatorThread, ACallDuringARunLeavesItAlone) {
  BuildLevel(m_Tin, 9);
  int size = 0;
  DecimationInfo before;
  DecimationInfo after;
  bool found = false;
  m_Window.SetCallback([&](PlatformMessage const& message) {
    if (PairOf(message) == END) return;
    found = m_Decimator.GetDecimationInfo(before);
    size = m_Decimator.Decimate();
    m_Decimator.GetDecimationInfo(after);
  });
  m_Decimator.Decimate();
  DecimatorPeer::WaitForEnd(m_Decimator);
  EXPECT_TRUE(found);
  EXPECT_EQ(size, 85);
  EXPECT_EQ(before.index, after.index);
  EXPECT_EQ(before.count, 85);
  EXPECT_EQ(before.index, 5);
  EXPECT_EQ(before.pass, 0);
  EXPECT_EQ(before.numberOfPasses, 1);
  EXPECT_TRUE(before.evaluating);
}

TEST_F(DecimatorThread, ARunMayBeStartedFromTheEndOfAnother) {
  BuildLevel(m_Tin, 9);
  int ends = 0;
  int sizes[2] = {};
  m_Window.SetCallback([&](PlatformMessage const& message) {
    if (PairOf(message) != END || DecimatorPeer::IsRunning(m_Decimator)) return;
    if (ends < 2) sizes[ends++] = m_Decimator.Decimate();
  });
  m_Decimator.Decimate();
  DecimatorPeer::WaitForEnd(m_Decimator);
  EXPECT_EQ(ends, 2);
  EXPECT_GT(sizes[1], 0);
}

TEST_F(DecimatorThread, DestructionWaitsForTheEndOfARun) {
  BuildLevel(m_Tin, 20);
  int heard = 0;
  {
    Decimator decimator;
    decimator.SetSource(&m_Tin);
    decimator.SetProgressHandler(&m_Window, MESSAGE);
    m_Window.SetCallback([&heard](PlatformMessage const& message) {
      if (PairOf(message) == END) ++heard;
    });
    EXPECT_EQ(decimator.Decimate(), 404);
  }
  EXPECT_EQ(heard, 2);
}

// What a host does at any time during a run.
void Disturb(std::uint64_t seed, int runs) {
  Dice dice(seed);
  MessageTarget window;
  TIN tin;
  Build(tin, MakeSurvey(Survey::JitteredGrid, 600, seed));
  for (int run = 0; run < runs; ++run) {
    Decimator decimator;
    decimator.SetSource(&tin);
    decimator.SetProgressHandler(&window, MESSAGE);
    decimator.NumberOfPasses(1 + dice.Below(3));
    decimator.MaximumError(0.01f * static_cast<float>(run + 1));
    EXPECT_GT(decimator.Decimate(), 0);
    DecimationInfo info;
    bool goesOn = true;
    while (goesOn) {
      if (dice.OneIn(2)) goesOn = decimator.GetDecimationInfo(info);
      if (dice.OneIn(100)) decimator.Stop();
      PlatformMessage message;
      if (window.Wait(message, 0ms) && PairOf(message) == END) goesOn = dice.OneIn(2);
    }
    if (dice.OneIn(2)) decimator.Stop();
  }
  EXPECT_TRUE(tin.Compact());
  SurfaceRules rules;
  rules.delaunay = false;
  SurfaceReport const report = VerifySurface(tin, rules);
  EXPECT_TRUE(report.Ok()) << report;
}

TEST(DecimatorThreads, AHostMayAskAndStopAtAnyTime) {
  Dice dice(TestSeed());
  std::vector<std::thread> hosts;
  for (int host = 0; host < 20; ++host) hosts.emplace_back(Disturb, dice.Bits(), 10);
  for (std::thread& host : hosts) host.join();
}

}  // namespace
