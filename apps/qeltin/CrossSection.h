#pragma once

#include <vector>

#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

// A stretch of a line that runs over the visible surface without a gap: two points or more.
struct Piece {
  int line = 0;                   // which of the lines, from 0
  std::vector<TPoint> points;     // in the direction of the line
  std::vector<double> distances;  // of each point from the start of the line, in plan
};

// Returns the cross-sections of the visible surface under lines in plan: a point wherever a line
// crosses a side of a triangle, runs through a corner, turns, or begins or ends on the surface. A
// corner that a line misses by the rounding of coordinates alone is taken as on it, and so is a
// side between two of them. Pieces are in the order of the lines.
//
// One pass over all triangles. Unlike TIN::GenerateProfile it follows no neighbours, so that no
// corner, side or gap in the way leads it astray. Shows its progress unless `quiet`.
std::vector<Piece> CrossSections(TIN const& tin, std::vector<TPolygon> const& lines, bool quiet);

}  // namespace qeltin::cli
