#pragma once

namespace MATH {

// Closer than this, in the unit of the survey, two computed positions count as one.
inline constexpr double TOLERANCE = 1e-6;

}  // namespace MATH
