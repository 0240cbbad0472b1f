#pragma once

#include <cstddef>

#include "qeltin/platform/Export.h"

namespace qeltin::detail {

// Returns `bytes` bytes of zeros, or null where the system refuses them. Large blocks come straight
// from the system, those up to half a gibibyte in huge pages where it has them: a page that nobody
// touches costs nothing. Safe from any thread.
QELTIN_API void* AllocateZeroed(std::size_t bytes);

// Gives a block of AllocateZeroed back. REQUIRES: `bytes` is what the block was asked for with.
// Null is allowed.
QELTIN_API void FreeZeroed(void* block, std::size_t bytes);

}  // namespace qeltin::detail
