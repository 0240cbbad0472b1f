#pragma once

#include <algorithm>
#include <vector>

#include "qeltin/kernel/TPoint.h"

namespace qeltin::detail {

// Returns the y of the vertices in rising order, equal ones once. REQUIRES: they are numbers.
inline std::vector<double> LevelsOf(std::vector<TPoint> const& figure) {
  std::vector<double> levels;
  levels.reserve(figure.size());
  for (TPoint const& v : figure) levels.push_back(v.y);
  std::sort(levels.begin(), levels.end());
  levels.erase(std::unique(levels.begin(), levels.end()), levels.end());
  return levels;
}

}  // namespace qeltin::detail
