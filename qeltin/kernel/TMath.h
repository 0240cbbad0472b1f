#pragma once

#include "qeltin/platform/Export.h"

// Numeric helpers. The three constants are single-precision values held in a double, and hosts
// rest on them: they differ from pi/180, 180/pi and 1/1000 in the eighth digit.
//
// Threads: no state, safe from any thread.
class QELTIN_API TMath {
 public:
  static constexpr double DEG_TO_RAD = 0.01745329238474369;
  static constexpr double RAD_TO_DEG = 57.295780181884766;
  static constexpr double MILSEC_TO_SEC = 0.0010000000474974513;

  static double sqr(double v) { return v * v; }

  // Returns the angle in [-pi/2, 3 pi/2] that has this cosine and sine, in radians. The sine gives
  // the size, the cosine only the half plane.
  static double RestoreAngle(double cosine, double sine);
};
