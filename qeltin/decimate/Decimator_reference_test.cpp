#include <gtest/gtest.h>

#include <vector>

#include "qeltin/decimate/Decimator.h"
#include "testing/DecimatorPeer.h"
#include "testing/Formula.h"
#include "testing/SurveyAtPlace.h"
#include "testing/TINPeer.h"
#include "testing/reference/ReferenceDecimator.h"
#include "testing/reference/Twin.h"

// Whole runs against their plain version: the same thresholds, candidates, statistics and messages
// after every step, and the same surface in the end, slot by slot and bit by bit.

namespace {

using qeltin::testing::AllSurveysAtAllPlaces;
using qeltin::testing::DecimatorPeer;
using qeltin::testing::Dice;
using qeltin::testing::MakeSurvey;
using qeltin::testing::NameOfParam;
using qeltin::testing::ReferenceDecimator;
using qeltin::testing::SameBits;
using qeltin::testing::Survey;
using qeltin::testing::SurveyAtPlace;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;
using qeltin::testing::Twin;

constexpr unsigned int MESSAGE = 0x401;

// A Decimator and a ReferenceDecimator on the two surfaces of a Twin.
class Runs {
 public:
  explicit Runs(Twin& twin) : m_Twin(twin), reference(twin.Reference()) {
    decimator.SetSource(&twin.Tin());
  }

  void DrawSettings(Dice& dice) {
    decimator.NumberOfPasses(reference.numberOfPasses = 1 + dice.Below(4));
    decimator.RemoveBoundaryPoints(reference.removeBoundaryPoints = dice.OneIn(2));
    decimator.PreserveEdges(reference.preserveEdges = dice.OneIn(2));
    decimator.MinimumError(reference.minError = Draw(dice, 0.5));
    decimator.MaximumError(reference.maxError = Draw(dice, 4.0));
    if (dice.OneIn(3)) decimator.ErrorIncrement(reference.errorIncrement = Draw(dice, 1.0));
    double const widest = dice.OneIn(3) ? 359.0 : 20.0;
    decimator.MinimumFeatureAngle(Angle(reference.minFeatureAngle, dice, widest));
    decimator.MaximumFeatureAngle(Angle(reference.maxFeatureAngle, dice, widest));
    if (dice.OneIn(3)) {
      decimator.FeatureAngleIncrement(Angle(reference.featureAngleIncrement, dice, widest));
    }
  }

  // Steps both to the end of the run, or for `most` steps and then stops them.
  void Compare(int most) {
    MessageTarget window;
    decimator.SetProgressHandler(&window, MESSAGE);
    ASSERT_EQ(DecimatorPeer::Begin(decimator), reference.Decimate());
    for (int step = 0;; ++step) {
      if (step == most) {
        decimator.Stop();
        reference.Stop();
      }
      reference.messages.clear();
      DecimatorPeer::OpenGate(decimator);
      int const expected = reference.Step();
      ASSERT_EQ(decimator.ThreadFunction(), expected) << "step " << step;
      ExpectSameState();
      EXPECT_EQ(Drain(window), reference.messages);
      if (::testing::Test::HasFailure()) FAIL() << "step " << step;
      if (expected == 0) break;
      if (!reference.running && most < 0) break;  // one more step takes its time and does nothing
    }
    decimator.SetProgressHandler(nullptr, 0);
    m_Twin.CompareAllSlots();
    EXPECT_EQ(m_Twin.Fault(), "");
  }

 private:
  static float Draw(Dice& dice, double highest) {
    return static_cast<float>(dice.Between(1e-6, highest));
  }

  static float Angle(float& radians, Dice& dice, double widest) {
    float const degrees = Draw(dice, widest);
    radians = static_cast<float>(static_cast<double>(degrees) * 0.01745329238474369);
    return degrees;
  }

