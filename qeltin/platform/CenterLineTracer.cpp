#include "qeltin/platform/CenterLineTracer.h"

#include <cmath>

#include "qeltin/platform/Bearing.h"
#include "qeltin/platform/Math.h"

namespace qeltin::detail {

namespace {

// Returns how far `p` lies to the right of the way through `origin` in the given direction.
double ToTheRight(Point const& p, Point const& origin, Point const& direction) {
  return (p.x - origin.x) * direction.y - (p.y - origin.y) * direction.x;
}

}  // namespace

CenterLineLeg CenterLineTracer::Next() {
  int const index = m_iNext++;
  CenterLineLeg leg;
  if (IsVertex(index) && IsVertex(index + 1)) {
    leg = CenterLineLeg::Straight(m_Points[index].GetPosition(), m_Points[index + 1].GetPosition());
  } else if (IsArc(index)) {
    leg = ArcOf(index);
  }
  if (leg.Length() > 0.0) m_Last = leg;
  return leg;
}

bool CenterLineTracer::IsVertex(int index) const {
  return index >= 0 && index < static_cast<int>(m_Points.size()) &&
         m_Points[index].GetPointType() == POINT_STRAIGHT;
}

bool CenterLineTracer::IsArc(int index) const {
  return m_Points[index].GetPointType() == POINT_ARC_CENTER && IsVertex(index - 1) &&
         IsVertex(index + 1);
}

CenterLineLeg CenterLineTracer::ArcOf(int index) const {
  Point const& center = m_Points[index].GetPosition();
  Point const& from = m_Points[index - 1].GetPosition();
  Point const& to = m_Points[index + 1].GetPosition();
  double const radius = m_Points[index].GetRadius();
  double const start = Bearing(from.x - center.x, from.y - center.y);
  double const end = Bearing(to.x - center.x, to.y - center.y);
  // Rounding must not make a whole circle to the left of no arc at all.
  bool const one_place =
      std::fabs(to.x - from.x) <= MATH::TOLERANCE && std::fabs(to.y - from.y) <= MATH::TOLERANCE;
  double sweep = 0.0;
  if (!one_place) {
    double const clockwise = end < start ? end - start + 360.0 : end - start;
    bool const right = radius >= 0.0 && TurnsRight(index, clockwise);
    sweep = right ? clockwise : clockwise - 360.0;
  }
  return CenterLineLeg::Arc(center, std::fabs(radius), start, sweep);
}

bool CenterLineTracer::TurnsRight(int index, double clockwise) const {
  if (std::fabs(clockwise - 180.0) > 1.0) return clockwise < 180.0;
  Point const& center = m_Points[index].GetPosition();
  if (m_Last.Length() > 0.0) {
    double const side =
        ToTheRight(center, m_Points[index - 1].GetPosition(), m_Last.DirectionAt(m_Last.Length()));
    if (side != 0.0) return side > 0.0;
  }
  if (!IsVertex(index + 2)) return true;
  Point const& end = m_Points[index + 1].GetPosition();
  Point const& beyond = m_Points[index + 2].GetPosition();
  return ToTheRight(center, end, {beyond.x - end.x, beyond.y - end.y, 0.0}) >= 0.0;
}

}  // namespace qeltin::detail
