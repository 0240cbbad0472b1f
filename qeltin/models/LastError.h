#pragma once

#include "qeltin/platform/Export.h"

// Returns the code of the last error that an operation of profiles or profile lists has left
// behind: 3 once an index was out of range, 0 before that. One number for the whole process, which
// nothing clears.
//
// Threads: no lock. One thread at a time.
QELTIN_API int GetLastErrorCode();

namespace qeltin::detail {

inline constexpr int INDEX_OUT_OF_RANGE = 3;

void SetLastErrorCode(int code);

}  // namespace qeltin::detail
