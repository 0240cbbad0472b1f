#pragma once

#include <vector>

#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

// Returns, in rising order, the distances of some vertices to the planes through their neighbours,
// as the Decimator measures them: of all in a small surface, otherwise of a sample. A vertex
// that no error lets go is infinitely far: one with fewer than four neighbours, or on the edge.
std::vector<double> SampleDistances(TIN const& tin);

}  // namespace qeltin::cli
