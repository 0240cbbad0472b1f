#pragma once

#include <cmath>

#include "qeltin/kernel/IPoint.h"
#include "qeltin/platform/Export.h"

// A point of a surface, or a vector: x east, y north, z height, all in the unit of the survey.
//
// A plain value of 24 bytes without virtual operations, so that pools hold points in one block.
// Operations named XY_ look at x and y only. Every comparison is exact; tolerances belong to the
// callers. Angles are radians, counter-clockwise from the x axis.
//
// Threads: a value like a double. Concurrent reads are safe, a write needs a lock of the caller's.
class QELTIN_API TPoint {
 public:
  // The coincidence tolerance offered to hosts. No operation of this class applies it.
  static constexpr double TOLERANCE = 1e-09;

  double x;
  double y;
  double z;

  constexpr TPoint(double x_ = 0.0, double y_ = 0.0, double z_ = 0.0) : x(x_), y(y_), z(z_) {}
  constexpr TPoint(IPoint const& p) : x(p.x), y(p.y), z(p.z) {}
  TPoint(TPoint const&) = default;
  TPoint& operator=(TPoint const&) = default;

  // Returns the smaller x and y of both. The third coordinate follows a rule of its own: where b is
  // higher than a, a.z is written over the result's x and z is 0; otherwise z is b.z.
  static TPoint Min(TPoint const& a, TPoint const& b);

  // Returns the larger x and y of both. Where a is higher than b, a.z is written over the result's
  // x and z is 0; otherwise z is b.z.
  static TPoint Max(TPoint const& a, TPoint const& b);

  // Turns this point by `angle` about `axis` taken through `origin`. Note that the point itself,
  // not the point relative to `origin`, is projected onto the axis. A whole turn and an axis of no
  // length leave the point as it is.
  void Rotate(double angle, TPoint const& axis, TPoint const& origin);

  bool operator==(TPoint const& o) const { return x == o.x && y == o.y && z == o.z; }
  bool operator!=(TPoint const& o) const { return !(*this == o); }

  // Lexicographic by x, then y, then z.
  bool operator<(TPoint const& o) const;
  bool operator>(TPoint const& o) const { return o < *this; }

  // Compare x alone: y and z never count for ordinary numbers, so that these two are not the
  // companions of < and >.
  bool operator<=(TPoint const& o) const;
  bool operator>=(TPoint const& o) const { return o <= *this; }

  TPoint operator+(TPoint const& o) const { return {x + o.x, y + o.y, z + o.z}; }
  TPoint operator-(TPoint const& o) const { return {x - o.x, y - o.y, z - o.z}; }

  bool XY_EqualsTo(TPoint const& o) const { return x == o.x && y == o.y; }
  double XY_Length() const { return std::sqrt(x * x + y * y); }

  // Returns the plan distance to `other`, or its square, which costs no root.
  double XY_Distance(TPoint const& other, bool squared = false) const;

  double XY_DotProduct(TPoint const& o) const { return x * o.x + y * o.y; }

  // Returns the direction of this vector from 0 to 2 pi, or -1 for the null vector. 2 pi itself is
  // the answer just below the x axis, where rounding takes it there.
  double XY_Angle() const;

  // Returns the angle from this vector to `other`, folded by its sine: an obtuse turn answers the
  // acute one of the same sine, so that the result lies in [0, pi/2] or [3 pi/2, 2 pi]. A null
  // vector on either side answers -1. Not-a-number where rounding takes the sine past 1.
  double XY_Angle(TPoint const& other) const;

  // Returns the direction from this point to `other`, from 0 to 2 pi; 3 pi/2 where they coincide.
  double PolarDir(TPoint const& other) const;
};

inline TPoint operator*(TPoint const& p, double factor) {
  return {p.x * factor, p.y * factor, p.z * factor};
}

// Returns p divided by `divisor`, or p itself where the divisor is 0.
QELTIN_API TPoint operator/(TPoint const& p, double divisor);
