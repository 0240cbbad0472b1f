#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "qeltin/kernel/IPoint.h"

namespace qeltin::cli {

// Random numbers that are the same on every machine: 64 bits at a time from one word of state.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : m_iState(seed) {}

  std::uint64_t Next();

  // Returns a number from 0 up to 1, 1 excluded.
  double Uniform();

  // Returns a number of a bell curve about 0 with standard deviation 1, never beyond 3.5.
  double Bell();

 private:
  std::uint64_t m_iState;
};

// A seabed on the unit square: a slope with a winding channel, the mound of a wreck, and roughness
// down to ripples. Only operations that every machine rounds alike are used, so that equal seeds
// give equal bits.
class Seabed {
 public:
  explicit Seabed(std::uint64_t seed) : m_iSeed(seed) {}

  // Returns the height in metres, always below -1, at (u, v).
  double Height(double u, double v) const;

  // Returns smooth random values from -1 to 1 whose features are one unit wide.
  double Noise(double x, double y) const;

 private:
  double Corner(std::int64_t x, std::int64_t y) const;

  std::uint64_t m_iSeed;
};

enum class SurveyPattern {
  SWATHS,  // a multibeam echosounder: swaths across overlapping ship tracks, ping by ping
  LINES,   // a single-beam echosounder: dense along the tracks, wide gaps between them
  GRID,    // an exact grid of 5 m, row by row, without noise
  RANDOM,  // uniformly scattered
};

// Makes exactly `count` points of a survey, in the order in which they would be taken: UTM
// coordinates in metres, heights up. Returns once `take` has had all of them.
// REQUIRES: count > 0.
void MakeSurvey(SurveyPattern pattern, long long count, std::uint64_t seed,
                std::function<void(IPoint const&)> const& take);

}  // namespace qeltin::cli
