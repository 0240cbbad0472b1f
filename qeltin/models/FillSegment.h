#pragma once

#include "qeltin/models/LineSegmentEnd.h"
#include "qeltin/platform/CenterLine.h"

namespace qeltin::detail {

// Fills both records from the points `index` and `index` + 1.
void FillSegment(CenterLine const& line, int index, LineSegmentEnd& from, LineSegmentEnd& to);

}  // namespace qeltin::detail
