#pragma once

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"

namespace qeltin::detail {

// Some triangles of the fan that the last insertion made, in all directions. The next point is
// often close to the last, but half of a fan of hundreds away for a walk around it.
//
// Threads: no lock.
class LastFan {
 public:
  void Forget() { m_iCount = 0; }

  // Notes about as many of the `count` triangles around `apex` as there are between one noted and
  // the next. `fanAt` returns them by number, so that successive ones are mostly neighbours.
  template <typename FanAt>
  void Note(TPoint const* apex, int count, FanAt fanAt) {
    m_iCount = 0;
    if (count < SMALLEST) return;
    m_pApex = apex;
    int step = 4;
    while (step * step < count || step * MOST < count) step *= 2;
    for (int i = 0; i < count; i += step) m_Triangles[m_iCount++] = fanAt(i);
  }

  // Returns a triangle to walk to `p` from: one in its direction, where `start` is of the fan.
  TTriangle* Toward(TPoint const& p, TTriangle* start) const {
    if (m_iCount == 0 || !start->XY_FindVertex(m_pApex)) return start;
    double best = -2.0;
    for (int i = 0; i < m_iCount; ++i) {
      double const closeness = Closeness(*m_Triangles[i], p);
      if (!(closeness > best)) continue;
      best = closeness;
      start = m_Triangles[i];
    }
    return start;
  }

 private:
  static constexpr int SMALLEST = 24;
  static constexpr int MOST = 64;

  // The squared cosine, with the sign of the cosine, of the angle at the apex from `p` to a corner.
  double Closeness(TTriangle const& t, TPoint const& p) const {
    TPoint const& corner = t.m_pVertex[0] == m_pApex ? *t.m_pVertex[1] : *t.m_pVertex[0];
    double const dx = corner.x - m_pApex->x;
    double const dy = corner.y - m_pApex->y;
    double const ux = p.x - m_pApex->x;
    double const uy = p.y - m_pApex->y;
    double const dot = dx * ux + dy * uy;
    return (dot < 0.0 ? -dot : dot) * dot / ((dx * dx + dy * dy) * (ux * ux + uy * uy));
  }

  TPoint const* m_pApex = nullptr;
  int m_iCount = 0;
  TTriangle* m_Triangles[MOST];
};

}  // namespace qeltin::detail
