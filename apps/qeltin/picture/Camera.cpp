#include "apps/qeltin/picture/Camera.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "qeltin/render/GlViewer.h"

namespace qeltin::cli {

namespace {

constexpr double RADIANS = std::numbers::pi / 180.0;  // of a degree

}  // namespace

void Camera::ApplyTo(GlViewer& viewer) const {
  viewer.SetCS(frame);
  viewer.SetEyeFovy(fovy);
  viewer.SetEyeZNearAndFar(near, far);
}

GlCoord FrameFacing(Bearing const& from) {
  GlCoord frame;
  frame.RotateAboutZ((180.0 - from.azimuth) * RADIANS);
  frame.RotateAboutX((90.0 - from.elevation) * RADIANS);
  return frame;
}

GlCoord LightFrame(GlCoord const& eye, Bearing const& from) {
  TPoint const direction = FrameFacing(from) >> TPoint(0, 0, 1);
  TPoint const seen = eye << (eye.GetOrigin() + direction);
  GlCoord light;
  light.RotateAboutY(std::atan2(seen.x, seen.z));
  light.RotateAboutX(-std::asin(std::clamp(seen.y, -1.0, 1.0)));
  return light;
}

void CameraFit::Reach::Add(double a, double depth, bool first) {
  double const now_forth = a - tangent * depth;
  double const now_back = -a - tangent * depth;
  forth = first ? now_forth : std::max(forth, now_forth);
  back = first ? now_back : std::max(back, now_back);
}

CameraFit::CameraFit(Bearing const& from, double width, double height, double margin)
    : m_Facing(FrameFacing(from)) {
  constexpr double LONGER_SIDE = 35.0;  // degrees
  double const tangent = std::tan(LONGER_SIDE / 2.0 * RADIANS) / std::max(width, height);
  m_dFovy = 2.0 * std::atan(tangent * height) / RADIANS;
  m_Across.tangent = tangent * std::max(width - 2.0 * margin, 1.0);
  m_Up.tangent = tangent * std::max(height - 2.0 * margin, 1.0);
}

void CameraFit::Add(TPoint const& p) {
  TPoint const seen = m_Facing << p;
  double const depth = -seen.z;
  m_Across.Add(seen.x, depth, m_bFirst);
  m_Up.Add(seen.y, depth, m_bFirst);
  m_dNearest = m_bFirst ? depth : std::min(m_dNearest, depth);
  m_dFarthest = m_bFirst ? depth : std::max(m_dFarthest, depth);
  m_bFirst = false;
}

Camera CameraFit::Result() const {
  constexpr double CLOSEST = 1e-3;
  constexpr double SLACK = 0.02;
  double const place = Place();
  double const reach = std::max(m_dFarthest - place, 1e-6);
  Camera camera;
  camera.frame = m_Facing;
  camera.frame.SetOrigin(m_Facing >> TPoint(m_Across.Centre(), m_Up.Centre(), -place));
  camera.fovy = m_dFovy;
  camera.near = std::max((m_dNearest - place) * (1.0 - SLACK), reach * CLOSEST);
  camera.far = reach * (1.0 + SLACK);
  return camera;
}

TPoint CameraFit::Play() const {
  double const place = Place();
  return {std::max(m_Across.Play(place), 0.0), std::max(m_Up.Play(place), 0.0)};
}

void CameraCentring::Span::Add(Edge const& edge, bool first) {
  if (first || edge.seen < least.seen) least = edge;
  if (first || edge.seen > most.seen) most = edge;
}

// Returns how far to move for both edges to appear equally far from the middle.
double CameraCentring::Span::Shift() const {
  return (least.seen + most.seen) / (1.0 / least.depth + 1.0 / most.depth);
}

void CameraCentring::Add(TPoint const& p) {
  TPoint const seen = m_Camera.frame << p;
  double const depth = std::max(-seen.z, m_Camera.near);
  m_Across.Add({seen.x / depth, depth}, m_bFirst);
  m_Up.Add({seen.y / depth, depth}, m_bFirst);
  m_bFirst = false;
}

Camera CameraCentring::Result() const {
  Camera camera = m_Camera;
  camera.frame.MoveRight(std::clamp(m_Across.Shift(), -m_Play.x, m_Play.x));
  camera.frame.MoveUp(std::clamp(m_Up.Shift(), -m_Play.y, m_Play.y));
  return camera;
}

TopView::TopView(Box const& scene, double width, double height, double margin)
    : m_Centre((scene.min + scene.max) / 2.0),
      m_dRelief(std::max(std::fabs(scene.min.z), std::fabs(scene.max.z))),
      m_dWidth(width),
      m_dHeight(height) {
  TPoint const size = scene.max - scene.min;
  double const across = std::max(width - 2.0 * margin, 1.0) / size.x;
  double const up = std::max(height - 2.0 * margin, 1.0) / size.y;
  m_dScale = std::min(across, up);
}

Camera TopView::Eye() const {
  constexpr double DISPLACEMENT = 0.1;  // pixels
  double const half_height = m_dHeight / 2.0 / m_dScale;
  double const farthest_pixel = std::hypot(m_dWidth, m_dHeight) / 2.0;
  double const distance =
      std::max(m_dRelief * (farthest_pixel / DISPLACEMENT + 1.0), 10.0 * half_height);
  Camera camera;
  camera.frame.SetOrigin(TPoint(m_Centre.x, m_Centre.y, distance));
  camera.fovy = 2.0 * std::atan(half_height / distance) / RADIANS;
  camera.near = distance / 2.0;
  camera.far = distance * 2.0;
  return camera;
}

TPoint TopView::PixelOf(TPoint const& p) const {
  return {m_dWidth / 2.0 + (p.x - m_Centre.x) * m_dScale,
          m_dHeight / 2.0 - (p.y - m_Centre.y) * m_dScale, 0.0};
}

}  // namespace qeltin::cli
