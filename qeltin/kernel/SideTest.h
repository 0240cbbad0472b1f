#pragma once

#include <algorithm>
#include <cmath>

#include "qeltin/kernel/TEdge.h"

// The sign of TEdge::WhatSide without its division.
//
// With A, B the ends of the edge, M = max(|B.x - A.x|, |B.y - A.y|) and
// cross = (B.x - A.x)(P.y - A.y) - (B.y - A.y)(P.x - A.x), WhatSide(P) is -cross / M before
// rounding. Let S = |A.x| + |A.y| + |P.x| + |P.y| and u = 2^-53. The rounding error of the value
// that WhatSide computes is below 8 u S to first order (its slope is at most 1 in size), that of
// the cross product below 4 u S M. So where |cross| exceeds 16 u S M the computed WhatSide has the
// sign of -cross, and where it exceeds that by d M, WhatSide exceeds d in size. The margin of
// 4 u S M covers the terms of second order and the rounding of the bound itself. Two floors cover
// underflow, 1e-300 M that of WhatSide and 1e-290 that of the product; beyond 1e290 nothing is
// claimed.
//
// Source of the technique: J. R. Shewchuk, "Adaptive Precision Floating-Point Arithmetic and Fast
// Robust Geometric Predicates", 1997 (static filters).
namespace qeltin::detail {

inline constexpr double SIDE_BAND = 1e-09;  // TTriangle::WhereTri accepts a side from -1e-9 upward
inline constexpr double SIDE_ERROR = 16.0 / 9007199254740992.0;
inline constexpr double OFFSET_FLOOR = 1e-300;
inline constexpr double SIDE_FLOOR = 1e-290;
inline constexpr double SIDE_CEILING = 1e290;

enum class Side { Right, Left, Uncertain };

// Returns what 16 u S, with its floor, comes to at most for points whose |x| + |y| is at most
// `reach`.
inline double SideErrorWithin(double reach) { return SIDE_ERROR * (reach + reach) + OFFSET_FLOOR; }

struct SideProduct {
  double offset;  // -cross: M times the offset of P to the right
  double bound;   // past it, in size, the sign of WhatSide is certain
  double length;  // M

  SideProduct(TPoint const& a, TPoint const& b, TPoint const& p)
      : SideProduct(
            a, b, p,
            SIDE_ERROR * ((std::fabs(a.x) + std::fabs(a.y)) + (std::fabs(p.x) + std::fabs(p.y))) +
                OFFSET_FLOOR) {}

  // With `error` at least 16 u S, as SideErrorWithin gives it.
  SideProduct(TPoint const& a, TPoint const& b, TPoint const& p, double error) {
    double const dx = b.x - a.x;
    double const dy = b.y - a.y;
    double const ax = std::fabs(dx);
    double const ay = std::fabs(dy);
    offset = dy * (p.x - a.x) - dx * (p.y - a.y);
    length = ax > ay ? ax : ay;
    bound = error * length + SIDE_FLOOR;
  }

  Side Certain() const {
    if (!(bound < SIDE_CEILING)) return Side::Uncertain;
    if (offset > bound) return Side::Right;
    if (offset < -bound) return Side::Left;
    return Side::Uncertain;
  }

  // True only where P passes the test of TTriangle::WhereTri by more than the band, so that the
  // same side in the other direction certainly fails it.
  bool PassesBeyondBand() const {
    return bound < SIDE_CEILING && offset > bound + SIDE_BAND * (1.0 + 1e-10) * length;
  }

  // True only where P certainly fails the test of TTriangle::WhereTri.
  bool CertainlyFails() const {
    return bound < SIDE_CEILING && offset < -(bound + SIDE_BAND * (1.0 + 1e-10) * length);
  }
};

// The sides of many edges as seen from one point. `error` is that of SideErrorWithin.
class SideFan {
 public:
  SideFan(TPoint const& p, double error) : m_dX(p.x), m_dY(p.y), m_dError(error) {}

  // Returns true only where the corners (p, from, to) are certainly clockwise: WhatSide of the edge
  // from p to `from` against `to` is certainly positive, and that of p to `to` against `from`
  // certainly negative.
  bool IsCertainlyClockwise(TPoint const& from, TPoint const& to) const {
    double const fx = from.x - m_dX;
    double const fy = from.y - m_dY;
    double const tx = to.x - m_dX;
    double const ty = to.y - m_dY;
    double const length =
        std::max(std::max(std::fabs(fx), std::fabs(fy)), std::max(std::fabs(tx), std::fabs(ty)));
    double const bound = m_dError * length + SIDE_FLOOR;
    return fy * tx - fx * ty > bound && bound < SIDE_CEILING;
  }

 private:
  double m_dX;
  double m_dY;
  double m_dError;
};

// Returns Right or Left only where WhatSide of the edge from `a` to `b` against `p` is certainly
// positive or certainly negative. Uncertain for every not-a-number.
inline Side CertainSide(TPoint const& a, TPoint const& b, TPoint const& p) {
  return SideProduct(a, b, p).Certain();
}

// Returns true iff WhatSide of the edge from `a` to `b` against `p` is at least -1e-9, with the
// rounding of WhatSide.
inline bool PassesSide(TPoint* a, TPoint* b, TPoint const& p) {
  SideProduct const s(*a, *b, p);
  if (s.Certain() == Side::Right) return true;
  if (s.CertainlyFails()) return false;
  return TEdge(a, b).WhatSide(p) >= -SIDE_BAND;
}

}  // namespace qeltin::detail
