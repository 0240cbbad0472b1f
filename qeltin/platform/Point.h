#pragma once

// A point in space as the page classes see it: x east, y north, z up, in the unit of the survey.
//
// Threads: a value like a double. Concurrent reads are safe, a write needs a lock of the caller's.
class Point {
 public:
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  constexpr Point() = default;
  constexpr Point(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}

  constexpr bool operator==(Point const& other) const = default;  // exact
};
