#include "qeltin/products/TPolygon.h"

#include <algorithm>
#include <cmath>

#include "qeltin/products/RayCrossing.h"

TPolygon::TPolygon() : m_pPoints(new std::vector<TPoint>) {}

TPolygon::TPolygon(TPolygon const& other) : TPolygon(*other.m_pPoints) {}

TPolygon::TPolygon(std::vector<TPoint> const& points)
    : m_pPoints(new std::vector<TPoint>(points)) {}

TPolygon& TPolygon::operator=(TPolygon const& other) { return *this = *other.m_pPoints; }

TPolygon& TPolygon::operator=(std::vector<TPoint> const& points) {
  *m_pPoints = points;
  return *this;
}

TPolygon::~TPolygon() { delete m_pPoints; }

void TPolygon::Add(TPoint const& p) { m_pPoints->push_back(p); }

void TPolygon::Add(double x, double y, double z) { m_pPoints->emplace_back(x, y, z); }

void TPolygon::Remove(double x, double y) {
  auto const found = std::find_if(m_pPoints->begin(), m_pPoints->end(),
                                  [=](TPoint const& v) { return v.x == x && v.y == y; });
  if (found != m_pPoints->end()) m_pPoints->erase(found);
}

void TPolygon::Remove(TPoint const& p) { Remove(p.x, p.y); }

void TPolygon::Remove(int index) { m_pPoints->erase(m_pPoints->begin() + index); }

void TPolygon::RemoveAll() { m_pPoints->clear(); }

bool TPolygon::HasVertex(TPoint const& p) const {
  return std::find(m_pPoints->begin(), m_pPoints->end(), p) != m_pPoints->end();
}

bool TPolygon::XY_Contains(double x, double y) const {
  if (m_pPoints->size() < 3) return false;
  bool inside = false;
  TPoint const* p = &m_pPoints->back();
  for (TPoint const& q : *m_pPoints) {
    if (qeltin::detail::MeetsLevelRay(*p, q, x, y)) inside = !inside;
    p = &q;
  }
  return inside;
}

bool TPolygon::PointInPolygon(TPoint const& p) const {
  if (m_pPoints->empty()) return false;
  TPoint min = m_pPoints->front();
  TPoint max = min;
  double dy = 0.0;
  double dx = 0.0;
  for (TPoint const& v : *m_pPoints) {
    min.x = std::min(min.x, v.x);
    min.y = std::min(min.y, v.y);
    max.x = std::max(max.x, v.x);
    max.y = std::max(max.y, v.y);
    dx = std::max(dx, std::fabs(p.x - v.x));
    double const rise = std::fabs(p.y - v.y);
    if (rise != 0.0 && (dy == 0.0 || rise < dy)) dy = rise;
  }
  if (p.x < min.x || p.x > max.x || p.y < min.y || p.y > max.y) return false;

  qeltin::detail::SlantedRay const ray{p, 2.0 * dx, dy};
  bool inside = false;
  TPoint const* a = &m_pPoints->back();
  for (TPoint const& b : *m_pPoints) {
    if (ray.Meets(*a, b)) inside = !inside;
    a = &b;
  }
  return inside;
}

double TPolygon::Length() const {
  double length = 0.0;
  for (std::size_t i = 1; i < m_pPoints->size(); ++i) {
    length += (*m_pPoints)[i - 1].XY_Distance((*m_pPoints)[i]);
  }
  return length;
}
