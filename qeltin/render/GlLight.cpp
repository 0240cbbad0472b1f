#include "qeltin/render/GlLight.h"

#include <GL/gl.h>

#include <atomic>

namespace {

constexpr int LIGHTS = 8;
constinit std::atomic<bool> taken[LIGHTS] = {};  // by number, for the whole process

}  // namespace

GlLight::GlLight() { ReserveLightNumber(); }

GlLight::~GlLight() {
  if (m_iLightNumber != NO_NUMBER) taken[m_iLightNumber - GL_LIGHT0] = false;
}

GlLight::GlLight(GlLight const& other) { *this = other; }

GlLight& GlLight::operator=(GlLight const& other) {
  m_bEnabled = other.m_bEnabled;
  m_Ambient = other.m_Ambient;
  m_Diffuse = other.m_Diffuse;
  m_Specular = other.m_Specular;
  m_CS = other.m_CS;
  return *this;
}

bool GlLight::ReserveLightNumber() {
  for (int i = 0; i < LIGHTS; ++i) {
    if (taken[i].exchange(true)) continue;
    m_iLightNumber = GL_LIGHT0 + i;
    return true;
  }
  return false;
}

void GlLight::SetRC(GlContext* context) {
  if (m_iLightNumber == NO_NUMBER && !ReserveLightNumber()) return;
  if (!m_bEnabled) {
    glDisable(m_iLightNumber);
    return;
  }
  glEnable(m_iLightNumber);
  glMatrixMode(GL_MODELVIEW);
  glPushMatrix();
  m_CS.SetRC(context);
  static constexpr float ALONG_Z[4] = {0.0f, 0.0f, 1.0f, 0.0f};
  glLightfv(m_iLightNumber, GL_POSITION, ALONG_Z);
  glLightfv(m_iLightNumber, GL_AMBIENT, m_Ambient.GetArrayOf4());
  glLightfv(m_iLightNumber, GL_DIFFUSE, m_Diffuse.GetArrayOf4());
  glLightfv(m_iLightNumber, GL_SPECULAR, m_Specular.GetArrayOf4());
  glPopMatrix();
}
