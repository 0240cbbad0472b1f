#pragma once

#include "qeltin/kernel/TPoint.h"

namespace qeltin::cli {

// Returns the area of a triangle in plan, never negative. Multiplies differences, so that a small
// triangle far from the origin keeps its digits.
double PlanArea(TPoint const& a, TPoint const& b, TPoint const& c);

// Sums of what stands between triangles and the plane z = 0. None is ever negative.
struct Prisms {
  double cut = 0.0;   // volume of what is above the plane
  double fill = 0.0;  // volume of what is missing below it
  double area = 0.0;  // in plan
  long long count = 0;

  // Adds a triangle, whichever way its corners run. One that the plane cuts is measured on both
  // sides of the cut.
  void Add(TPoint const& a, TPoint const& b, TPoint const& c);

  void Add(Prisms const& other);
};

}  // namespace qeltin::cli
