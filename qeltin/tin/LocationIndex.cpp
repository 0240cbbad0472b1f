#include "qeltin/tin/LocationIndex.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace qeltin::detail {

namespace {

constexpr int TRIANGLES_PER_CELL = 4;
constexpr int CROWDED = 64;  // a cell with more than this many triangles gets a grid of its own
constexpr int DEEPEST = 12;
constexpr int LONGEST_AIM = 200;  // steps from one cell's centre towards the next
constexpr int EMPTY = std::numeric_limits<int>::min();

// Returns the cell of `offset` units from the edge, clamped; not-a-number falls into cell 0.
int Clamped(double cell, int cells) {
  if (!(cell > 0.0)) return 0;
  return cell < cells ? static_cast<int>(cell) : cells - 1;
}

double CellsPerUnit(double extent, int cells) {
  double const scale = cells / extent;
  return extent > 0.0 && std::isfinite(scale) ? scale : 0.0;
}

}  // namespace

LocationIndex::LocationIndex(TArray<TTriangle> const& triangles, TPoint const& min,
                             TPoint const& max, int stride)
    : m_pTriangles(triangles.m_pData), m_iCapacity(triangles.m_iCapacity) {
  if (triangles.m_iCount <= 0) return;
  std::vector<int> slots;
  slots.reserve(static_cast<std::size_t>(triangles.m_iCount / stride + 1));
  for (int i = 0; i < triangles.m_iCount; i += stride) slots.push_back(triangles.m_pIndex[i]);
  AddGrid(slots, min, max, 0);
}

TTriangle* LocationIndex::Near(TPoint const& p) const {
  if (m_Grids.empty()) return nullptr;
  int cell = m_Cells[CellOf(m_Grids[0], p)];
  while (cell < 0) {
    Grid const& finer = m_Grids[static_cast<std::size_t>(-1 - cell)];
    cell = m_Cells[CellOf(finer, p)];
  }
  return m_pTriangles + cell;
}

std::size_t LocationIndex::CellOf(Grid const& grid, TPoint const& p) {
  int const column = Clamped((p.x - grid.left) * grid.columns_per_unit, grid.columns);
  int const row = Clamped((p.y - grid.bottom) * grid.rows_per_unit, grid.rows);
  return grid.first + static_cast<std::size_t>(row) * static_cast<std::size_t>(grid.columns) +
         static_cast<std::size_t>(column);
}

// Returns the number of the new grid.
int LocationIndex::AddGrid(std::vector<int> const& slots, TPoint const& min, TPoint const& max,
                           int depth) {
  double const width = max.x - min.x;
  double const height = max.y - min.y;
  double const cells = std::max(1.0, static_cast<double>(slots.size()) / TRIANGLES_PER_CELL);
  double const shape = width / height;
  double const columns =
      std::isfinite(shape) && shape > 0.0 ? std::clamp(std::sqrt(cells * shape), 1.0, cells) : 1.0;

  Grid grid{};
  grid.columns = static_cast<int>(columns);
  grid.rows = std::max(1, static_cast<int>(cells / grid.columns));
  grid.left = min.x;
  grid.bottom = min.y;
  grid.columns_per_unit = CellsPerUnit(width, grid.columns);
  grid.rows_per_unit = CellsPerUnit(height, grid.rows);
  grid.first = m_Cells.size();
  auto const number = static_cast<int>(m_Grids.size());
  m_Grids.push_back(grid);

  auto const area = static_cast<std::size_t>(grid.columns) * static_cast<std::size_t>(grid.rows);
  m_Cells.resize(grid.first + area, EMPTY);
  std::vector<int> crowd(area, 0);
  for (int slot : slots) {
    std::size_t const cell = CellOf(grid, Anchor(slot));
    m_Cells[cell] = slot;
    ++crowd[cell - grid.first];
  }
  FillEmptyCells(grid);
  if (depth == DEEPEST || area == 1) return number;

  std::map<std::size_t, std::vector<int>> crowded;
  for (int slot : slots) {
    std::size_t const cell = CellOf(grid, Anchor(slot));
    if (crowd[cell - grid.first] > CROWDED) crowded[cell].push_back(slot);
  }
  for (auto const& [cell, inside] : crowded) {
    int const finer = AddGridAround(inside, depth + 1);
    if (finer > 0) m_Cells[cell] = -1 - finer;
  }
  return number;
}

// Returns the number of a grid over the box of the first corners, or 0 where that box is a point.
int LocationIndex::AddGridAround(std::vector<int> const& slots, int depth) {
  TPoint min = Anchor(slots[0]);
  TPoint max = min;
  for (int slot : slots) {
    TPoint const& p = Anchor(slot);
    min.x = std::min(min.x, p.x);
    min.y = std::min(min.y, p.y);
    max.x = std::max(max.x, p.x);
    max.y = std::max(max.y, p.y);
  }
  if (!(max.x > min.x) && !(max.y > min.y)) return 0;
  return AddGrid(slots, min, max, depth);
}

// Moves from cell to cell, there and back, and gives each empty one the triangle under its centre.
void LocationIndex::FillEmptyCells(Grid const& grid) {
  auto const begin = m_Cells.begin() + static_cast<std::ptrdiff_t>(grid.first);
  auto const taken = std::find_if(begin, m_Cells.end(), [](int cell) { return cell != EMPTY; });
  int slot = taken == m_Cells.end() ? 0 : *taken;
  for (int row = 0; row < grid.rows; ++row) {
    for (int i = 0; i < grid.columns; ++i) {
      int const column = row % 2 == 0 ? i : grid.columns - 1 - i;
      int& cell = *(begin + static_cast<std::ptrdiff_t>(row) * grid.columns + column);
      if (cell != EMPTY) {
        slot = cell;
        continue;
      }
      TPoint centre(grid.left, grid.bottom);
      if (grid.columns_per_unit > 0.0) centre.x += (column + 0.5) / grid.columns_per_unit;
      if (grid.rows_per_unit > 0.0) centre.y += (row + 0.5) / grid.rows_per_unit;
      slot = WalkTo(centre, slot);
      cell = slot;
    }
  }
}

// Returns the slot that a short walk from `slot` towards `p` ends in.
int LocationIndex::WalkTo(TPoint const& p, int slot) const {
  TTriangle* current = m_pTriangles + slot;
  TTriangle* previous = nullptr;
  for (int steps = 0; steps < LONGEST_AIM; ++steps) {
    int const side = current->WhereTri(p);
    TTriangle* const next = side == 3 ? nullptr : current->m_pAdjacent[side];
    if (next == nullptr || next == previous || !InPool(next)) break;
    previous = current;
    current = next;
  }
  return static_cast<int>(current - m_pTriangles);
}

}  // namespace qeltin::detail
