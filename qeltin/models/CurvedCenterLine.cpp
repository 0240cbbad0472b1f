#include "qeltin/models/CurvedCenterLine.h"

#include <cmath>
#include <utility>

#include "qeltin/platform/Bearing.h"
#include "qeltin/platform/Math.h"

namespace {

Point OnCircle(Point const& center, double radius, double radians) {
  return {center.x + radius * std::sin(radians), center.y + radius * std::cos(radians), center.z};
}

// Appends the arc clockwise from `start` to `end`, both in degrees.
void AppendArc(Point const& center, double radius, double start, double end,
               std::vector<Line>& lines) {
  double angle = start * D_TO_R;
  double const last = end * D_TO_R;
  Point before = OnCircle(center, radius, angle);
  while (angle < last) {
    angle += D_TO_R;
    if (angle > last) angle = last;
    Point const here = OnCircle(center, radius, angle);
    lines.emplace_back(before, here);
    before = here;
  }
}

void AppendArcOnPage(CenterLinePoint const& arc, Page const& page, std::vector<Line>& lines) {
  double start = arc.GetStartAngle();
  double end = arc.GetEndAngle();
  double radius = arc.GetRadius();
  if (std::fabs(start - end) <= 2 * EPSILON) return;
  if (radius < 0.0) {
    radius = std::fabs(radius);
    std::swap(start, end);
  }
  long count = 0;
  double starts[5];
  double ends[5];
  page.ClipCircle(arc.GetPosition(), radius, start, end, count, starts, ends);
  for (long i = 0; i < count; ++i) {
    if (!(starts[i] < ends[i])) ends[i] += 360.0;
    AppendArc(arc.GetPosition(), radius, starts[i], ends[i], lines);
  }
}

}  // namespace

bool CurvedCenterLine::AddCurvedPoint(double x, double y, double radius, int append) {
  Point const place(x, y, 0.0);
  if (m_iPending == 1) {
    AddCurve(place, append);
  } else if (radius == 0.0) {
    m_LastPoint = place;
    Add(place, POINT_STRAIGHT, 0.0, append);
  } else {
    m_dRadius = radius;
    m_CornerPoint = place;
    m_iPending = 1;
  }
  return true;
}

void CurvedCenterLine::AddCurve(Point const& next, int append) {
  m_NextPoint = next;
  Point const& corner = m_CornerPoint;
  double const a1 = Bearing(corner.x - m_LastPoint.x, corner.y - m_LastPoint.y);
  double const a2 = Bearing(next.x - corner.x, next.y - corner.y);
  double deflection = std::fabs(a1 - a2);
  if (deflection > 180.0) deflection = 180.0 - std::fmod(deflection, 180.0);
  double const tangent = std::fabs(std::tan(deflection * D_TO_R * 0.5) * m_dRadius);
  double const back = std::fmod(a1 + 180.0, 360.0);
  Point const first = OnCircle(corner, tangent, back * D_TO_R);
  double const to_center = std::fmod(a1 - TurnDirection(a1, a2) * 90.0, 360.0);
  Point const center = OnCircle(first, m_dRadius, to_center * D_TO_R);
  Point const second = OnCircle(corner, tangent, a2 * D_TO_R);
  Add(first, POINT_STRAIGHT, 0.0, append);
  Add(center, POINT_ARC_CENTER, m_dRadius, append);
  Add(second, POINT_STRAIGHT, 0.0, append);
  Add(next, POINT_STRAIGHT, 0.0, append);
  m_iPending = 0;  // m_LastPoint stays: the next corner's leg is measured from it
}

void CurvedCenterLine::Add(Point const& position, POINT_TYPE type, double radius, int append) {
  CenterLinePoint const point(position, 0.0, 0.0, type, radius, 0, L"");
  if (append == 1) {
    AddElem(point);
  } else {
    InsertElem(0, point);
  }
}

void CurvedCenterLine::BuildPageLines(Page const& page, std::vector<Line>& lines) const {
  if (!HaveCenterLine()) return;
  for (int i = 1; i < GetNumPoints(); ++i) {
    CenterLinePoint const& before = GetPoint(i - 1);
    CenterLinePoint const& here = GetPoint(i);
    if (here.GetPointType() == POINT_ARC_CENTER) {
      AppendArcOnPage(here, page, lines);
    } else if (before.GetPointType() == POINT_STRAIGHT && here.GetPointType() == POINT_STRAIGHT) {
      lines.emplace_back(before.GetPosition(), here.GetPosition());
    }
  }
}
