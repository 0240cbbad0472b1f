#include "qeltin/kernel/TEdge.h"

#include <utility>

#include "qeltin/kernel/Angles.h"

using qeltin::detail::HALF_PI;
using qeltin::detail::THREE_HALVES_PI;

void TEdge::Flip() { std::swap(m_pStart, m_pEnd); }

bool TEdge::operator<(TEdge const& other) const {
  if (*m_pStart < *other.m_pStart) return true;
  if (*other.m_pStart < *m_pStart) return false;
  return *m_pEnd < *other.m_pEnd;
}

TPoint* TEdge::XY_FindVertex(TPoint const& p) const {
  if (m_pStart->XY_EqualsTo(p)) return m_pStart;
  if (m_pEnd->XY_EqualsTo(p)) return m_pEnd;
  return nullptr;
}

int TEdge::XY_ClassifyOrientationOf(TPoint const& p) const {
  TPoint const& a = *m_pStart;
  TPoint const& b = *m_pEnd;
  if (p.XY_EqualsTo(a)) return ORIENT_ORIGIN;
  if (p.XY_EqualsTo(b)) return ORIENT_DESTINATION;

  double const c = (p.y - a.y) * (b.x - a.x) - (p.x - a.x) * (b.y - a.y);
  if (c > 0.0) return ORIENT_LEFT;
  if (c < 0.0) return ORIENT_RIGHT;

  if ((p.x - a.x) * (b.x - a.x) < 0.0 || (p.y - a.y) * (b.y - a.y) < 0.0) return ORIENT_BEHIND;
  return a.XY_Distance(p) > a.XY_Distance(b) ? ORIENT_BEYOND : ORIENT_BETWEEN;
}

void TEdge::XY_ConvertToBisector() {
  TPoint& a = *m_pStart;
  TPoint& b = *m_pEnd;
  double const mx = (a.x + b.x) / 2.0;
  double const my = (a.y + b.y) / 2.0;
  double const dx = b.x - a.x;
  double const dy = b.y - a.y;
  a.x = mx - dy / 2.0;
  a.y = my + dx / 2.0;
  b.x = mx + dy / 2.0;
  b.y = my - dx / 2.0;
}

bool TEdge::XY_Intersect(TEdge const& other, double& t) const {
  TPoint const& a = *m_pStart;
  TPoint const& b = *m_pEnd;
  TPoint const& c = *other.m_pStart;
  TPoint const& d = *other.m_pEnd;
  double const nx = d.y - c.y;
  double const ny = c.x - d.x;
  double const q = nx * (b.x - a.x) + ny * (b.y - a.y);
  if (q == 0.0) return false;
  t = -(nx * (a.x - c.x) + ny * (a.y - c.y)) / q;
  return true;
}

double TEdge::XY_Distance(TPoint const& p) const {
  TPoint const& a = *m_pStart;
  TPoint const& b = *m_pEnd;
  double const theta = (b - a).XY_Angle(p - a);
  double const d = a.XY_Distance(p);
  if (!(theta <= HALF_PI) && !(theta >= THREE_HALVES_PI)) return d;
  double const r = d * std::fabs(std::sin(theta));
  double const phi = (a - b).XY_Angle(p - b);
  if (phi > HALF_PI && phi < THREE_HALVES_PI) return b.XY_Distance(p);
  return r;
}
