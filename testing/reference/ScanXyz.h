#pragma once

#include <string>
#include <vector>

#include "qeltin/kernel/TPoint.h"

namespace qeltin::testing {

// What a text of X Y Z triples holds, in the plain way: the C runtime's wide formatted scanning of
// the file, one triple at a time, in the C locale.
struct ScannedXyz {
  bool opened = false;
  bool comma = false;  // the form of the first triple, where there is one
  std::vector<TPoint> points;
};

ScannedXyz ScanXyz(std::string const& path);

}  // namespace qeltin::testing
