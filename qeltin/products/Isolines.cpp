#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>
#include <vector>

#include "qeltin/kernel/TEdge.h"
#include "qeltin/products/HeightCodes.h"
#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/LiveSlots.h"
#include "qeltin/tin/TIN.h"

namespace {

constexpr double FLAT = 1e-11;  // heights closer than this are one
constexpr int FEWEST_TRIANGLES = 3;
constexpr int FEWEST_FAR = 2000;  // triangles; among fewer, a walk from anywhere costs little

constexpr int AHEAD = 16;  // triangles fetched before their turn

int Next(int corner) { return corner == 2 ? 0 : corner + 1; }

bool IsFlat(TTriangle const& t) {
  double const a = t.m_pVertex[0]->z;
  double const b = t.m_pVertex[1]->z;
  double const c = t.m_pVertex[2]->z;
  return std::fabs(a - b) < FLAT && std::fabs(b - c) < FLAT && std::fabs(c - a) < FLAT;
}

[[gnu::always_inline]] inline void PrefetchCorners(TTriangle const& t) {
  for (TPoint const* corner : t.m_pVertex) {
    __builtin_prefetch(corner);
    __builtin_prefetch(&corner->z);  // a record may lie across two lines
  }
}

}  // namespace

namespace qeltin::detail {

// Traces the lines of some levels over one surface.
//
// What a level leaves behind is known: marks on the triangles that its lines came to. So one sweep
// over all triangles finds what each level crosses.
class IsolineTracer {
 public:
  explicit IsolineTracer(TIN& tin) : m_Tin(tin) {}

  // REQUIRES: no more levels than a table of codes has room for.
  void Run(std::vector<TPolygon*>& lines, std::span<double const> levels) {
    std::vector<double> const rising = Rising(levels);
    m_Crossed.assign(rising.size(), {});
    if (rising.size() > HeightCodes<std::uint8_t>::MOST_LEVELS) {
      Sweep(HeightCodes<std::uint16_t>(*m_Tin.m_pPoints, rising));
    } else {
      Sweep(HeightCodes<std::uint8_t>(*m_Tin.m_pPoints, rising));
    }
    for (double level : levels) {
      m_dLevel = level;
      RenewMarks();
      auto const place = std::lower_bound(rising.begin(), rising.end(), level);
      if (place == rising.end() || *place != level) continue;  // not a number
      TraceAll(m_Crossed[static_cast<std::size_t>(place - rising.begin())], lines);
    }
  }

 private:
  static constexpr unsigned char NOT_VISITED = static_cast<unsigned char>(~TRI_VISITED);

  static std::vector<double> Rising(std::span<double const> levels) {
    std::vector<double> rising;
    std::copy_if(levels.begin(), levels.end(), std::back_inserter(rising),
                 [](double level) { return !std::isnan(level); });
    std::sort(rising.begin(), rising.end());
    rising.erase(std::unique(rising.begin(), rising.end()), rising.end());
    return rising;
  }

  // Clears all marks, and notes in live order the flat triangles and those that each level may
  // cross. What a triangle will be asked for is fetched a few triangles before.
  template <typename Code>
  void Sweep(HeightCodes<Code> const& codes) {
    int const count = m_Tin.GetNumberOfTriangles();
    std::vector<TTriangle*> matter;
    std::size_t noted = 0;
    for (int i = 0; i < count; ++i) {
      if (i + AHEAD < count) codes.Prefetch(*m_Tin.GetTriangle(i + AHEAD, true));
      TTriangle* const t = m_Tin.GetTriangle(i, true);
      if ((t->m_Flags & TRI_VISITED) != 0) t->m_Flags &= NOT_VISITED;
      if (!codes.MayMatter(*t)) continue;
      PrefetchCorners(*t);
      matter.push_back(t);
      if (matter.size() > noted + AHEAD) Note(matter[noted++], codes);
    }
    while (noted < matter.size()) Note(matter[noted++], codes);
  }

  template <typename Code>
  void Note(TTriangle* t, HeightCodes<Code> const& codes) {
    if (t->IsHidden() || !m_Tin.InBounds(*t)) return;
    if (IsFlat(*t)) {
      m_Flat.push_back(t);
      return;
    }
    auto const levels = codes.LevelsOf(*t);
    for (std::size_t level = levels.first; level < levels.last; ++level) {
      m_Crossed[level].push_back(t);
    }
  }

  // Takes back the marks of the level before and sets those of the flat triangles. To mark these
  // before the first line is traced changes no line: each of them ends a line that comes to it,
  // marked or not. A triangle that is not live but still joined to others keeps its mark.
  void RenewMarks() {
    if (!m_Marked.empty() && !m_Live) m_Live.emplace(*m_Tin.m_pTriangles);
    for (TTriangle* t : m_Marked) {
      if (m_Live->Has(t)) t->m_Flags &= NOT_VISITED;
    }
    m_Marked.clear();
    for (TTriangle* t : m_Flat) Mark(*t);
  }

  void Mark(TTriangle& t) {
    t.m_Flags |= TRI_VISITED;
    m_Marked.push_back(&t);
  }

