#pragma once

#include <cstddef>
#include <limits>

#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/PlanRay.h"

namespace qeltin::detail {

// Asks memory for the triangles that a walk may enter next from `t`, into which it came by side
// `back`, while it is not known yet which one.
inline void FetchNext(TTriangle const& t, int back) {
  for (int const side : {(back + 1) % 3, (back + 2) % 3}) {
    if (t.m_pAdjacent[side] == nullptr) continue;
    auto const* const record = reinterpret_cast<char const*>(t.m_pAdjacent[side]);
    __builtin_prefetch(record);
    __builtin_prefetch(record + offsetof(TTriangle, m_Flags));  // the last that a walk reads
  }
}

// Comes to meet a walk from the end of its line. A walk waits for memory at every step, so that two
// of them take little longer than one, and the second half of the line is at hand when the walk
// comes there. The scout decides nothing: where it errs, it costs time.
//
// Threads: a reader of the surface.
class ProfileScout {
 public:
  // `last` is the triangle at the end of the line, or null for no scout.
  ProfileScout(PlanRay const& ray, TTriangle const* last) : m_Ray(ray), m_pCurrent(last) {
    if (last != nullptr && !FindWayBack()) m_pCurrent = nullptr;
  }

  // Goes on by one triangle. Stays where the walk, which is at `along`, has been.
  void Step(double along) {
    if (m_pCurrent == nullptr) return;
    int const back = m_pCurrent->TriSide(m_iExit);
    m_pCurrent = back == 3 ? nullptr : m_pCurrent->m_pAdjacent[m_iExit];
    if (m_pCurrent == nullptr) return;
    FetchNext(*m_pCurrent, back);
    PlanRay::Sight const apex = m_Ray.See(*m_pCurrent->m_pVertex[(back + 2) % 3]);
    m_iExit = (back + ((apex.across > 0.0) == m_bRises ? 1 : 2)) % 3;
    if (apex.along < along) m_pCurrent = nullptr;
  }

 private:
  // Takes the side of the present triangle by which the line comes in.
  bool FindWayBack() {
    double nearest = std::numeric_limits<double>::infinity();
    for (int side = 0; side < 3; ++side) {
      PlanRay::Sight const a = m_Ray.See(*m_pCurrent->m_pVertex[side]);
      PlanRay::Sight const b = m_Ray.See(*m_pCurrent->m_pVertex[(side + 1) % 3]);
      if ((a.across > 0.0) == (b.across > 0.0)) continue;
      double const along = a.along + (b.along - a.along) * (a.across / (a.across - b.across));
      if (!(along < nearest)) continue;
      nearest = along;
      m_iExit = side;
      m_bRises = b.across > 0.0;
    }
    return nearest < std::numeric_limits<double>::infinity();
  }

  PlanRay m_Ray;
  TTriangle const* m_pCurrent;  // null at the end
  int m_iExit = 0;              // the side to go on over
  bool m_bRises = false;        // whether that side, and so every later one, ends left of the ray
};

}  // namespace qeltin::detail
