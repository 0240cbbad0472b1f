#pragma once

#include "qeltin/platform/Export.h"

class CLine;

// A list of lines, held by value. Hosts are compiled against the order of the virtual operations:
// it stays.
//
// Pointers to lines stay valid until the next AddLine or RemoveLine. The destructor destroys every
// line.
//
// Threads: no lock. One thread at a time.
class QELTIN_API ILineList {
 public:
  virtual ~ILineList() = default;

  // Appends a marked line from (x1, y1) to (x2, y2), whose data file is called `name` with ".MDB"
  // behind it and whose KP starts at 0. A null name counts as an empty one. Always true.
  virtual bool AddLine(wchar_t const* name, double x1, double y1, double x2, double y2) = 0;

  // Appends a copy of all that `line` holds, a curve under construction included. Always true.
  virtual bool AddLine(CLine const& line) = 0;

  // Removes the line at the address `line`; those behind it move down one place. False for an
  // address that is none of this list's.
  virtual bool RemoveLine(CLine* line) = 0;

  virtual int GetNumLines() const = 0;

  // Return null out of range.
  virtual CLine* GetLine(int index) = 0;
  virtual CLine const* GetLine(int index) const = 0;

  // Sets the box of all center line points, those of arcs' centres included. Note that it takes in
  // (0, 0) as well wherever a line has a point. An empty list gives the largest finite double for
  // the minima and its negative for the maxima. Always true.
  virtual bool GetExtents(double* minX, double* maxX, double* minY, double* maxY) const = 0;

 protected:
  ILineList() = default;
  ILineList(ILineList const&) = default;
  ILineList& operator=(ILineList const&) = default;
};
