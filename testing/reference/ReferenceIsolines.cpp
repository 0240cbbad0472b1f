#include "testing/reference/ReferenceIsolines.h"

#include <cmath>

#include "qeltin/kernel/TEdge.h"
#include "testing/reference/StatedGeometry.h"

namespace qeltin::testing {

namespace {

bool InBox(TIN const& tin, TPoint const& p) {
  TPoint min;
  TPoint max;
  tin.GetBounds(min, max);
  return p.x >= min.x && p.x <= max.x && p.y >= min.y && p.y <= max.y;
}

bool InBox(TIN const& tin, TTriangle const& t) {
  return InBox(tin, *t.m_pVertex[0]) && InBox(tin, *t.m_pVertex[1]) && InBox(tin, *t.m_pVertex[2]);
}

bool Agree(TPoint const* a, TPoint const* b) { return std::fabs(a->z - b->z) < 1e-11; }

bool IsFlat(TTriangle const& t) {
  return Agree(t.m_pVertex[0], t.m_pVertex[1]) && Agree(t.m_pVertex[1], t.m_pVertex[2]) &&
         Agree(t.m_pVertex[2], t.m_pVertex[0]);
}

bool IsCrossed(TTriangle const& t, int side, double level) {
  double const a = t.m_pVertex[side]->z;
  double const b = t.m_pVertex[(side + 1) % 3]->z;
  return (a >= level && b < level) || (b >= level && a < level);
}

void Trace(TIN const& tin, double level, TTriangle* t, int k, std::vector<TPoint>& line) {
  TTriangle* const start = t;
  for (bool first = true;; first = false) {
    TPoint const& a = *t->m_pVertex[k];
    TPoint const& b = *t->m_pVertex[(k + 1) % 3];
    double const f = (level - a.z) / (b.z - a.z);
    TPoint const crossing(a.x + (b.x - a.x) * f, a.y + (b.y - a.y) * f, level);
    if (InBox(tin, crossing)) line.push_back(crossing);
    t->m_Flags = static_cast<unsigned char>(t->m_Flags | TRI_VISITED);
    if (!first && (t == start || !InBox(tin, *t))) return;
    int const exit = IsCrossed(*t, (k + 1) % 3, level) ? (k + 1) % 3 : (k + 2) % 3;
    TTriangle* const next = t->m_pAdjacent[exit];
    if (next == nullptr) return;
    k = stated::TriSide(*t, exit);
    bool const ends = (next->m_Flags & (TRI_VISITED | TRI_FILTERED)) != 0;
    if (IsFlat(*next)) {
      next->m_Flags = static_cast<unsigned char>(next->m_Flags | TRI_VISITED);
      return;
    }
    if (ends || k == 3) return;
    t = next;
  }
}

}  // namespace

std::vector<std::vector<TPoint>> TraceReferenceIsolines(TIN& tin, double level) {
  std::vector<std::vector<TPoint>> lines;
  int const count = tin.GetNumberOfTriangles();
  if (count < 3) return lines;
  for (int i = 0; i < count; ++i) {
    TTriangle& t = *tin.GetTriangle(i, true);
    t.m_Flags = static_cast<unsigned char>(t.m_Flags & ~TRI_VISITED);
  }
  for (int i = 0; i < count; ++i) {
    TTriangle* const t = tin.GetTriangle(i, true);
    if ((t->m_Flags & (TRI_VISITED | TRI_FILTERED | TRI_OUTSIDE)) != 0) continue;
    if (!InBox(tin, *t)) continue;
    if (IsFlat(*t)) {
      t->m_Flags = static_cast<unsigned char>(t->m_Flags | TRI_VISITED);
      continue;
    }
    int k = 0;
    while (k < 3 && !IsCrossed(*t, k, level)) ++k;
    if (k == 3) continue;
    lines.emplace_back();
    Trace(tin, level, t, k, lines.back());
  }
  return lines;
}

bool IsToBeReversed(std::vector<TPoint>& line, TTriangle const* found, double level) {
  if (line.size() < 2 || found == nullptr) return false;
  TPoint const& probe = *found->m_pVertex[0];
  int const where = TEdge(&line[0], &line[1]).XY_ClassifyOrientationOf(probe);
  return (where == ORIENT_LEFT && probe.z > level) || (where == ORIENT_RIGHT && level > probe.z);
}

}  // namespace qeltin::testing
