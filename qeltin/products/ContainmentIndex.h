#pragma once

#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/products/EdgeTree.h"
#include "qeltin/products/TPolygon.h"

namespace qeltin::detail {

// Answers TPolygon::XY_Contains for many places, the same for each one to the bit, in time that
// grows with the few edges near the place instead of all. A place level with a vertex costs more:
// every edge to its right that reaches that level is tested.
//
// Threads: no state after construction. Concurrent reads are safe.
class ContainmentIndex {
 public:
  // Copies the polygon.
  explicit ContainmentIndex(TPolygon const& polygon);
  ContainmentIndex(ContainmentIndex const&) = delete;
  ContainmentIndex& operator=(ContainmentIndex const&) = delete;

  bool Contains(double x, double y) const;

 private:
  bool IsLevelWithVertex(double y) const;

  TPolygon m_Polygon;
  std::vector<TPoint> m_Figure;  // the vertices; none where only the polygon itself can tell
  std::vector<double> m_Levels;  // the y of the vertices, in rising order, each once
  EdgeTree m_Edges;
};

}  // namespace qeltin::detail
