#pragma once

#include "qeltin/kernel/SideTest.h"
#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"

namespace qeltin::detail {

inline constexpr int CHEAP_WALK = 20;  // steps that a query may cost before it counts as far

// Returns true iff an index, where there is one, is asked before a walk from `t` to `p` is tried:
// beyond 5 circumradii.
inline bool IsFar(TTriangle const& t, TPoint const& p) {
  double const dx = p.x - t.m_CentreX;
  double const dy = p.y - t.m_CentreY;
  return dx * dx + dy * dy > 25.0 * t.m_RadiusSq;
}

// Answers what TTriangle::WhereTri does, triangle after triangle along a walk over a surface that
// tiles. There the bound of the side test is the same everywhere, and the side that the walk came
// in by, which certainly failed from without, certainly passes from within.
class Steering {
 public:
  // `error` is that of SideErrorWithin for the reach of the surface. REQUIRES: `p` within reach.
  Steering(TPoint const& p, double error) : m_Point(p), m_dError(error) {}

  int Where(TTriangle const& t) {
    bool certain[3] = {true, true, true};
    int code = 0;
    for (int side = 0; side < 3; ++side) {
      if (side == m_iEntry || Passes(t, side, certain[side])) code |= 1 << side;
    }
    int const exit = TTriangle::StepFor(code);
    m_bCertain = exit != 3 && certain[exit];
    return exit;
  }

  // To be called before the triangle across `exit`, the last answer, which was for `t`.
  void Cross(TTriangle const& t, int exit) { m_iEntry = m_bCertain ? t.TriSide(exit) : 3; }

  // To be called before a triangle that the walk did not come to across a side.
  void Jump() { m_iEntry = 3; }

 private:
  bool Passes(TTriangle const& t, int side, bool& certain) const {
    TPoint* const from = t.m_pVertex[side];
    TPoint* const to = t.m_pVertex[side == 2 ? 0 : side + 1];
    SideProduct const product(*from, *to, m_Point, m_dError);
    if (product.Certain() == Side::Right) return true;
    if (product.CertainlyFails()) return false;
    certain = false;
    return PassesSide(from, to, m_Point);
  }

  TPoint m_Point;
  double m_dError;
  int m_iEntry = 3;         // the side that needs no test
  bool m_bCertain = false;  // whether the last answer is beyond doubt
};

}  // namespace qeltin::detail
