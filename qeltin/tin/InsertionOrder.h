#pragma once

#include <vector>

#include "qeltin/kernel/TPoint.h"

namespace qeltin::detail {

// Returns the order in which to insert shuffled points: the shuffle is cut into rounds that grow,
// and each round follows a Hilbert curve. So the rounds keep the chance that protects an insertion
// against ordered input, while a walk from one point to the next takes a few steps.
//
// `shuffled` holds `count` slots of `points`; so does the result, each once.
//
// Source: N. Amenta, S. Choi, G. Rote, "Incremental Constructions con BRIO", 2003.
std::vector<int> OrderInRounds(TPoint const* points, int const* shuffled, int count);

}  // namespace qeltin::detail
