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

 private:
  Point m_BottomLeft;
  Point m_TopRight;
};
