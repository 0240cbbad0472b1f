#pragma once

#include <algorithm>

#include "apps/qeltin/Bearing.h"
#include "apps/qeltin/Surface.h"
#include "qeltin/render/GlCoord.h"

class GlViewer;

namespace qeltin::cli {

// An eye in the coordinates of a scene.
struct Camera {
  GlCoord frame;
  double fovy = 27.0;  // degrees, from the lower to the upper edge of the picture
  double near = 1.0;
  double far = 2.0;

  void ApplyTo(GlViewer& viewer) const;
};

// Returns a frame at the origin whose z axis points to `from`, with its x axis level: that of an
// eye which stands there and looks at the origin. At an elevation of 90 degrees and azimuth 180
// north is up.
GlCoord FrameFacing(Bearing const& from);

// Returns the frame for a light that stands at `from`, as it is seen by the eye in `eye`.
GlCoord LightFrame(GlCoord const& eye, Bearing const& from);

// Finds the place from which an eye sees all of some points, as large as they can be: two opposite
// edges of the picture touch them, up to its margin.
class CameraFit {
 public:
  // All of the picture, in pixels. `margin` stays free along each edge.
  CameraFit(Bearing const& from, double width, double height, double margin);

  void Add(TPoint const& p);

  // The camera's near and far enclose the points. REQUIRES: a point was added, here and below.
  Camera Result() const;

  // Returns how far that eye may move to either side, in x, and up or down, in y, and still see
  // all.
  TPoint Play() const;

 private:
  // What the points reach in one direction across the picture and its opposite.
  struct Reach {
    double tangent = 0.0;  // of half the field of view
    double forth = 0.0;    // the largest of a - tangent * depth
    double back = 0.0;     // the largest of -a - tangent * depth

    void Add(double a, double depth, bool first);
    double NearestDepth() const { return -(forth + back) / (2.0 * tangent); }
    double Centre() const { return (forth - back) / 2.0; }
    double Play(double depth) const { return -(forth + back) / 2.0 - tangent * depth; }
  };

  double Place() const { return std::min(m_Across.NearestDepth(), m_Up.NearestDepth()); }

  GlCoord m_Facing;
  double m_dFovy;
  Reach m_Across;
  Reach m_Up;
  double m_dNearest = 0.0;  // depths along the view
  double m_dFarthest = 0.0;
  bool m_bFirst = true;
};

// Moves the eye of a fit sideways, as far as it may go, so that the points are in the middle of the
// picture, or as near to it as can be.
class CameraCentring {
 public:
  explicit CameraCentring(CameraFit const& fit) : m_Camera(fit.Result()), m_Play(fit.Play()) {}

  // Takes the points of the fit once more.
  void Add(TPoint const& p);

  // REQUIRES: a point was added.
  Camera Result() const;

 private:
  // A point on the edge of what is seen: where it appears, as if at depth 1, and how deep it is.
  struct Edge {
    double seen = 0.0;
    double depth = 0.0;
  };

  // The two edges across one direction of the picture.
  struct Span {
    Edge least;
    Edge most;

    void Add(Edge const& edge, bool first);
    double Shift() const;
  };

  Camera m_Camera;
  TPoint m_Play;
  Span m_Across;
  Span m_Up;
  bool m_bFirst = true;
};

// A view from straight above that is true to scale, north up.
//
// The eye stands so far away that heights displace nothing by more than a tenth of a pixel. Its
// near and far are wide; draw without a depth test.
class TopView {
 public:
  // `scene` is its box, which fills the picture, up to `margin` pixels along each edge.
  TopView(Box const& scene, double width, double height, double margin);

  Camera Eye() const;

  double PixelsPerUnit() const { return m_dScale; }

  // Returns the place in the picture, in pixels to the right of its left edge and below its upper.
  TPoint PixelOf(TPoint const& p) const;

 private:
  TPoint m_Centre;
  double m_dRelief;
  double m_dWidth;
  double m_dHeight;
  double m_dScale;
};

}  // namespace qeltin::cli
