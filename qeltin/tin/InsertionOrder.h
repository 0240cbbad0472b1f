#pragma once

#include <cstdint>
#include <vector>

#include "qeltin/kernel/TPoint.h"

namespace qeltin::detail {

// A point with its slot in the pool.
struct OrderedPoint {
  double x;
  double y;
  double z;
  int slot;
  std::uint32_t scratch;  // where it lies along the curve; afterwards the caller's
};

// Puts shuffled points into the order in which to insert them: the shuffle is cut into rounds that
// grow, and each round follows a Hilbert curve. So the rounds keep the chance that protects an
// insertion against ordered input, while a walk from one point to the next takes a few steps.
//
// `shuffled` holds `count` slots of `points`. So does `ordered`, each once, with a copy of the
// point; `scratch` has room for as many.
//
// Source: N. Amenta, S. Choi, G. Rote, "Incremental Constructions con BRIO", 2003.
void OrderInRounds(TPoint const* points, int const* shuffled, int count, OrderedPoint* ordered,
                   OrderedPoint* scratch);

// The same, but returns the slots alone.
std::vector<int> OrderInRounds(TPoint const* points, int const* shuffled, int count);

// Returns the slots in the order in which a Hilbert curve meets their points, so that those near to
// each other come after each other.
std::vector<int> OrderAlongCurve(TPoint const* points, std::vector<int> const& slots);

// Returns a random order in which to insert points whose live order is to be that of insertion: a
// shuffle, in rounds where there are so many points that walks across the surface would cost more
// than the insertions. Another order on every run.
std::vector<int> RandomOrder(TPoint const* points, int count);

}  // namespace qeltin::detail
