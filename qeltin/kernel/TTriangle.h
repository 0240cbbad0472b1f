#pragma once

#include <cmath>

#include "qeltin/kernel/Circumcircle.h"
#include "qeltin/kernel/SideTest.h"
#include "qeltin/kernel/TEdge.h"
#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/Export.h"

// Bits of TTriangle::m_Flags. They stand in native files: changing one breaks files in the field.
enum : unsigned char {
  TRI_VISITED = 1,   // crossed by the line being traced
  TRI_FILTERED = 2,  // an edge is longer than the limit
  TRI_OUTSIDE = 4,   // a corner lay outside the data bounds when the triangle was made
  TRI_CAVITY = 8,    // in the cavity of the insertion under way
};

// A cell of the surface: three corners, three neighbours, state bits and the cached circumcircle.
//
//            corner 0
//             /    \            Corners run clockwise with x east and y north.
//     side 2 /      \ side 0    Side k runs from corner k to corner (k + 1) mod 3, and
//           /        \          neighbour k lies across side k.
//     corner 2 ---- corner 1
//            side 1
//
// A flat record without a virtual table, so that the pool holds it in one block. It owns nothing:
// corners point into the point pool of its surface, neighbours into the triangle pool. Operations
// named XY_ ignore z. REQUIRES of every operation that reads a coordinate: non-null corners.
//
// Threads: no lock. Readers may share a triangle that nobody writes; the flags are also written
// by isolines and contours, so two such runs on one surface do not mix.
class QELTIN_API TTriangle {
 public:
  TPoint* m_pVertex[3] = {};
  TTriangle* m_pAdjacent[3] = {};  // null where there is none
  unsigned char m_Flags = 0;       // TRI_ bits
  unsigned char m_Reserved = 0;    // the byte after the flags in files; carried, no meaning
  unsigned char m_InHole = 0;      // scratch of an insertion, 0 at rest
  double m_CentreX = 0.0;          // circumcircle, kept by CalcTri
  double m_CentreY = 0.0;
  double m_RadiusSq = 0.0;

  TTriangle() = default;

  // A triangle with these corners as they are: not sorted, no neighbours, no circle yet.
  TTriangle(TPoint* a, TPoint* b, TPoint* c) : m_pVertex{a, b, c} {}

  // Returns true iff the triangle takes part in the structure but not in the visible surface.
  bool IsHidden() const { return (m_Flags & (TRI_FILTERED | TRI_OUTSIDE)) != 0; }

  // Returns corner i. REQUIRES: 0 <= i < 3.
  TPoint* GetPoint(int i) const { return m_pVertex[i]; }

  // Returns side 0, 1 or 2, directed clockwise; the null edge for any other value.
  TEdge GetEdge(int side) const;

  // Returns the edge shared with neighbour `side`, or, where that neighbour is missing, the only
  // free side of the triangle; the null edge where two neighbours are missing or `side` is 3 or
  // more. Its edges are directed (0, 1), (0, 2), (1, 2), other than those of GetEdge.
  TEdge GetEdgeWithTri(int side) const;

  // Returns true iff each corner equals, on x, y and z, some corner of the other.
  bool operator==(TTriangle const& other) const;

  // Compare corner 0 of each by the operator of TPoint; <= and >= look at x alone.
  bool operator<(TTriangle const& other) const { return *m_pVertex[0] < *other.m_pVertex[0]; }
  bool operator>(TTriangle const& other) const { return *m_pVertex[0] > *other.m_pVertex[0]; }
  bool operator<=(TTriangle const& other) const { return *m_pVertex[0] <= *other.m_pVertex[0]; }
  bool operator>=(TTriangle const& other) const { return *m_pVertex[0] >= *other.m_pVertex[0]; }

  // Returns true iff a side equals `edge` by value, whatever its direction.
  bool HasEdge(TEdge const& edge) const;

  // Returns the first corner that is not an end of `edge` by value, or null without that edge.
  TPoint* GetOpposingVertex(TEdge const& edge) const;

  // Returns the height of the triangle's plane at (x, y), which need not lie inside; 0 where the
  // triangle has no plan area.
  double GetZ(double x, double y) const {
    TPoint const& A = *m_pVertex[0];
    TPoint const& B = *m_pVertex[1];
    TPoint const& C = *m_pVertex[2];
    double const d = (C.y - A.y) * (B.x - A.x) - (C.x - A.x) * (B.y - A.y);
    if (d == 0.0) return 0.0;
    double const p = ((C.y - A.y) * (B.z - A.z) - (C.z - A.z) * (B.y - A.y)) / d;
    double const q = -((C.x - A.x) * (B.z - A.z) - (C.z - A.z) * (B.x - A.x)) / d;
    return A.z - A.x * p - A.y * q + (p * x + q * y);
  }

  // Writes the volume between the triangle and the plane z = 0, the part on one side into `first`
  // and that on the other into `second`, both with the sign of twice the plan area: that of
  // clockwise corners above the plane is positive.
  //
  // A triangle wholly at or above the plane has all in `first`, one wholly at or below it, but not
  // in it, all in `second`. In a triangle that the plane cuts, W is the volume of the corner that
  // stands alone on its side and V that of the whole: (W, W - V) where W >= 0, otherwise (W - V,
  // W). Note that the part on the far side from the lone corner so enters with the opposite sign.
  // REQUIRES: non-null arguments.
  void CutFill(double* first, double* second) const;

