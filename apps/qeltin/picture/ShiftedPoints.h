#pragma once

#include <vector>

#include "qeltin/products/TGrid.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

// Moves the points of a surface or a grid in plan for as long as an object of this class lives, so
// that `origin` is at 0,0, and then puts the very coordinates back that were there. Heights stay.
//
// While they are moved the surface may be drawn, and nothing else: its boxes and circles stay
// behind.
class ShiftedPoints {
 public:
  // REQUIRES: what holds the points outlives this object unchanged.
  ShiftedPoints(TIN& tin, TPoint const& origin);
  ShiftedPoints(TGrid const& grid, TPoint const& origin);
  ~ShiftedPoints();
  ShiftedPoints(ShiftedPoints const&) = delete;
  ShiftedPoints& operator=(ShiftedPoints const&) = delete;

 private:
  struct Place {
    TPoint* point;
    double x;
    double y;
  };

  void Shift(TPoint* point, TPoint const& origin);

  std::vector<Place> m_Places;
};

}  // namespace qeltin::cli
