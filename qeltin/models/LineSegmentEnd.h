#pragma once

// One end of a segment of a center line, as it crosses the library boundary: seven words of 64 bit.
// Hosts compile against its layout, and clear the record before a call that fills it.
struct LineSegmentEnd {
  double reserved[2];  // left as the caller set them
  double x;            // position in the plane system and unit of the host
  double y;
  double kp;      // distance along the line from its KP reference
  double zero;    // always written as 0
  double radius;  // of the arc about this point, where it is a centre; else 0
};

static_assert(sizeof(LineSegmentEnd) == 7 * 8);
