#pragma once

#include <optional>

#include "apps/qeltin/Prism.h"
#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

// What stands between a surface and the plane z = 0 inside a polygon.
struct Volume {
  Prisms prisms;            // its count is that of triangles and pieces of triangles
  long long triangles = 0;  // of the surface, wholly or partly inside
};

// Measures the visible triangles of `tin`, which stays as it is. Each counts wholly or not at all,
// by its centroid. With `step`, a triangle that the boundary passes through is first halved across
// its longest side, again and again, until no side of a piece on the boundary is longer than the
// step; then the pieces count by their centroids. All of them lie in the planes of their triangles,
// so that with shrinking steps the result converges on the volume of this very surface inside the
// polygon.
Volume MeasureVolume(TIN const& tin, TPolygon const& polygon, std::optional<double> step);

}  // namespace qeltin::cli
