#pragma once

#include <cmath>
#include <vector>

#include "bench/SurveyInput.h"

namespace qeltin::bench {

// Returns the corners of a figure around the middle of `points` that winds in and out and covers
// about half of their box. The first corner is repeated at the end.
inline std::vector<IPoint> MakeFigure(std::vector<IPoint> const& points, int corners) {
  constexpr double TWO_PI = 6.283185307179586;
  auto const [min, max] = BoxOf(points);
  std::vector<IPoint> figure;
  for (int i = 0; i <= corners; ++i) {
    double const angle = TWO_PI * (i % corners) / corners;
    double const radius = 0.4 + 0.06 * std::sin(7.0 * angle);
    figure.push_back({(min.x + max.x) / 2 + radius * (max.x - min.x) * std::cos(angle),
                      (min.y + max.y) / 2 + radius * (max.y - min.y) * std::sin(angle), 0.0});
  }
  return figure;
}

// Moves the heights so that about as much of the surface is above 0 as below.
inline void CentreHeights(std::vector<IPoint>& points) {
  double sum = 0.0;
  for (IPoint const& p : points) sum += p.z;
  for (IPoint& p : points) p.z -= sum / static_cast<double>(points.size());
}

}  // namespace qeltin::bench
