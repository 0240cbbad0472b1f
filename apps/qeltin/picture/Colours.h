#pragma once

#include <string>

#include "qeltin/platform/ColorTable.h"

namespace qeltin::cli {

// The colours of heights, and what they are called.
struct Colours {
  std::string name;
  ColorTable table;
};

// Returns the ramp that `wanted` names, "bathymetry", "terrain" or "grey", over the heights from
// `low` to `high`; with nothing wanted, bathymetry where all heights are below 0 and terrain
// otherwise. Any other word is a text with lines of a height and red, green and blue from 0 to 255,
// parted by blanks, tabs or commas; blank lines and those that start with # count for nothing.
//
// Throws Failure where a line is no such line or there is none, UsageFailure where there is no such
// text.
Colours ColoursFor(std::string const& wanted, double low, double high);

}  // namespace qeltin::cli
