#pragma once

#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/products/TPolygon.h"

namespace qeltin::detail {

// Tells which corners of a closed figure can be clipped.
//
// Threads: no state after construction. Concurrent reads are safe.
class EarTest {
 public:
  explicit EarTest(std::vector<TPoint> const& figure) : m_Figure(figure), m_Polygon(figure) {}

  // Returns true iff the middle of `a` and `c` is inside the figure by TPolygon::PointInPolygon and
  // the triangle has, by TTriangle::XY_HasPoint, no vertex of the figure but those equal to one of
  // its corners.
  bool IsEar(TPoint a, TPoint b, TPoint c) const;

 private:
  std::vector<TPoint> const& m_Figure;
  TPolygon m_Polygon;
};

}  // namespace qeltin::detail
