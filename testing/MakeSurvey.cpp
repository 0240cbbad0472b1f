#include "testing/MakeSurvey.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>

namespace qeltin::testing {

namespace {

constexpr double TWO_PI = 6.283185307179586;
constexpr double SIDE = 1000.0;  // of the area that most surveys cover

double HeightAt(double x, double y) {
  return -20.0 + 5.0 * std::sin(x / 70.0) + 3.0 * std::cos(y / 45.0) + 0.001 * (x + y);
}

using Points = std::vector<TPoint>;

Points Uniform(int count, Dice& dice) {
  Points points;
  for (int i = 0; i < count; ++i) {
    double const x = dice.Between(0.0, SIDE);
    points.emplace_back(x, dice.Between(0.0, SIDE));
  }
  return points;
}

Points Clusters(int count, Dice& dice) {
  Points points;
  double x = 0.0;
  double y = 0.0;
  double size = 1.0;
  for (int i = 0; i < count; ++i) {
    if (i % 50 == 0) {
      x = dice.Between(0.0, SIDE);
      y = dice.Between(0.0, SIDE);
      size = std::pow(10.0, dice.Between(-1.0, 2.0));
    }
    double const dx = size * dice.Normal();
    points.emplace_back(x + dx, y + size * dice.Normal());
  }
  return points;
}

Points Swaths(int count, Dice& dice) {
  constexpr int BEAMS = 32;
  constexpr int PINGS = 40;
  Points points;
  for (int i = 0; i < count; ++i) {
    int const ping = i / BEAMS;
    int const line = ping / PINGS;
    int const along = line % 2 == 0 ? ping % PINGS : PINGS - 1 - ping % PINGS;
    double const across = std::tan((i % BEAMS - (BEAMS - 1) / 2.0) * 0.065);
    double const x = 20.0 * across + 60.0 * line + 0.05 * dice.Normal();
    points.emplace_back(x, 2.5 * along + 0.05 * dice.Normal());
  }
  return points;
}

int ColumnsFor(int count) {
  return std::max(1, static_cast<int>(std::ceil(std::sqrt(static_cast<double>(count)))));
}

Points Grid(int count, double spacing, double jitter, Dice& dice) {
  int const columns = ColumnsFor(count);
  Points points;
  for (int i = 0; i < count; ++i) {
    double const dx = jitter == 0.0 ? 0.0 : dice.Between(-jitter, jitter);
    double const dy = jitter == 0.0 ? 0.0 : dice.Between(-jitter, jitter);
    points.emplace_back(spacing * (i % columns) + dx, spacing * (i / columns) + dy);
  }
  return points;
}

Points SingleBeam(int count, Dice& dice) {
  constexpr int PER_LINE = 60;
  Points points;
  for (int i = 0; i < count; ++i) {
    int const line = i / PER_LINE;
    double const along = 3.0 * (i % PER_LINE) + 0.3 * dice.Unit();
    double const off = 0.1 * std::sin(along / 40.0);
    double const x = 0.8 * along - 0.6 * (25.0 * line + off);
    double const y = 0.6 * along + 0.8 * (25.0 * line + off);
    points.emplace_back(std::round(x * 100.0) / 100.0, std::round(y * 100.0) / 100.0);
  }
  return points;
}

Points Collinear(int count, double dx, double dy, Dice& dice) {
  Points points;
  for (int i = 0; i < count; ++i) {
    double const t = dice.Between(0.0, SIDE);
    points.emplace_back(dx * t, dy * t);
  }
  return points;
}

// The integer points of the circle of radius 5 * 13 * 17 * 29, which has 108 of them, and then of
// circles twice, three times ... as large.
Points Cocircular(int count, Dice& dice) {
  constexpr long RADIUS = 5L * 13 * 17 * 29;
  Points circle;
  for (long x = -RADIUS; x <= RADIUS; ++x) {
    long const square = RADIUS * RADIUS - x * x;
    long const y = std::lround(std::sqrt(static_cast<double>(square)));
    if (y * y != square) continue;
    circle.emplace_back(static_cast<double>(x), static_cast<double>(y));
    if (y != 0) circle.emplace_back(static_cast<double>(x), static_cast<double>(-y));
  }
  for (std::size_t i = circle.size() - 1; i > 0; --i) {
    std::swap(circle[i], circle[static_cast<std::size_t>(dice.Below(static_cast<int>(i) + 1))]);
  }
  Points points;
  for (int i = 0; i < count; ++i) {
    std::size_t const at = static_cast<std::size_t>(i);
    double const scale = static_cast<double>(at / circle.size() + 1);
    TPoint const& p = circle[at % circle.size()];
    points.emplace_back(p.x * scale, p.y * scale);
  }
  return points;
}

Points RotatedCircle(int count, Dice& dice) {
  double const start = dice.Between(0.0, TWO_PI);
  Points points;
  for (int i = 0; i < count; ++i) {
    double const angle = start + TWO_PI * dice.Below(720) / 720.0;
    points.emplace_back(500.0 + 400.0 * std::cos(angle), 500.0 + 400.0 * std::sin(angle));
  }
  return points;
}

Points Duplicates(int count, Dice& dice) {
  Points points;
  for (int i = 0; i < count; ++i) {
    if (i == 0 || dice.OneIn(2)) {
      double const x = dice.Between(0.0, SIDE);
      points.emplace_back(x, dice.Between(0.0, SIDE));
      continue;
    }
    TPoint p = points[static_cast<std::size_t>(dice.Below(i))];
    if (!dice.OneIn(4)) {
      double const dx = dice.Between(0.0005, 0.002) * (dice.OneIn(2) ? 1.0 : -1.0);
      double const dy = dice.Between(0.0005, 0.002) * (dice.OneIn(2) ? 1.0 : -1.0);
      p.x += dice.OneIn(3) ? 0.0 : dx;
      p.y += dice.OneIn(3) ? 0.0 : dy;
    }
    points.push_back(p);
  }
  return points;
}

Points TwoIslands(int count, Dice& dice) {
  Points points;
  for (int i = 0; i < count; ++i) {
    double const island = dice.OneIn(2) ? 1.0e6 : 0.0;
    double const x = island + 30.0 * dice.Normal();
    points.emplace_back(x, 0.5 * island + 30.0 * dice.Normal());
  }
  return points;
}

Points Spiral(int count) {
  Points points;
  for (int i = 0; i < count; ++i) {
    double const angle = 0.3 * i;
    points.emplace_back(500.0 + angle * std::cos(angle), 500.0 + angle * std::sin(angle));
  }
  return points;
}

Points MakeLocal(Survey survey, int count, Dice& dice) {
  switch (survey) {
    case Survey::Uniform:
      return Uniform(count, dice);
    case Survey::Clusters:
      return Clusters(count, dice);
    case Survey::Swaths:
      return Swaths(count, dice);
    case Survey::JitteredGrid:
      return Grid(count, 10.0, 3.0, dice);
    case Survey::ExactGrid:
      return Grid(count, 1.0, 0.0, dice);
    case Survey::SingleBeam:
      return SingleBeam(count, dice);
    case Survey::CollinearAxis:
      return Collinear(count, 1.0, 0.0, dice);
    case Survey::CollinearSkew:
      return Collinear(count, 0.83, 0.37, dice);
    case Survey::Cocircular:
      return Cocircular(count, dice);
    case Survey::RotatedCircle:
      return RotatedCircle(count, dice);
    case Survey::Duplicates:
      return Duplicates(count, dice);
    case Survey::TwoIslands:
      return TwoIslands(count, dice);
    case Survey::Spiral:
      return Spiral(count);
  }
  return {};
}

}  // namespace

std::uint64_t TestSeed() {
  char const* const text = std::getenv("QELTIN_TEST_SEED");
  std::uint64_t const seed = text == nullptr ? 20240607 : std::strtoull(text, nullptr, 10);
  std::cout << "[     SEED ] QELTIN_TEST_SEED=" << seed << std::endl;
  return seed;
}

// The generator is SplitMix64 (Steele, Lea, Flood 2014).
std::uint64_t Dice::Bits() {
  std::uint64_t z = m_State += 0x9E3779B97F4A7C15u;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
  return z ^ (z >> 31);
}

double Dice::Unit() { return static_cast<double>(Bits() >> 11) * 0x1p-53; }

double Dice::Between(double low, double high) { return low + (high - low) * Unit(); }

int Dice::Below(int limit) {
  return static_cast<int>((Bits() >> 32) * static_cast<std::uint64_t>(limit) >> 32);
}

double Dice::Normal() {
  double const radius = std::sqrt(-2.0 * std::log(1.0 - Unit()));
  return radius * std::cos(TWO_PI * Unit());
}

char const* NameOf(Survey survey) {
  switch (survey) {
    case Survey::Uniform:
      return "Uniform";
    case Survey::Clusters:
      return "Clusters";
    case Survey::Swaths:
      return "Swaths";
    case Survey::JitteredGrid:
      return "JitteredGrid";
    case Survey::ExactGrid:
      return "ExactGrid";
    case Survey::SingleBeam:
      return "SingleBeam";
    case Survey::CollinearAxis:
      return "CollinearAxis";
    case Survey::CollinearSkew:
      return "CollinearSkew";
    case Survey::Cocircular:
      return "Cocircular";
    case Survey::RotatedCircle:
      return "RotatedCircle";
    case Survey::Duplicates:
      return "Duplicates";
    case Survey::TwoIslands:
      return "TwoIslands";
    case Survey::Spiral:
      return "Spiral";
  }
  return "?";
}

void PrintTo(Place const& place, std::ostream* out) { *out << place.name; }

std::ostream& operator<<(std::ostream& out, Survey survey) { return out << NameOf(survey); }

std::vector<TPoint> MakeSurvey(Survey survey, int count, std::uint64_t seed, Frame const& frame) {
  Dice dice(seed * 0x2545F4914F6CDD1Du + static_cast<std::uint64_t>(survey));
  std::vector<TPoint> points = MakeLocal(survey, count, dice);
  for (TPoint& p : points) {
    p.z = HeightAt(p.x, p.y);
    p.x += frame.east;
    p.y += frame.north;
  }
  if (survey == Survey::SingleBeam) {
    for (TPoint& p : points) {
      p.x = std::round(p.x * 100.0) / 100.0;
      p.y = std::round(p.y * 100.0) / 100.0;
      p.z = std::round(p.z * 100.0) / 100.0;
    }
  }
  return points;
}

Extent ExtentOf(std::vector<TPoint> const& points) {
  Extent extent{points.front(), points.front()};
  for (TPoint const& p : points) {
    extent.min = TPoint(std::min(extent.min.x, p.x), std::min(extent.min.y, p.y),
                        std::min(extent.min.z, p.z));
    extent.max = TPoint(std::max(extent.max.x, p.x), std::max(extent.max.y, p.y),
                        std::max(extent.max.z, p.z));
  }
  return extent;
}

}  // namespace qeltin::testing
