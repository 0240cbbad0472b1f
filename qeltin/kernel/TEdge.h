#pragma once

#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/Export.h"

// Where a point lies against a directed edge, as TEdge::XY_ClassifyOrientationOf answers it.
enum : int {
  ORIENT_ORIGIN = 0,       // at the start
  ORIENT_DESTINATION = 1,  // at the end
  ORIENT_LEFT = 2,
  ORIENT_RIGHT = 3,
  ORIENT_BEHIND = 4,   // on the line, before the start
  ORIENT_BEYOND = 5,   // on the line, past the end
  ORIENT_BETWEEN = 6,  // on the line, strictly between the ends
};

// A pair of points: directed for its predicates, undirected for its equality. The default edge has
// two null ends and stands for "no edge".
//
// The edge does not own its points, and each must outlive it. REQUIRES of every operation that
// reads a coordinate: both ends are non-null.
//
// Threads: reading is safe beside readers of the points. XY_ConvertToBisector writes the points.
class QELTIN_API TEdge {
 public:
  TPoint* m_pStart = nullptr;
  TPoint* m_pEnd = nullptr;

  TEdge() = default;
  TEdge(TPoint* start, TPoint* end) : m_pStart(start), m_pEnd(end) {}

  void Flip();

  // Returns true iff this start equals an end of `other` and this end equals an end of `other`, by
  // value on x, y and z. The two may be the same end: (A, A) equals (A, B).
  bool operator==(TEdge const& other) const {
    return (*m_pStart == *other.m_pStart || *m_pStart == *other.m_pEnd) &&
           (*m_pEnd == *other.m_pEnd || *m_pEnd == *other.m_pStart);
  }
  bool operator!=(TEdge const& other) const { return !(*this == other); }

  // Directed and lexicographic by value: starts first, then ends.
  bool operator<(TEdge const& other) const;
  bool operator>(TEdge const& other) const { return other < *this; }

  // Returns true iff an end equals `p` on x, y and z.
  bool HasVertex(TPoint const& p) const { return *m_pStart == p || *m_pEnd == p; }

  // Returns the end at the x and y of `p`, the start first, or null.
  TPoint* XY_FindVertex(TPoint const& p) const;

  // Returns the ORIENT_ value of `p`. There is no band around the line: every test is exact.
  int XY_ClassifyOrientationOf(TPoint const& p) const;

  // Turns the edge by 90 degrees clockwise about its midpoint. Writes x and y of both points, so
  // the caller hands over points of its own; z stays.
  void XY_ConvertToBisector();

  // Sets `t` to the parameter along this edge (0 at the start, 1 at the end) of its crossing with
  // the infinite line through `other`. Returns false and leaves `t` where the lines are parallel.
  // `t` is not limited to 0..1, and the extent of `other` plays no part.
  bool XY_Intersect(TEdge const& other, double& t) const;

  // Returns the direction from start to end, from 0 to 2 pi, or -1 for an edge of no length.
  double XY_Angle() const { return (*m_pEnd - *m_pStart).XY_Angle(); }

  // Returns the distance from `p` to the infinite line through the edge. An edge of no length
  // answers sin(1) times the distance to its point.
  double XY_Distance(TPoint const& p) const;

  // Returns on which side of the directed line `p` lies, measured along an axis:
  //   (1) positive to the right, negative to the left, 0 on the line, up to rounding;
  //   (2) the size is the offset along y where the edge is flatter than 45 degrees or just at it,
  //       along x where it is steeper: never less than the perpendicular distance;
  //   (3) an edge of no length answers not-a-number, so that every comparison fails.
  double WhatSide(TPoint const& p) const {
    TPoint const& a = *m_pStart;
    double const dx = m_pEnd->x - a.x;
    double const dy = m_pEnd->y - a.y;
    if (std::fabs(dx) >= std::fabs(dy)) {
      double const m = dy / dx;
      double const d = (a.y - a.x * m + m * p.x) - p.y;
      return dx > 0.0 ? d : -d;
    }
    double const m = dx / dy;
    double const d = (a.x - a.y * m + m * p.y) - p.x;
    return dy > 0.0 ? -d : d;
  }
};