  // Sets `z` to a height difference, in a scale of its own and computed in single precision, at a
  // place inside the triangle, and returns true; false, with `z` as it was, outside. Not the
  // height: use GetZ for that. Kept for hosts that rest on it.
  bool XY_HeightAt(TPoint const& p, double& z) const;

  // Returns the unit normal, which points up for clockwise corners; not-a-number without area.
  TPoint GetNormal() const;

  // Returns the plan area, negative for clockwise corners.
  double Area() const;

  // Returns the circumradius from the corners, not from the cache, or the largest single-precision
  // number where the sine of the angle at corner 2 is exactly 0.
  double XY_CircumcircleRadius() const;

  double XY_IncircleRadius() const;

  // Returns the first corner whose x and y each differ from those of `p` by less than 0.001, or
  // null. This is the duplicate tolerance of the system.
  TPoint* XY_FindVertex(TPoint const& p) const {
    for (TPoint* corner : m_pVertex) {
      if (std::fabs((corner->x - p.x) * 1000) < 1.0 && std::fabs((corner->y - p.y) * 1000) < 1.0) {
        return corner;
      }
    }
    return nullptr;
  }

  // Returns true iff `p` is one of the corners, by address.
  bool XY_FindVertex(TPoint const* p) const {
    return m_pVertex[0] == p || m_pVertex[1] == p || m_pVertex[2] == p;
  }

  // Returns true iff `p` is inside, without tolerance: lower ends and left-hand sides are in, upper
  // ends and right-hand sides are out. Rests on the cached circle, so a triangle whose CalcTri has
  // not run rejects nearly every point.
  bool XY_HasPoint(TPoint const& p) const;

  // Sets `edge` to the first side that has `p` exactly at an end or between its ends and returns
  // true; otherwise returns false with `edge` on side 2.
  bool XY_EdgeHasPoint(TPoint const& p, TEdge& edge) const;

  // Sets `edge` to the nearest side and returns its distance, which is that to the infinite line.
  // The earliest of equal sides wins.
  double XY_Distance(TPoint const& p, TEdge& edge) const;

  // Returns where a walk towards `p` goes from here: 3 to stop, or the side to cross. A side passes
  // when TEdge::WhatSide is at least -1e-9.
  //   (1) 3 when every side passes: the point is here;
  //   (2) 3 when none passes, which only a wrongly ordered or degenerate triangle can produce;
  //   (3) otherwise the first failing side after the one that passes, in the order 0, 1, 2, 0.
  // A side value that is not a number does not pass.
  int WhereTri(TPoint const& p) const {
    using qeltin::detail::PassesSide;
    int const code = int{PassesSide(m_pVertex[0], m_pVertex[1], p)} |
                     int{PassesSide(m_pVertex[1], m_pVertex[2], p)} << 1 |
                     int{PassesSide(m_pVertex[2], m_pVertex[0], p)} << 2;
    return StepFor(code);
  }

  // Returns the answer of WhereTri for the sides that pass: 1 for side 0, 2 for side 1, 4 for side
  // 2, summed.
  static int StepFor(int code) {
    static constexpr signed char STEPS[8] = {3, 1, 2, 2, 0, 1, 0, 3};
    return STEPS[code];
  }

  // Returns 1 iff `p` is inside or on the cached circle, exactly, else 0. Not-a-number in the cache
  // answers 0.
  int TestCalcTri(TPoint const& p) const { return CircleHas(p) ? 1 : 0; }

  // Returns which side of neighbour `side` leads back here, the lowest one; 3 without such a side
  // or such a neighbour. REQUIRES: 0 <= side < 3.
  int TriSide(int side) const;

  // Recomputes the cached circle. Corners in line leave infinities or not-a-number in it.
  void CalcTri() {
    TPoint const& A = *m_pVertex[0];
    TPoint const& B = *m_pVertex[1];
    TPoint const& C = *m_pVertex[2];
    qeltin::detail::Circumcircle<double> const circle(A.x, A.y, B.x, B.y, C.x, C.y);
    m_CentreX = circle.centre_x;
    m_CentreY = circle.centre_y;
    m_RadiusSq = circle.radius_sq;
  }

  // Swaps corners 0 and 1 where corner 2 lies to the left of them. Neighbours and circle stay, so a
  // caller that has neighbours calls SortPointers next.
  void SortVertices();

  // Moves each neighbour to the side that it shares by value. A later neighbour overrides an
  // earlier one, and one that shares no side is dropped.
  void SortPointers();

  // Stores `other` across the first side that the two share by value and returns that side, or
  // returns -1 with nothing changed. Writes this triangle only: a link takes two calls.
  int SetAdjacentPointer(TTriangle* other);

 private:
  bool CircleHas(TPoint const& p) const {
    double const dx = p.x - m_CentreX;
    double const dy = p.y - m_CentreY;
    return m_RadiusSq >= dx * dx + dy * dy;
  }
};
