#pragma once

#include <algorithm>
#include <limits>

#include "qeltin/kernel/TPoint.h"

namespace qeltin::detail {

// A closed box in plan. It starts out around nothing.
struct PlanBox {
  double left = std::numeric_limits<double>::infinity();
  double right = -std::numeric_limits<double>::infinity();
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void Add(PlanBox const& other) {
    left = std::min(left, other.left);
    right = std::max(right, other.right);
    low = std::min(low, other.low);
    high = std::max(high, other.high);
  }
  void Add(TPoint const& p) { Add({p.x, p.x, p.y, p.y}); }
};

}  // namespace qeltin::detail
