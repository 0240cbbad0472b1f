#pragma once

#include <vector>

#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

// Lays lines on the visible surface, with a point wherever they cross a side of a triangle. Off the
// surface heights go over from the last one on it to the next along the line, stay where there is
// only one of them, and are `otherwise` on a line that nowhere touches the surface.
//
// Returns straight pieces, two points each, one after the other. Shows its progress unless `quiet`.
TPolygon DrapeLines(TIN const& tin, std::vector<TPolygon> const& lines, double otherwise,
                    bool quiet);

}  // namespace qeltin::cli
