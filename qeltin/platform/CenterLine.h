#pragma once

#include <vector>

#include "qeltin/platform/CenterLineLeg.h"
#include "qeltin/platform/CenterLinePoint.h"
#include "qeltin/platform/Export.h"
#include "qeltin/platform/Point.h"

// A line in plan, of straight legs and circular arcs, along which positions are told by how far
// they have travelled and how far they lie to its side. z plays no part.
//
// Two vertices in a row are joined by a straight leg. A centre between two vertices stands for an
// arc from the one to the other: its radius is the size of the given one, and the vertices are to
// lie on it. Where the radius is negative the arc turns to the left, however far round. Otherwise
// it is the shorter of the two: it turns to the right where the centre lies to the right of the way
// from vertex to vertex. Within a degree of a half circle, where the vertices do not tell, it turns
// to the side of its centre as seen from the straight leg before it, or else from the one behind
// it, or else to the right. A centre without a vertex on both sides stands for nothing, and the
// line has a gap there.
//
// Threads: a value. Concurrent reads are safe, a write needs a lock of the caller's.
class QELTIN_API CenterLine {
 public:
  // Drops all points. The start KP and the flag stay.
  void Clear();

  void AddElem(CenterLinePoint const& point);

  // Puts `point` before the one at `index`. An index outside the list goes to its nearer end.
  void InsertElem(int index, CenterLinePoint const& point);

  int GetNumPoints() const { return static_cast<int>(m_Points.size()); }

  // Returns a point, owned by the line; stays valid until points are added or dropped. Out of range
  // it is a vertex at the origin whose numbers are all 0.
  CenterLinePoint const& GetPoint(int index) const;

  // The KP of the first point, in the unit of the survey. Takes effect with the next Init.
  void SetStartKp(double kp) { m_dStartKp = kp; }

  // Whether a host counts this line as there. Nothing here asks, drawing for a page does.
  void SetHaveCenterLine(bool have) { m_bHaveCenterLine = have; }
  bool HaveCenterLine() const { return m_bHaveCenterLine; }

  // Works out the KPs of all points and the angles of the centres. To be called when the points are
  // set; it also makes projections quick. KPs rise with the travel from the start KP, or fall with
  // it where `falling` is true; a centre has the KP at which its arc starts. A centre that stands
  // for nothing keeps its angles.
  //
  // `extension` is how far beyond its two ends, straight on, the line still takes projections.
  void Init(double extension, bool falling);

  // Finds the place of the line that is nearest to `p`, of several the first, and tells how far `p`
  // lies from it, positive to the right of the direction of travel, and its distance along the line
  // from the first point. At a bend that the point sees from outside, that place is the vertex.
  //
  // Returns true iff the line has a length and `p` lies beside it: not off either end by more than
  // the extension, or by MATH::TOLERANCE where that is more. Off an end, offset and travel refer to
  // the line drawn out straight: travel is negative before the start and more than the length
  // behind the end. On a line without length both are 0.
  bool GetOffsetAndTravel(Point const& p, double& offset, double& travel) const;

 private:
  std::vector<CenterLinePoint> m_Points;
  double m_dStartKp = 0.0;
  double m_dExtension = 0.0;
  bool m_bHaveCenterLine = false;
  bool m_bPrepared = false;                           // m_Legs are those of m_Points
  std::vector<qeltin::detail::CenterLineLeg> m_Legs;  // in the order of travel
};
