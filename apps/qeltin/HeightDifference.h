#pragma once

#include <vector>

#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

// How far a thinned surface is from the points that are no longer in it.
struct HeightDifference {
  long long removed = 0;  // vertices that went
  long long beside = 0;   // of these, where the thinned surface has no height
  double largest = 0.0;
  double mean = 0.0;  // of the sizes
  TPoint place;       // of the largest
};

// Returns the vertices of the triangles without the corners of the seed rectangle, in the order of
// x, y and z.
std::vector<TPoint> VerticesOf(TIN const& tin);

// Compares the vertices before with the surface after.
HeightDifference CompareHeights(std::vector<TPoint> const& before, TIN const& after);

}  // namespace qeltin::cli
