#include "testing/gl/RecordingGl.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <set>
#include <utility>

namespace qeltin::testing {

namespace {

GlCalls& Recorded() {
  static GlCalls calls;
  return calls;
}

std::set<GLuint>& Lists() {
  static std::set<GLuint> lists;
  return lists;
}

template <typename... Arguments>
void Record(char const* name, Arguments... arguments) {
  Recorded().push_back(GlCall(name, arguments...));
}

std::string NumberAsName(unsigned int value) {
  char text[20] = "0x";
  return {text, std::to_chars(text + 2, text + sizeof text, value, 16).ptr};
}

// Primitives share their values with other symbols.
std::string Primitive(GLenum mode) {
  static constexpr char const* NAMES[] = {
      "GL_POINTS",         "GL_LINES",        "GL_LINE_LOOP", "GL_LINE_STRIP", "GL_TRIANGLES",
      "GL_TRIANGLE_STRIP", "GL_TRIANGLE_FAN", "GL_QUADS",     "GL_QUAD_STRIP", "GL_POLYGON"};
  return mode < std::size(NAMES) ? NAMES[mode] : NumberAsName(mode);
}

std::string Symbol(GLenum value) {
  if (value >= GL_LIGHT0 && value <= GL_LIGHT7) {
    return "GL_LIGHT" + std::to_string(value - GL_LIGHT0);
  }
#define NAME_OF(symbol) \
  case symbol:          \
    return #symbol
  switch (value) {
    NAME_OF(GL_AMBIENT);
    NAME_OF(GL_AMBIENT_AND_DIFFUSE);
    NAME_OF(GL_BACK);
    NAME_OF(GL_BLEND);
    NAME_OF(GL_CCW);
    NAME_OF(GL_COLOR_MATERIAL);
    NAME_OF(GL_COMPILE);
    NAME_OF(GL_CULL_FACE);
    NAME_OF(GL_DEPTH_TEST);
    NAME_OF(GL_DIFFUSE);
    NAME_OF(GL_FASTEST);
    NAME_OF(GL_FILL);
    NAME_OF(GL_FRONT);
    NAME_OF(GL_FRONT_AND_BACK);
    NAME_OF(GL_LIGHTING);
    NAME_OF(GL_LIGHT_MODEL_AMBIENT);
    NAME_OF(GL_LINE);
    NAME_OF(GL_LINE_SMOOTH_HINT);
    NAME_OF(GL_LINE_STIPPLE);
    NAME_OF(GL_LINE_WIDTH_GRANULARITY);
    NAME_OF(GL_LINE_WIDTH_RANGE);
    NAME_OF(GL_MODELVIEW);
    NAME_OF(GL_ONE_MINUS_SRC_ALPHA);
    NAME_OF(GL_PERSPECTIVE_CORRECTION_HINT);
    NAME_OF(GL_POINT);
    NAME_OF(GL_POINT_SIZE_GRANULARITY);
    NAME_OF(GL_POINT_SIZE_RANGE);
    NAME_OF(GL_POINT_SMOOTH_HINT);
    NAME_OF(GL_POLYGON_SMOOTH_HINT);
    NAME_OF(GL_POSITION);
    NAME_OF(GL_PROJECTION);
    NAME_OF(GL_SCISSOR_TEST);
    NAME_OF(GL_SMOOTH);
    NAME_OF(GL_SPECULAR);
    NAME_OF(GL_SRC_ALPHA);
    default:
      return NumberAsName(value);
  }
#undef NAME_OF
}

std::string Bits(GLbitfield mask) {
  std::string text;
  auto const take = [&](GLbitfield bit, char const* name) {
    if ((mask & bit) == 0) return;
    text += (text.empty() ? "" : " | ") + std::string(name);
    mask &= ~bit;
  };
  take(GL_COLOR_BUFFER_BIT, "GL_COLOR_BUFFER_BIT");
  take(GL_DEPTH_BUFFER_BIT, "GL_DEPTH_BUFFER_BIT");
  take(GL_LIGHTING_BIT, "GL_LIGHTING_BIT");
  if (mask != 0) text += (text.empty() ? "" : " | ") + NumberAsName(mask);
  return text;
}

}  // namespace

GlCalls TakeGlCalls() { return std::exchange(Recorded(), {}); }

void RecordGlCall(std::string call) { Recorded().push_back(std::move(call)); }

}  // namespace qeltin::testing

using qeltin::testing::Bits;
using qeltin::testing::Lists;
using qeltin::testing::Primitive;
using qeltin::testing::Record;
using qeltin::testing::Symbol;

