#pragma once

#include <optional>
#include <string>
#include <vector>

#include "apps/qeltin/Picture.h"
#include "apps/qeltin/picture/Camera.h"
#include "apps/qeltin/picture/Canvas.h"
#include "apps/qeltin/picture/Legend.h"
#include "apps/qeltin/picture/Scene.h"

namespace qeltin::cli {

// A picture of a scene: the surface, and the legend beside it.
class Drawing {
 public:
  // Chooses the place of the eye. `scene` and `options` are not owned and outlive the drawing.
  Drawing(Scene& scene, PictureOptions const& options);

  // Draws everything. Throws Failure where there is no GL to do so.
  void Draw();

  // Writes a PNG. Throws Failure.
  void Write(std::string const& file) const;

  // None unless seen from the top.
  std::optional<double> PixelsPerUnit() const;

  // What the legend has come to show; nothing without one.
  std::vector<double> LegendHeights() const;
  std::optional<ScaleBar> const& Scale() const { return m_Scale; }

 private:
  Camera FromAbove();
  Camera FromTheSide() const;
  std::vector<unsigned char> Pixels();
  TPoint North() const;
  void LabelContours() const;

  Scene& m_Scene;
  PictureOptions const& m_Options;
  Legend m_Legend;
  int m_iWidth;  // of what GL draws, left of the legend
  Canvas m_Canvas;
  std::optional<TopView> m_Top;
  Camera m_Camera;
  std::optional<ScaleBar> m_Scale;
};

}  // namespace qeltin::cli
