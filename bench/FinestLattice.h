#pragma once

#include <cmath>

#include "bench/SurveyInput.h"

namespace qeltin::bench {

// The lattice that TGrid::Create lays over a box where no spacing is asked for: a thousandth of
// each side, from the south-west corner, and a last column and row just beyond the box.
struct Lattice {
  double dx;
  double dy;
  int columns;
  int rows;
};

inline Lattice FinestLattice(Box const& box) {
  constexpr double FINEST_SHARE = 0.0010000000474974513;
  double const width = box.max.x - box.min.x;
  double const height = box.max.y - box.min.y;
  double const dx = width * FINEST_SHARE;
  double const dy = height * FINEST_SHARE;
  return {dx, dy, static_cast<int>(std::ceil(width / dx)) + 1,
          static_cast<int>(std::ceil(height / dy)) + 1};
}

}  // namespace qeltin::bench
