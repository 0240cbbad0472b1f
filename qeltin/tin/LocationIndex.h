#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/TArray.h"

namespace qeltin::detail {

// A place to start a walk from: for any position, a triangle of the pool nearby.
//
// Cells over the data bounds name one triangle each, one with its first corner there or else the
// one under the centre; a cell in which many triangles have their first corner holds a finer grid
// over the part that they fill, and so on. So clusters a thousand kilometres apart cost one more
// level, not a useless grid. Slots are remembered, not what they held: an insertion overwrites
// triangles in place, by others at the same spot, so that an index of yesterday still leads near.
//
// Threads: building reads the pool, lookups read both.
class LocationIndex {
 public:
  // Builds the index over one in `stride` of the live triangles. `triangles` must outlive it.
  LocationIndex(TArray<TTriangle> const& triangles, TPoint const& min, TPoint const& max,
                int stride = 1);

  // Returns a triangle near `p`; null only where the pool was empty.
  TTriangle* Near(TPoint const& p) const;

 private:
  struct Grid {
    double left;
    double bottom;
    double columns_per_unit;
    double rows_per_unit;
    int columns;
    int rows;
    std::size_t first;  // of its cells in m_Cells
  };

  static std::size_t CellOf(Grid const& grid, TPoint const& p);
  // False for a neighbour in another pool, as the triangles of a copied surface have.
  bool InPool(TTriangle const* triangle) const {
    std::less<> const before;
    return !before(triangle, m_pTriangles) && before(triangle, m_pTriangles + m_iCapacity);
  }

  TPoint const& Anchor(int slot) const { return *m_pTriangles[slot].m_pVertex[0]; }
  int AddGrid(std::vector<int> const& slots, TPoint const& min, TPoint const& max, int depth);
  int AddGridAround(std::vector<int> const& slots, int depth);
  void FillEmptyCells(Grid const& grid);
  int WalkTo(TPoint const& p, int slot) const;

  TTriangle* m_pTriangles;
  int m_iCapacity;
  std::vector<Grid> m_Grids;
  std::vector<int> m_Cells;  // a slot, or -1 - the number of a finer grid
};

}  // namespace qeltin::detail
