#pragma once

#include "qeltin/models/LineSegmentEnd.h"
#include "qeltin/models/ProfilePoint.h"
#include "qeltin/platform/Export.h"

class CurvedCenterLine;

// One measured profile: soundings along a center line, stored statistics and text labels. Hosts
// are compiled against the order of the virtual operations: it stays.
//
// Coordinates and heights have the unit of the host. Returned pointers are owned by the profile and
// stay valid until it changes. Where an index is said to be tested, one out of range makes the
// operation fail with nothing filled, and with GetLastErrorCode() 3; elsewhere it must be in range.
//
// Threads: no lock. One thread at a time.
class QELTIN_API IProfile {
 public:
  virtual ~IProfile() = default;

  // Returns the number of center line points less 1, and so -1 for a center line without points.
  virtual int GetNumSegments() const = 0;

  // Fills both records from the center line points `index` and `index` + 1. A point that is not
  // there counts as one at the origin. Always true.
  virtual bool GetSegment(int index, LineSegmentEnd& from, LineSegmentEnd& to) const = 0;

  virtual wchar_t const* GetLineName() const = 0;

  // Sets the area between the profile and level 0, in the plane of distance and height: a triangle
  // from distance 0 to the first sounding, one from the last sounding to the end of the center
  // line's first segment, and the soundings' own intervals. Note that only every other interval
  // counts: those from sounding 0 to 1, 2 to 3, 4 to 5, .... Products of the stored values are
  // rounded to single precision. Always true. REQUIRES: there is a sounding.
  virtual bool GetArea(double* area) const = 0;

  virtual int GetNumPoints() const = 0;

  // Returns the stored sounding. The index is not tested.
  virtual ProfilePoint const* GetPointRecord(int index) const = 0;

  // Sets the position of a sounding, the bases added. The index is tested.
  virtual bool GetPoint(int index, double* x, double* y, double* z) const = 0;

  // As GetPoint, and sets its travel along the center line, as CenterLine::GetOffsetAndTravel tells
  // it. True iff the sounding is there and lies beside the line; one off its ends is filled as
  // well.
  virtual bool GetPointAndTravel(int index, double* x, double* y, double* z,
                                 double* travel) const = 0;

  // As GetPoint, and sets its time, the base added.
  virtual bool GetPointAndTime(int index, double* x, double* y, double* z, double* time) const = 0;

  // Returns the offset from the center line of the place (x, y) as stored. Note that the bases are
  // NOT added, unlike in GetPointAndTravel. 0.0 where that place is not beside the line. The index
  // is not tested.
  virtual double GetOffset(int index) const = 0;

  // Returns the travel of a place along the center line. Off the ends of the line it is that of
  // CenterLine::GetOffsetAndTravel, on a center line without length 0.0.
  virtual double GetTravelAt(double x, double y) const = 0;

  // Returns the stored distance of a sounding. The index is not tested.
  virtual double GetDistance(int index) const = 0;

  virtual CurvedCenterLine* GetCenterLine() = 0;

  // Return stored values, rounded to single precision. Soundings are not looked at.
  virtual float GetMinZ() const = 0;
  virtual float GetMaxZ() const = 0;
  virtual float GetStatZ() const = 0;
  virtual float GetMinX() const = 0;
  virtual float GetMaxX() const = 0;
  virtual float GetStatX() const = 0;
  virtual float GetMinY() const = 0;
  virtual float GetMaxY() const = 0;
  virtual float GetStatY() const = 0;
  virtual float GetStatMin() const = 0;
  virtual float GetStatMax() const = 0;

  virtual int GetNumLabels() const = 0;

  // Sets the position of a label and copies its text into the `textSize` wide characters at `text`,
  // cut off so that a terminator stands within them; what is left of them is filled with
  // terminators. A size of 0 or less copies nothing. False out of range, with nothing filled and no
  // error code.
  virtual bool GetLabel(int index, double* x, double* y, double* z, wchar_t* text,
                        int textSize) const = 0;

 protected:
  IProfile() = default;
  IProfile(IProfile const&) = default;
  IProfile& operator=(IProfile const&) = default;
};
