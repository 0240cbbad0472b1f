#pragma once

#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/Export.h"

class GlContext;

// A rigid frame in a parent frame: an origin and three rotations, in the unit of the scene and in
// radians. Cameras and lights each have one. As with the eye of OpenGL, x is to the right, y up,
// and forward is along negative z.
//
// The frame moves along its own axes and turns about its own axes. It is kept as angles, which are
// taken anew from the turned axes after each turn: the orientation is kept, not its history, and
// angles may differ by whole turns from the sum of the turns made. The axes are rounded at the size
// of the origin, so that a frame far out keeps its orientation best if it is turned before it
// moves.
//
// Threads: a value like a double. Concurrent reads are safe, a write needs a lock of the caller's.
class QELTIN_API GlCoord {
 public:
  // The rotations about x, y and z. A point of the frame is turned about z first, then y, then x.
  void GetRotation(double& x, double& y, double& z) const;

  // Sets the three rotations to 0. The origin stays.
  void ResetRotation();

  // The origin, in the parent frame.
  TPoint GetOrigin() const { return {m_dOriginX, m_dOriginY, m_dOriginZ}; }
  void SetOrigin(TPoint const& origin);

  // Move the origin along an axis of the frame.
  void MoveRight(double distance);
  void MoveUp(double distance);
  void MoveForward(double distance);

  // Turn the frame about an axis of its own, in radians, counter-clockwise for one who looks
  // against the axis.
  void RotateAboutX(double angle);
  void RotateAboutY(double angle);
  void RotateAboutZ(double angle);

  // Turns the frame by `angle` radians about `axis` through `origin`, both in the frame's own
  // coordinates, as TPoint::Rotate turns points: where `origin` has a part along the axis, the
  // frame also moves along the axis. A whole turn leaves it as it is, up to rounding.
  void Rotate(double angle, TPoint const& axis, TPoint const& origin);

  // Multiply the current matrix of GL by the frame, or by its inverse. The context is not read.
  // REQUIRES: a current rendering context, as within a frame of GlContext.
  void SetRC(GlContext* context) const;
  void ResetRC(GlContext* context) const;

 protected:
  // Turns the frame so that its axes are those given, in the frame's own coordinates and of length
  // 1. The three arguments are overwritten.
  void CalcRotation(TPoint& x, TPoint& y, TPoint& z);

 private:
  friend QELTIN_API TPoint operator>>(GlCoord const& frame, TPoint const& p);
  friend QELTIN_API TPoint operator<<(GlCoord const& frame, TPoint const& p);

  double m_dOriginX = 0.0;
  double m_dOriginY = 0.0;
  double m_dOriginZ = 0.0;
  double m_dRotX = 0.0;
  double m_dRotY = 0.0;
  double m_dRotZ = 0.0;
};

// Returns `p`, given in the frame, in the coordinates of its parent.
QELTIN_API TPoint operator>>(GlCoord const& frame, TPoint const& p);

// Returns `p`, given in the parent, in the coordinates of the frame.
QELTIN_API TPoint operator<<(GlCoord const& frame, TPoint const& p);

// The same two with the point on the left: note that the arrows turn around. `p << frame` is
// `frame >> p`, and `p >> frame` is `frame << p`.
inline TPoint operator<<(TPoint const& p, GlCoord const& frame) { return frame >> p; }
inline TPoint operator>>(TPoint const& p, GlCoord const& frame) { return frame << p; }
