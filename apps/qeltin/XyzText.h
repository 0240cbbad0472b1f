#pragma once

#include <string>

#include "apps/qeltin/SurfaceInput.h"

namespace qeltin::cli {

// What was found in an XYZ text.
struct XyzSummary {
  bool comma = false;  // x,y,z rather than x y z
  long long points = 0;
};

// Hands every point of a text to `take`. "-" is standard input. A host must not lose data in
// silence, so each line has to hold exactly one point, in the form of the first, or nothing; any
// other line is a Failure with its number.
//
// With --lenient the text is read as the library reads it: as a stream of triples to which line
// ends mean nothing, up to the first text that is no triple. That place is told in a note.
XyzSummary ReadXyz(std::string const& name, InputOptions const& options, TakePoint const& take,
                   ExpectPoints const& expect = {});

}  // namespace qeltin::cli
