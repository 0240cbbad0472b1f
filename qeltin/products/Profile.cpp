#include <vector>

#include "qeltin/products/ProfileTracer.h"
#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"

int TIN::GenerateProfile(std::vector<TPolygon>& profiles, TPoint const& from,
                         TPoint const& to) const {
  return qeltin::detail::ProfileTracer(*this).Trace(profiles, from, to);
}

int TIN::GenerateProfile(std::vector<TPolygon>& profiles, TPolygon const& line) const {
  qeltin::detail::ProfileTracer tracer(*this);
  int pieces = 0;
  for (int i = 1; i < line.GetSize(); ++i) {
    pieces += tracer.Trace(profiles, *line.Get(i - 1), *line.Get(i));
  }
  return pieces;
}

bool TIN::SegProfile(TPolygon& profile, TTriangle* first, TTriangle* last, double x1, double y1,
                     double x2, double y2) const {
  std::vector<TPoint> points;
  qeltin::detail::ProfileTracer tracer(*this);
  bool const ended = tracer.Walk(points, first, last, TPoint(x1, y1), TPoint(x2, y2));
  for (TPoint const& p : points) profile.Add(p);
  return ended;
}
