#include "qeltin/products/EdgeTree.h"

#include <bit>

namespace qeltin::detail {

EdgeTree::EdgeTree(std::vector<TPoint> const& figure, std::vector<PlanBox> const& boxes)
    : m_Figure(figure),
      m_iLeaves(std::bit_ceil((figure.size() + EDGES_A_LEAF - 1) / EDGES_A_LEAF)),
      m_Boxes(2 * m_iLeaves) {
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    m_Boxes[m_iLeaves + i / EDGES_A_LEAF].Add(boxes[i]);
  }
  for (std::size_t node = m_iLeaves - 1; node > 0; --node) {
    m_Boxes[node] = m_Boxes[2 * node];
    m_Boxes[node].Add(m_Boxes[2 * node + 1]);
  }
}

}  // namespace qeltin::detail
