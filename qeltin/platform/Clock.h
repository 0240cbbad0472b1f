#pragma once

#include <cstdint>

#include "qeltin/platform/Export.h"

// Returns the milliseconds of a steady clock with an arbitrary start, as a 32-bit value that wraps
// after 49.7 days. Safe from any thread.
QELTIN_API std::uint32_t timeGetTime();
