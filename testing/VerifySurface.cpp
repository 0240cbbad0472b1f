#include "testing/VerifySurface.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <ostream>

#include "testing/ExactPlane.h"
#include "testing/SurfaceVerifier.h"

namespace qeltin::testing {

namespace {

// The bound for the circle of a, b, c alone. See InCircleRounding.
double RoundingOfCircle(TPoint const& a, TPoint const& b, TPoint const& c, TPoint const& p) {
  constexpr double U = 1.0 / 9007199254740992.0;  // 2^-53
  double const twiceArea = std::fabs(TwiceAreaClockwise(a, b, c));
  double magnitude = 0.0;
  double reach = 0.0;
  for (TPoint const* q : {&a, &b, &c}) {
    magnitude = std::max({magnitude, std::fabs(q->x), std::fabs(q->y)});
    reach = std::max(reach, std::hypot(p.x - q->x, p.y - q->y));
  }
  double const l1 = std::hypot(b.x - a.x, b.y - a.y);
  double const l2 = std::hypot(c.x - b.x, c.y - b.y);
  double const l3 = std::hypot(a.x - c.x, a.y - c.y);
  double const length = std::max({l1, l2, l3});
  if (!(twiceArea > 64 * U * length * length)) return std::numeric_limits<double>::infinity();
  double const radius = l1 * l2 * l3 / (2 * twiceArea);
  return U * ((114 * magnitude + 34 * radius) * length * length * reach +
              9 * radius * radius * twiceArea);
}

}  // namespace

// To first order, with u = 2^-53, M the largest coordinate, L the longest side, G twice the area
// and R the circumradius: the numerator of a centre coordinate is off by at most 56 u M L^2, and g
// by 8 u L^2, so that a centre coordinate is off by at most u (40 M + 12 R) L^2 / G. A displacement
// d of the centre changes the power of p, which is compared against that of corner A, by 2 d |p -
// A|; the two squares of the comparison add 8 u R^2. Times G this bounds the determinant. Terms of
// second order are below those already counted as long as G is well above 8 u L^2; below that,
// anything may come out. Which three of the four points made the circle is not known, so the
// largest bound holds.
double InCircleRounding(TPoint const& a, TPoint const& b, TPoint const& c, TPoint const& p) {
  return std::max({RoundingOfCircle(a, b, c, p), RoundingOfCircle(a, b, p, c),
                   RoundingOfCircle(a, p, c, b), RoundingOfCircle(p, b, c, a)});
}

SurfaceView::SurfaceView(TIN const& tin) {
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    triangles.push_back(tin.GetTriangle(i, true));
  }
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) points.push_back(tin.GetPoint(i));
  tin.GetBounds(boundsMin, boundsMax);
  tin.GetWorldBounds(worldMin, worldMax);
}

SurfaceReport VerifySurface(SurfaceView const& view, SurfaceRules const& rules) {
  return SurfaceVerifier(view, rules).Run();
}

SurfaceReport VerifySurface(TIN const& tin, SurfaceRules const& rules) {
  return VerifySurface(SurfaceView(tin), rules);
}

std::ostream& operator<<(std::ostream& out, SurfaceReport const& r) {
  out << (r.Ok() ? "sound" : "UNSOUND") << ": " << r.triangles << " triangles, " << r.vertices
      << " vertices, " << r.loosePoints << " loose points, " << r.cutOffTriangles
      << " cut off, hull of " << r.hullEdges << " in " << r.hullLoops << "; flat " << r.flat
      << ", circles without numbers " << r.notANumberCircles << ", overlap " << r.overlap
      << ", near violations " << r.nearViolations << " (worst at " << r.worstNear
      << " of the rounding), violations " << r.violations << " (deepest " << r.worstDepth << "); "
      << r.faults << " faults";
  for (std::string const& line : r.firstFaults) out << "\n  " << line;
  if (r.faults > static_cast<int>(r.firstFaults.size())) out << "\n  ...";
  return out;
}

}  // namespace qeltin::testing
