#pragma once

#include <algorithm>
#include <cmath>

#include "qeltin/kernel/SideTest.h"
#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"

namespace qeltin::detail {

// The walk of Triangulator::Walk over a surface that tiles, in halves: after each, memory is on its
// way that the next half needs, so that other walks can go on meanwhile. No limit to the steps, and
// no jumps.
//
//   while (walker.Look() == Walker::State::Underway) walker.Enter();
//
// Threads: reads the surface, writes itself.
class Walker {
 public:
  enum class State { Underway, There, Lost };

  // `error` is that of SideErrorWithin for the reach of the surface, and below 1e280.
  Walker(TTriangle* from, TPoint const& to, double error)
      : m_Target(to),
        m_dBand(error + SIDE_BAND * (1.0 + 1e-10)),
        m_pStart(from),
        m_pCurrent(from) {}

  // Sets out from here to another place.
  void TurnTo(TPoint const& to) {
    m_Target = to;
    m_pStart = m_pCurrent;
    m_pPrevious = nullptr;
    m_iMoves = 0;
    m_iEntry = 3;
  }

  // Moves across the side that TTriangle::WhereTri answers. Lost where there is no neighbour or the
  // walk came from it: then Current() stays.
  State Look() {
    int const side = Where();
    if (side == 3) return State::There;
    TTriangle* const next = m_pCurrent->m_pAdjacent[side];
    if (next == nullptr || next == m_pPrevious) return State::Lost;
    __builtin_prefetch(next);
    __builtin_prefetch(&next->m_Flags);  // a record may lie across two lines
    m_pPrevious = m_pCurrent;
    m_pCurrent = next;
    ++m_iMoves;
    return State::Underway;
  }

  // To be called after a Look that moved. Asks for the corner that the walk has not seen.
  void Enter() {
    // Not a loop: its end is not to be foreseen. Neighbours are mutual, so one of the three is it.
    bool const not_0 = m_pCurrent->m_pAdjacent[0] != m_pPrevious;
    bool const not_1 = m_pCurrent->m_pAdjacent[1] != m_pPrevious;
    int const side = int{not_0} + int{not_0 & not_1};
    __builtin_prefetch(m_pCurrent->m_pVertex[side == 0 ? 2 : side - 1]);
    m_iEntry = m_bCertain ? side : 3;
  }

  TTriangle* Start() const { return m_pStart; }
  TTriangle* Current() const { return m_pCurrent; }
  TPoint const& Target() const { return m_Target; }
  int Moves() const { return m_iMoves; }

 private:
  struct Verdict {
    bool passes;
    bool fails;
  };

  // Neither is true where only the rounding of WhatSide can tell.
  Verdict Test(TPoint const& from, TPoint const& to) const {
    double const dx = to.x - from.x;
    double const dy = to.y - from.y;
    double const offset = dy * (m_Target.x - from.x) - dx * (m_Target.y - from.y);
    double const bound = m_dBand * std::max(std::fabs(dx), std::fabs(dy)) + SIDE_FLOOR;
    return {offset > bound, offset < -bound};
  }

  int Where() {
    TPoint const* const* const corner = m_pCurrent->m_pVertex;
    int const a = m_iEntry == 3 ? 0 : m_iEntry;
    int const b = a == 2 ? 0 : a + 1;
    int const c = b == 2 ? 0 : b + 1;
    // What certainly failed from without certainly passes from within.
    Verdict const ab = m_iEntry == 3 ? Test(*corner[a], *corner[b]) : Verdict{true, false};
    Verdict const bc = Test(*corner[b], *corner[c]);
    Verdict const ca = Test(*corner[c], *corner[a]);
    // Not &&: three branches that no processor can foresee.
    m_bCertain = (ab.passes | ab.fails) & (bc.passes | bc.fails) & (ca.passes | ca.fails);
    if (!m_bCertain) return m_pCurrent->WhereTri(m_Target);
    return TTriangle::StepFor(int{ab.passes} << a | int{bc.passes} << b | int{ca.passes} << c);
  }

  TPoint m_Target;
  double m_dBand;
  TTriangle* m_pStart;
  TTriangle* m_pCurrent;
  TTriangle* m_pPrevious = nullptr;
  int m_iMoves = 0;
  int m_iEntry = 3;         // the side that needs no test
  bool m_bCertain = false;  // whether the last step is beyond doubt
};

}  // namespace qeltin::detail
