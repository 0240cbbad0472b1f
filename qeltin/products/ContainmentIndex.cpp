#include "qeltin/products/ContainmentIndex.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "qeltin/products/Levels.h"
#include "qeltin/products/RayCrossing.h"

namespace qeltin::detail {

namespace {

std::vector<TPoint> VerticesOf(TPolygon const& polygon) {
  std::vector<TPoint> vertices(polygon.Get(0), polygon.Get(0) + polygon.GetSize());
  if (vertices.size() < 3 || !IsInScale(vertices)) vertices.clear();
  return vertices;
}

// The boxes reach so far left that every crossing, as computed, is inside: where an edge is nearly
// level the rounding of its crossings is magnified by its slope. A place left of the box so has
// each edge across its level counted; one right of it has none, by the edges' own largest x.
std::vector<PlanBox> BoxesOf(std::vector<TPoint> const& figure) {
  double maxX = 0.0;
  double maxY = 0.0;
  for (TPoint const& v : figure) {
    maxX = std::max(maxX, std::fabs(v.x));
    maxY = std::max(maxY, std::fabs(v.y));
  }
  std::vector<PlanBox> boxes;
  boxes.reserve(figure.size());
  for (std::size_t i = 0; i < figure.size(); ++i) {
    TPoint const& p = figure[i];
    TPoint const& q = figure[i + 1 < figure.size() ? i + 1 : 0];
    PlanBox box;
    box.Add(p);
    box.Add(q);
    if (p.y != q.y) {
      double const slope = std::fabs((q.x - p.x) / (q.y - p.y));
      box.left -= 16 * std::numeric_limits<double>::epsilon() * (slope * maxY + maxX);
    }
    boxes.push_back(box);
  }
  return boxes;
}

}  // namespace

ContainmentIndex::ContainmentIndex(TPolygon const& polygon)
    : m_Polygon(polygon),
      m_Figure(VerticesOf(polygon)),
      m_Levels(LevelsOf(m_Figure)),
      m_Edges(m_Figure, BoxesOf(m_Figure)) {}

bool ContainmentIndex::Contains(double x, double y) const {
  if (m_Figure.empty()) return m_Polygon.XY_Contains(x, y);
  if (!(y >= m_Levels.front() && y <= m_Levels.back())) return false;
  auto const meets = [=](TPoint const& p, TPoint const& q) { return MeetsLevelRay(p, q, x, y); };
  // Level with a vertex both edges there count, whichever way they go: the ends of a run do not
  // tell how many of its edges the ray meets.
  double const right = IsLevelWithVertex(y) ? std::numeric_limits<double>::infinity() : x;
  return m_Edges.IsOdd({x, right, y}, meets);
}

bool ContainmentIndex::IsLevelWithVertex(double y) const {
  return std::binary_search(m_Levels.begin(), m_Levels.end(), y);
}

}  // namespace qeltin::detail
