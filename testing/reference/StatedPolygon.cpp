#include "testing/reference/StatedPolygon.h"

#include <algorithm>
#include <cmath>

#include "qeltin/kernel/TTriangle.h"
#include "testing/reference/StatedGeometry.h"

namespace qeltin::testing::stated {

namespace {

double Length(double x, double y) { return std::sqrt(x * x + y * y); }

double AngleBetween(double ax, double ay, double bx, double by) {
  double const l1 = Length(ax, ay);
  double const l2 = Length(bx, by);
  if (l1 == 0.0 || l2 == 0.0) return -1.0;
  double const a = std::asin((by * ax - bx * ay) / (l2 * l1));
  return a < 0.0 ? a + 6.283185307179586 : a;
}

void Emit(TPoint const& a, TPoint const& b, TPoint const& c, std::vector<TPoint>& triangles) {
  triangles.push_back(a);
  triangles.push_back(b);
  triangles.push_back(c);
}

}  // namespace

bool XY_Contains(std::vector<TPoint> const& figure, double x, double y) {
  std::size_t const n = figure.size();
  if (n < 3) return false;
  int counted = 0;
  for (std::size_t i = 0; i < n; ++i) {
    TPoint const& p = figure[i];
    TPoint const& q = figure[(i + 1) % n];
    if (!(std::max(p.x, q.x) >= x)) continue;
    if (!(y >= std::min(p.y, q.y) && y <= std::max(p.y, q.y))) continue;
    if (q.y == p.y) continue;
    double const m = (q.x - p.x) / (q.y - p.y);
    if (p.x - p.y * m + m * y >= x) ++counted;
  }
  return counted % 2 == 1;
}

bool PointInPolygon(std::vector<TPoint> const& figure, TPoint const& p) {
  if (figure.empty()) return false;
  double minX = figure[0].x;
  double minY = figure[0].y;
  double maxX = figure[0].x;
  double maxY = figure[0].y;
  for (TPoint const& v : figure) {
    if (v.x < minX) minX = v.x;
    if (v.y < minY) minY = v.y;
    if (v.x > maxX) maxX = v.x;
    if (v.y > maxY) maxY = v.y;
  }
  if (p.x < minX || p.x > maxX || p.y < minY || p.y > maxY) return false;

  double dx = 0.0;
  double dy = 0.0;
  for (TPoint const& v : figure) {
    double const run = std::fabs(p.x - v.x);
    double const rise = std::fabs(p.y - v.y);
    if (run > dx) dx = run;
    if (rise != 0.0 && (dy == 0.0 || rise < dy)) dy = rise;
  }
  double const rx = 2 * dx;
  double const ry = dy;

  int counted = 0;
  for (std::size_t i = 0; i < figure.size(); ++i) {
    TPoint const& a = figure[i];
    TPoint const& b = figure[(i + 1) % figure.size()];
    double const ex = a.x - b.x;
    double const ey = a.y - b.y;
    double const qx = a.x - p.x;
    double const qy = a.y - p.y;
    double const D = rx * ey - ry * ex;
    double const N = rx * qy - ry * qx;
    double const M = ey * qx - ex * qy;
    if ((D - N) * N > 0 && M * D > 0) ++counted;
  }
  return counted % 2 == 1;
}

double CircumcircleRadius(TPoint const& a, TPoint const& b, TPoint const& c) {
  double const s = std::sin(AngleBetween(a.x - c.x, a.y - c.y, b.x - c.x, b.y - c.y));
  if (s == 0.0) return 3.4028234663852886e38;
  return std::fabs(Length(a.x - b.x, a.y - b.y) / (2 * s));
}

bool IsEar(std::vector<TPoint> const& figure, TPoint a, TPoint b, TPoint c) {
  TPoint const middle((a.x + c.x) / 2, (a.y + c.y) / 2);
  if (!PointInPolygon(figure, middle)) return false;
  TTriangle ear(&a, &b, &c);
  CalcTri(ear);
  for (TPoint const& v : figure) {
    if (Same(v, a) || Same(v, b) || Same(v, c)) continue;
    if (XY_HasPoint(ear, v)) return false;
  }
  return true;
}

bool Triangulate(std::vector<TPoint> const& figure, std::vector<TPoint>& triangles) {
  triangles.clear();
  std::vector<TPoint> left = figure;
  if (left.size() < 3) return false;
  while (left.size() > 3) {
    std::size_t const n = left.size();
    double bestRadius = 9e20;
    std::size_t best = 0;
    for (std::size_t i = 0; i < n; ++i) {
      TPoint const& a = left[i];
      TPoint const& b = left[(i + 1) % n];
      TPoint const& c = left[(i + 2) % n];
      double const radius = CircumcircleRadius(a, b, c);
      if (!(radius < bestRadius)) continue;
      if (!IsEar(figure, a, b, c)) continue;
      bestRadius = radius;
      best = i;
    }
    Emit(left[best], left[(best + 1) % n], left[(best + 2) % n], triangles);
    left.erase(left.begin() + static_cast<std::ptrdiff_t>((best + 1) % n));
  }
  Emit(left[0], left[1], left[2], triangles);
  return triangles.size() / 3 == figure.size() - 2;
}

}  // namespace qeltin::testing::stated
