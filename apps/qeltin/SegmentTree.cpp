#include "apps/qeltin/SegmentTree.h"

#include <algorithm>
#include <limits>

namespace qeltin::cli {

namespace {

Box Around(Box const& a, Box const& b) {
  return {{std::min(a.min.x, b.min.x), std::min(a.min.y, b.min.y)},
          {std::max(a.max.x, b.max.x), std::max(a.max.y, b.max.y)}};
}

}  // namespace

std::vector<Segment> SegmentsOf(std::vector<TPolygon> const& lines) {
  std::vector<Segment> segments;
  for (int line = 0; line < static_cast<int>(lines.size()); ++line) {
    double offset = 0.0;
    for (int i = 1; i < lines[line].GetSize(); ++i) {
      TPoint const& from = *lines[line].Get(i - 1);
      TPoint const& to = *lines[line].Get(i);
      double const length = from.XY_Distance(to);
      if (length > 0.0) segments.push_back({line, offset, length, from, to});
      offset += length;
    }
  }
  return segments;
}

SegmentTree::SegmentTree(std::vector<Segment> const& segments)
    : m_iCount(static_cast<int>(segments.size())) {
  while (m_iLeaves < m_iCount) m_iLeaves *= 2;
  constexpr double FAR = std::numeric_limits<double>::infinity();
  m_Boxes.assign(2 * m_iLeaves, {{FAR, FAR}, {-FAR, -FAR}});
  for (int i = 0; i < m_iCount; ++i) {
    auto const& [line, offset, length, a, b] = segments[i];
    m_Boxes[m_iLeaves + i] = Around({a, a}, {b, b});
  }
  for (int node = m_iLeaves - 1; node > 0; --node) {
    m_Boxes[node] = Around(m_Boxes[2 * node], m_Boxes[2 * node + 1]);
  }
}

}  // namespace qeltin::cli
