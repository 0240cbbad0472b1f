#include "qeltin/platform/CenterLineLeg.h"

#include <cmath>

#include "qeltin/platform/Bearing.h"
#include "qeltin/platform/Math.h"

namespace qeltin::detail {

CenterLineLeg CenterLineLeg::Straight(Point const& from, Point const& to) {
  double const dx = to.x - from.x;
  double const dy = to.y - from.y;
  CenterLineLeg leg;
  leg.m_Origin = from;
  leg.m_End = to;
  leg.m_dLength = std::sqrt(dx * dx + dy * dy);
  leg.m_Direction = Point(dx / leg.m_dLength, dy / leg.m_dLength, 0.0);
  return leg;
}

CenterLineLeg CenterLineLeg::Arc(Point const& center, double radius, double start, double sweep) {
  CenterLineLeg leg;
  leg.m_bArc = true;
  leg.m_Origin = center;
  leg.m_dLength = radius * std::fabs(sweep) * D_TO_R;
  leg.m_dRadius = radius;
  leg.m_dStart = start;
  leg.m_dSweep = sweep;
  return leg;
}

double CenterLineLeg::NearestTo(Point const& p) const {
  double const dx = p.x - m_Origin.x;
  double const dy = p.y - m_Origin.y;
  if (!m_bArc) {
    double const along = dx * m_Direction.x + dy * m_Direction.y;
    if (along <= 0.0) return 0.0;
    return along < m_dLength ? along : m_dLength;
  }
  double const bearing = Bearing(dx, dy);
  double turned = m_dSweep > 0.0 ? bearing - m_dStart : m_dStart - bearing;
  if (turned < 0.0) turned += 360.0;
  double const sweep = std::fabs(m_dSweep);
  if (turned < sweep) return turned / sweep * m_dLength;
  return turned - sweep <= 360.0 - turned ? m_dLength : 0.0;
}

double CenterLineLeg::BearingAt(double along) const {
  return (m_dStart + m_dSweep * (along / m_dLength)) * D_TO_R;
}

Point CenterLineLeg::At(double along) const {
  if (m_bArc) {
    double const bearing = BearingAt(along);
    return {m_Origin.x + m_dRadius * std::sin(bearing), m_Origin.y + m_dRadius * std::cos(bearing),
            0.0};
  }
  if (along == m_dLength) return m_End;
  return {m_Origin.x + along * m_Direction.x, m_Origin.y + along * m_Direction.y, 0.0};
}

Point CenterLineLeg::DirectionAt(double along) const {
  if (!m_bArc) return m_Direction;
  double const bearing = BearingAt(along);
  double const turn = m_dSweep > 0.0 ? 1.0 : -1.0;
  return {turn * std::cos(bearing), -turn * std::sin(bearing), 0.0};
}

double CenterLineLeg::OffsetOf(Point const& p) const {
  double const dx = p.x - m_Origin.x;
  double const dy = p.y - m_Origin.y;
  if (!m_bArc) return dx * m_Direction.y - dy * m_Direction.x;
  double const inward = m_dRadius - std::sqrt(dx * dx + dy * dy);
  return m_dSweep > 0.0 ? inward : -inward;
}

}  // namespace qeltin::detail
