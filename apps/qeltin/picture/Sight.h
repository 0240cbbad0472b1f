#pragma once

#include <optional>

#include "apps/qeltin/Surface.h"
#include "apps/qeltin/picture/Camera.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

// A line of sight: it runs from a place through another, and beyond.
struct Sight {
  TPoint from;
  TPoint through;

  TPoint At(double share) const { return from + (through - from) * share; }
};

// Returns the line of sight through the middle of a pixel of a picture, `x` from its left edge and
// `y` from its upper one, which `camera` makes.
Sight SightThrough(Camera const& camera, int x, int y, int width, int height);

// Returns the first place where a line of sight comes upon the visible surface, with the height of
// the surface there. `bounds` is the box of the visible surface; both are in its coordinates.
//
// The surface is walked under the line of sight, so that this takes as long as there are triangles
// on that way.
std::optional<TPoint> FirstOnSurface(TIN const& tin, Box const& bounds, Sight const& sight);

}  // namespace qeltin::cli
