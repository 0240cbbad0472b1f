#pragma once

#include "qeltin/tin/TIN.h"

// Passes over all of a surface. Points lie in memory in no order that has to do with that of the
// triangles, so a pass over a large surface waits for memory unless it is asked for ahead.
namespace qeltin::cli {

inline constexpr int SWEEP_AHEAD = 16;  // elements

// Calls `take` with each triangle in live order, hidden ones too.
template <typename Take>
void ForEachTriangle(TIN const& tin, Take&& take) {
  int const count = tin.GetNumberOfTriangles();
  for (int i = 0; i < count; ++i) {
    if (i < count - SWEEP_AHEAD) {
      for (TPoint const* corner : tin.GetTriangle(i + SWEEP_AHEAD, true)->m_pVertex) {
        __builtin_prefetch(corner);
      }
    }
    take(*tin.GetTriangle(i, true));
  }
}

// Calls `take` with each point in live order, seed corners too.
template <typename Take>
void ForEachPoint(TIN const& tin, Take&& take) {
  int const count = tin.GetNumberOfPoints();
  for (int i = 0; i < count; ++i) {
    if (i < count - SWEEP_AHEAD) __builtin_prefetch(tin.GetPoint(i + SWEEP_AHEAD));
    take(*tin.GetPoint(i));
  }
}

}  // namespace qeltin::cli
