#pragma once

#include "qeltin/platform/Export.h"

class TPolygon;

// The isolines of a surface as plain numbers: open lines, each a row of points, in the unit of the
// surface, z up. Made by IModelManager::CreateContour; a host gives it back with ReleaseContour or
// DestroyContour and never deletes it.
//
// The contour keeps the surface that it came from, without a count on it: the surface must outlive
// it. Indices count from 0, and where a line is asked for by its index that index is not checked.
//
// Hosts are compiled against the order of the operations: it is never changed.
//
// Threads: no lock. One thread at a time.
class QELTIN_API IContour {
 public:
  virtual ~IContour() = default;

  virtual int GetNumLines() const = 0;

  // Returns the number of points of a line; it can be 0. REQUIRES: a line below GetNumLines().
  virtual int GetNumPoints(int line) const = 0;

  // Sets the six numbers to points `index` and `index` + 1 of the line and returns true. False,
  // with all as they were, where the line has no such second point. REQUIRES: a line below
  // GetNumLines(), `index` not negative, no null pointer.
  virtual bool GetSegment(int line, int index, double* x1, double* y1, double* z1, double* x2,
                          double* y2, double* z2) const = 0;

  // Traces the surface at `level` and returns how many lines that gave. Note that they are ADDED to
  // those already there, also at the same level. Threads: a write to the surface.
  virtual int Regenerate(double level) = 0;

  // Returns the line itself. Owned by the contour. REQUIRES: an index below GetNumLines().
  virtual TPolygon* GetLine(int index) const = 0;
};
