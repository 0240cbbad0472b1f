#include "qeltin/products/EarTest.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "qeltin/products/RayCrossing.h"

namespace qeltin::detail {

namespace {

// Where TTriangle::XY_HasPoint is false without asking it. At each height the triangle has no side
// or two, so that a place left of what is computed as their crossings with that height has an even
// number to its right, and a place right of them none. Each is right up to some units of rounding
// of the coordinates and of the extent of the triangle.
class TriangleOutline {
 public:
  explicit TriangleOutline(TTriangle const& t) {
    for (TPoint const* corner : t.m_pVertex) m_Box.Add(*corner);
    double const extent = m_Box.right - m_Box.left;
    double const reach = std::max(std::fabs(m_Box.left), std::fabs(m_Box.right));
    m_dRounding = 32 * std::numeric_limits<double>::epsilon() * (extent + reach);
    for (int k = 0; k < 3; ++k) AddSide(*t.m_pVertex[k], *t.m_pVertex[(k + 1) % 3]);
  }

  bool Misses(PlanBox const& box) const {
    if (box.low > m_Box.high || box.high < m_Box.low) return true;
    bool allLeft = true;
    bool allRight = true;
    for (int k = 0; k < m_iSides; ++k) {
      Side const& side = m_Sides[k];
      double const low = std::max(box.low, side.low);
      double const high = std::min(box.high, side.high);
      if (low > high) continue;
      double const atLow = side.xAtLow + (low - side.low) * side.slope;
      double const atHigh = side.xAtLow + (high - side.low) * side.slope;
      allLeft = allLeft && std::max(atLow, atHigh) + m_dRounding < box.left;
      allRight = allRight && std::min(atLow, atHigh) - m_dRounding > box.right;
    }
    return allLeft || allRight;
  }

 private:
  struct Side {
    double low;
    double high;
    double xAtLow;
    double slope;  // x over y
  };

  void AddSide(TPoint const& p, TPoint const& q) {
    if (p.y == q.y) return;
    TPoint const& low = p.y < q.y ? p : q;
    TPoint const& high = p.y < q.y ? q : p;
    m_Sides[m_iSides++] = {low.y, high.y, low.x, (high.x - low.x) / (high.y - low.y)};
  }

  PlanBox m_Box;
  double m_dRounding;
  Side m_Sides[3];
  int m_iSides = 0;
};

}  // namespace

EarTest::EarTest(std::vector<TPoint> const& figure) : m_Figure(figure), m_Inside(figure) {
  if (IsInScale(figure)) m_Vertices.emplace(figure);
}

bool EarTest::IsEar(TPoint a, TPoint b, TPoint c) const {
  TTriangle ear(&a, &b, &c);
  ear.CalcTri();
  return !HoldsVertex(ear) && m_Inside.Contains(TPoint((a.x + c.x) / 2, (a.y + c.y) / 2));
}

bool EarTest::HoldsVertex(TTriangle const& ear) const {
  if (ear.m_RadiusSq != ear.m_RadiusSq) return false;  // no place is in a circle that is no number
  auto const holds = [&](TPoint const& v) {
    return ear.XY_HasPoint(v) && v != *ear.m_pVertex[0] && v != *ear.m_pVertex[1] &&
           v != *ear.m_pVertex[2];
  };
  if (!m_Vertices) return std::any_of(m_Figure.begin(), m_Figure.end(), holds);
  TriangleOutline const outline(ear);
  return m_Vertices->Any([&](PlanBox const& box) { return outline.Misses(box); }, holds);
}

}  // namespace qeltin::detail
