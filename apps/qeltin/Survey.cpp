#include "apps/qeltin/Survey.h"

#include <algorithm>
#include <cmath>

namespace qeltin::cli {

namespace {

constexpr double EAST = 482000.0;
constexpr double NORTH = 5932000.0;

// Tracks are turned by the angle whose cosine and sine these are, so that they do not run north.
constexpr double COS_TRACK = 0.96;
constexpr double SIN_TRACK = 0.28;

std::uint64_t Scramble(std::uint64_t x) {
  x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9u;
  x = (x ^ (x >> 27)) * 0x94d049bb133111ebu;
  return x ^ (x >> 31);
}

double ToUnit(std::uint64_t bits) { return static_cast<double>(bits >> 11) * 0x1p-53; }

double Blend(double a, double b, double t) { return a + (b - a) * (t * t * (3.0 - 2.0 * t)); }

// A survey area: a square of `extent` metres that holds the seabed's unit square.
class Area {
 public:
  Area(std::uint64_t seed, double extent) : m_Seabed(seed), m_dExtent(extent) {}

  Seabed const& Bed() const { return m_Seabed; }

  // Returns the height at `along` metres on a track that runs `across` metres from the first.
  double Height(double across, double along) const {
    return m_Seabed.Height(across / m_dExtent, along / m_dExtent);
  }

  IPoint Sounding(double across, double along, double height) const {
    return {EAST + COS_TRACK * across + SIN_TRACK * along,
            NORTH - SIN_TRACK * across + COS_TRACK * along, height};
  }

