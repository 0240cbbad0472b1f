#include "qeltin/kernel/TPoint.h"

#include "qeltin/kernel/Angles.h"

using qeltin::detail::HALF_PI;
using qeltin::detail::PI;
using qeltin::detail::THREE_HALVES_PI;
using qeltin::detail::TWO_PI;

namespace {

double Dot(TPoint const& a, TPoint const& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

}  // namespace

TPoint TPoint::Min(TPoint const& a, TPoint const& b) {
  TPoint result(a.x < b.x ? a.x : b.x, a.y < b.y ? a.y : b.y, 0.0);
  if (b.z > a.z) {
    result.x = a.z;  // x, not z: merged boxes rest on it
  } else {
    result.z = b.z;
  }
  return result;
}

TPoint TPoint::Max(TPoint const& a, TPoint const& b) {
  TPoint result(a.x > b.x ? a.x : b.x, a.y > b.y ? a.y : b.y, 0.0);
  if (a.z > b.z) {
    result.x = a.z;  // x, not z: merged boxes rest on it
  } else {
    result.z = b.z;
  }
  return result;
}

void TPoint::Rotate(double angle, TPoint const& axis, TPoint const& origin) {
  double const n = Dot(axis, axis);
  if (std::fmod(angle, TWO_PI) == 0.0 || n == 0.0) return;

  double const t = Dot(*this, axis) / n;
  TPoint const p = axis * t;
  TPoint const w = *this - origin - p;
  if (std::fmod(angle, PI) == 0.0) {
    *this = p - w + origin;
    return;
  }
  double const m = Dot(w, w);
  if (m == 0.0) return;

  double const c = std::cos(angle) * m;
  double const s = std::sin(angle) * m / std::sqrt(n);
  TPoint const turned((s * axis.y * w.z - s * axis.z * w.y + c * w.x) / m,
                      (s * axis.z * w.x - s * axis.x * w.z + c * w.y) / m,
                      (s * axis.x * w.y - s * axis.y * w.x + c * w.z) / m);
  *this = turned + p + origin;
}

bool TPoint::operator<(TPoint const& o) const {
  if (x != o.x) return x < o.x;
  if (y != o.y) return y < o.y;
  return z < o.z;
}

bool TPoint::operator<=(TPoint const& o) const {
  if (o.x >= x) return true;
  if (x >= o.x) return false;
  if (o.y >= y) return true;
  if (y >= o.y) return false;
  return o.z >= z;
}

double TPoint::XY_Distance(TPoint const& other, bool squared) const {
  double const dx = x - other.x;
  double const dy = y - other.y;
  double const d = dx * dx + dy * dy;
  return squared ? d : std::sqrt(d);
}

double TPoint::XY_Angle() const {
  if (x == 0.0 && y == 0.0) return -1.0;
  if (x == 0.0) return y > 0.0 ? HALF_PI : THREE_HALVES_PI;
  if (y == 0.0) return x > 0.0 ? 0.0 : PI;
  double const a = std::atan(y / x);
  if (x > 0.0) return y > 0.0 ? a : a + TWO_PI;
  return a + PI;
}

double TPoint::XY_Angle(TPoint const& other) const {
  double const l1 = XY_Length();
  double const l2 = other.XY_Length();
  if (l1 == 0.0 || l2 == 0.0) return -1.0;
  double const s = (other.y * x - other.x * y) / (l2 * l1);
  double const a = std::asin(s);
  return a < 0.0 ? a + TWO_PI : a;
}

double TPoint::PolarDir(TPoint const& other) const {
  if (other.x == x) return other.y > y ? HALF_PI : THREE_HALVES_PI;
  if (other.y == y) return other.x > x ? 0.0 : PI;
  double const a = std::atan((other.y - y) / (other.x - x));
  if (y > other.y && other.x > x) return a + TWO_PI;
  if (x > other.x) return a + PI;
  return a;
}

TPoint operator/(TPoint const& p, double divisor) {
  if (divisor == 0.0) return p;
  return {p.x / divisor, p.y / divisor, p.z / divisor};
}
