#pragma once

#include <vector>

#include "apps/qeltin/Surface.h"
#include "qeltin/products/TPolygon.h"

namespace qeltin::cli {

// One straight part of a line in plan, directed.
struct Segment {
  int line;       // which of the lines, from 0
  double offset;  // distance of `from` from the start of the line
  double length;  // above 0
  TPoint from;
  TPoint to;
};

// Returns the parts of all lines in order, without those that have no length.
std::vector<Segment> SegmentsOf(std::vector<TPolygon> const& lines);

// Finds the segments near a triangle. A tree of boxes over the segments in their order, as
// neighbours along a line are neighbours in plan.
class SegmentTree {
 public:
  explicit SegmentTree(std::vector<Segment> const& segments);

  // Calls `take` with the number of each segment whose box meets `box`, in ascending order.
  template <typename Take>
  void ForEach(Box const& box, Take const& take) const {
    if (m_iCount > 0) Visit(1, 0, m_iLeaves, box, take);
  }

 private:
  static bool Meet(Box const& a, Box const& b) {
    return a.min.x <= b.max.x && b.min.x <= a.max.x && a.min.y <= b.max.y && b.min.y <= a.max.y;
  }

  // `node` covers the `width` segments from `first`.
  template <typename Take>
  void Visit(int node, int first, int width, Box const& box, Take const& take) const {
    if (first >= m_iCount || !Meet(m_Boxes[node], box)) return;
    if (width == 1) {
      take(first);
      return;
    }
    Visit(2 * node, first, width / 2, box, take);
    Visit(2 * node + 1, first + width / 2, width / 2, box, take);
  }

  int m_iCount;
  int m_iLeaves = 1;         // a power of two
  std::vector<Box> m_Boxes;  // node 1 is the root, those of node n are 2 n and 2 n + 1
};

}  // namespace qeltin::cli
