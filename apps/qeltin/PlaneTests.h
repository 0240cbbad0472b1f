#pragma once

#include "qeltin/kernel/TPoint.h"

// Tests in plan that decide only what rounding cannot have caused. Coordinates are finite.
namespace qeltin::cli {

// Returns -1 where a, b, c run clockwise, 1 where they run counter-clockwise, and 0 where they lie
// in line as far as a side test in double precision can tell.
int TurnOf(TPoint const& a, TPoint const& b, TPoint const& c);

// Returns true iff p lies inside the circle through a, b, c, deeper than the rounding of that
// circle, or of another through three of the four points, explains. Never in the circle of points
// that are in line to rounding.
bool IsInsideCircle(TPoint const& a, TPoint const& b, TPoint const& c, TPoint const& p);

// Returns true iff the circle is that of a, b, c up to rounding. Points in line to rounding have
// any circle.
bool IsCircleOf(TPoint const& a, TPoint const& b, TPoint const& c, TPoint const& centre,
                double radius_sq);

}  // namespace qeltin::cli
