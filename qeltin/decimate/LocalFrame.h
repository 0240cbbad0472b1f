#pragma once

#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/Export.h"

class TIN;

// Moves a surface near to the origin for as long as this object lives, and then back to where it
// was. Far from the origin the fit of TPlane loses its digits, and with it the choice of points to
// remove: at 5,000 km and a spacing of 1 m a distance is wrong by centimetres, at a spacing of
// 0.1 m by metres. So projected coordinates want a frame around a run of the Decimator.
//
// The middle of the data bounds, in whole units, becomes the origin. An axis on which that would
// round any coordinate, or on which the bounds are no range, stays as it is, so that the way back
// leads to the same coordinates to the last bit. Boxes and the start points of a Trimble model move
// along. Circles are calculated anew, and the map is dropped, both at the start and at the end.
//
// A surface may be thinned and compacted in its frame; it must outlive it, and its points must not
// be replaced by those of another source.
//
// Threads: as a write to the surface, at the start and at the end.
class QELTIN_API LocalFrame {
 public:
  explicit LocalFrame(TIN& tin);
  ~LocalFrame();
  LocalFrame(LocalFrame const&) = delete;
  LocalFrame& operator=(LocalFrame const&) = delete;

  // Returns what was subtracted from the coordinates.
  TPoint const& GetOrigin() const { return m_Origin; }

 private:
  struct Boxes {
    TPoint min;
    TPoint max;
    TPoint worldMin;
    TPoint worldMax;
  };

  void ChooseOrigin(int axis);
  double Inward(int axis, double value) const;
  double Outward(int axis, double value) const;
  static double Moved(int axis, double value, double by, Boxes const& from, Boxes const& to);
  template <typename See>
  void VisitCoordinates(int axis, See see);
  Boxes BoxesOf() const;
  void Finish(Boxes const& boxes);

  TIN& m_Tin;
  TPoint m_Origin;
  Boxes m_There;  // as they were
  Boxes m_Here;   // in the frame
};