  static std::vector<ReferenceDecimator::Message> Drain(MessageTarget& window) {
    std::vector<ReferenceDecimator::Message> messages;
    for (PlatformMessage message; window.Take(message);) {
      EXPECT_EQ(message.message, MESSAGE);
      messages.push_back({static_cast<std::int64_t>(message.wParam), message.lParam});
    }
    return messages;
  }

  void ExpectSameState() {
    DecimationInfo const info = DecimatorPeer::Info(decimator);
    EXPECT_EQ(info.pass, reference.pass);
    EXPECT_EQ(info.index, reference.index);
    EXPECT_EQ(info.count, reference.count);
    EXPECT_EQ(info.evaluating, reference.evaluating);
    EXPECT_EQ(DecimatorPeer::CurrentError(decimator), reference.currentError);
    EXPECT_EQ(DecimatorPeer::CurrentFeatureAngle(decimator), reference.currentFeatureAngle);
    CStatist const& statistics = decimator.GetErrorStat();
    EXPECT_EQ(statistics.count, reference.samples);
    EXPECT_TRUE(SameBits(statistics.minimum, reference.minimum));
    EXPECT_TRUE(SameBits(statistics.maximum, reference.maximum));
    EXPECT_TRUE(SameBits(statistics.mean, reference.mean));
    EXPECT_TRUE(SameBits(statistics.sumSquares, reference.sumSquares));
    auto const& candidates = DecimatorPeer::Candidates(decimator);
    ASSERT_EQ(candidates.size(), reference.candidates.size());
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      EXPECT_EQ(candidates[i] - TINPeer::Points(m_Twin.Tin())->m_pData,
                m_Twin.Reference().Slot(reference.candidates[i]));
    }
  }

  Twin& m_Twin;

 public:
  Decimator decimator;
  ReferenceDecimator reference;
};

class DecimatorReference : public ::testing::TestWithParam<SurveyAtPlace> {};

TEST_P(DecimatorReference, StepsThroughWholeRuns) {
  Dice dice(TestSeed());
  for (int const count : {1, 5, 12, 30, 150}) {
    for (int run = 0; run < 2; ++run) {
      Twin twin(1000);
      twin.Build(MakeSurvey(GetParam(), count, dice.Bits()));
      Runs runs(twin);
      runs.DrawSettings(dice);
      runs.Compare(dice.OneIn(4) ? dice.Below(3 * count) : -1);
      if (dice.OneIn(2)) runs.Compare(-1);
      ASSERT_FALSE(HasFailure()) << count << " points, run " << run;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, DecimatorReference, AllSurveysAtAllPlaces(), NameOfParam);

// Every class of point and both tests against a line come up in such runs.
TEST(DecimatorReferenceRuns, MeetEveryClassOfPoint) {
  Dice dice(TestSeed());
  int classes[5] = {};
  int inside = 0;
  int onHull = 0;
  for (int run = 0; run < 60; ++run) {
    std::vector<TPoint> points = MakeSurvey(Survey::JitteredGrid, 150, dice.Bits());
    for (TPoint& p : points) p.z = dice.Between(0.0, 2.0);
    Twin twin(1000);
    twin.Build(points);
    Runs runs(twin);
    runs.DrawSettings(dice);
    runs.decimator.PreserveEdges(runs.reference.preserveEdges = false);
    runs.Compare(-1);
    ASSERT_FALSE(HasFailure()) << "run " << run;
    for (int i = 0; i < 5; ++i) classes[i] += runs.reference.classes[i];
    inside += runs.reference.linesInside;
    onHull += runs.reference.linesOnHull;
  }
  for (int const type : {VERTEX_TWO_SMOOTH, VERTEX_ON_HULL, VERTEX_IRREGULAR, VERTEX_NO_SMOOTH}) {
    EXPECT_GT(classes[type], 0) << "type " << type;
  }
  EXPECT_GT(inside, 0);
  EXPECT_GT(onHull, 0);
}

}  // namespace
