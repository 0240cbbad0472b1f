#pragma once

namespace GTL {

// A position in space. A plain value.
template <typename T>
class Point3D {
 public:
  T x;
  T y;
  T z;

  constexpr Point3D(T x_ = T(), T y_ = T(), T z_ = T()) : x(x_), y(y_), z(z_) {}
};

}  // namespace GTL
