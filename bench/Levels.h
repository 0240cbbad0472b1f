#pragma once

#include <vector>

#include "bench/SurveyInput.h"

namespace qeltin::bench {

// Returns 20 heights, evenly between the lowest and the highest of the points.
inline std::vector<double> MakeLevels(std::vector<IPoint> const& points) {
  constexpr int LEVELS = 20;
  auto const [min, max] = BoxOf(points);
  std::vector<double> levels;
  for (int i = 0; i < LEVELS; ++i) levels.push_back(min.z + (i + 0.5) / LEVELS * (max.z - min.z));
  return levels;
}

}  // namespace qeltin::bench
