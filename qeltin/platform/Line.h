#pragma once

#include "qeltin/platform/Point.h"

// A straight line from one point to another.
//
// Threads: a value like a double. Concurrent reads are safe, a write needs a lock of the caller's.
class Line {
 public:
  Point start;
  Point end;

  constexpr Line() = default;
  constexpr Line(Point const& start_, Point const& end_) : start(start_), end(end_) {}

  constexpr bool operator==(Line const& other) const = default;  // exact
};
