#pragma once

#include <cstdint>

#include "qeltin/models/LineSegmentEnd.h"
#include "qeltin/platform/Export.h"

class CurvedCenterLine;

// A planned survey line: a name, the name of a data file, and a center line. Made and owned by a
// line list. Hosts are compiled against the order of the virtual operations: it stays.
//
// Returned strings and pointers are owned by the line; a string stays valid until the next SetName,
// all of them until the line goes or moves. A null text counts as an empty one.
//
// Threads: no lock. One thread at a time.
class QELTIN_API ILine {
 public:
  virtual ~ILine() = default;

  virtual wchar_t const* GetName() const = 0;
  virtual wchar_t const* GetDataFileName() const = 0;

  // Returns the number of points of the center line, centres of arcs included.
  virtual int GetNumPoints() const = 0;

  // Fills both records from the center line points `index` and `index` + 1 and returns true. False
  // with the records as they were, unless 0 <= index < GetNumPoints() - 1.
  virtual bool GetSegment(int index, LineSegmentEnd& from, LineSegmentEnd& to) const = 0;

  // The name of the data file stays.
  virtual void SetName(wchar_t const* name) = 0;

  // Returns true iff Mark has been called. There is no way to clear it.
  virtual bool IsMarked() const = 0;
  virtual void Mark() = 0;

  // Five numbers of the host's own, 0 at start. Outside 0 to 4 the answer is 0 and a value is
  // ignored.
  virtual std::int32_t GetAttribute(int index) const = 0;
  virtual void SetAttribute(int index, std::int32_t value) = 0;

  virtual CurvedCenterLine* GetCenterLine() = 0;
  virtual CurvedCenterLine const* GetCenterLine() const = 0;

 protected:
  ILine() = default;
  ILine(ILine const&) = default;
  ILine& operator=(ILine const&) = default;
};
