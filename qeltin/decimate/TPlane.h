#pragma once

#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/Export.h"

// The plane z = a x + b y + c.
//
// Threads: a value. Concurrent reads are safe.
class QELTIN_API TPlane {
 public:
  double a = 0.0;
  double b = 0.0;
  double c = 0.0;

  TPlane() = default;
  TPlane(TPlane const&) = default;
  TPlane& operator=(TPlane const&) = default;
  virtual ~TPlane();

  // Fits the plane to the points by least squares of the heights and returns 1. Returns 0, with the
  // plane as it was, below four points and where they stand on one line in plan. Coordinates enter
  // as they are: far from the origin the normal equations lose digits.
  int Fit(std::vector<TPoint*> const& points);
};
