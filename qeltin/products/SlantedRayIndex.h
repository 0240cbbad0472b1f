#pragma once

#include <cstddef>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/products/EdgeTree.h"
#include "qeltin/products/RayCrossing.h"
#include "qeltin/products/TPolygon.h"

namespace qeltin::detail {

// Answers TPolygon::PointInPolygon for many places, the same for each one to the bit, in time that
// grows with the few edges near the place instead of all.
//
// Threads: no state after construction. Concurrent reads are safe.
class SlantedRayIndex {
 public:
  explicit SlantedRayIndex(std::vector<TPoint> const& figure);
  SlantedRayIndex(SlantedRayIndex const&) = delete;
  SlantedRayIndex& operator=(SlantedRayIndex const&) = delete;

  bool Contains(TPoint const& p) const;

 private:
  double SmallestRise(double y) const;
  bool IsInsideByNearlyLevelRay(SlantedRay const& ray, double band) const;

  TPolygon m_Polygon;
  std::vector<TPoint> m_Figure;        // the vertices; none where only the polygon itself can tell
  std::vector<std::size_t> m_ByLevel;  // the vertices by rising y
  EdgeTree m_Edges;
};

}  // namespace qeltin::detail
