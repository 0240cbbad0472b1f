#include "apps/qeltin/PlaneTests.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qeltin::cli {

namespace {

constexpr double U = 1.0 / 9007199254740992.0;  // the rounding unit
constexpr double INFINITE = std::numeric_limits<double>::infinity();

double Magnitude(TPoint const& p) { return std::max(std::fabs(p.x), std::fabs(p.y)); }

double Distance(TPoint const& a, TPoint const& b) { return std::hypot(b.x - a.x, b.y - a.y); }

// Never less than the distance.
double Detour(TPoint const& a, TPoint const& b) {
  return std::fabs(b.x - a.x) + std::fabs(b.y - a.y);
}

// Twice the area, positive where a, b, c run counter-clockwise.
double TwiceArea(TPoint const& a, TPoint const& b, TPoint const& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// What the size of a triangle says about the rounding of its circle.
struct Shape {
  double twice_area;
  double longest;
  double magnitude;  // of the largest coordinate
  double radius;     // infinite where the corners are in line to rounding

  Shape(TPoint const& a, TPoint const& b, TPoint const& c) {
    double const ab = Distance(a, b);
    double const bc = Distance(b, c);
    double const ca = Distance(c, a);
    twice_area = std::fabs(TwiceArea(a, b, c));
    longest = std::max({ab, bc, ca});
    magnitude = std::max({Magnitude(a), Magnitude(b), Magnitude(c)});
    bool const flat = !(twice_area > 64.0 * U * longest * longest);
    radius = flat ? INFINITE : ab * bc * ca / (2.0 * twice_area);
  }

  // How far off the centre may be, as it is calculated from coordinates far from the origin: to
  // first order, its numerators by 56 u M L^2 and its denominator by 8 u L^2.
  double CentreRounding() const {
    return U * (40.0 * magnitude + 12.0 * radius) * longest * longest / twice_area;
  }
};

// How far off the power of `p` in the circle of a, b, c may be, times twice the area: twice the
// displacement of the centre by the reach of p, and the squares of the comparison.
double InCircleRounding(TPoint const& a, TPoint const& b, TPoint const& c, TPoint const& p) {
  Shape const shape(a, b, c);
  if (shape.radius == INFINITE) return INFINITE;
  double const reach = std::max({Distance(a, p), Distance(b, p), Distance(c, p)});
  return 3.0 * shape.CentreRounding() * reach * shape.twice_area +
         9.0 * U * shape.radius * shape.radius * shape.twice_area;
}

// Negative where p is inside the circle of a, b, c, which run counter-clockwise. Reckoned from a,
// so that it is off by less than the rounding of the circle.
double InCircle(TPoint const& a, TPoint const& b, TPoint const& c, TPoint const& p) {
  TPoint const u = b - a;
  TPoint const v = c - a;
  TPoint const w = p - a;
  double const uu = u.x * u.x + u.y * u.y;
  double const vv = v.x * v.x + v.y * v.y;
  double const ww = w.x * w.x + w.y * w.y;
  return uu * (v.x * w.y - v.y * w.x) - vv * (u.x * w.y - u.y * w.x) + ww * (u.x * v.y - u.y * v.x);
}

}  // namespace

int TurnOf(TPoint const& a, TPoint const& b, TPoint const& c) {
  double const turn = TwiceArea(a, b, c);
  double const magnitude = std::max({Magnitude(a), Magnitude(b), Magnitude(c)});
  auto const is_certain = [&](double longest) {
    return std::fabs(turn) > 8.0 * U * (magnitude + longest) * longest;
  };
  // What holds of a longer side holds of the longest, which is dearer to find out.
  double const longer = std::max({Detour(a, b), Detour(b, c), Detour(c, a)});
  bool const certain =
      is_certain(longer) || is_certain(std::max({Distance(a, b), Distance(b, c), Distance(c, a)}));
  if (!certain) return 0;
  return turn > 0.0 ? 1 : -1;
}

bool IsInsideCircle(TPoint const& a, TPoint const& b, TPoint const& c, TPoint const& p) {
  double const turned = TwiceArea(a, b, c) > 0.0 ? 1.0 : -1.0;
  double const depth = -turned * InCircle(a, b, c, p);
  if (!(depth > 0.0)) return false;
  double const rounding = std::max({InCircleRounding(a, b, c, p), InCircleRounding(a, b, p, c),
                                    InCircleRounding(a, p, c, b), InCircleRounding(p, b, c, a)});
  return depth > 2.0 * rounding;
}

bool IsCircleOf(TPoint const& a, TPoint const& b, TPoint const& c, TPoint const& centre,
                double radius_sq) {
  Shape const shape(a, b, c);
  if (shape.radius == INFINITE) return true;
  // The centre from the differences of coordinates.
  TPoint const u = b - a;
  TPoint const v = c - a;
  double const uu = u.x * u.x + u.y * u.y;
  double const vv = v.x * v.x + v.y * v.y;
  double const g = 2.0 * TwiceArea(a, b, c);
  TPoint const exact(a.x + (v.y * uu - u.y * vv) / g, a.y + (u.x * vv - v.x * uu) / g);
  double const rounding = 4.0 * shape.CentreRounding() + 4.0 * U * shape.magnitude;
  double const off = Distance(centre, exact);
  double const radius_off = std::fabs(radius_sq - shape.radius * shape.radius);
  // A radius is taken from the centre as it stands.
  return off <= rounding && radius_off <= (2.0 * shape.radius + rounding) * 2.0 * rounding +
                                              64.0 * U * shape.radius * shape.radius;
}

}  // namespace qeltin::cli
