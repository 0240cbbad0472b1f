#include "qeltin/tin/LocationIndex.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace qeltin::detail {

namespace {

constexpr int TRIANGLES_PER_CELL = 2;
constexpr int CROWDED = 32;  // a cell with more than this many triangles gets a grid of its own
constexpr int DEEPEST = 12;
constexpr double FULL_ENOUGH = 0.25;   // share of cells with triangles; below, larger ones do
constexpr int LONGEST_AIM = 200;       // steps from one cell's centre towards the next
constexpr std::size_t FAR_AHEAD = 32;  // triangles whose record is fetched before their turn
constexpr std::size_t AHEAD = 16;      // and their corners
constexpr int EMPTY = std::numeric_limits<int>::min();

double CellsPerUnit(double extent, int cells) {
  double const scale = cells / extent;
  return extent > 0.0 && std::isfinite(scale) ? scale : 0.0;
}

bool IsWithin(TPoint const& p, TPoint const& min, TPoint const& max) {
  return p.x >= min.x && p.x <= max.x && p.y >= min.y && p.y <= max.y;
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

TPoint LocationIndex::Centroid(int slot) const {
  TPoint const* const* const corner = m_pTriangles[slot].m_pVertex;
  return {(corner[0]->x + corner[1]->x + corner[2]->x) / 3.0,
          (corner[0]->y + corner[1]->y + corner[2]->y) / 3.0};
}

[[gnu::always_inline]] inline void LocationIndex::FetchAfter(std::vector<int> const& slots,
                                                             std::size_t i) const {
  if (i + FAR_AHEAD < slots.size()) __builtin_prefetch(m_pTriangles + slots[i + FAR_AHEAD]);
  if (i + AHEAD >= slots.size()) return;
  for (TPoint const* corner : m_pTriangles[slots[i + AHEAD]].m_pVertex) __builtin_prefetch(corner);
}

// Returns the number of the new grid.
int LocationIndex::AddGrid(std::vector<int> const& slots, TPoint const& min, TPoint const& max,
                           int depth) {
  std::size_t const first = m_Cells.size();
  double const wanted = std::max(1.0, static_cast<double>(slots.size()) / TRIANGLES_PER_CELL);
  std::vector<int> crowd;
  Grid grid = Scatter(slots, min, max, wanted, crowd);
  auto const taken = std::count_if(crowd.begin(), crowd.end(), [](int count) { return count > 0; });
  if (static_cast<double>(taken) < FULL_ENOUGH * wanted) {
    m_Cells.resize(first);
    grid = Scatter(slots, min, max, std::max(1.0, static_cast<double>(taken) / FULL_ENOUGH), crowd);
  }
  auto const number = static_cast<int>(m_Grids.size());
  m_Grids.push_back(grid);
  FillEmptyCells(grid);
  if (depth < DEEPEST && crowd.size() > 1) Refine(slots, min, max, grid, crowd, depth);
  return number;
}

// Makes some `cells` cells at the end of m_Cells, names a triangle in each that has centroids, and
// counts these.
LocationIndex::Grid LocationIndex::Scatter(std::vector<int> const& slots, TPoint const& min,
                                           TPoint const& max, double cells,
                                           std::vector<int>& crowd) {
  double const width = max.x - min.x;
  double const height = max.y - min.y;
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

  auto const area = static_cast<std::size_t>(grid.columns) * static_cast<std::size_t>(grid.rows);
  m_Cells.resize(grid.first + area, EMPTY);
  crowd.assign(area, 0);
  for (std::size_t i = 0; i < slots.size(); ++i) {
    FetchAfter(slots, i);
    TPoint const centroid = Centroid(slots[i]);
    if (!IsWithin(centroid, min, max)) continue;
    std::size_t const cell = CellOf(grid, centroid.x, centroid.y);
    m_Cells[cell] = slots[i];
    ++crowd[cell - grid.first];
  }
  return grid;
}

// Gives each crowded cell a grid of its own. `crowd` counts the triangles of each.
void LocationIndex::Refine(std::vector<int> const& slots, TPoint const& min, TPoint const& max,
                           Grid grid, std::vector<int> const& crowd, int depth) {
  if (*std::max_element(crowd.begin(), crowd.end()) <= CROWDED) return;
  std::map<std::size_t, std::vector<int>> crowded;
  for (std::size_t i = 0; i < slots.size(); ++i) {
    FetchAfter(slots, i);
    TPoint const centroid = Centroid(slots[i]);
    if (!IsWithin(centroid, min, max)) continue;
    std::size_t const cell = CellOf(grid, centroid.x, centroid.y);
    if (crowd[cell - grid.first] > CROWDED) crowded[cell].push_back(slots[i]);
  }
  for (auto const& [cell, inside] : crowded) {
    int const finer = AddGridAround(inside, depth + 1);
    if (finer > 0) m_Cells[cell] = -1 - finer;
  }
}

// Returns the number of a grid over the box of the centroids, or 0 where that box is a point.
int LocationIndex::AddGridAround(std::vector<int> const& slots, int depth) {
  TPoint min = Centroid(slots[0]);
  TPoint max = min;
  for (int slot : slots) {
    TPoint const p = Centroid(slot);
    min.x = std::min(min.x, p.x);
    min.y = std::min(min.y, p.y);
    max.x = std::max(max.x, p.x);
    max.y = std::max(max.y, p.y);
  }
  if (!(max.x > min.x) && !(max.y > min.y)) return 0;
  return AddGrid(slots, min, max, depth);
}

// Moves from cell to cell, there and back. An empty one takes the triangle of the one before, or,
// where that was empty too, the one under its own centre.
void LocationIndex::FillEmptyCells(Grid const& grid) {
  auto const begin = m_Cells.begin() + static_cast<std::ptrdiff_t>(grid.first);
  auto const taken = std::find_if(begin, m_Cells.end(), [](int cell) { return cell != EMPTY; });
  int slot = taken == m_Cells.end() ? 0 : *taken;
  bool walks = true;
  for (int row = 0; row < grid.rows; ++row) {
    for (int i = 0; i < grid.columns; ++i) {
      int const column = row % 2 == 0 ? i : grid.columns - 1 - i;
      int& cell = *(begin + static_cast<std::ptrdiff_t>(row) * grid.columns + column);
      if (cell != EMPTY) {
        slot = cell;
        walks = false;
        continue;
      }
      if (walks) slot = WalkTo(CentreOf(grid, column, row), slot);
      cell = slot;
      walks = true;
    }
  }
}

TPoint LocationIndex::CentreOf(Grid const& grid, int column, int row) {
  TPoint centre(grid.left, grid.bottom);
  if (grid.columns_per_unit > 0.0) centre.x += (column + 0.5) / grid.columns_per_unit;
  if (grid.rows_per_unit > 0.0) centre.y += (row + 0.5) / grid.rows_per_unit;
  return centre;
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