extern "C" {

void glBegin(GLenum mode) { Record("glBegin", Primitive(mode)); }
void glEnd() { Record("glEnd"); }
void glVertex2f(GLfloat x, GLfloat y) { Record("glVertex2f", x, y); }
void glVertex3f(GLfloat x, GLfloat y, GLfloat z) { Record("glVertex3f", x, y, z); }
void glNormal3f(GLfloat x, GLfloat y, GLfloat z) { Record("glNormal3f", x, y, z); }
void glColor3f(GLfloat r, GLfloat g, GLfloat b) { Record("glColor3f", r, g, b); }
void glColor3fv(GLfloat const* c) { Record("glColor3fv", c[0], c[1], c[2]); }
void glColor4fv(GLfloat const* c) { Record("glColor4fv", c[0], c[1], c[2], c[3]); }
void glEdgeFlag(GLboolean flag) { Record("glEdgeFlag", int{flag}); }

void glEnable(GLenum what) { Record("glEnable", Symbol(what)); }
void glDisable(GLenum what) { Record("glDisable", Symbol(what)); }
void glFrontFace(GLenum mode) { Record("glFrontFace", Symbol(mode)); }
void glShadeModel(GLenum mode) { Record("glShadeModel", Symbol(mode)); }
void glPolygonMode(GLenum face, GLenum mode) {
  Record("glPolygonMode", Symbol(face), Symbol(mode));
}
void glCullFace(GLenum face) { Record("glCullFace", Symbol(face)); }
void glBlendFunc(GLenum s, GLenum d) { Record("glBlendFunc", Symbol(s), Symbol(d)); }
void glPointSize(GLfloat size) { Record("glPointSize", size); }
void glLineWidth(GLfloat width) { Record("glLineWidth", width); }
void glLineStipple(GLint factor, GLushort pattern) { Record("glLineStipple", factor, pattern); }
void glHint(GLenum target, GLenum mode) { Record("glHint", Symbol(target), Symbol(mode)); }

void glMatrixMode(GLenum mode) { Record("glMatrixMode", Symbol(mode)); }
void glPushMatrix() { Record("glPushMatrix"); }
void glPopMatrix() { Record("glPopMatrix"); }
void glLoadIdentity() { Record("glLoadIdentity"); }
void glTranslated(GLdouble x, GLdouble y, GLdouble z) { Record("glTranslated", x, y, z); }
void glRotated(GLdouble a, GLdouble x, GLdouble y, GLdouble z) { Record("glRotated", a, x, y, z); }
void gluPerspective(GLdouble fovy, GLdouble aspect, GLdouble zNear, GLdouble zFar) {
  Record("gluPerspective", fovy, aspect, zNear, zFar);
}
void glPushAttrib(GLbitfield mask) { Record("glPushAttrib", Bits(mask)); }
void glPopAttrib() { Record("glPopAttrib"); }

void glClearColor(GLfloat r, GLfloat g, GLfloat b, GLfloat a) {
  Record("glClearColor", r, g, b, a);
}
void glClear(GLbitfield mask) { Record("glClear", Bits(mask)); }
void glScissor(GLint x, GLint y, GLsizei w, GLsizei h) { Record("glScissor", x, y, w, h); }
void glViewport(GLint x, GLint y, GLsizei w, GLsizei h) { Record("glViewport", x, y, w, h); }
void glFlush() { Record("glFlush"); }

void glLightfv(GLenum light, GLenum name, GLfloat const* v) {
  Record("glLightfv", Symbol(light), Symbol(name), v[0], v[1], v[2], v[3]);
}
void glLightModelfv(GLenum name, GLfloat const* v) {
  Record("glLightModelfv", Symbol(name), v[0], v[1], v[2], v[3]);
}
void glColorMaterial(GLenum face, GLenum mode) {
  Record("glColorMaterial", Symbol(face), Symbol(mode));
}

GLuint glGenLists(GLsizei range) {
  Record("glGenLists", range);
  GLuint const id = Lists().empty() ? 1 : *Lists().rbegin() + 1;
  for (GLsizei i = 0; i < range; ++i) Lists().insert(id + static_cast<GLuint>(i));
  return id;
}
void glNewList(GLuint id, GLenum mode) { Record("glNewList", id, Symbol(mode)); }
void glEndList() { Record("glEndList"); }
void glCallList(GLuint id) { Record("glCallList", id); }
GLboolean glIsList(GLuint id) {
  Record("glIsList", id);
  return Lists().contains(id) ? GL_TRUE : GL_FALSE;
}
void glDeleteLists(GLuint id, GLsizei range) {
  Record("glDeleteLists", id, range);
  for (GLsizei i = 0; i < range; ++i) Lists().erase(id + static_cast<GLuint>(i));
}

void glGetFloatv(GLenum name, GLfloat* values) {
  using namespace qeltin::testing;
  Record("glGetFloatv", Symbol(name));
  switch (name) {
    case GL_POINT_SIZE_RANGE:
      values[0] = RECORDED_POINT_SIZES[0];
      values[1] = RECORDED_POINT_SIZES[1];
      break;
    case GL_POINT_SIZE_GRANULARITY:
      values[0] = RECORDED_POINT_SIZE_STEP;
      break;
    case GL_LINE_WIDTH_RANGE:
      values[0] = RECORDED_LINE_WIDTHS[0];
      values[1] = RECORDED_LINE_WIDTHS[1];
      break;
    case GL_LINE_WIDTH_GRANULARITY:
      values[0] = RECORDED_LINE_WIDTH_STEP;
      break;
    default:
      break;
  }
}

// Of the extension loader, by its prototype.
GLenum glewInit() {
  Record("glewInit");
  return 0;
}

}  // extern "C"
