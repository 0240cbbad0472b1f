#pragma once

#include "qeltin/platform/Export.h"
#include "qeltin/platform/Line.h"
#include "qeltin/platform/Point.h"

// An upright rectangle in plan, edges included, that clips what is drawn or walked on it. x and y
// count, z plays no part in what is kept. A new page is the place (0, 0) alone.
//
// Threads: a value like a double. Concurrent reads are safe, a write needs a lock of the caller's.
class QELTIN_API Page {
 public:
  void SetBottomLeft(Point const& corner) { m_BottomLeft = corner; }
  void SetTopRight(Point const& corner) { m_TopRight = corner; }

  // Sets `out` to what of `in` lies on the page and returns true; a line that only touches the page
  // leaves that place at both ends. Returns false, with `out` as it was, where nothing is left, and
  // for a line without a finite extent in plan.
  //
  // An end that lies on the page keeps its exact coordinates. One that is cut stands at start + t *
  // (end - start) on all three axes, so that rounding can leave it a little off the edge. REQUIRES:
  // `out` is not null; it may be the address of `in`.
  //
  // The method is that of Liang and Barsky, A new concept and method for line clipping (ACM
  // Transactions on Graphics 3, 1984).
  bool ClipLine(Line const& in, Line* out) const;

  // Finds what of an arc lies on the page. The arc is that of the circle about `center` from the
  // bearing `start` clockwise to `end`, both in degrees; where they differ by 0, or by 360 or more,
  // it is the whole circle from `start` round. Sets `count` to the number of pieces, at most 5, and
  // the first `count` entries of `starts` and `ends` to their bearings in the order of the arc. 0
  // where nothing is left, where the arc only touches the page, and where a number is not finite.
  //
  // Bearings come back with 0 <= bearing < 360, so that a piece across north has its end below its
  // start, and a whole circle has them equal. An end of the arc that lies on the page keeps its
  // exact bearing. Pieces of up to EPSILON degrees are left out, as are gaps between two pieces. A
  // radius of 0 leaves the whole arc or nothing. With a negative radius, bearings are those from
  // which the places look at the centre.
  void ClipCircle(Point const& center, double radius, double start, double end, long& count,
                  double (&starts)[5], double (&ends)[5]) const;

 private:
  Point m_BottomLeft;
  Point m_TopRight;
};
