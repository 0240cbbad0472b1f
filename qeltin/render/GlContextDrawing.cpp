// The operations of GlContext that draw: they run within a frame.

#include <GL/gl.h>

#include "qeltin/render/GlContext.h"
#include "qeltin/render/GlCoord.h"
#include "qeltin/render/GlLight.h"
#include "qeltin/render/GlViewer.h"

namespace {

constexpr int SEEN_FRAME = GlViewer::VIEWER_SHOW | GlViewer::VIEWER_CLIP | GlViewer::VIEWER_FRAME;

// Never taken for a list: it is what an error looks like in a place where a list's number stands.
constexpr int NO_LIST = GL_INVALID_VALUE;

void PushMatrix(GLenum matrix) {
  glMatrixMode(matrix);
  glPushMatrix();
  glLoadIdentity();
}

void PopMatrix(GLenum matrix) {
  glMatrixMode(matrix);
  glPopMatrix();
}

void Switch(GLenum capability, bool on) { on ? glEnable(capability) : glDisable(capability); }

}  // namespace

void GlContext::BeginDraw() {
  SetRCAsCurrent();
  glClearColor(m_BackgroundColor.GetRed(), m_BackgroundColor.GetGreen(),
               m_BackgroundColor.GetBlue(), m_BackgroundColor.GetAlpha());
  Switch(GL_DEPTH_TEST, m_bDepthEnabled);
}

void GlContext::EndDraw() {
  if (m_pDC != nullptr) m_pDC->SwapBuffers();
  ReleaseCurrentRC();
}

void GlContext::BeginDrawViewer(GlViewer* viewer) {
  if (viewer == nullptr) return;
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  viewer->SetProjection(this);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  if (m_bLightingEnabled) {
    SetUpLighting();
  } else {
    glDisable(GL_LIGHTING);
  }
  viewer->GetCS().ResetRC(this);
}

void GlContext::SetUpLighting() {
  glEnable(GL_LIGHTING);
  glEnable(GL_COLOR_MATERIAL);
  glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
  constexpr GlColor dark{0.0f, 0.0f, 0.0f, 1.0f};
  GlColor const& ambient = m_bAmbientEnabled ? m_AmbientLight : dark;
  glLightModelfv(GL_LIGHT_MODEL_AMBIENT, ambient.GetArrayOf4());
  for (GlLight* light : m_Lights) light->SetRC(this);
}

void GlContext::EndDrawViewer(GlViewer* viewer) {
  if (viewer == nullptr) return;
  if (viewer->HasState(SEEN_FRAME)) viewer->DrawFrame(this);
  glFlush();
}

void GlContext::BeginDrawPoints() const { glBegin(GL_POINTS); }

void GlContext::BeginDrawLines() const { glBegin(GL_LINES); }

void GlContext::BeginDrawLineStrip() const { glBegin(GL_LINE_STRIP); }

void GlContext::BeginDrawLineLoop() const { glBegin(GL_LINE_LOOP); }

void GlContext::BeginDrawTriangles() const { glBegin(GL_TRIANGLES); }

void GlContext::BeginDrawTriangleStrip() const { glBegin(GL_TRIANGLE_STRIP); }

void GlContext::BeginDrawTriangleFan() const { glBegin(GL_TRIANGLE_FAN); }

void GlContext::BeginDrawQuads() const { glBegin(GL_QUADS); }

void GlContext::BeginDrawQuadStrip() const { glBegin(GL_QUAD_STRIP); }

void GlContext::BeginDrawPolygon() const { glBegin(GL_POLYGON); }

void GlContext::EndDrawVertices() const { glEnd(); }

void GlContext::Vertex(TPoint const& point) const { Vertex(point.x, point.y, point.z); }

void GlContext::Vertex(double x, double y, double z) const {
  Vertex(static_cast<float>(x), static_cast<float>(y), static_cast<float>(z));
}

void GlContext::Vertex(float x, float y, float z) const { glVertex3f(x, y, z); }

void GlContext::Vertex(double x, double y) const {
  Vertex(static_cast<float>(x), static_cast<float>(y));
}

void GlContext::Vertex(float x, float y) const { glVertex2f(x, y); }

void GlContext::SetVertexNormal(TPoint const& normal) const {
  glNormal3f(static_cast<float>(normal.x), static_cast<float>(normal.y),
             static_cast<float>(normal.z));
}

void GlContext::SetVertexColor(GlColor const& color) const {
  glColor3f(color.GetRed(), color.GetGreen(), color.GetBlue());
}

void GlContext::SetVertexEdgeFlag(bool isEdge) const { glEdgeFlag(isEdge ? GL_TRUE : GL_FALSE); }

void GlContext::PushProjectionMatrix() const { PushMatrix(GL_PROJECTION); }

void GlContext::PopProjectionMatrix() const { PopMatrix(GL_PROJECTION); }

void GlContext::PushModelviewMatrix() const { PushMatrix(GL_MODELVIEW); }

void GlContext::PopModelviewMatrix() const { PopMatrix(GL_MODELVIEW); }

void GlContext::PushLightAttribute() const {
  glPushAttrib(GL_LIGHTING_BIT);
  glDisable(GL_LIGHTING);
}

void GlContext::PopLightAttribute() const { glPopAttrib(); }

int GlContext::BeginCompileList() const {
  GLuint const id = glGenLists(1);
  glNewList(id, GL_COMPILE);
  return static_cast<int>(id);
}

void GlContext::EndCompileList() const { glEndList(); }

bool GlContext::DrawCompiledList(int id) const {
  if (id == NO_LIST || glIsList(id) != GL_TRUE) return false;
  glCallList(id);
  return true;
}

void GlContext::DeleteCompiledList(int id) const {
  if (id != 0) glDeleteLists(id, 1);
}
