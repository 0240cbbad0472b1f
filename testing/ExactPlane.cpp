#include "testing/ExactPlane.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace qeltin::testing {

namespace {

constexpr double U = 1.0 / 9007199254740992.0;  // 2^-53

// value = mantissa * 2^exponent, the mantissa odd or 0.
struct Binary {
  long mantissa = 0;
  int exponent = std::numeric_limits<int>::max();

  explicit Binary(double value) {
    if (value == 0.0) return;
    auto const bits = std::bit_cast<std::uint64_t>(value);
    int const biased = static_cast<int>(bits >> 52 & 0x7FF);
    std::uint64_t whole = bits & 0xFFFFFFFFFFFFF;
    if (biased != 0) whole |= std::uint64_t{1} << 52;
    int const zeros = std::countr_zero(whole);
    mantissa = static_cast<long>(whole >> zeros);
    if (value < 0.0) mantissa = -mantissa;
    exponent = std::max(biased, 1) - 1075 + zeros;
  }

  void ScaleTo(int common, mpz_class& result) const {
    result = mantissa;
    if (mantissa != 0) result <<= static_cast<unsigned long>(exponent - common);
  }
};

// Scales the coordinates of a few points to integers on one power of two, relative to the last.
template <int N>
int Differences(TPoint const* const (&points)[N], mpz_class (&dx)[N], mpz_class (&dy)[N]) {
  int common = std::numeric_limits<int>::max();
  for (TPoint const* p : points) {
    common = std::min({common, Binary(p->x).exponent, Binary(p->y).exponent});
  }
  for (int i = 0; i < N; ++i) {
    Binary(points[i]->x).ScaleTo(common, dx[i]);
    Binary(points[i]->y).ScaleTo(common, dy[i]);
  }
  for (int i = 0; i < N - 1; ++i) {
    dx[i] -= dx[N - 1];
    dy[i] -= dy[N - 1];
  }
  return common;
}

// Returns value * 2^exponent, at least the smallest double in size where the value is not 0.
double Rounded(mpz_class const& value, long exponent) {
  if (value == 0) return 0.0;
  long shift = 0;
  double const fraction = mpz_get_d_2exp(&shift, value.get_mpz_t());
  long const power = std::clamp(shift + exponent, -3000L, 3000L);
  double const result = std::ldexp(fraction, static_cast<int>(power));
  return result != 0.0 ? result : std::copysign(5e-324, fraction);
}

double ExactTwiceArea(TPoint const& a, TPoint const& b, TPoint const& c) {
  thread_local mpz_class dx[3], dy[3], area;
  TPoint const* const points[3] = {&a, &b, &c};
  int const exponent = Differences(points, dx, dy);
  if (exponent == std::numeric_limits<int>::max()) return 0.0;
  area = dy[0] * dx[1];
  area -= dx[0] * dy[1];
  return Rounded(area, 2L * exponent);
}

double ExactInCircle(TPoint const& a, TPoint const& b, TPoint const& c, TPoint const& p) {
  thread_local mpz_class dx[4], dy[4], lift, minor, sum;
  TPoint const* const points[4] = {&a, &b, &c, &p};
  int const exponent = Differences(points, dx, dy);
  if (exponent == std::numeric_limits<int>::max()) return 0.0;
  sum = 0;
  for (int i = 0; i < 3; ++i) {
    int const j = (i + 1) % 3;
    int const k = (i + 2) % 3;
    lift = dx[i] * dx[i];
    lift += dy[i] * dy[i];
    minor = dy[j] * dx[k];
    minor -= dx[j] * dy[k];
    sum += lift * minor;
  }
  return Rounded(sum, 4L * exponent);
}

}  // namespace

// Source of the two filters: J. R. Shewchuk, "Adaptive Precision Floating-Point Arithmetic and Fast
// Robust Geometric Predicates", 1997: the static bounds of the orientation and in-circle tests.
double TwiceAreaClockwise(TPoint const& a, TPoint const& b, TPoint const& c) {
  double const left = (a.y - c.y) * (b.x - c.x);
  double const right = (a.x - c.x) * (b.y - c.y);
  double const area = left - right;
  double const sum = std::fabs(left) + std::fabs(right);
  if (std::fabs(area) > 4 * U * sum && sum > 1e-280 && sum < 1e300) return area;
  return ExactTwiceArea(a, b, c);
}

double InCircle(TPoint const& a, TPoint const& b, TPoint const& c, TPoint const& p) {
  double const x[3] = {a.x - p.x, b.x - p.x, c.x - p.x};
  double const y[3] = {a.y - p.y, b.y - p.y, c.y - p.y};
  double sum = 0.0;
  double size = 0.0;
  for (int i = 0; i < 3; ++i) {
    int const j = (i + 1) % 3;
    int const k = (i + 2) % 3;
    double const lift = x[i] * x[i] + y[i] * y[i];
    double const left = y[j] * x[k];
    double const right = x[j] * y[k];
    sum += lift * (left - right);
    size += lift * (std::fabs(left) + std::fabs(right));
  }
  if (std::fabs(sum) > 16 * U * size && size > 1e-200 && size < 1e300) return sum;
  return ExactInCircle(a, b, c, p);
}

ExactAreas::ExactAreas(std::vector<TPoint const*> const& points)
    : m_X(points.size()), m_Y(points.size()) {
  int common = std::numeric_limits<int>::max();
  for (TPoint const* p : points) {
    common = std::min({common, Binary(p->x).exponent, Binary(p->y).exponent});
  }
  if (common != std::numeric_limits<int>::max()) m_iExponent = common;
  for (std::size_t i = 0; i < points.size(); ++i) {
    Binary(points[i]->x).ScaleTo(m_iExponent, m_X[i]);
    Binary(points[i]->y).ScaleTo(m_iExponent, m_Y[i]);
  }
}

mpz_class ExactAreas::Side(int a, int b) const {
  mpz_class share = m_Y[a] * m_X[b];
  share -= m_X[a] * m_Y[b];
  return share;
}

mpz_class ExactAreas::Twice(int a, int b, int c) const {
  thread_local mpz_class ax, ay, bx, by;
  ax = m_X[a] - m_X[c];
  ay = m_Y[a] - m_Y[c];
  bx = m_X[b] - m_X[c];
  by = m_Y[b] - m_Y[c];
  mpz_class area = ay * bx;
  area -= ax * by;
  return area;
}

double ExactAreas::Area(mpz_class const& twiceArea) const {
  return Rounded(twiceArea, 2L * m_iExponent - 1);
}

}  // namespace qeltin::testing
