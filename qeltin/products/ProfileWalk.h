#pragma once

#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/PlanRay.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::detail {

// Returns true iff the two places are within 1e-9 of each other on x and on y.
bool IsSamePlace(TPoint const& a, TPoint const& b);

// The walk of a profile from triangle to triangle, along the straight line between two places. It
// visits the triangles that the line crosses, and no others.
//
// Threads: a reader of the surface.
class ProfileWalk {
 public:
  // Crossings go to `points`. With `gaps`, a line that leaves the surface from its first triangle
  // gets its last crossing there. Every step takes one off `steps`, and a walk that finds none left
  // ends as at the edge of the surface. The references must outlive the walk.
  ProfileWalk(std::vector<TPoint>& points, TPoint const& from, TPoint const& to, bool gaps,
              long long& steps);

  // Walks from `first` towards `last`, which may be null. Returns false where the walk came to the
  // edge of the surface. REQUIRES: `first` is not null; once.
  bool Run(TIN const& tin, TTriangle const* first, TTriangle const* last);

 private:
  int FindExit(TTriangle const& first);
  bool Enter(TTriangle const* t, int back);
  bool IsEndAt(TPoint const& corner) const { return IsSamePlace(corner, m_To); }
  void EndIn(TTriangle const& last);
  void AddCrossing(PlanRay::Sight const& a, PlanRay::Sight const& b);

  std::vector<TPoint>& m_Points;
  TPoint m_To;
  bool m_bGaps;
  long long& m_iSteps;
  double m_dLength;
  PlanRay m_Ray;

  TPoint m_Crossing;   // the latest
  bool m_bMet = true;  // whether the latest test found one

  // The corners of the triangle at hand: the ends of the side it was entered by, in its own order,
  // and the one ahead.
  PlanRay::Sight m_Right;
  PlanRay::Sight m_Left;
  PlanRay::Sight m_Ahead;
};

}  // namespace qeltin::detail
