#pragma once

#include "bench/SurveyInput.h"
#include "qeltin/platform/gl/OffscreenWindow.h"
#include "qeltin/render/GlContext.h"
#include "qeltin/render/GlTIN.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::bench {

// A surface of bathymetric colours under a light, seen straight from above, in 1280 by 720 pixels.
// Ends the program with status 2 where nothing can be drawn.
class SurfacePicture {
 public:
  static constexpr int WIDTH = 1280;
  static constexpr int HEIGHT = 720;

  // `tin` lies in `box`. Not owned; it outlives the picture.
  SurfacePicture(TIN const& tin, Box const& box);

  // Compiles the surface, so that later frames draw the list.
  void Compile();

  // Draws one frame and waits until its pixels are there.
  void DrawFrame();

  // Returns how many pixels of the latest frame the surface covers.
  int CountCovered() const;

 private:
  void PlaceEye(Box const& box);

  OffscreenWindow m_Window{WIDTH, HEIGHT};
  GlContext m_Context{&m_Window, 24, 24};
  GlTIN m_Surface;
  GlViewer* m_pViewer;  // owned by m_Context
  int m_iList = 0;      // 0: immediate
  std::vector<unsigned char> m_Pixels;
};

}  // namespace qeltin::bench
