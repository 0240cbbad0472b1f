#pragma once

#include <optional>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/products/SlantedRayIndex.h"
#include "qeltin/products/VertexTree.h"

namespace qeltin::detail {

// Tells which corners of a closed figure can be clipped.
//
// Threads: no state after construction. Concurrent reads are safe.
class EarTest {
 public:
  // Keeps a reference to `figure`.
  explicit EarTest(std::vector<TPoint> const& figure);

  // Returns true iff the middle of `a` and `c` is inside the figure by TPolygon::PointInPolygon and
  // the triangle has, by TTriangle::XY_HasPoint, no vertex of the figure but those equal to one of
  // its corners.
  bool IsEar(TPoint a, TPoint b, TPoint c) const;

 private:
  bool HoldsVertex(TTriangle const& ear) const;

  std::vector<TPoint> const& m_Figure;
  std::optional<VertexTree> m_Vertices;  // none where the triangle itself has to be asked
  SlantedRayIndex m_Inside;
};

}  // namespace qeltin::detail
