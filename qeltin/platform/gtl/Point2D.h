#pragma once

#include <cmath>

namespace GTL {

// A position or a vector in plan, in the unit of the survey. A plain value.
template <typename T>
class Point2D {
 public:
  T x;
  T y;

  constexpr Point2D(T x_ = T(), T y_ = T()) : x(x_), y(y_) {}

  // Exact.
  bool operator==(Point2D const& o) const { return x == o.x && y == o.y; }
  bool operator!=(Point2D const& o) const { return !(*this == o); }

  Point2D operator+(Point2D const& o) const { return {x + o.x, y + o.y}; }
  Point2D operator-(Point2D const& o) const { return {x - o.x, y - o.y}; }
  Point2D operator*(T factor) const { return {x * factor, y * factor}; }

  // Returns the length of this vector, or its square, which costs no root.
  T Length(bool squared = false) const {
    T const sum = x * x + y * y;
    return squared ? sum : std::sqrt(sum);
  }

  // Returns the distance to `other`, or its square.
  T Dist2D(Point2D const& other, bool squared) const { return (*this - other).Length(squared); }
};

}  // namespace GTL
