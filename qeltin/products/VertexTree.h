#pragma once

#include <cstddef>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/products/PlanBox.h"

namespace qeltin::detail {

// Points under a balanced binary tree of boxes (a k-d tree, halved across the longer side).
//
// Threads: no state after construction. Concurrent reads are safe.
class VertexTree {
 public:
  // REQUIRES: x and y are numbers.
  explicit VertexTree(std::vector<TPoint> points);

  // Returns true iff some point outside of the boxes for which skips(box) is true has
  // accepts(point) true.
  template <class Skips, class Accepts>
  bool Any(Skips const& skips, Accepts const& accepts) const {
    return Any({1, 0, m_Points.size()}, skips, accepts);
  }

 private:
  static constexpr std::size_t POINTS_A_LEAF = 8;

  struct Node {
    std::size_t index;
    std::size_t begin;
    std::size_t end;

    Node Left() const { return {2 * index, begin, (begin + end) / 2}; }
    Node Right() const { return {2 * index + 1, (begin + end) / 2, end}; }
  };

  bool IsLeaf(Node const& node) const { return node.index >= m_iLeaves; }
  void Build(Node const& node);

  template <class Skips, class Accepts>
  bool Any(Node const& node, Skips const& skips, Accepts const& accepts) const {
    if (skips(m_Boxes[node.index])) return false;
    if (!IsLeaf(node)) {
      return Any(node.Left(), skips, accepts) || Any(node.Right(), skips, accepts);
    }
    for (std::size_t i = node.begin; i < node.end; ++i) {
      if (accepts(m_Points[i])) return true;
    }
    return false;
  }

  std::vector<TPoint> m_Points;  // those of a node side by side
  std::size_t m_iLeaves;
  std::vector<PlanBox> m_Boxes;  // the children of node k are 2k and 2k + 1; leaves come last
};

}  // namespace qeltin::detail
