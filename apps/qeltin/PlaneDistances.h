#pragma once

#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

// So many candidates no pass of a Decimator removes, its first ones.
inline constexpr int KEPT_AT_START = 4;

// Returns the error with which a pass removes about `wanted` of the `left` vertices of a surface,
// or a fifth of those that any error lets go: the fewer go at once, the closer the surface stays to
// those that have gone. Goes by the distances of all vertices to the planes through their
// neighbours, in a large surface by those of a sample.
float ErrorFor(int wanted, int left, TIN const& tin);

}  // namespace qeltin::cli
