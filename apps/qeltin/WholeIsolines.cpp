#include "apps/qeltin/WholeIsolines.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "apps/qeltin/Sweep.h"

namespace qeltin::cli {

WholeIsolines::WholeIsolines(TIN const& tin, std::vector<double> levels)
    : m_Tin(tin), m_Levels(std::move(levels)), m_Crossed(m_Levels.size()) {
  FindBlock();
  FindCrossed();
}

void WholeIsolines::FindBlock() {
  TTriangle const* last = nullptr;
  for (int i = 0; i < m_Tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const t = m_Tin.GetTriangle(i, true);
    m_pFirst = m_pFirst == nullptr ? t : std::min(m_pFirst, t, std::less<>());
    last = last == nullptr ? t : std::max(last, t, std::less<>());
  }
  if (last != nullptr) m_Walked.resize(Slot(last) + 1);
}

void WholeIsolines::FindCrossed() {
  ForEachTriangle(m_Tin, [this](TTriangle const& t) {
    if (!IsOpen(t)) return;
    auto const [low, high] = std::minmax({t.m_pVertex[0]->z, t.m_pVertex[1]->z, t.m_pVertex[2]->z});
    auto level = std::upper_bound(m_Levels.begin(), m_Levels.end(), low);
    for (; level != m_Levels.end() && *level <= high; ++level) {
      m_Crossed[static_cast<std::size_t>(level - m_Levels.begin())].push_back(&t);
    }
  });
}

std::vector<Isoline> WholeIsolines::At(std::size_t i) {
  m_dLevel = m_Levels[i];
  m_Walked.assign(m_Walked.size(), false);
  std::vector<Isoline> lines;
  for (TTriangle const* t : m_Crossed[i]) {
    std::optional<int> const entry = Entry(*t);
    if (entry && !m_Walked[Slot(t)]) lines.push_back(Follow(*t, *entry));
  }
  return lines;
}

bool WholeIsolines::IsCrossed(TTriangle const& t, int side) const {
  bool const above = t.m_pVertex[side]->z >= m_dLevel;
  return above != (t.m_pVertex[(side + 1) % 3]->z >= m_dLevel);
}

int WholeIsolines::OtherCrossed(TTriangle const& t, int side) const {
  return IsCrossed(t, (side + 1) % 3) ? (side + 1) % 3 : (side + 2) % 3;
}

TPoint WholeIsolines::Crossing(TTriangle const& t, int side) const {
  TPoint const* low = t.m_pVertex[side];
  TPoint const* high = t.m_pVertex[(side + 1) % 3];
  if (low->z >= m_dLevel) std::swap(low, high);
  if (high->z == m_dLevel) return *high;
  double const f = (m_dLevel - low->z) / (high->z - low->z);
  return {low->x + (high->x - low->x) * f, low->y + (high->y - low->y) * f, m_dLevel};
}

std::optional<int> WholeIsolines::Entry(TTriangle const& t) const {
  // What comes in across a side of a clockwise triangle has the first end of the side to its right.
  for (int side = 0; side < 3; ++side) {
    if (IsCrossed(t, side) && t.m_pVertex[side]->z >= m_dLevel) return side;
  }
  return {};
}

Isoline WholeIsolines::Follow(TTriangle const& start, int entry) {
  m_Walked[Slot(&start)] = true;
  Isoline line;
  Points ahead;
  line.closed = Follow(start, OtherCrossed(start, entry), ahead);
  if (line.closed) {
    line.points.push_back(Crossing(start, entry));
  } else {
    Follow(start, entry, line.points);
    std::reverse(line.points.begin(), line.points.end());
  }
  line.points.insert(line.points.end(), ahead.begin(), ahead.end());
  line.points.erase(std::unique(line.points.begin(), line.points.end()), line.points.end());
  if (start.Area() > 0.0) std::reverse(line.points.begin(), line.points.end());
  return line;
}

bool WholeIsolines::Follow(TTriangle const& start, int side, Points& points) {
  TTriangle const* t = &start;
  while (true) {
    points.push_back(Crossing(*t, side));
    TTriangle const* const next = t->m_pAdjacent[side];
    int const back = t->TriSide(side);
    if (next == &start) return true;
    if (back > 2 || !IsOpen(*next) || !IsCrossed(*next, back) || m_Walked[Slot(next)]) return false;
    m_Walked[Slot(next)] = true;
    side = OtherCrossed(*next, back);
    t = next;
  }
}

}  // namespace qeltin::cli
