#include "qeltin/render/GlViewer.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <cmath>

#include "qeltin/render/GlContext.h"

bool GlViewer::SetEyeFovy(double degrees) {
  if (degrees < 0.0 || degrees >= 180.0) return false;
  m_dEyeFovy = degrees;
  return true;
}

bool GlViewer::SetEyeAspect(double aspect) {
  m_dEyeAspect = aspect;
  return true;
}

bool GlViewer::SetEyeZNearAndFar(double a, double b) {
  a = std::fabs(a);
  b = std::fabs(b);
  if (a == b) return false;
  m_dEyeZNear = a < b ? a : b;
  m_dEyeZFar = a < b ? b : a;
  return true;
}

bool GlViewer::SetClipRectangle(int x, int y, int width, int height) {
  if (x < 0 || x >= width || y < 0 || y >= height) return false;  // the position against the size
  m_iClipX = x;
  m_iClipY = y;
  m_iClipWidth = width;
  m_iClipHeight = height;
  return true;
}

void GlViewer::SetProjection(GlContext* context) {
  int width = m_iClipWidth;
  int height = m_iClipHeight;
  if (HasState(VIEWER_CLIP)) {
    glEnable(GL_SCISSOR_TEST);
    glScissor(m_iClipX, m_iClipY, width, height);
    if (HasState(VIEWER_CLIP_VIEWPORT)) glViewport(m_iClipX, m_iClipY, width, height);
  } else {
    width = context->GetViewportWidth();
    height = context->GetViewportHeight();
    glDisable(GL_SCISSOR_TEST);
    glViewport(0, 0, width, height);
  }
  double const ratio = static_cast<double>(width) / height;
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  gluPerspective(m_dEyeFovy, ratio * m_dEyeAspect, m_dEyeZNear, m_dEyeZFar);
}

void GlViewer::DrawFrame(GlContext* context) {
  if (!HasState(VIEWER_CLIP | VIEWER_FRAME)) return;
  context->PushProjectionMatrix();
  context->PushModelviewMatrix();
  glLineWidth(2.0f);
  glColor3fv(m_FrameColor.GetArrayOf4());

  double const inset = HasState(VIEWER_FRAME_INSET) ? 0.02 : 0.0;
  double const a = 1.0 - inset;
  double const b = inset - 1.0;
  double const corners[5][2] = {{a, a}, {b, a}, {b, b}, {a, b}, {a, a}};
  context->BeginDrawLines();
  for (int side = 0; side < 4; ++side) {
    for (double const* corner : {corners[side], corners[side + 1]}) {
      context->Vertex(corner[0], corner[1], 0.0);
    }
  }
  context->EndDrawVertices();

  context->PopProjectionMatrix();
  context->PopModelviewMatrix();
}
