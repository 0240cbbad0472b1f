#pragma once

#include <vector>

#include "qeltin/products/TPolygon.h"

namespace qeltin::cli {

// The sides of a closed figure in plan, laid out for many questions. A side that runs there and
// back, as the bridges to holes do, bounds nothing and is left out.
class Boundary {
 public:
  struct Side {
    TPoint from;
    TPoint to;  // not below `from`
  };

  explicit Boundary(TPolygon const& polygon);
  Boundary(Boundary const&) = delete;
  Boundary& operator=(Boundary const&) = delete;

  // Returns true iff an odd number of sides is to the right of the place. Of a side's two ends only
  // the lower one belongs to it, so that a place level with a vertex is never miscounted.
  bool Contains(double x, double y) const;

  // Appends the sides that pass through the inside of the triangle, by more than rounding.
  void SidesIn(TPoint const* const corners[3], std::vector<Side const*>& sides) const;

  // The same among `candidates`.
  static void SidesIn(TPoint const* const corners[3], std::vector<Side const*> const& candidates,
                      std::vector<Side const*>& sides);

 private:
  std::size_t BandOf(double y) const;

  std::vector<Side> m_Sides;
  double m_dBottom = 0.0;
  double m_dTop = 0.0;
  std::vector<std::vector<Side const*>> m_Bands;  // the sides that reach into each, from the south
};

}  // namespace qeltin::cli
