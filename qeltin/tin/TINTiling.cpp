#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "qeltin/kernel/SideTest.h"
#include "qeltin/tin/LiveSlots.h"
#include "qeltin/tin/TIN.h"

using qeltin::detail::LiveSlots;
using qeltin::detail::SideFan;

namespace {

double Reach(TPoint const& p) { return std::fabs(p.x) + std::fabs(p.y); }

// Returns true iff each neighbour of `t` is live and leads back across the same two corners.
bool IsMutual(TTriangle const& t, LiveSlots const& live) {
  for (int side = 0; side < 3; ++side) {
    TTriangle const* const neighbour = t.m_pAdjacent[side];
    if (neighbour == nullptr) continue;
    if (!live.Has(neighbour)) return false;
    int const back = t.TriSide(side);
    if (back == 3 || neighbour->m_pVertex[back] != t.m_pVertex[(side + 1) % 3] ||
        neighbour->m_pVertex[(back + 1) % 3] != t.m_pVertex[side]) {
      return false;
    }
  }
  return true;
}

// The free sides of a structure: from each corner to the next.
using Hull = std::unordered_map<TPoint const*, TPoint const*>;

// Returns true iff the hull is one convex ring of four corners.
bool IsConvexQuadrilateral(Hull const& hull, double error) {
  if (hull.size() != 4) return false;
  TPoint const* corner[4];
  corner[0] = hull.begin()->first;
  for (int i = 0; i < 3; ++i) {
    auto const next = hull.find(corner[i]);
    if (next == hull.end()) return false;
    corner[i + 1] = next->second;
  }
  for (int i = 0; i < 4; ++i) {
    TPoint const* const next = corner[(i + 1) % 4];
    TPoint const* const after = corner[(i + 2) % 4];
    if (hull.at(corner[i]) != next) return false;
    if (!SideFan(*corner[i], error).IsCertainlyClockwise(*next, *after)) return false;
  }
  return true;
}

}  // namespace

// Every triangle certainly clockwise, neighbours mutual, one convex ring around all: then the
// triangles cover what is inside the ring once, since each covers with the same sign and the ring
// turns once.
void TIN::FindWhetherItTiles() {
  double reach = 0.0;
  for (int i = 0; i < GetNumberOfTriangles(); ++i) {
    for (TPoint const* p : GetTriangle(i, true)->m_pVertex) {
      reach = std::max(reach, Reach(*p));
      if (!std::isfinite(Reach(*p)) || p->z != p->z) return;
    }
  }
  double const error = qeltin::detail::SideErrorWithin(reach);
  LiveSlots const live(*m_pTriangles);
  Hull hull;
  for (int i = 0; i < GetNumberOfTriangles(); ++i) {
    TTriangle const& t = *GetTriangle(i, true);
    if ((t.m_Flags & TRI_CAVITY) != 0 || !IsMutual(t, live)) return;
    SideFan const seen(*t.m_pVertex[0], error);
    if (!seen.IsCertainlyClockwise(*t.m_pVertex[1], *t.m_pVertex[2])) return;
    for (int side = 0; side < 3; ++side) {
      if (t.m_pAdjacent[side] != nullptr) continue;
      if (hull.size() == 4) return;
      hull.emplace(t.m_pVertex[side], t.m_pVertex[(side + 1) % 3]);
    }
  }
  if (!IsConvexQuadrilateral(hull, error)) return;
  m_dReach = reach;
  m_bTiling = true;
}
