#include "bench/SurfacePicture.h"

#include <algorithm>
#include <cmath>

#include "bench/Measurement.h"
#include "qeltin/render/GlViewer.h"

namespace qeltin::bench {

SurfacePicture::SurfacePicture(TIN const& tin, Box const& box)
    : m_Surface(&tin), m_pViewer(m_Context.CreateViewer()) {
  if (!m_Window.IsOk()) Reject("drawing here: " + m_Window.GetError());
  m_Context.SetViewport(WIDTH, HEIGHT);
  m_Context.CreateLight();
  m_Context.SetColorTable(GlColorTable::Bathymetry(box.min.z, box.max.z));
  m_Surface.GetDrawingAttributes()->DisableDrawMode(GlDrawingAttributes::CULL_BACK);
  PlaceEye(box);
}

void SurfacePicture::PlaceEye(Box const& box) {
  double const width = box.max.x - box.min.x;
  double const height = box.max.y - box.min.y;
  double const ratio = double{WIDTH} / HEIGHT;
  double const half = 0.5 * std::max(height, width / ratio);
  double const distance = half / std::tan(m_pViewer->GetEyeFovy() * M_PI / 360);
  double const depth = box.max.z - box.min.z;
  GlCoord eye;
  eye.SetOrigin(TPoint(box.min.x + width / 2, box.min.y + height / 2, box.max.z + distance));
  m_pViewer->SetCS(eye);
  m_pViewer->SetEyeZNearAndFar(distance / 2, distance + depth + 1);
}

void SurfacePicture::Compile() {
  m_Context.BeginDraw();
  m_iList = m_Context.BeginCompileList();
  m_Surface.Draw(&m_Context, 1);
  m_Context.EndCompileList();
  m_Context.EndDraw();
}

void SurfacePicture::DrawFrame() {
  m_Context.BeginDraw();
  m_Context.BeginDrawViewer(m_pViewer);
  if (m_iList == 0) {
    m_Surface.Draw(&m_Context, 1);
  } else {
    m_Context.DrawCompiledList(m_iList);
  }
  m_Context.EndDrawViewer(m_pViewer);
  m_Window.ReadPixels(m_Pixels);
  m_Context.EndDraw();
}

int SurfacePicture::CountCovered() const {
  int covered = 0;
  for (std::size_t i = 0; i < m_Pixels.size(); i += 3) {
    covered += m_Pixels[i] + m_Pixels[i + 1] + m_Pixels[i + 2] > 0 ? 1 : 0;
  }
  return covered;
}

}  // namespace qeltin::bench
