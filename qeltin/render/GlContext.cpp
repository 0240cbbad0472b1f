#include "qeltin/render/GlContext.h"

#include <GL/glew.h>

#include <algorithm>
#include <mutex>

#include "qeltin/platform/gl/DrawingWindow.h"
#include "qeltin/render/GlDrawingAttributes.h"
#include "qeltin/render/GlLight.h"
#include "qeltin/render/GlViewer.h"

GlContext::GlContext(HWND window, unsigned char colorBits, unsigned char depthBits)
    : m_pDrawingWindow(dynamic_cast<DrawingWindow*>(window)), m_pWindow(window) {
  std::lock_guard const lock(m_Lock);
  if (m_pDrawingWindow != nullptr) m_pDC = m_pDrawingWindow->GetDC();
  if (m_pDC != nullptr) {
    ChooseFormat(colorBits, depthBits);
    m_pRC = m_pDC->CreateContext();
  }
  if (m_pRC != nullptr && MakeCurrent(m_pRC)) {
    glewExperimental = GL_TRUE;
    m_bGlewReady = glewInit() == GLEW_OK;
  }
  for (GLenum const hint : {GL_LINE_SMOOTH_HINT, GL_PERSPECTIVE_CORRECTION_HINT,
                            GL_POINT_SMOOTH_HINT, GL_POLYGON_SMOOTH_HINT}) {
    glHint(hint, GL_FASTEST);
  }
  ReadLimits();
  MakeCurrent(nullptr);
}

void GlContext::ChooseFormat(unsigned char colorBits, unsigned char depthBits) const {
  PIXELFORMATDESCRIPTOR wished{};
  wished.nSize = sizeof(wished);
  wished.nVersion = 1;
  wished.dwFlags =
      PFD_DOUBLEBUFFER | PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_GENERIC_ACCELERATED;
  wished.iPixelType = PFD_TYPE_RGBA;
  wished.cColorBits = colorBits;
  wished.cDepthBits = depthBits;
  m_pDC->SetPixelFormat(m_pDC->ChoosePixelFormat(wished));
}

// Where no context is current, GL leaves the values alone, and the limits stay as they were.
void GlContext::ReadLimits() {
  GlDrawingAttributes::Limits limits = GlDrawingAttributes::m_Limits;
  float points[] = {limits.minPointSize, limits.maxPointSize};
  float lines[] = {limits.minLineWidth, limits.maxLineWidth};
  glGetFloatv(GL_POINT_SIZE_RANGE, points);
  glGetFloatv(GL_POINT_SIZE_GRANULARITY, &limits.pointSizeStep);
  glGetFloatv(GL_LINE_WIDTH_RANGE, lines);
  glGetFloatv(GL_LINE_WIDTH_GRANULARITY, &limits.lineWidthStep);
  limits.minPointSize = points[0];
  limits.maxPointSize = points[1];
  limits.minLineWidth = lines[0];
  limits.maxLineWidth = lines[1];
  GlDrawingAttributes::SetLimits(limits);
}

GlContext::~GlContext() {
  m_Lock.lock();  // not released: the lock goes while it is held
  m_Viewers.clear();
  for (GlLight* light : m_Lights) delete light;
  m_Lights.clear();
  if (m_pDC == nullptr) return;
  m_pDC->DeleteContext(m_pRC);
  m_pDrawingWindow->ReleaseDC(m_pDC);
}

bool GlContext::MakeCurrent(HGLRC rc) const { return m_pDC != nullptr && m_pDC->MakeCurrent(rc); }

void GlContext::SetRCAsCurrent() {
  m_Lock.lock();
  MakeCurrent(m_pRC);
}

void GlContext::ReleaseCurrentRC() {
  MakeCurrent(nullptr);
  m_Lock.unlock();
}

void GlContext::OnSize(int width, int height) {
  std::lock_guard const lock(m_Lock);
  SetViewport(width, height);
}

void GlContext::SetViewport(int width, int height) {
  SetRCAsCurrent();
  UpdateViewport(width, height);
  glViewport(0, 0, m_iViewportWidth, m_iViewportHeight);
  ReleaseCurrentRC();
}

void GlContext::UpdateViewport(int width, int height) {
  m_iViewportWidth = width == 0 ? 1 : width;
  m_iViewportHeight = height == 0 ? 1 : height;
}

void GlContext::OnQueryNewPalette() { std::lock_guard const lock(m_Lock); }

void GlContext::OnPaletteChanged() { std::lock_guard const lock(m_Lock); }

GlViewer* GlContext::CreateViewer() {
  std::lock_guard const lock(m_Lock);
  return m_Viewers.emplace_back(new GlViewer).get();
}

void GlContext::DestroyViewer(GlViewer* viewer) {
  std::lock_guard const lock(m_Lock);
  auto const isAsked = [viewer](auto const& listed) { return listed.get() == viewer; };
  auto const found = std::find_if(m_Viewers.begin(), m_Viewers.end(), isAsked);
  if (found != m_Viewers.end()) m_Viewers.erase(found);
}

GlLight* GlContext::CreateLight() {
  std::lock_guard const lock(m_Lock);
  return m_Lights.emplace_back(new GlLight);
}

void GlContext::DestroyLight(GlLight* light) {
  std::lock_guard const lock(m_Lock);
  if (m_Lights.empty()) return;
  m_Lights.erase(m_Lights.begin());  // the first, whichever is asked for
  delete light;
}

GlViewer* GlContext::GetViewer(int index) const {
  return index >= 0 && index < GetNumberOfViewers() ? m_Viewers[index].get() : nullptr;
}

GlLight* GlContext::GetLight(int index) const {
  return index >= 0 && index < GetNumberOfLights() ? m_Lights[index] : nullptr;
}
