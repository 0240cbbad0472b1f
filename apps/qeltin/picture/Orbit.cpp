#include "apps/qeltin/picture/Orbit.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace qeltin::cli {

namespace {

constexpr double RADIANS = std::numbers::pi / 180.0;  // of a degree

// Returns how far the points of a box reach before an eye, along its line of sight.
std::pair<double, double> Depths(GlCoord const& frame, Box const& box) {
  double nearest = HUGE_VAL;
  double farthest = -HUGE_VAL;
  for (double const x : {box.min.x, box.max.x}) {
    for (double const y : {box.min.y, box.max.y}) {
      for (double const z : {box.min.z, box.max.z}) {
        double const depth = -(frame << TPoint(x, y, z)).z;
        nearest = std::min(nearest, depth);
        farthest = std::max(farthest, depth);
      }
    }
  }
  return {nearest, farthest};
}

}  // namespace

Orbit::Orbit(Camera const& camera, Bearing const& from)
    : m_From(from),
      m_dFovy(camera.fovy),
      m_dDistance(std::max(-(camera.frame << TPoint(0, 0, 0)).z, camera.near)) {
  m_Pivot = camera.frame >> TPoint(0, 0, -m_dDistance);
}

void Orbit::Turn(double right, double down) {
  constexpr double DEGREES_PER_PIXEL = 0.3;
  m_From.azimuth = std::fmod(m_From.azimuth + right * DEGREES_PER_PIXEL, 360.0);
  m_From.elevation = std::clamp(m_From.elevation + down * DEGREES_PER_PIXEL, 0.0, 90.0);
}

void Orbit::Pan(double right, double down, double height) {
  double const pixel = 2.0 * m_dDistance * std::tan(m_dFovy / 2.0 * RADIANS) / height;
  m_Pivot = m_Pivot + (FrameFacing(m_From) >> TPoint(-right * pixel, down * pixel, 0));
}

void Orbit::Zoom(double factor, TPoint const& fixed, double reach) {
  constexpr double NEAREST = 1e-5;
  constexpr double FARTHEST = 1e2;
  double const distance = m_dDistance * factor;
  if (distance < reach * NEAREST || distance > reach * FARTHEST) return;
  m_dDistance = distance;
  m_Pivot = fixed + (m_Pivot - fixed) * factor;
}

Camera Orbit::Eye(Box const& scene) const {
  constexpr double SLACK = 1e-3;
  constexpr double CLOSEST = 1e-3;  // of the farthest: what is nearer could not be told apart there
  constexpr double BEFORE_PIVOT = 0.05;
  Camera camera;
  camera.fovy = m_dFovy;
  camera.frame = FrameFacing(m_From);
  camera.frame.SetOrigin(m_Pivot + (camera.frame >> TPoint(0, 0, m_dDistance)));
  auto const [nearest, farthest] = Depths(camera.frame, scene);
  camera.far = std::max(farthest, m_dDistance) * (1.0 + SLACK);
  camera.near =
      std::max(nearest * (1.0 - SLACK), std::min(camera.far * CLOSEST, m_dDistance * BEFORE_PIVOT));
  return camera;
}

}  // namespace qeltin::cli
