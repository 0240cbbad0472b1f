#pragma once

#include <cstdint>
#include <vector>

#include "bench/Measurement.h"
#include "bench/SurveyInput.h"

namespace qeltin::bench {

// Triangles that no two cover the same place.
struct FlatMesh {
  std::vector<IPoint> points;
  std::vector<std::uint32_t> corners;  // three a triangle
};

// How far a mesh is from points, in height.
struct HeightError {
  double rms = 0.0;
  double largest = 0.0;
  double covered = 0.0;  // how many of the points lie on the mesh; the others do not count
};

// Compares by a grid of the points, whatever made the mesh.
HeightError MeasureHeightError(std::vector<IPoint> const& points, FlatMesh const& mesh);

// Tells how many points the mesh has, and the error.
void AddFacts(HeightError const& error, FlatMesh const& mesh, Measurement& measurement);

}  // namespace qeltin::bench
