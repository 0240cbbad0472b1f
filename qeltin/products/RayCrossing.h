#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "qeltin/kernel/TPoint.h"

// The edge tests of the two ways of asking whether a closed figure holds a place. An edge runs from
// a vertex to the one after it; its direction counts, since what is computed starts from one end.
namespace qeltin::detail {

// Returns true iff the level ray from (x, y) to the right meets the edge. Both ends of the edge's
// range of y count; a level edge does not.
inline bool MeetsLevelRay(TPoint const& p, TPoint const& q, double x, double y) {
  if (!(std::max(p.x, q.x) >= x && y >= std::min(p.y, q.y) && y <= std::max(p.y, q.y) &&
        q.y != p.y)) {
    return false;
  }
  double const m = (q.x - p.x) / (q.y - p.y);
  return p.x - p.y * m + m * y >= x;
}

// A ray to the right that rises so little that it passes no vertex but one where it starts.
struct SlantedRay {
  TPoint start;
  double run;
  double rise;

  // Returns true iff the ray meets the edge strictly between the edge's ends.
  bool Meets(TPoint const& a, TPoint const& b) const {
    TPoint const e(a.x - b.x, a.y - b.y);
    TPoint const q(a.x - start.x, a.y - start.y);
    double const D = run * e.y - rise * e.x;
    double const N = run * q.y - rise * q.x;
    double const M = e.y * q.x - e.x * q.y;
    return (D - N) * N > 0.0 && M * D > 0.0;
  }
};

// Returns true iff sums of a few products of four coordinate differences, and quotients of two, are
// neither lost below the smallest number nor past the largest, so that each is right up to its
// rounding. What is told about such a figure in advance rests on this.
inline bool IsInScale(std::vector<TPoint> const& figure) {
  auto const inScale = [](double v) {
    return v == 0.0 || (std::fabs(v) > 1e-50 && std::fabs(v) < 1e70);
  };
  return std::all_of(figure.begin(), figure.end(),
                     [&](TPoint const& v) { return inScale(v.x) && inScale(v.y); });
}

}  // namespace qeltin::detail
