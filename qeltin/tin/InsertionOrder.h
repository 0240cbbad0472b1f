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

// Returns a random order in which to insert points whose live order is to be that of insertion: a
// shuffle, in rounds where there are so many points that walks across the surface would cost more
// than the insertions. Another order on every run.
std::vector<int> RandomOrder(TPoint const* points, int count);

}  // namespace qeltin::detail
