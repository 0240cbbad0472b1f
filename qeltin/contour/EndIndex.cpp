#include "qeltin/contour/EndIndex.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "qeltin/platform/Math.h"

namespace qeltin::detail {

namespace {

constexpr double CELL = 4.0 * MATH::TOLERANCE;

// More than the tolerance, and more than what rounding does to a cell number.
constexpr double REACH = 1.5 * MATH::TOLERANCE;

double CellOf(double coordinate) { return std::floor(coordinate / CELL); }

bool IsFinite(EndIndex::Place const& place) {
  return std::isfinite(place.x) && std::isfinite(place.y);
}

}  // namespace

void EndIndex::Add(int line, Place const& end) {
  if (IsFinite(end)) m_Entries.push_back({CellOf(end.x), CellOf(end.y), line, 0, end});
}

void EndIndex::Sort() {
  std::sort(m_Entries.begin(), m_Entries.end(), [](Entry const& a, Entry const& b) {
    return std::tie(a.column, a.row, a.line) < std::tie(b.column, b.row, b.line);
  });
}

int EndIndex::FirstAbove(int line, Place const& place) {
  if (!IsFinite(place)) return NONE;
  double const columns[2] = {CellOf(place.x - REACH), CellOf(place.x + REACH)};
  double const rows[2] = {CellOf(place.y - REACH), CellOf(place.y + REACH)};
  int first = NONE;
  for (int i = 0; i < (columns[0] == columns[1] ? 1 : 2); ++i) {
    for (int j = 0; j < (rows[0] == rows[1] ? 1 : 2); ++j) {
      int const found = FirstInCell(line, place, columns[i], rows[j]);
      if (found != NONE && (first == NONE || found < first)) first = found;
    }
  }
  return first;
}

int EndIndex::FirstInCell(int line, Place const& place, double column, double row) {
  auto const begin = std::lower_bound(m_Entries.begin(), m_Entries.end(), std::tie(column, row),
                                      [](Entry const& entry, auto const& cell) {
                                        return std::tie(entry.column, entry.row) < cell;
                                      });
  auto const in_cell = [&](auto entry) {
    return entry != m_Entries.end() && entry->column == column && entry->row == row;
  };
  if (!in_cell(begin)) return NONE;
  auto entry = begin + begin->skip;
  for (; in_cell(entry); ++entry) {
    if (entry->line > line && !m_bOut[static_cast<std::size_t>(entry->line)]) break;
  }
  begin->skip = static_cast<int>(entry - begin);
  for (; in_cell(entry); ++entry) {
    if (entry->line > line && !m_bOut[static_cast<std::size_t>(entry->line)] &&
        entry->end.Dist2D(place, false) < MATH::TOLERANCE) {
      return entry->line;
    }
  }
  return NONE;
}

}  // namespace qeltin::detail
