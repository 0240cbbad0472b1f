#include "qeltin/products/SlantedRayIndex.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

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

std::vector<std::size_t> NumbersByLevel(std::vector<TPoint> const& figure) {
  std::vector<std::size_t> numbers(figure.size());
  std::iota(numbers.begin(), numbers.end(), std::size_t{0});
  std::sort(numbers.begin(), numbers.end(),
            [&](std::size_t i, std::size_t j) { return figure[i].y < figure[j].y; });
  return numbers;
}

// What EdgeTree finds about an edge alone where it does not test it; otherwise what `ray` does.
bool IsTakenToMeet(TPoint const& a, TPoint const& b, double near, SlantedRay const& ray) {
  TPoint const& p = ray.start;
  if ((a.y > p.y) == (b.y > p.y) && a.y != p.y && b.y != p.y) return false;
  if (std::max(a.x, b.x) < p.x - near) return false;
  if (std::min(a.x, b.x) > p.x + near) return (a.y > p.y) != (b.y > p.y);
  return ray.Meets(a, b);
}

}  // namespace

SlantedRayIndex::SlantedRayIndex(std::vector<TPoint> const& figure)
    : m_Polygon(figure),
      m_Figure(IsInScale(figure) ? figure : std::vector<TPoint>()),
      m_ByLevel(NumbersByLevel(m_Figure)),
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
// the height of the edge. What is nearer is tested.
bool SlantedRayIndex::Contains(TPoint const& p) const {
  if (m_Figure.empty()) return m_Polygon.PointInPolygon(p);
  PlanBox const& bounds = m_Edges.Bounds();
  if (!(p.x >= bounds.left && p.x <= bounds.right && p.y >= bounds.low && p.y <= bounds.high)) {
    return false;
  }
  double const height = bounds.high - bounds.low;
  double const dx = std::max(std::fabs(p.x - bounds.left), std::fabs(p.x - bounds.right));
  double const dy = SmallestRise(p.y);
  if (dy == 0.0) return false;  // every edge lies along the ray

  SlantedRay const ray{p, 2.0 * dx, dy};
  if (!(dy > ROUNDING * height)) return IsInsideByNearlyLevelRay(ray, ROUNDING * height);
  double const near = ROUNDING * dx * (height / dy);
  return m_Edges.IsOdd({p.x - near, p.x + near, p.y},
                       [&](TPoint const& a, TPoint const& b) { return ray.Meets(a, b); });
}

// Where dy is no more than rounding, the size of D - N is still at least dx times the rise of the
// end of the edge. So all is as above for the edges with both ends well above or below the start of
// the ray, now at a distance along x of some u dx; those with an end within `band` of its level are
// tested, and what is found about them otherwise does not count.
bool SlantedRayIndex::IsInsideByNearlyLevelRay(SlantedRay const& ray, double band) const {
  double const near = ROUNDING * ray.run;
  double const level = ray.start.y;
  auto const is_near = [=](TPoint const& v) { return std::fabs(v.y - level) <= band; };
  auto const taken = [&](TPoint const& a, TPoint const& b) {
    return is_near(a) || is_near(b) ? IsTakenToMeet(a, b, near, ray) : ray.Meets(a, b);
  };
  bool odd = m_Edges.IsOdd({ray.start.x - near, ray.start.x + near, level}, taken);
  auto const correct = [&](std::size_t i) {
    TPoint const& a = m_Figure[i];
    TPoint const& b = m_Figure[i + 1 < m_Figure.size() ? i + 1 : 0];
    odd ^= IsTakenToMeet(a, b, near, ray) != ray.Meets(a, b);
  };
  auto const first = std::partition_point(m_ByLevel.begin(), m_ByLevel.end(), [&](std::size_t i) {
    return m_Figure[i].y < level && !is_near(m_Figure[i]);
  });
  for (auto i = first; i != m_ByLevel.end() && is_near(m_Figure[*i]); ++i) {
    std::size_t const before = *i > 0 ? *i - 1 : m_Figure.size() - 1;
    correct(*i);
    if (!is_near(m_Figure[before])) correct(before);
  }
  return odd;
}

// Returns the smallest vertical distance other than 0 of a vertex from `y`; 0 without one.
double SlantedRayIndex::SmallestRise(double y) const {
  auto const at = [&](std::size_t i) { return m_Figure[i].y; };
  auto const begin = m_ByLevel.begin();
  auto const end = m_ByLevel.end();
  auto const below = std::partition_point(begin, end, [&](std::size_t i) { return at(i) < y; });
  auto const above = std::partition_point(below, end, [&](std::size_t i) { return at(i) <= y; });
  double rise = 0.0;
  if (below != begin) rise = std::fabs(y - at(*(below - 1)));
  if (above != end) {
    double const up = std::fabs(y - at(*above));
    if (rise == 0.0 || up < rise) rise = up;
  }
  return rise;
}

}  // namespace qeltin::detail
