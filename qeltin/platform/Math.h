#pragma once

inline constexpr double D_TO_R = 0.017453292519943295;  // one degree in radians

// Closer than this, two angles in degrees count as one.
inline constexpr double EPSILON = 1e-9;

namespace MATH {

// Closer than this, in the unit of the survey, two computed positions count as one.
inline constexpr double TOLERANCE = 1e-6;

}  // namespace MATH
