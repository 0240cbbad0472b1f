#pragma once

#include <array>
#include <string>

#include "apps/qeltin/LasReader.h"
#include "apps/qeltin/SurfaceInput.h"

namespace qeltin::cli {

// What was found in a LAS file.
struct LasSummary {
  LasHeader header;
  long long points = 0;                             // handed on
  long long withheld = 0;                           // left out: marked as not to be used
  long long other_classes = 0;                      // left out by --class
  std::array<long long, CLASS_COUNT> classes = {};  // of the points handed on, by class
};

// Hands the points of a LAS file to `take`, except those that are marked as withheld and those of
// classes that are not wanted; what was left out is told in a note. Throws Failure; also where
// nothing is left.
LasSummary ReadLas(std::string const& name, InputOptions const& options, TakePoint const& take,
                   ExpectPoints const& expect = {});

}  // namespace qeltin::cli
