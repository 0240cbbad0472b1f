#pragma once

#include <cmath>

#include "qeltin/kernel/SideTest.h"
#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"

namespace qeltin::detail {

// The walk of Triangulator::Walk over a surface that tiles, as far as every step is beyond doubt.
//
// Corners are looked at as seen from the target, each once. The side that the walk came in by needs
// no test: what certainly failed from without certainly passes from within. So the walk never turns
// straight back.
//
// With R the reach, u = 2^-53 and L the |x| + |y| of a corner as seen from the target, at most 2 R:
// the product of two corners has an error below 4 u La Lb, so below 4 u R (La + Lb), and WhatSide
// one below 16 u R (La + Lb) in the scale of the product. The bound is 32 u R (La + Lb) and more.
//
// Threads: reads the surface, writes itself.
class SureWalk {
 public:
  enum class End {
    There,  // the triangle passes on every side by more than the band
    Out,    // the next step leaves the mesh
    Spent,  // no steps are left
    Doubt,  // only the rounding of TEdge::WhatSide can tell the next step
  };

  // Of a surface. Beyond it the products of a side test might overflow.
  static constexpr double LARGEST_REACH = 1e100;

  // `error` is that of SideErrorWithin for the reach of the surface. REQUIRES: (x, y) is
  // within reach.
  SureWalk(TTriangle* from, double x, double y, double error)
      : m_dX(x), m_dY(y), m_dBand(error + SIDE_BAND * (1.0 + 1e-10)), m_pCurrent(from) {}

  // Walks at most `budget` steps. Once.
  End Run(int budget) {
    if (budget < 1) return End::Spent;
    for (int side = LookAround();; side = LookAhead()) {
      if (side > 2) return side == HERE ? End::There : End::Doubt;
      TTriangle* const next = m_pCurrent->m_pAdjacent[side];
      if (next == nullptr) return End::Out;
      m_pPrevious = m_pCurrent;
      m_pCurrent = next;
      if (++m_iSteps == budget) return End::Spent;
      m_iEntry = SideTowards(*next, m_pPrevious);
    }
  }

  // Asks for the triangles that the first step may lead to.
  [[gnu::always_inline]] void FetchAround() const {
    for (TTriangle const* const beside : m_pCurrent->m_pAdjacent) Fetch(beside);
  }

  // Asks for the corners that a walk from here to somewhere near needs first. Inlined always: a
  // compiler may take a call that only fetches for one that does nothing.
  [[gnu::always_inline]] void FetchCornersAround() const {
    for (TTriangle const* const beside : m_pCurrent->m_pAdjacent) {
      if (beside == nullptr || beside == m_pPrevious) continue;
      __builtin_prefetch(beside->m_pVertex[TURN[SideTowards(*beside, m_pCurrent) + 1]]);
    }
  }

  TTriangle* Current() const { return m_pCurrent; }
  TTriangle* Previous() const { return m_pPrevious; }  // null before the first step
  int Steps() const { return m_iSteps; }

 private:
  static constexpr int HERE = 3;
  static constexpr int DOUBT = 4;
  static constexpr int TURN[5] = {1, 2, 0, 1, 2};  // TURN[k] is k + 1 mod 3

  // A corner as seen from the target.
  struct Sight {
    double x = 0.0;
    double y = 0.0;
    double distance = 0.0;  // |x| + |y|
  };

  // How far the target is to the right of a side, in a scale of its own. Within the bound only the
  // rounding of WhatSide can tell.
  struct Offset {
    double right;
    double bound;

    bool Passes() const { return right > bound; }
    bool Fails() const { return right < -bound; }
  };

  [[gnu::always_inline]] static void Fetch(TTriangle const* t) {
    if (t == nullptr) return;
    __builtin_prefetch(t);
    __builtin_prefetch(&t->m_Flags);  // a record may lie across two lines
  }

  // Not a loop: its end is not to be foreseen. Neighbours are mutual, so one of the three is it.
  static int SideTowards(TTriangle const& t, TTriangle const* neighbour) {
    bool const not_0 = t.m_pAdjacent[0] != neighbour;
    bool const not_1 = t.m_pAdjacent[1] != neighbour;
    return int{not_0} + int{not_0 & not_1};
  }

  Sight See(TPoint const& corner) const {
    double const x = corner.x - m_dX;
    double const y = corner.y - m_dY;
    return {x, y, std::fabs(x) + std::fabs(y)};
  }

  Offset Test(Sight const& from, Sight const& to) const {
    return {from.y * to.x - from.x * to.y, m_dBand * (from.distance + to.distance) + SIDE_FLOOR};
  }

  // In a triangle that was not entered across a side.
  int LookAround() {
    Sight const corner[3] = {See(*m_pCurrent->m_pVertex[0]), See(*m_pCurrent->m_pVertex[1]),
                             See(*m_pCurrent->m_pVertex[2])};
    Offset const offset[3] = {Test(corner[0], corner[1]), Test(corner[1], corner[2]),
                              Test(corner[2], corner[0])};
    int const passes =
        int{offset[0].Passes()} | int{offset[1].Passes()} << 1 | int{offset[2].Passes()} << 2;
    int const fails =
        int{offset[0].Fails()} | int{offset[1].Fails()} << 1 | int{offset[2].Fails()} << 2;
    if ((passes | fails) != 7) return DOUBT;
    int const exit = TTriangle::StepFor(passes);
    if (exit == 3) return HERE;
    m_From = corner[TURN[exit]];
    m_To = corner[exit];
    return exit;
  }

  // In a triangle that was entered by side m_iEntry, which runs from m_From to m_To.
  int LookAhead() {
    int const next = TURN[m_iEntry];
    int const last = TURN[next];
    Fetch(m_pCurrent->m_pAdjacent[next]);
    Fetch(m_pCurrent->m_pAdjacent[last]);
    Sight const apex = See(*m_pCurrent->m_pVertex[last]);
    Offset const first = Test(m_To, apex);
    Offset const second = Test(apex, m_From);
    if (first.Fails()) {
      m_From = apex;
      return next;
    }
    if (!first.Passes()) return DOUBT;
    if (second.Fails()) {
      m_To = apex;
      return last;
    }
    return second.Passes() ? HERE : DOUBT;
  }

  double m_dX;
  double m_dY;
  double m_dBand;
  TTriangle* m_pCurrent;
  TTriangle* m_pPrevious = nullptr;
  int m_iSteps = 0;
  int m_iEntry = 3;
  Sight m_From;
  Sight m_To;
};

}  // namespace qeltin::detail
