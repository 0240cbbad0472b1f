#include "qeltin/products/VertexTree.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace qeltin::detail {

VertexTree::VertexTree(std::vector<TPoint> points)
    : m_Points(std::move(points)),
      m_iLeaves(std::bit_ceil((m_Points.size() + POINTS_A_LEAF - 1) / POINTS_A_LEAF)),
      m_Boxes(2 * m_iLeaves) {
  Build({1, 0, m_Points.size()});
}

void VertexTree::Build(Node const& node) {
  PlanBox& box = m_Boxes[node.index];
  for (std::size_t i = node.begin; i < node.end; ++i) box.Add(m_Points[i]);
  if (IsLeaf(node)) return;
  double TPoint::*const axis = box.right - box.left > box.high - box.low ? &TPoint::x : &TPoint::y;
  std::nth_element(m_Points.begin() + static_cast<std::ptrdiff_t>(node.begin),
                   m_Points.begin() + static_cast<std::ptrdiff_t>(node.Left().end),
                   m_Points.begin() + static_cast<std::ptrdiff_t>(node.end),
                   [=](TPoint const& p, TPoint const& q) { return p.*axis < q.*axis; });
  Build(node.Left());
  Build(node.Right());
}

}  // namespace qeltin::detail
