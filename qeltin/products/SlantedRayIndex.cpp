#include "qeltin/products/SlantedRayIndex.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "qeltin/products/Levels.h"
#include "qeltin/products/RayCrossing.h"

namespace qeltin::detail {

namespace {

constexpr double ROUNDING = 64 * std::numeric_limits<double>::epsilon();

std::vector<PlanBox> BoxesOf(std::vector<TPoint> const& figure) {
  std::vector<PlanBox> boxes(figure.size());
  for (std::size_t i = 0; i < figure.size(); ++i) {
    boxes[i].Add(figure[i]);
    boxes[i].Add(figure[i + 1 < figure.size() ? i + 1 : 0]);
  }
  return boxes;
}

}  // namespace

SlantedRayIndex::SlantedRayIndex(std::vector<TPoint> const& figure)
    : m_Polygon(figure),
      m_Figure(IsInScale(figure) ? figure : std::vector<TPoint>()),
      m_Levels(LevelsOf(m_Figure)),
      m_Edges(m_Figure, BoxesOf(m_Figure)) {}

// Why most edges need no test. Let the ray run by 2 dx and rise by dy. With u the unit of rounding
// and H the height of the figure, D and N of an edge are right up to about 12 u dx H.
//
// N alone tells on which side of the ray the edge starts, and its sign is always right: a vertex
// above or below the start of the ray is so by at least dy, which makes the first product at least
// twice the second, and for one just level with it the first product is 0. D - N tells the same of
// the end of the edge. Its size is at least dx dy where that end is not level with the start of the
// ray, and dy times their distance along x where it is: its sign is right too where dy is well
// above u H, and the distance well above u dx H / dy. So an edge above or below the start of the
// ray is not met; one across its level is, if it lies ahead, and M tells this rightly at that
// distance, being at least half of it times the height of the edge, and right up to 7 u dx times
// the height of the edge. What is nearer, and a figure with such a small dy, is tested.
bool SlantedRayIndex::Contains(TPoint const& p) const {
  if (m_Figure.empty()) return m_Polygon.PointInPolygon(p);
  PlanBox const& bounds = m_Edges.Bounds();
  if (!(p.x >= bounds.left && p.x <= bounds.right && p.y >= bounds.low && p.y <= bounds.high)) {
    return false;
  }
  double const height = bounds.high - bounds.low;
  double const dx = std::max(std::fabs(p.x - bounds.left), std::fabs(p.x - bounds.right));
  double const dy = SmallestRise(p.y);
  if (!(dy > ROUNDING * height)) return m_Polygon.PointInPolygon(p);

  SlantedRay const ray{p, 2.0 * dx, dy};
  double const near = ROUNDING * dx * (height / dy);
  return m_Edges.IsOdd({p.x - near, p.x + near, p.y},
                       [&](TPoint const& a, TPoint const& b) { return ray.Meets(a, b); });
}

// Returns the smallest vertical distance other than 0 of a vertex from `y`; 0 without one.
double SlantedRayIndex::SmallestRise(double y) const {
  auto const [below, above] = std::equal_range(m_Levels.begin(), m_Levels.end(), y);
  double rise = 0.0;
  if (below != m_Levels.begin()) rise = std::fabs(y - *(below - 1));
  if (above != m_Levels.end()) {
    double const up = std::fabs(y - *above);
    if (rise == 0.0 || up < rise) rise = up;
  }
  return rise;
}

}  // namespace qeltin::detail
