// Projections on center lines made at random, against samples of the line.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "qeltin/platform/CenterLine.h"
#include "qeltin/platform/Math.h"
#include "testing/MakeSurvey.h"

namespace {

using qeltin::testing::Dice;
using qeltin::testing::TestSeed;

struct Sample {
  Point position;
  Point direction;
  double travel;
};

// Goes along as a vessel does, straight and round, and lays down the line with its samples.
class Voyage {
 public:
  Voyage(Point const& start, double bearing) : m_Position(start), m_dBearing(bearing) {
    AddPoint(POINT_STRAIGHT, start, 0);
    AddSample();
  }

  void Straight(double length) {
    for (int i = 0; i < STEPS; ++i) {
      m_Position.x += length / STEPS * std::sin(m_dBearing);
      m_Position.y += length / STEPS * std::cos(m_dBearing);
      m_dTravel += length / STEPS;
      AddSample();
    }
    AddPoint(POINT_STRAIGHT, m_Position, 0);
  }

  // Turns by so many radians, to the right where that is positive. The arc is laid down with a
  // negative radius iff told so.
  void Turn(double radius, double angle, bool negative) {
    double const side = angle > 0 ? 1 : -1;
    Point const center(m_Position.x + side * radius * std::cos(m_dBearing),
                       m_Position.y - side * radius * std::sin(m_dBearing), 0);
    AddPoint(POINT_ARC_CENTER, center, negative ? -radius : radius);
    for (int i = 0; i < STEPS; ++i) {
      m_dBearing += angle / STEPS;
      m_Position = Point(center.x - side * radius * std::cos(m_dBearing),
                         center.y + side * radius * std::sin(m_dBearing), 0);
      m_dTravel += radius * std::fabs(angle) / STEPS;
      AddSample();
    }
    AddPoint(POINT_STRAIGHT, m_Position, 0);
  }

  void Bend(double angle) { m_dBearing += angle; }

  CenterLine& Line() { return m_Line; }
  std::vector<Sample> const& Samples() const { return m_Samples; }
  double Travel() const { return m_dTravel; }

 private:
  static constexpr int STEPS = 400;

  void AddPoint(POINT_TYPE type, Point const& position, double radius) {
    m_Line.AddElem({position, 0, 0, type, radius, 0, L""});
  }

  void AddSample() {
    m_Samples.push_back(
        {m_Position, Point(std::sin(m_dBearing), std::cos(m_dBearing), 0), m_dTravel});
  }

  CenterLine m_Line;
  Point m_Position;
  double m_dBearing;
  double m_dTravel = 0.0;
  std::vector<Sample> m_Samples;
};

double DistanceTo(Sample const& sample, Point const& p) {
  return std::hypot(p.x - sample.position.x, p.y - sample.position.y);
}

Voyage RandomVoyage(Dice& dice, double east, double north) {
  Voyage voyage(Point(east, north, 0), dice.Between(0, 6.28));
  int const legs = 1 + dice.Below(6);
  for (int i = 0; i < legs; ++i) {
    switch (dice.Below(4)) {
      case 0:
        voyage.Bend(dice.Between(-2, 2));
        voyage.Straight(dice.Between(1, 100));
        break;
      case 1:
        voyage.Straight(dice.Between(1, 100));
        break;
      case 2:
        voyage.Turn(dice.Between(5, 60), dice.Between(-3.0, 3.0), false);
        break;
      default:
        voyage.Turn(dice.Between(5, 60), dice.Between(-6, -0.1), true);
    }
  }
  voyage.Line().Init(0.0, false);
  return voyage;
}

TEST(CenterLineSamples, TheLastKpIsTheLengthOfTheVoyage) {
  Dice dice(TestSeed());
  for (int round = 0; round < 100; ++round) {
    Voyage voyage = RandomVoyage(dice, 500000, 5900000);
    CenterLine const& line = voyage.Line();
    ASSERT_NEAR(line.GetPoint(line.GetNumPoints() - 1).GetKP(), voyage.Travel(), 1e-6);
  }
}

TEST(CenterLineSamples, PlacesOnTheLineHaveNoOffset) {
  Dice dice(TestSeed());
  for (int round = 0; round < 100; ++round) {
    Voyage voyage = RandomVoyage(dice, 500000, 5900000);
    for (int i = 0; i < 50; ++i) {
      Sample const& sample =
          voyage.Samples()[dice.Below(static_cast<int>(voyage.Samples().size()))];
      double offset = 77.0;
      double travel = 77.0;
      ASSERT_TRUE(voyage.Line().GetOffsetAndTravel(sample.position, offset, travel));
      ASSERT_NEAR(offset, 0.0, 1e-6);
    }
  }
}

TEST(CenterLineSamples, NoSampleIsNearerThanTheProjection) {
  Dice dice(TestSeed());
  int off = 0;
  for (int round = 0; round < 300; ++round) {
    Voyage voyage = RandomVoyage(dice, 500000, 5900000);
    std::vector<Sample> const& samples = voyage.Samples();
    for (int i = 0; i < 20; ++i) {
      Point const& about = samples[dice.Below(static_cast<int>(samples.size()))].position;
      Point const p(about.x + 30 * dice.Normal(), about.y + 30 * dice.Normal(), 0);
      std::size_t nearest = 0;
      for (std::size_t k = 1; k < samples.size(); ++k) {
        if (DistanceTo(samples[k], p) < DistanceTo(samples[nearest], p)) nearest = k;
      }
      Sample const& s = samples[nearest];
      double const least = DistanceTo(s, p);
      double offset = 77.0;
      double travel = 77.0;
      if (!voyage.Line().GetOffsetAndTravel(p, offset, travel)) {
        ++off;
        ASSERT_TRUE(nearest < 5 || nearest + 5 >= samples.size());
        ASSERT_TRUE(travel < 0 || travel > voyage.Travel() - 1e-6);
        continue;
      }
      ASSERT_LE(std::fabs(offset), least + 1e-6);
      ASSERT_GT(std::fabs(offset), least - 1.0);
      // Where another place is about as near, which of the two is found is a matter of samples.
      bool clear = true;
      for (Sample const& other : samples) {
        bool const elsewhere = std::hypot(other.position.x - s.position.x,
                                          other.position.y - s.position.y) > 0.05 * least + 2;
        if (elsewhere && DistanceTo(other, p) < least + 0.5) clear = false;
      }
      if (!clear || least < 1.0) continue;
      ASSERT_NEAR(travel, s.travel, 0.05 * least + 2);
      double const side =
          (p.x - s.position.x) * s.direction.y - (p.y - s.position.y) * s.direction.x;
      if (std::fabs(side) < 0.9 * least) continue;
      ASSERT_EQ(offset > 0, side > 0);
    }
  }
  EXPECT_GT(off, 100);
}

}  // namespace
