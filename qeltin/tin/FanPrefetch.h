#pragma once

#include "qeltin/tin/PointMap.h"

namespace qeltin::detail {

// Has the memory around points fetched before their turn: the node of a point, the list of its
// triangles, these, and what they point at, each a few points later than the one before, so that no
// step waits for the last. Inlined always: a compiler may take a call that only fetches for one
// that does nothing.
class FanPrefetch {
 public:
  // Works for the points after `index`, of `count`. `pointAt` returns a pool point by its index.
  template <typename PointAt>
  [[gnu::always_inline]] static void Run(PointMap& map, int index, int count, PointAt pointAt) {
    if (index + 4 * STEP < count) {
      TPoint const* const point = pointAt(index + 4 * STEP);
      __builtin_prefetch(point);
      __builtin_prefetch(map.OwnNodeAt(point));
    }
    if (index + 3 * STEP < count) {
      PointMapNode const* const node = map.OwnNodeAt(pointAt(index + 3 * STEP));
      if (node != nullptr) __builtin_prefetch(node->m_Triangles.data());
    }
    if (index + 2 * STEP < count) {
      PointMapNode const* const node = map.OwnNodeAt(pointAt(index + 2 * STEP));
      if (node != nullptr) FetchTriangles(node->m_Triangles);
    }
    if (index + STEP < count) {
      PointMapNode const* const node = map.OwnNodeAt(pointAt(index + STEP));
      if (node != nullptr) FetchNeighbours(node->m_Triangles);
    }
  }

 private:
  static constexpr int STEP = 4;  // points

  [[gnu::always_inline]] static void FetchTriangles(std::vector<TTriangle*> const& triangles) {
    for (TTriangle const* t : triangles) {
      __builtin_prefetch(t);
      __builtin_prefetch(&t->m_RadiusSq);
    }
  }

  [[gnu::always_inline]] static void FetchNeighbours(std::vector<TTriangle*> const& triangles) {
    for (TTriangle const* t : triangles) {
      for (TPoint const* corner : t->m_pVertex) __builtin_prefetch(corner);
      for (TTriangle const* neighbour : t->m_pAdjacent) __builtin_prefetch(neighbour);
    }
  }
};

}  // namespace qeltin::detail
