#pragma once

#include <vector>

#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/PlanRay.h"
#include "qeltin/tin/TIN.h"
#include "qeltin/tin/Walker.h"

namespace qeltin::detail {

// Goes ahead of a walk along a line, on a surface that tiles and has a location index: from several
// places of the line at once, so that memory is on its way for one while the others go on. The walk
// finds at hand then what it comes to. The vanguard decides nothing: where it errs, it costs time.
//
// Threads: a reader of the surface.
class ProfileVanguard {
 public:
  // The line has this length along the ray. The surface must outlive the object.
  ProfileVanguard(TIN const& tin, PlanRay const& ray, double length);

  // Returns true iff the walk goes alone.
  bool IsIdle() const { return m_dStretch == 0.0; }

  // To be called by the walk at each step: it is in `t`, which it came into by side `back`, and
  // `along` the ray.
  void Lead(TTriangle const* t, int back, double along) {
    if (along >= m_dKnown) GoAhead(t, back, along);
  }

 private:
  // On its way to a place of the line, or, once there, along the line.
  struct Scout {
    Walker walker;
    TTriangle const* at;        // null until it is on the line
    TTriangle const* previous;  // that it came from
    int back;                   // the side towards that one
    int steps;
    double begin;  // of its stretch
    double until;
  };

  void GoAhead(TTriangle const* t, int back, double along);
  bool Look(Scout& scout);
  bool SetOut(Scout& scout) const;
  static bool Cross(Scout& scout, int side);
  static void Enter(Scout& scout);

  TIN const& m_Tin;
  Triangulator const& m_Location;
  PlanRay m_Ray;
  double m_dLength;
  double m_dError;
  double m_dStretch;  // the part of the line that one scout knows
  double m_dKnown;    // up to here all is at hand
  std::vector<Scout> m_Scouts;
};

}  // namespace qeltin::detail
