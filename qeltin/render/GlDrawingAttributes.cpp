#include "qeltin/render/GlDrawingAttributes.h"

#include <GL/gl.h>

constinit GlDrawingAttributes::Limits GlDrawingAttributes::m_Limits{};

namespace {

bool IsWithin(float value, float min, float max) { return value >= min && value <= max; }

GLenum PolygonMode(bool lines, bool points) {
  if (lines) return GL_LINE;
  return points ? GL_POINT : GL_FILL;
}

void Cull(GLenum side) {
  glEnable(GL_CULL_FACE);
  glCullFace(side);
}

}  // namespace

bool GlDrawingAttributes::SetPointSize(float pixels) {
  if (!IsWithin(pixels, m_Limits.minPointSize, m_Limits.maxPointSize)) return false;
  m_fPointSize = pixels;
  return true;
}

bool GlDrawingAttributes::SetLineWidth(float pixels) {
  if (!IsWithin(pixels, m_Limits.minLineWidth, m_Limits.maxLineWidth)) return false;
  m_fLineWidth = pixels;
  return true;
}

bool GlDrawingAttributes::SetLineStippleFactor(int factor) {
  if (factor < 1) return false;
  m_iLineStippleFactor = factor;
  return true;
}

void GlDrawingAttributes::GetPointSizeLimits(float& min, float& max) {
  min = m_Limits.minPointSize;
  max = m_Limits.maxPointSize;
}

void GlDrawingAttributes::GetLineWidthLimits(float& min, float& max) {
  min = m_Limits.minLineWidth;
  max = m_Limits.maxLineWidth;
}

float GlDrawingAttributes::GetPointSizeStep() { return m_Limits.pointSizeStep; }

float GlDrawingAttributes::GetLineWidthStep() { return m_Limits.lineWidthStep; }

void GlDrawingAttributes::SetRC(GlContext const* /*context*/) const {
  glFrontFace(GL_CCW);
  glShadeModel(GL_SMOOTH);
  glPolygonMode(GL_FRONT, PolygonMode(HasDrawMode(FRONT_LINE), HasDrawMode(FRONT_POINT)));
  glPolygonMode(GL_BACK, PolygonMode(HasDrawMode(BACK_LINE), HasDrawMode(BACK_POINT)));
  if (HasDrawMode(CULL_BACK)) {
    Cull(GL_BACK);
  } else if (HasDrawMode(CULL_FRONT)) {
    Cull(GL_FRONT);
  } else {
    glDisable(GL_CULL_FACE);
  }
  if (HasDrawMode(BLEND) && m_Color.GetAlpha() < 1.0f) {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
  } else {
    glDisable(GL_BLEND);
  }
  glPointSize(m_fPointSize);
  if (m_wLineStipplePattern < 0xFFFF) {
    glEnable(GL_LINE_STIPPLE);
    glLineStipple(m_iLineStippleFactor, m_wLineStipplePattern);
  } else {
    glDisable(GL_LINE_STIPPLE);
  }
  glLineWidth(m_fLineWidth);
  glColor4fv(m_Color.GetArrayOf4());
}
