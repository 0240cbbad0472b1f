#include "qeltin/platform/CenterLine.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "qeltin/platform/Bearing.h"
#include "qeltin/platform/CenterLineTracer.h"
#include "qeltin/platform/Math.h"

using qeltin::detail::CenterLineLeg;
using qeltin::detail::CenterLineTracer;

namespace {

// A place on one of several legs.
struct Place {
  int leg = -1;
  double along = 0.0;   // from the start of the leg
  double travel = 0.0;  // from the start of the line
};

double DistanceTo(Point const& p, CenterLineLeg const& leg, double along) {
  if (along > 0.0 && along < leg.Length()) return std::fabs(leg.OffsetOf(p));
  Point const end = leg.At(along);
  return std::hypot(p.x - end.x, p.y - end.y);
}

Place NearestPlace(std::vector<CenterLineLeg> const& legs, Point const& p) {
  Place nearest;
  double least = std::numeric_limits<double>::infinity();
  double travel = 0.0;
  for (int i = 0; i < static_cast<int>(legs.size()); ++i) {
    double const along = legs[i].NearestTo(p);
    double const distance = DistanceTo(p, legs[i], along);
    if (distance < least) {
      least = distance;
      nearest = {i, along, travel + along};
    }
    travel += legs[i].Length();
  }
  return nearest;
}

std::vector<CenterLineLeg> LegsOf(std::vector<CenterLinePoint> const& points) {
  std::vector<CenterLineLeg> legs;
  CenterLineTracer tracer(points);
  for (std::size_t i = 0; i < points.size(); ++i) {
    CenterLineLeg const leg = tracer.Next();
    if (leg.Length() > 0.0) legs.push_back(leg);
  }
  return legs;
}

double Cross(Point const& a, Point const& b) { return a.x * b.y - a.y * b.x; }

// At an end of the line: `at_start` or else at its other one.
bool ProjectOnEnd(Point const& from_end, Point const& way, bool at_start, double extension,
                  double& offset, double& travel) {
  double const ahead = from_end.x * way.x + from_end.y * way.y;
  double const beyond = at_start ? -ahead : ahead;
  offset = Cross(from_end, way);
  if (beyond <= MATH::TOLERANCE) return true;
  travel += ahead;
  return beyond <= extension;
}

double OffsetAtBend(Point const& from_bend, Point const& way_in, Point const& way_out) {
  double const distance = std::hypot(from_bend.x, from_bend.y);
  double const side = Cross(from_bend, {way_in.x + way_out.x, way_in.y + way_out.y, 0.0});
  return side < 0.0 ? -distance : distance;
}

bool Project(std::vector<CenterLineLeg> const& legs, double extension, Point const& p,
             double& offset, double& travel) {
  offset = 0.0;
  travel = 0.0;
  Place const place = NearestPlace(legs, p);
  if (place.leg < 0) return false;
  CenterLineLeg const& leg = legs[place.leg];
  travel = place.travel;
  if (place.along > 0.0 && place.along < leg.Length()) {
    offset = leg.OffsetOf(p);
    return true;
  }
  bool const at_start = place.along == 0.0;
  int const other = at_start ? place.leg - 1 : place.leg + 1;
  Point const end = leg.At(place.along);
  Point const from_end(p.x - end.x, p.y - end.y, 0.0);
  Point const way = leg.DirectionAt(place.along);
  if (other < 0 || other == static_cast<int>(legs.size())) {
    return ProjectOnEnd(from_end, way, at_start, extension, offset, travel);
  }
  double const joint = at_start ? legs[other].Length() : 0.0;
  offset = OffsetAtBend(from_end, way, legs[other].DirectionAt(joint));
  return true;
}

// Sets the angles of a centre whose arc sweeps so many degrees from the vertex before it.
void SetAngles(std::vector<CenterLinePoint>& points, int index, double sweep) {
  Point const& center = points[index].GetPosition();
  auto const seen = [&](Point const& p) { return Bearing(p.x - center.x, p.y - center.y); };
  double const from = seen(points[index - 1].GetPosition());
  double const to = seen(points[index + 1].GetPosition());
  if (sweep == 0.0) {
    points[index].SetAngles(from, from);
  } else if (sweep > 0.0 || points[index].GetRadius() < 0.0) {
    points[index].SetAngles(from, to);
  } else {
    points[index].SetAngles(to, from);
  }
}

}  // namespace

void CenterLine::Clear() {
  m_Points.clear();
  m_bPrepared = false;
}

void CenterLine::AddElem(CenterLinePoint const& point) {
  m_Points.push_back(point);
  m_bPrepared = false;
}

void CenterLine::InsertElem(int index, CenterLinePoint const& point) {
  m_Points.insert(m_Points.begin() + std::clamp(index, 0, GetNumPoints()), point);
  m_bPrepared = false;
}

CenterLinePoint const& CenterLine::GetPoint(int index) const {
  static CenterLinePoint const NOWHERE;
  return index >= 0 && index < GetNumPoints() ? m_Points[index] : NOWHERE;
}

void CenterLine::Init(double extension, bool falling) {
  m_dExtension = extension;
  m_Legs.clear();
  CenterLineTracer tracer(m_Points);
  double travel = 0.0;
  for (int i = 0; i < GetNumPoints(); ++i) {
    m_Points[i].SetKP(falling ? m_dStartKp - travel : m_dStartKp + travel);
    CenterLineLeg const leg = tracer.Next();
    if (leg.IsArc()) SetAngles(m_Points, i, leg.Sweep());
    if (!(leg.Length() > 0.0)) continue;
    travel += leg.Length();
    m_Legs.push_back(leg);
  }
  m_bPrepared = true;
}

bool CenterLine::GetOffsetAndTravel(Point const& p, double& offset, double& travel) const {
  if (!m_bPrepared) return Project(LegsOf(m_Points), m_dExtension, p, offset, travel);
  return Project(m_Legs, m_dExtension, p, offset, travel);
}
