#include "bench/SurveyInput.h"

#include <algorithm>
#include <cmath>

#include "bench/Measurement.h"
#include "bench/SurveyFile.h"
#include "testing/MakeSurvey.h"

namespace qeltin::bench {

namespace {

using testing::Dice;
using Points = std::vector<IPoint>;

constexpr double EAST = 4.0e5;
constexpr double NORTH = 4.9e6;
constexpr std::uint64_t SEED = 20240607;

double HeightAt(double x, double y) {
  return -30.0 + 6.0 * std::sin(x / 70.0) + 4.0 * std::cos(y / 45.0) + 1e-4 * (x + y);
}

IPoint At(double x, double y) { return {EAST + x, NORTH + y, HeightAt(x, y)}; }

double RootOf(int count) { return std::sqrt(static_cast<double>(count)); }

Points Uniform(int count, Dice& dice) {
  double const side = RootOf(count);
  Points points;
  for (int i = 0; i < count; ++i) {
    double const x = dice.Between(0.0, side);
    points.push_back(At(x, dice.Between(0.0, side)));
  }
  return points;
}

Points Clusters(int count, Dice& dice) {
  constexpr int HEAP = 2000;
  double const side = 10.0 * RootOf(count);
  Points points;
  double x = 0.0;
  double y = 0.0;
  double size = 1.0;
  for (int i = 0; i < count; ++i) {
    if (i % HEAP == 0) {
      x = dice.Between(0.0, side);
      y = dice.Between(0.0, side);
      size = std::pow(10.0, dice.Between(0.5, 2.5));
    }
    double const dx = size * dice.Normal();
    points.push_back(At(x + dx, y + size * dice.Normal()));
  }
  return points;
}

// 400 beams over 120 degrees in about 30 m of water: a swath near 100 m wide, a ping each half
// metre, tracks 80 m apart on a heading of 36.9 degrees. As many tracks as make a square of it.
Points Swaths(int count, Dice& dice) {
  constexpr int BEAMS = 400;
  constexpr double HALF_ANGLE = 1.047;
  constexpr double PING = 0.5;
  constexpr double TRACK = 80.0;
  int const pings = (count + BEAMS - 1) / BEAMS;
  int const tracks = std::max(1, static_cast<int>(std::lround(std::sqrt(pings * PING / TRACK))));
  int const per_track = (pings + tracks - 1) / tracks;
  Points points;
  for (int ping = 0; ping < pings; ++ping) {
    int const track = ping / per_track;
    int const step = ping % per_track;
    double const roll = 0.02 * std::sin(ping * 0.05);
    double const along = PING * (track % 2 == 0 ? step : per_track - 1 - step);
    for (int beam = 0; beam < BEAMS && points.size() < static_cast<std::size_t>(count); ++beam) {
      double const angle = HALF_ANGLE * (2.0 * beam / (BEAMS - 1) - 1.0) + roll;
      double const u = along + 0.05 * dice.Normal();
      double const v = TRACK * track + 30.0 * std::tan(angle) + 0.02 * dice.Normal();
      points.push_back(At(0.8 * u - 0.6 * v, 0.6 * u + 0.8 * v));
    }
  }
  return points;
}

Points Grid(int count, double jitter, Dice& dice) {
  int const columns = static_cast<int>(std::ceil(RootOf(count)));
  Points points;
  for (int i = 0; i < count; ++i) {
    double const dx = jitter * dice.Between(-1.0, 1.0);
    points.push_back(At(i % columns + dx, i / columns + jitter * dice.Between(-1.0, 1.0)));
  }
  return points;
}

double ToCentimetre(double value) { return std::round(value * 100.0) / 100.0; }

// A sounding each half metre, tracks 20 m apart on a heading of 36.9 degrees.
Points SingleBeam(int count, Dice& dice) {
  constexpr double SPACING = 0.5;
  constexpr double TRACK = 20.0;
  int const tracks = std::max(1, static_cast<int>(std::lround(std::sqrt(count * SPACING / TRACK))));
  int const per_track = (count + tracks - 1) / tracks;
  Points points;
  for (int i = 0; i < count; ++i) {
    int const track = i / per_track;
    int const step = track % 2 == 0 ? i % per_track : per_track - 1 - i % per_track;
    double const u = SPACING * step + 0.02 * dice.Normal();
    double const v = TRACK * track + 0.4 * std::sin(u / 40.0);
    IPoint const p = At(0.8 * u - 0.6 * v, 0.6 * u + 0.8 * v);
    points.push_back({ToCentimetre(p.x), ToCentimetre(p.y), ToCentimetre(p.z)});
  }
  return points;
}

Points TwoClusters(int count, Dice& dice) {
  double const size = 0.3 * RootOf(count);
  Points points;
  for (int i = 0; i < count; ++i) {
    double const island = dice.OneIn(2) ? 1.0 : 0.0;
    double const x = 8.0e5 * island + size * dice.Normal();
    points.push_back(At(x, 6.0e5 * island + size * dice.Normal()));
  }
  return points;
}

}  // namespace

std::vector<IPoint> MakeSurveyInput(std::string const& name, int count) {
  Dice dice(SEED);
  if (name == "uniform") return Uniform(count, dice);
  if (name == "clusters") return Clusters(count, dice);
  if (name == "swaths") return Swaths(count, dice);
  if (name == "jittered_grid") return Grid(count, 0.3, dice);
  if (name == "exact_grid") return Grid(count, 0.0, dice);
  if (name == "single_beam") return SingleBeam(count, dice);
  if (name == "two_clusters") return TwoClusters(count, dice);
  if (name.ends_with(".xyz")) return ReadSurveyFile(name, count);
  Reject("input " + name);
}

std::vector<IPoint> MakePlaces(std::vector<IPoint> const& points, bool raster) {
  constexpr int ROWS = 1000;
  constexpr int COLUMNS = 1000;
  auto const [min, max] = BoxOf(points);
  Dice dice(SEED + 1);
  std::vector<IPoint> places;
  for (int row = 0; row < ROWS; ++row) {
    for (int column = 0; column < COLUMNS; ++column) {
      double const s = raster ? (column + 0.5) / COLUMNS : dice.Unit();
      double const t = raster ? (row + 0.5) / ROWS : dice.Unit();
      places.push_back({min.x + s * (max.x - min.x), min.y + t * (max.y - min.y), 0.0});
    }
  }
  return places;
}

Box BoxOf(std::vector<IPoint> const& points) {
  Box box{points.front(), points.front()};
  for (IPoint const& p : points) {
    box.min = {std::min(box.min.x, p.x), std::min(box.min.y, p.y), std::min(box.min.z, p.z)};
    box.max = {std::max(box.max.x, p.x), std::max(box.max.y, p.y), std::max(box.max.z, p.z)};
  }
  return box;
}

}  // namespace qeltin::bench
