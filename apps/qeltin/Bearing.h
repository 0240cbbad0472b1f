#pragma once

namespace qeltin::cli {

// The direction in which an eye or a light stands, seen from the surface, in degrees: clockwise
// from north, and above the horizon. South at a height of 30 degrees is {180, 30}; an eye there
// looks to the north.
struct Bearing {
  double azimuth = 0.0;
  double elevation = 90.0;
};

}  // namespace qeltin::cli