 private:
  Seabed m_Seabed;
  double m_dExtent;
};

using Take = std::function<void(IPoint const&)>;

double Root(long long count) { return std::sqrt(static_cast<double>(count)); }

long long CeilDivide(long long a, long long b) { return (a + b - 1) / b; }

// Every second track is sailed back.
double AlongTrack(long long track, long long step, long long steps, double spacing) {
  return spacing * static_cast<double>(track % 2 == 0 ? step : steps - 1 - step);
}

void MakeSwaths(long long count, std::uint64_t seed, Take const& take) {
  constexpr double SWATH = 60.0;  // metres, where the bed is 15 m down
  constexpr double BETWEEN_TRACKS = 45.0;
  long long const beams = std::clamp(std::llround(Root(count) / 4.0), 2LL, 256LL);
  double const fan = static_cast<double>(beams);
  double const spacing = SWATH / fan;
  double const area = static_cast<double>(count) / fan * spacing * BETWEEN_TRACKS;
  long long const tracks = std::max(1LL, std::llround(std::sqrt(area) / BETWEEN_TRACKS));
  long long const pings = CeilDivide(count, beams * tracks);

  Area const place(seed, std::max(BETWEEN_TRACKS * static_cast<double>(tracks),
                                  spacing * static_cast<double>(pings)));
  Dice dice(seed);
  for (long long i = 0; i < count; ++i) {
    long long const ping = i / beams;
    long long const track = ping / pings;
    double const along = AlongTrack(track, ping % pings, pings, spacing);
    double const lane = static_cast<double>(track);
    double const ship = BETWEEN_TRACKS * (lane + 0.5) + 2.0 * place.Bed().Noise(along / 40.0, lane);
    double const yaw = 0.06 * place.Bed().Noise(along / 15.0, lane + 0.5);

    double const beam = 2.0 * (static_cast<double>(i % beams) + 0.5) / fan - 1.0;
    double const reach = SWATH / 30.0 * beam * -place.Height(ship, along);
    double const wobble = 0.02 + 0.03 * std::fabs(beam);
    double const x = ship + reach + wobble * dice.Bell();
    double const y = along + yaw * reach + wobble * dice.Bell();
    take(place.Sounding(x, y, place.Height(x, y) + (0.03 + 0.05 * beam * beam) * dice.Bell()));
  }
}

void MakeLines(long long count, std::uint64_t seed, Take const& take) {
  constexpr double SPACING = 2.0;
  constexpr double BETWEEN_TRACKS = 50.0;
  double const shape = SPACING / BETWEEN_TRACKS * static_cast<double>(count);
  long long const tracks = std::max(2LL, std::llround(std::sqrt(shape)));
  long long const steps = CeilDivide(count, tracks);

  Area const place(seed, std::max(BETWEEN_TRACKS * static_cast<double>(tracks),
                                  SPACING * static_cast<double>(steps)));
  Dice dice(seed);
  for (long long i = 0; i < count; ++i) {
    long long const track = i / steps;
    double const lane = static_cast<double>(track);
    double const y = AlongTrack(track, i % steps, steps, SPACING) + 0.1 * dice.Bell();
    double const x = BETWEEN_TRACKS * (lane + 0.5) + 4.0 * place.Bed().Noise(y / 60.0, lane);
    take(place.Sounding(x, y, place.Height(x, y) + 0.05 * dice.Bell()));
  }
}

void MakeGrid(long long count, std::uint64_t seed, Take const& take) {
  constexpr double SPACING = 5.0;
  long long const columns = std::llround(std::ceil(Root(count)));
  Seabed const seabed(seed);
  for (long long i = 0; i < count; ++i) {
    double const column = static_cast<double>(i % columns);
    double const row = static_cast<double>(i / columns);
    double const size = static_cast<double>(columns);
    take(
        {EAST + SPACING * column, NORTH + SPACING * row, seabed.Height(column / size, row / size)});
  }
}

void MakeRandom(long long count, std::uint64_t seed, Take const& take) {
  double const extent = 2.0 * Root(count);
  Seabed const seabed(seed);
  Dice dice(seed);
  for (long long i = 0; i < count; ++i) {
    double const u = dice.Uniform();
    double const v = dice.Uniform();
    take({EAST + extent * u, NORTH + extent * v, seabed.Height(u, v) + 0.05 * dice.Bell()});
  }
}

}  // namespace

std::uint64_t Dice::Next() { return Scramble(m_iState += 0x9e3779b97f4a7c15u); }

double Dice::Uniform() { return ToUnit(Next()); }

double Dice::Bell() {
  std::uint64_t const bits = Next();
  double sum = 0.0;
  for (int shift = 0; shift < 64; shift += 16) sum += static_cast<double>(bits >> shift & 0xffff);
  constexpr double ROOT_OF_3 = 1.7320508075688772;  // four uniform numbers have a variance of 1/3
  return (sum * 0x1p-16 - 2.0) * ROOT_OF_3;
}

double Seabed::Height(double u, double v) const {
  double const middle = 0.5 + 0.2 * Noise(2.0 * v, 17.5);
  double const off = (u - middle) / 0.09;
  double const channel = 7.0 / ((1.0 + off * off) * (1.0 + off * off));

  // The wreck lies across the slope, bow to the north-east.
  double const east = u - 0.72;
  double const north = v - 0.34;
  double const length = (0.6 * east + 0.8 * north) / 0.05;
  double const beam = (0.8 * east - 0.6 * north) / 0.014;
  double const wreck = 4.5 * std::max(0.0, 1.0 - length * length - beam * beam);

  double const rough = 0.8 * Noise(5.0 * u, 5.0 * v) + 0.25 * Noise(21.0 * u, 21.0 * v) +
                       0.06 * Noise(90.0 * u, 90.0 * v);
  double const slope = 9.0 + 5.0 * std::clamp(v, -0.5, 1.5);
  return wreck + rough - slope - channel;
}

double Seabed::Noise(double x, double y) const {
  double const column = std::floor(x);
  double const row = std::floor(y);
  auto const i = static_cast<std::int64_t>(column);
  auto const j = static_cast<std::int64_t>(row);
  double const south = Blend(Corner(i, j), Corner(i + 1, j), x - column);
  double const north = Blend(Corner(i, j + 1), Corner(i + 1, j + 1), x - column);
  return Blend(south, north, y - row);
}

double Seabed::Corner(std::int64_t x, std::int64_t y) const {
  std::uint64_t const place =
      static_cast<std::uint64_t>(x) * 0x9e3779b97f4a7c15u + static_cast<std::uint64_t>(y);
  return 2.0 * ToUnit(Scramble(Scramble(place ^ m_iSeed) + m_iSeed)) - 1.0;
}

void MakeSurvey(SurveyPattern pattern, long long count, std::uint64_t seed,
                std::function<void(IPoint const&)> const& take) {
  switch (pattern) {
    case SurveyPattern::SWATHS:
      return MakeSwaths(count, seed, take);
    case SurveyPattern::LINES:
      return MakeLines(count, seed, take);
    case SurveyPattern::GRID:
      return MakeGrid(count, seed, take);
    case SurveyPattern::RANDOM:
      return MakeRandom(count, seed, take);
  }
}

}  // namespace qeltin::cli
