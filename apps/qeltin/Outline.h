#pragma once

#include <string>
#include <vector>

#include "qeltin/kernel/TPoint.h"

namespace qeltin::cli {

// A line or a polygon as it stands in a file.
struct Outline {
  std::string where;  // "line 7" of a text, "feature 7 of layer coast": what messages say

  // A line is a single list of places. A polygon has its outer ring first, then its holes.
  std::vector<std::vector<TPoint>> parts;
};

// Reads all lines and polygons of a vector file through GDAL. Throws Failure; always, in a command
// built without it.
std::vector<Outline> ReadVectorFile(std::string const& file);

}  // namespace qeltin::cli
