#include "qeltin/render/GlCoord.h"

#include <GL/gl.h>

#include <cmath>
#include <initializer_list>

#include "qeltin/kernel/Angles.h"
#include "qeltin/kernel/TMath.h"

namespace {

// Not TMath::RestoreAngle, which takes a cosine that rounding carried past 1 as one below 0.
double AngleOf(double sine, double cosine) {
  double const t = std::asin(sine);
  return std::acos(cosine) > qeltin::detail::HALF_PI ? qeltin::detail::PI - t : t;
}

void TurnAboutX(TPoint& v, double angle) {
  double const y = v.y * std::cos(angle) - v.z * std::sin(angle);
  double const z = v.y * std::sin(angle) + v.z * std::cos(angle);
  v.y = y;
  v.z = z;
}

void TurnAboutY(TPoint& v, double angle) {
  double const z = v.z * std::cos(angle) - v.x * std::sin(angle);
  double const x = v.z * std::sin(angle) + v.x * std::cos(angle);
  v.z = z;
  v.x = x;
}

}  // namespace

void GlCoord::GetRotation(double& x, double& y, double& z) const {
  x = m_dRotX;
  y = m_dRotY;
  z = m_dRotZ;
}

void GlCoord::ResetRotation() { m_dRotX = m_dRotY = m_dRotZ = 0.0; }

void GlCoord::SetOrigin(TPoint const& origin) {
  m_dOriginX = origin.x;
  m_dOriginY = origin.y;
  m_dOriginZ = origin.z;
}

void GlCoord::MoveRight(double distance) {
  if (distance != 0.0) SetOrigin(*this >> TPoint(distance, 0.0, 0.0));
}

void GlCoord::MoveUp(double distance) {
  if (distance != 0.0) SetOrigin(*this >> TPoint(0.0, distance, 0.0));
}

void GlCoord::MoveForward(double distance) {
  if (distance != 0.0) SetOrigin(*this >> TPoint(0.0, 0.0, -distance));
}

void GlCoord::RotateAboutX(double angle) {
  if (angle == 0.0) return;
  double const c = std::cos(angle);
  double const s = std::sin(angle);
  TPoint x(1.0, 0.0, 0.0);
  TPoint y(0.0, c, s);
  TPoint z(0.0, -s, c);
  CalcRotation(x, y, z);
}

void GlCoord::RotateAboutY(double angle) {
  if (angle == 0.0) return;
  double const c = std::cos(angle);
  double const s = std::sin(angle);
  TPoint x(c, 0.0, -s);
  TPoint y(0.0, 1.0, 0.0);
  TPoint z(s, 0.0, c);
  CalcRotation(x, y, z);
}

void GlCoord::RotateAboutZ(double angle) {
  if (angle == 0.0) return;
  double const c = std::cos(angle);
  double const s = std::sin(angle);
  TPoint x(c, s, 0.0);
  TPoint y(-s, c, 0.0);
  TPoint z(0.0, 0.0, 1.0);
  CalcRotation(x, y, z);
}

void GlCoord::Rotate(double angle, TPoint const& axis, TPoint const& origin) {
  TPoint x(1.0, 0.0, 0.0);
  TPoint y(0.0, 1.0, 0.0);
  TPoint z(0.0, 0.0, 1.0);
  TPoint centre;
  for (TPoint* p : {&x, &y, &z, &centre}) p->Rotate(angle, axis, origin);
  for (TPoint* p : {&x, &y, &z}) *p = *p - centre;

  TPoint const moved = *this >> centre;  // by the rotation before the turn
  CalcRotation(x, y, z);
  SetOrigin(moved);
}

void GlCoord::CalcRotation(TPoint& x, TPoint& y, TPoint& z) {
  for (TPoint* v : {&x, &y, &z}) *v = (*this >> *v) - GetOrigin();

  m_dRotX = 0.0;
  if (z.y != 0.0 || z.z != 0.0) {
    double const r = std::sqrt(z.y * z.y + z.z * z.z);
    m_dRotX = -AngleOf(z.y / r, z.z / r);
  }
  for (TPoint* v : {&x, &y, &z}) TurnAboutX(*v, -m_dRotX);

  m_dRotY = 0.0;
  if (z.x != 0.0 || z.z != 0.0) {
    double const r = std::sqrt(z.x * z.x + z.z * z.z);
    m_dRotY = -AngleOf(-z.x / r, z.z / r);
  }
  for (TPoint* v : {&x, &y, &z}) TurnAboutY(*v, -m_dRotY);

  m_dRotZ = 0.0;
  if (x.x != 0.0 || x.y != 0.0) {
    double const r = std::sqrt(x.x * x.x + x.y * x.y);
    m_dRotZ = AngleOf(x.y / r, x.x / r);
  }
}

void GlCoord::SetRC(GlContext* /*context*/) const {
  glTranslated(m_dOriginX, m_dOriginY, m_dOriginZ);
  glRotated(m_dRotX * TMath::RAD_TO_DEG, 1.0, 0.0, 0.0);
  glRotated(m_dRotY * TMath::RAD_TO_DEG, 0.0, 1.0, 0.0);
  glRotated(m_dRotZ * TMath::RAD_TO_DEG, 0.0, 0.0, 1.0);
}

void GlCoord::ResetRC(GlContext* /*context*/) const {
  glRotated(-m_dRotZ * TMath::RAD_TO_DEG, 0.0, 0.0, 1.0);
  glRotated(-m_dRotY * TMath::RAD_TO_DEG, 0.0, 1.0, 0.0);
  glRotated(-m_dRotX * TMath::RAD_TO_DEG, 1.0, 0.0, 0.0);
  glTranslated(-m_dOriginX, -m_dOriginY, -m_dOriginZ);
}

TPoint operator>>(GlCoord const& frame, TPoint const& p) {
  double const sa = std::sin(frame.m_dRotX), ca = std::cos(frame.m_dRotX);
  double const sb = std::sin(frame.m_dRotY), cb = std::cos(frame.m_dRotY);
  double const sc = std::sin(frame.m_dRotZ), cc = std::cos(frame.m_dRotZ);
  double const x1 = p.x * cc - p.y * sc;
  double const y1 = p.y * cc + p.x * sc;
  double const z2 = p.z * cb - x1 * sb;
  double const x2 = x1 * cb + p.z * sb;
  double const y3 = y1 * ca - z2 * sa;
  double const z3 = y1 * sa + z2 * ca;
  return {x2 + frame.m_dOriginX, y3 + frame.m_dOriginY, z3 + frame.m_dOriginZ};
}

TPoint operator<<(GlCoord const& frame, TPoint const& p) {
  double const sa = std::sin(frame.m_dRotX), ca = std::cos(frame.m_dRotX);
  double const sb = std::sin(frame.m_dRotY), cb = std::cos(frame.m_dRotY);
  double const sc = std::sin(frame.m_dRotZ), cc = std::cos(frame.m_dRotZ);
  double const dx = p.x - frame.m_dOriginX;
  double const dy = p.y - frame.m_dOriginY;
  double const dz = p.z - frame.m_dOriginZ;
  double const y1 = dz * sa + dy * ca;
  double const z1 = dz * ca - dy * sa;
  double const z2 = z1 * cb + dx * sb;
  double const x2 = dx * cb - z1 * sb;
  return {x2 * cc + y1 * sc, y1 * cc - x2 * sc, z2};
}
