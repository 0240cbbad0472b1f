#include "qeltin/products/EarTest.h"

#include <algorithm>

#include "qeltin/kernel/TTriangle.h"

namespace qeltin::detail {

bool EarTest::IsEar(TPoint a, TPoint b, TPoint c) const {
  TTriangle ear(&a, &b, &c);
  ear.CalcTri();
  bool const holds = std::any_of(m_Figure.begin(), m_Figure.end(), [&](TPoint const& v) {
    return ear.XY_HasPoint(v) && v != a && v != b && v != c;
  });
  return !holds && m_Polygon.PointInPolygon(TPoint((a.x + c.x) / 2, (a.y + c.y) / 2));
}

}  // namespace qeltin::detail
