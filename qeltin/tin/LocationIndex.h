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
// Cells over the data bounds name one triangle each, one with its centroid there or else the one
// under the centre; a cell in which many triangles have their centroid holds a finer grid over the
// part that they fill, and so on. So clusters a thousand kilometres apart cost one more level, not
// a useless grid. Slots are remembered, not what they held: an insertion overwrites
// triangles in place, by others at the same spot, so that an index of yesterday still leads near.
//
// Threads: building reads the pool, lookups read both.
class LocationIndex {
 public:
  // Builds the index over one in `stride` of the live triangles. `triangles` must outlive it.
  LocationIndex(TArray<TTriangle> const& triangles, TPoint const& min, TPoint const& max,
                int stride = 1);

  // Returns a triangle near (x, y); null only where the pool was empty.
  TTriangle* Near(double x, double y) const {
    if (m_Grids.empty()) return nullptr;
    int cell = m_Cells[CellOf(m_Grids[0], x, y)];
    while (cell < 0) cell = m_Cells[CellOf(m_Grids[static_cast<std::size_t>(-1 - cell)], x, y)];
    return m_pTriangles + cell;
  }

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

  // Returns the number of a row or column, clamped; not-a-number falls into the first.
  static int Clamped(double cell, int cells) {
    if (!(cell > 0.0)) return 0;
    return cell < cells ? static_cast<int>(cell) : cells - 1;
  }
  static std::size_t CellOf(Grid const& grid, double x, double y) {
    int const column = Clamped((x - grid.left) * grid.columns_per_unit, grid.columns);
    int const row = Clamped((y - grid.bottom) * grid.rows_per_unit, grid.rows);
    return grid.first + static_cast<std::size_t>(row) * static_cast<std::size_t>(grid.columns) +
           static_cast<std::size_t>(column);
  }
  static TPoint CentreOf(Grid const& grid, int column, int row);
  // False for a neighbour in another pool, as the triangles of a copied surface have.
  bool InPool(TTriangle const* triangle) const {
    std::less<> const before;
    return !before(triangle, m_pTriangles) && before(triangle, m_pTriangles + m_iCapacity);
  }

  TPoint Centroid(int slot) const;
  // Asks for what the centroid of the triangle some places after the i-th will need.
  void FetchAfter(std::vector<int> const& slots, std::size_t i) const;
  int AddGrid(std::vector<int> const& slots, TPoint const& min, TPoint const& max, int depth);
  Grid Scatter(std::vector<int> const& slots, TPoint const& min, TPoint const& max, double cells,
               std::vector<int>& crowd);
  int AddGridAround(std::vector<int> const& slots, int depth);
  void Refine(std::vector<int> const& slots, TPoint const& min, TPoint const& max, Grid grid,
              std::vector<int> const& crowd, int depth);
  void FillEmptyCells(Grid const& grid);
  int WalkTo(TPoint const& p, int slot) const;

  TTriangle* m_pTriangles;
  int m_iCapacity;
  std::vector<Grid> m_Grids;
  std::vector<int> m_Cells;  // a slot, or -1 - the number of a finer grid
};

}  // namespace qeltin::detail
