#pragma once

#include <vector>

#include "qeltin/platform/CenterLine.h"
#include "qeltin/platform/Export.h"
#include "qeltin/platform/Line.h"
#include "qeltin/platform/Page.h"
#include "qeltin/platform/Point.h"

// A center line that a host lays out as straight legs joined by circular arcs, and that turns into
// straight pieces for a page.
//
//   line.AddCurvedPoint(0, 0, 0, 1);
//   line.AddCurvedPoint(0, 100, 20, 1);    // a corner, to be rounded by an arc of radius 20
//   line.AddCurvedPoint(100, 100, 0, 1);   // now the arc and this point are added
//   line.SetHaveCenterLine(true);
//   line.Init(0.0, false);
//
// A copy includes a corner that waits for the point behind it.
//
// Threads: as CenterLine.
class QELTIN_API CurvedCenterLine : public CenterLine {
 public:
  // Lays out the next place. With a radius of 0 it is a vertex of the line. Any other radius makes
  // it a corner, which waits for the next call: that adds the two tangent points with the centre of
  // the arc between them, and then its own place as a vertex, and its own radius is ignored. A
  // corner that waits for ever is dropped. Init is left to the caller. Always true.
  //
  // With `append` 1 points are added at the end; with any other value at the start one by one, so
  // that the line is built backwards.
  //
  // Note that the leg before a corner is measured from the last place with a radius of 0: the place
  // behind an arc does not count. Where corners follow each other, put a straight place between
  // them or the arc does not touch its leg. A negative radius puts the centre outside of the turn.
  // Two legs of which one has bearing 0 and the other, a hair west of it, 360 count as a turn
  // about, with tangent points out of all bounds.
  bool AddCurvedPoint(double x, double y, double radius, int append);

  // Returns true iff a corner waits.
  bool IsPending() const { return m_iPending == 1; }

  // Appends the line as straight pieces: each straight leg as a whole, whether or not it is on the
  // page, and what is on the page of each arc in steps of one degree. Nothing where the center line
  // is not marked as present. Arcs need the angles that Init works out; one whose two angles agree
  // within 2 * EPSILON is left out.
  void BuildPageLines(Page const& page, std::vector<Line>& lines) const;

 private:
  void Add(Point const& position, POINT_TYPE type, double radius, int append);
  void AddCurve(Point const& next, int append);

  int m_iPending = 0;  // 1 while a corner waits
  double m_dRadius = 0.0;
  Point m_LastPoint;
  Point m_CornerPoint;
  Point m_NextPoint;
};
