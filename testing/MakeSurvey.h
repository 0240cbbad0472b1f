#pragma once

#include <cstdint>
#include <iosfwd>
#include <vector>

#include "qeltin/kernel/TPoint.h"

// Points as surveys give them, and as no survey should. Everything follows from a seed: the same
// seed makes the same points, as far as the C library's sine and logarithm are the same.
namespace qeltin::testing {

// The seed for whatever a test draws: that of the environment variable QELTIN_TEST_SEED, or a fixed
// one. Prints it.
std::uint64_t TestSeed();

// Random numbers that do not depend on the standard library.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : m_State(seed) {}

  std::uint64_t Bits();
  double Unit();                            // 0 <= result < 1, in steps of 2^-53
  double Between(double low, double high);  // low <= result <= high
  int Below(int limit);                     // 0 <= result < limit
  double Normal();                          // mean 0, standard deviation 1
  bool OneIn(int n) { return Below(n) == 0; }

 private:
  std::uint64_t m_State;
};

enum class Survey {
  Uniform,        // random over a square kilometre
  Clusters,       // gaussian heaps of many sizes
  Swaths,         // multibeam pings in track order, lines back and forth
  JitteredGrid,   // rows of a grid, each point a little off
  ExactGrid,      // row by row at whole units: all cocircular
  SingleBeam,     // soundings along parallel tracks, rounded to centimetres
  CollinearAxis,  // all on one line of constant y
  CollinearSkew,  // all on one oblique line, as far as rounding lets them
  Cocircular,     // integer points of one circle
  RotatedCircle,  // points of one circle by angle
  Duplicates,     // half of them within 0.0005 to 0.002 of another, or exactly there
  TwoIslands,     // two dense heaps a thousand kilometres apart
  Spiral,         // from the middle outward
};

inline constexpr Survey ALL_SURVEYS[] = {
    Survey::Uniform,    Survey::Clusters,      Survey::Swaths,        Survey::JitteredGrid,
    Survey::ExactGrid,  Survey::SingleBeam,    Survey::CollinearAxis, Survey::CollinearSkew,
    Survey::Cocircular, Survey::RotatedCircle, Survey::Duplicates,    Survey::TwoIslands,
    Survey::Spiral,
};

char const* NameOf(Survey survey);
std::ostream& operator<<(std::ostream& out, Survey survey);

// Where the local origin of a survey lies in the plane.
struct Frame {
  double east = 0.0;
  double north = 0.0;
};

inline constexpr Frame AT_ORIGIN{};
inline constexpr Frame AT_UTM{4.0e5, 4.9e6};

// So far out that coordinates are rounded to some tenths of a millimetre, and walks go back and
// forth between two triangles.
inline constexpr Frame FAR_OUT{3.0e11, -7.0e11};

// A frame with a name, as the parameter of a test.
struct Place {
  char const* name;
  Frame frame;
};

void PrintTo(Place const& place, std::ostream* out);

inline constexpr Place PLACES[] = {{"AtOrigin", AT_ORIGIN}, {"AtUtm", AT_UTM}, {"FarOut", FAR_OUT}};

// Returns `count` points. z is a smooth height that differs from point to point.
std::vector<TPoint> MakeSurvey(Survey survey, int count, std::uint64_t seed,
                               Frame const& frame = AT_ORIGIN);

// The smallest box around the points, on all three axes. REQUIRES: at least one point.
struct Extent {
  TPoint min;
  TPoint max;
};
Extent ExtentOf(std::vector<TPoint> const& points);

}  // namespace qeltin::testing
