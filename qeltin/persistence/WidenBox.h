#pragma once

#include "qeltin/kernel/TPoint.h"

namespace qeltin::detail {

// Widens the box of `min` and `max` to hold `p` in x, y and z. A coordinate that is not a number
// widens nothing.
inline void WidenBox(TPoint const& p, TPoint& min, TPoint& max) {
  if (p.x < min.x) min.x = p.x;
  if (p.y < min.y) min.y = p.y;
  if (p.z < min.z) min.z = p.z;
  if (p.x > max.x) max.x = p.x;
  if (p.y > max.y) max.y = p.y;
  if (p.z > max.z) max.z = p.z;
}

}  // namespace qeltin::detail
