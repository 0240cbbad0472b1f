#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/products/PlanBox.h"

namespace qeltin::detail {

// The edges of a closed figure under a binary tree of boxes, each around a run of successive edges.
// Counts the edges that a ray to the right meets without asking each one: a run that lies wholly to
// the right of the place is met an odd number of times iff the ray separates its two ends.
//
// Threads: no state after construction. Concurrent reads are safe.
class EdgeTree {
 public:
  // Keeps a reference to `figure`. boxes[i] stands for the edge that starts at vertex i; its range
  // of y is that of the edge, its range of x at least that of the edge. REQUIRES: a box a vertex,
  // coordinates that are numbers.
  EdgeTree(std::vector<TPoint> const& figure, std::vector<PlanBox> const& boxes);

  // Returns the box around all edges. REQUIRES: at least one vertex.
  PlanBox const& Bounds() const { return m_Boxes[1]; }

  // A place by its level and two limits, one on either side of it or both on it.
  struct Place {
    double left;
    double right;
    double y;
  };

  // Returns true iff an odd number of edges is met, where an edge counts as
  //   not met if its box is above the place, below it, or left of its left limit;
  //   met if its box is right of the right limit and one of its ends, but not the other, is above
  //   the place;
  //   otherwise met iff meets(start, end).
  template <class Meets>
  bool IsOdd(Place const& place, Meets const& meets) const {
    return !m_Figure.empty() && IsOdd(1, 0, m_iLeaves * EDGES_A_LEAF, place, meets);
  }

 private:
  static constexpr std::size_t EDGES_A_LEAF = 4;

  // The run of `node` is that of `size` edges from `begin`, as far as there are so many.
  template <class Meets>
  bool IsOdd(std::size_t node, std::size_t begin, std::size_t size, Place const& place,
             Meets const& meets) const {
    PlanBox const& box = m_Boxes[node];
    if (box.low > place.y || box.high < place.y || box.right < place.left) return false;
    std::size_t const end = std::min(begin + size, m_Figure.size());
    if (box.left > place.right) {
      return (m_Figure[begin].y > place.y) != (Vertex(end).y > place.y);
    }
    if (size > EDGES_A_LEAF) {
      std::size_t const half = size / 2;
      return IsOdd(2 * node, begin, half, place, meets) !=
             IsOdd(2 * node + 1, begin + half, half, place, meets);
    }
    bool odd = false;
    for (std::size_t i = begin; i < end; ++i) odd ^= meets(m_Figure[i], Vertex(i + 1));
    return odd;
  }

  TPoint const& Vertex(std::size_t i) const { return m_Figure[i < m_Figure.size() ? i : 0]; }

  std::vector<TPoint> const& m_Figure;
  std::size_t m_iLeaves;
  std::vector<PlanBox> m_Boxes;  // the children of node k are 2k and 2k + 1; leaves come last
};

}  // namespace qeltin::detail
