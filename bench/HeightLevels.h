#pragma once

#include <algorithm>
#include <vector>

#include "qeltin/kernel/IPoint.h"

namespace qeltin::bench {

// Returns 20 levels, evenly within the heights of `points`.
inline std::vector<double> HeightLevels(std::vector<IPoint> const& points) {
  auto const [low, high] = std::minmax_element(
      points.begin(), points.end(), [](IPoint const& a, IPoint const& b) { return a.z < b.z; });
  std::vector<double> levels;
  for (int i = 0; i < 20; ++i) levels.push_back(low->z + (high->z - low->z) * (i + 0.5) / 20);
  return levels;
}

}  // namespace qeltin::bench
