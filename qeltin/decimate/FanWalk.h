#pragma once

#include <bit>

#include "qeltin/kernel/TTriangle.h"

namespace qeltin::detail {

// Goes round a point from triangle to triangle. Which way round is decided by the order of the
// neighbours of the first one.
class FanWalk {
 public:
  // Starts at `first`, which must have a corner at `point`, as TTriangle::XY_FindVertex tells.
  FanWalk(TPoint const& point, TTriangle* first)
      : m_Point(point), m_pFirst(first), m_pCurrent(first), m_pNext(NextOf()) {}

  TTriangle* Current() const { return m_pCurrent; }

  // Returns the triangle after the current one, or null where there is none.
  TTriangle* Next() const { return m_pNext; }

  bool IsNextTheFirst() const { return m_pNext == m_pFirst; }

  // Moves to the next triangle. `found` is what the caller has found so far. Returns false where
  // the walk goes in circles without coming back to the first triangle or finding more.
  // REQUIRES: there is a next one.
  bool Step(int found) {
    m_pPrevious = m_pCurrent;
    m_pCurrent = m_pNext;
    m_pNext = NextOf();
    return !Repeats(found);
  }

 private:
  TTriangle* NextOf() const {
    for (TTriangle* neighbour : m_pCurrent->m_pAdjacent) {
      if (neighbour != nullptr && neighbour != m_pPrevious &&
          neighbour->XY_FindVertex(m_Point) != nullptr) {
        return neighbour;
      }
    }
    return nullptr;
  }

  // Compares with the state at the last step whose number was a power of two.
  bool Repeats(int found) {
    if (m_pCurrent == m_pMarked && m_pPrevious == m_pMarkedPrevious && found == m_iMarkedFound) {
      return true;
    }
    ++m_iSteps;
    if (std::has_single_bit(m_iSteps)) {
      m_pMarked = m_pCurrent;
      m_pMarkedPrevious = m_pPrevious;
      m_iMarkedFound = found;
    }
    return false;
  }

  TPoint const& m_Point;
  TTriangle* m_pFirst;
  TTriangle* m_pPrevious = nullptr;
  TTriangle* m_pCurrent;
  TTriangle* m_pNext;

  unsigned m_iSteps = 0;
  TTriangle* m_pMarked = nullptr;
  TTriangle* m_pMarkedPrevious = nullptr;
  int m_iMarkedFound = 0;
};

}  // namespace qeltin::detail
