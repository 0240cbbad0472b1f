#pragma once

#include "apps/qeltin/picture/Camera.h"

namespace qeltin::cli {

// An eye that a user moves around a point of a scene, at which it always looks.
class Orbit {
 public:
  // Takes over from an eye that faces `from`. It turns about the point of its line of sight that is
  // nearest to the origin.
  Orbit(Camera const& camera, Bearing const& from);

  // Turns the scene as if it was dragged so many pixels across the window: a quarter turn in 300.
  // The eye stays between the horizon and the zenith.
  void Turn(double right, double down);

  // Moves the scene along with a pointer that is dragged so many pixels, in a window that is
  // `height` pixels high.
  void Pan(double right, double down, double height);

  // Multiplies the distance to all there is by `factor` and keeps `fixed` where it is seen. Stops
  // where a scene of the size `reach` would be lost from sight.
  void Zoom(double factor, TPoint const& fixed, double reach);

  // To be told where all heights of the scene change by `factor`.
  void Stretch(double factor) { m_Pivot.z *= factor; }

  // The camera's near and far enclose what there is in `scene` and before the eye.
  Camera Eye(Box const& scene) const;

  // The distance to the point that the eye turns about.
  double Distance() const { return m_dDistance; }

 private:
  Bearing m_From;
  double m_dFovy;
  TPoint m_Pivot;
  double m_dDistance;
};

}  // namespace qeltin::cli
