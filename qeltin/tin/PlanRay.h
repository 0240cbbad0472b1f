#pragma once

#include "qeltin/kernel/TPoint.h"

namespace qeltin::detail {

// A ray in plan from (x, y) along the unit vector (ux, uy).
struct PlanRay {
  // A point as seen from the ray: how far ahead, and how far to the left.
  struct Sight {
    TPoint const* point = nullptr;
    double along = 0.0;
    double across = 0.0;
  };

  double x;
  double y;
  double ux;
  double uy;

  Sight See(TPoint const& p) const {
    return {&p, (p.x - x) * ux + (p.y - y) * uy, (p.y - y) * ux - (p.x - x) * uy};
  }

  // Sets `out` to where the ray meets the segment from `a` to `b`, with the height between theirs.
  // Returns false, with `out` as it was, where it does not, or only at or behind the start. A
  // segment on the ray's line answers true at the start.
  bool Meets(Sight const& a, Sight const& b, TPoint& out) const {
    if ((a.across > 0.0 && b.across <= 0.0) || (a.across <= 0.0 && b.across > 0.0)) {
      double const f = a.across / (a.across - b.across);
      double const t = a.along + (b.along - a.along) * f;
      if (!(t > 0.0)) return false;
      out = TPoint(x + t * ux, y + t * uy, a.point->z + (b.point->z - a.point->z) * f);
      return true;
    }
    if (a.across == 0.0 && b.across == 0.0 && a.along != b.along) {
      out = TPoint(x, y, a.point->z + (b.point->z - a.point->z) * a.along / (a.along - b.along));
      return true;
    }
    return false;
  }
};

}  // namespace qeltin::detail