  // The lines go from one of `triangles` to another, in an order that no processor foresees.
  static void FetchAll(std::vector<TTriangle*> const& triangles) {
    for (std::size_t i = 0; i < triangles.size() + AHEAD; ++i) {
      if (i < triangles.size()) {
        __builtin_prefetch(triangles[i]);
        __builtin_prefetch(&triangles[i]->m_Flags);
      }
      if (i >= AHEAD) PrefetchCorners(*triangles[i - AHEAD]);
    }
  }

  void TraceAll(std::vector<TTriangle*> const& starts, std::vector<TPolygon*>& lines) {
    FetchAll(starts);
    for (TTriangle* t : starts) {
      if ((t->m_Flags & TRI_VISITED) != 0) continue;
      int const entry = EntryOf(*t);
      if (entry == 3) continue;
      lines.push_back(new TPolygon);
      Trace(t, entry, *lines.back());
      Orient(*lines.back(), t);
    }
  }

  // Half open: an end at the level is above it.
  bool IsCrossed(TTriangle const& t, int side) const {
    double const a = t.m_pVertex[side]->z;
    double const b = t.m_pVertex[Next(side)]->z;
    return (a >= m_dLevel && b < m_dLevel) || (b >= m_dLevel && a < m_dLevel);
  }

  // Returns the first crossed side, or 3.
  int EntryOf(TTriangle const& t) const {
    int side = 0;
    while (side < 3 && !IsCrossed(t, side)) ++side;
    return side;
  }

  TPoint Crossing(TTriangle const& t, int side) const {
    TPoint const& a = *t.m_pVertex[side];
    TPoint const& b = *t.m_pVertex[Next(side)];
    double const f = (m_dLevel - a.z) / (b.z - a.z);
    return {a.x + (b.x - a.x) * f, a.y + (b.y - a.y) * f, m_dLevel};
  }

  void Trace(TTriangle* t, int side, TPolygon& line) {
    bool first = true;
    while (side < 3) {  // 3: the neighbour does not lead back
      TPoint const crossing = Crossing(*t, side);
      if (m_Tin.InBounds(crossing)) line.Add(crossing);
      Mark(*t);
      if (!first && !m_Tin.InBounds(*t)) return;
      first = false;

      int const exit = IsCrossed(*t, Next(side)) ? Next(side) : Next(Next(side));
      TTriangle* const next = t->m_pAdjacent[exit];
      if (next == nullptr) return;
      bool const ends = (next->m_Flags & (TRI_VISITED | TRI_FILTERED)) != 0;
      if (IsFlat(*next)) {
        Mark(*next);
        return;
      }
      if (ends) return;
      side = t->TriSide(exit);
      t = next;
    }
  }

  // Higher ground to the right, as far as corner 0 of the triangle at the first point can tell.
  void Orient(TPolygon& line, TTriangle* start) {
    if (line.GetSize() < 1) return;
    TTriangle const* const found = Locate(*line.Get(0), start);
    if (line.GetSize() < 2 || found == nullptr) return;
    TPoint const& probe = *found->m_pVertex[0];
    int const where = TEdge(line.Get(0), line.Get(1)).XY_ClassifyOrientationOf(probe);
    if ((where == ORIENT_LEFT && probe.z > m_dLevel) ||
        (where == ORIENT_RIGHT && m_dLevel > probe.z)) {
      std::reverse(line.Get(0), line.Get(0) + line.GetSize());
    }
  }

  // Finds `p`, which lies on a side of `start`. Where the cheap walk fails, chance would choose
  // from where the next one comes, and so on which side of that side it ends.
  TTriangle* Locate(TPoint const& p, TTriangle* start) {
    Triangulator& location = m_Tin.m_Triangulator;
    bool const chance =
        m_Tin.GetNumberOfTriangles() >= FEWEST_FAR && m_Tin.m_pStartPoints == nullptr;
    if (chance && location.m_pCurrent != nullptr) {
      if (location.Walk(p, Triangulator::CHEAP_WALK) != nullptr) return location.m_pCurrent;
      location.m_pCurrent = start;
    }
    return location.Find(p);
  }

  TIN& m_Tin;
  double m_dLevel = 0.0;                           // under work
  std::vector<std::vector<TTriangle*>> m_Crossed;  // by rising level
  std::vector<TTriangle*> m_Flat;
  std::optional<LiveSlots> m_Live;   // from the second level on
  std::vector<TTriangle*> m_Marked;  // since the present level was begun, maybe more than once
};

}  // namespace qeltin::detail

int TIN::GenerateIsoline(std::vector<TPolygon*>& lines, double level) {
  return GenerateIsolines(lines, {level});
}

int TIN::GenerateIsolines(std::vector<TPolygon*>& lines, std::vector<double> const& levels) {
  if (GetNumberOfTriangles() < FEWEST_TRIANGLES) return 0;
  constexpr std::size_t MOST = qeltin::detail::HeightCodes<std::uint16_t>::MOST_LEVELS;
  std::size_t const before = lines.size();
  std::span<double const> rest(levels);
  while (!rest.empty()) {
    std::size_t const count = std::min(rest.size(), MOST);
    qeltin::detail::IsolineTracer(*this).Run(lines, rest.first(count));
    rest = rest.subspan(count);
  }
  return static_cast<int>(lines.size() - before);
}
