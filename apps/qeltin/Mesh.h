#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "apps/qeltin/Surface.h"

namespace qeltin::cli {

// A triangle as its file has it. Corners and neighbours are positions in the tables, or one of
// these.
struct MeshTriangle {
  static constexpr std::int32_t NONE = -1;     // no neighbour
  static constexpr std::int32_t NOWHERE = -2;  // the file refers to what it does not have

  std::array<std::int32_t, 3> corners = {NOWHERE, NOWHERE, NOWHERE};
  std::array<std::int32_t, 3> neighbours = {NONE, NONE, NONE};  // across sides 0-1, 1-2, 2-0
  unsigned char flags = 0;
};

// A circle as a file of version 0 has it.
struct StoredCircle {
  double x = 0.0;
  double y = 0.0;
  double radius_sq = 0.0;
};

// The tables of a surface file as they stand, before a loader mends or drops what is not sound. Of
// a file that is cut short the tables hold what is there.
struct Mesh {
  Box bounds;
  Box world_bounds;
  long long point_count = 0;  // what the file tells
  long long triangle_count = 0;
  std::vector<TPoint> points;
  std::vector<MeshTriangle> triangles;
  std::vector<StoredCircle> circles;  // of every triangle; version 0 only

  // Places where the tables themselves are not sound, by position.
  std::vector<std::int32_t> bad_points;     // with a slot or key that another one has, or no slot
  std::vector<std::int32_t> bad_triangles;  // likewise
  std::vector<std::int32_t> bad_starts;     // Trimble: start points without a triangle
  std::vector<std::int32_t> bad_borders;    // Trimble: border entries without a triangle
  std::vector<std::string> unreadable;      // Trimble: tables that have no known layout
  std::vector<std::string> cut_short;       // tables that end early
  std::uint64_t excess = 0;                 // bytes after the last table; native only
};

// Calls `take` with the position of each triangle, in their order. The corners of a large surface
// are far apart in memory and are fetched ahead.
template <typename Take>
void ForEachTriangle(Mesh const& mesh, Take&& take) {
  constexpr std::size_t AHEAD = 16;
  std::size_t const count = mesh.triangles.size();
  for (std::size_t i = 0; i < count; ++i) {
    if (i + AHEAD < count) {
      for (std::int32_t const corner : mesh.triangles[i + AHEAD].corners) {
        auto const position = static_cast<std::size_t>(corner);
        if (position < mesh.points.size()) __builtin_prefetch(&mesh.points[position]);
      }
    }
    take(static_cast<std::int32_t>(i));
  }
}

// Read the tables of a native or a Trimble file in one pass, without the library. Memory follows
// the size of the file, not its counts. Throw Failure.
// REQUIRES: LookAt has taken the header of the file for sound; `version` is what it told.
Mesh ReadNativeMesh(std::string const& name, int version);
Mesh ReadTrimbleMesh(std::string const& name);

// Returns the facts of the surface that a load makes of the tables: a triangle that lacks a corner
// is hidden.
SurfaceFacts FactsOf(Mesh const& mesh);

}  // namespace qeltin::cli
