#pragma once

#include "qeltin/platform/Point.h"

namespace qeltin::detail {

// One straight or circular piece of a center line, in plan. Places on it are told by how far along
// it they are, from 0 to its length.
class CenterLineLeg {
 public:
  // A length of 0 is allowed, and has no direction.
  static CenterLineLeg Straight(Point const& from, Point const& to);

  // The arc about `center` that starts at the bearing `start` and sweeps so many degrees, clockwise
  // where that is positive. REQUIRES: radius >= 0, -360 <= sweep <= 360.
  static CenterLineLeg Arc(Point const& center, double radius, double start, double sweep);

  double Length() const { return m_dLength; }
  bool IsArc() const { return m_bArc; }
  double Sweep() const { return m_dSweep; }  // in degrees, clockwise positive; 0 for a straight leg

  // Returns where the place nearest to `p` is: exactly 0 or the length where that is an end. To the
  // centre of an arc all places are as near, and any of them may be the answer.
  double NearestTo(Point const& p) const;

  Point At(double along) const;

  // Returns the direction of travel at a place, of length 1.
  Point DirectionAt(double along) const;

  // Returns the distance of `p` from the leg, positive to its right. REQUIRES: the place nearest to
  // `p` is not an end.
  double OffsetOf(Point const& p) const;

 private:
  double BearingAt(double along) const;

  bool m_bArc = false;
  Point m_Origin;     // the start of a straight leg, the centre of an arc
  Point m_End;        // of a straight leg
  Point m_Direction;  // of a straight leg
  double m_dLength = 0.0;
  double m_dRadius = 0.0;  // of an arc, as what follows
  double m_dStart = 0.0;   // bearing from the centre, in degrees
  double m_dSweep = 0.0;   // in degrees, clockwise positive
};

}  // namespace qeltin::detail
