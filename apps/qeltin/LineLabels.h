#pragma once

#include <string>
#include <vector>

#include "qeltin/kernel/TPoint.h"

namespace qeltin::cli {

// Where a text stands along a line.
struct LabelSpot {
  TPoint centre;
  double turn;  // degrees counter-clockwise, such that the text is never upside down
};

// Returns the line without points that hardly differ from the one before. Pixels.
std::vector<TPoint> ThinnedLine(std::vector<TPoint> const& points);

// Returns where a text `width` pixels wide fits along a line on its straight stretches, about
// `spacing` pixels apart. Pixels with y up. REQUIRES: two points or more.
std::vector<LabelSpot> LabelSpots(std::vector<TPoint> const& points, std::string const& text,
                                  double width, double spacing);

}  // namespace qeltin::cli
