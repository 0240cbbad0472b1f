#pragma once

// The right angles in radians, as the nearest double.
namespace qeltin::detail {

inline constexpr double HALF_PI = 1.5707963267948966;
inline constexpr double PI = 3.141592653589793;
inline constexpr double THREE_HALVES_PI = 4.71238898038469;
inline constexpr double TWO_PI = 6.283185307179586;

}  // namespace qeltin::detail
