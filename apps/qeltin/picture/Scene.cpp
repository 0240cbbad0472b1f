#include "apps/qeltin/picture/Scene.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/OutlineReader.h"
#include "apps/qeltin/picture/Camera.h"
#include "apps/qeltin/picture/Colours.h"
#include "qeltin/render/GlContext.h"
#include "qeltin/render/GlLight.h"

namespace qeltin::cli {

namespace {

// Of the light that level ground gets, all of which is 1.
constexpr float FROM_EVERYWHERE = 0.45f;

Box VisibleBox(TIN const& tin) {
  Extent extent;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const triangle = tin.GetTriangle(i, false);
    if (triangle == nullptr) continue;
    for (TPoint const* corner : triangle->m_pVertex) {
      extent.Add({corner->x, corner->y, corner->z});
    }
  }
  return extent.Bounds();
}

// Throws Failure where single precision cannot carry the surface, or there is nothing to see of it.
void RequireExtent(Box const& bounds, std::string const& file) {
  constexpr double LARGEST = 1e30;
  TPoint const size = bounds.max - bounds.min;
  bool const is_sound = size.x < LARGEST && size.y < LARGEST && size.z < LARGEST;
  if (!is_sound) throw Failure(file, "cannot be drawn: its coordinates are beyond 1e30");
  if (!(size.x + size.y > 0.0)) throw Failure(file, "its bounds have no extent");
}

HeldSurface OpenOther(SceneOptions const& options) {
  if (options.mesh_of.empty()) return nullptr;
  HeldSurface other = OpenSurface(options.mesh_of, options);
  RequireVisible(*other, options.mesh_of);
  return other;
}

GlColor Grey(float value) { return {value, value, value, 1.0f}; }

}  // namespace

Scene::Scene(TIN& tin, SceneOptions const& options)
    : m_Tin(tin),
      m_Options(options),
      m_dExaggeration(options.exaggeration),
      m_dInterval(options.contours) {
  RequireVisible(tin, options.surface);
  m_Bounds = VisibleBox(tin);
  RequireExtent(m_Bounds, options.surface);
  m_Centre = (m_Bounds.min + m_Bounds.max) / 2.0;
  Colours const colours = ColoursFor(options.colours, m_Bounds.min.z, m_Bounds.max.z);
  m_Colours = colours.table;
  m_ColoursName = colours.name;
  m_pOther = OpenOther(options);
  if (options.grid > 0.0) m_pGrid = std::make_unique<TGrid>(tin, options.grid, options.grid);
  for (std::string const& file : options.lines) {
    std::vector<TPolygon> const lines = ReadLines(file);
    m_Lines.insert(m_Lines.end(), lines.begin(), lines.end());
  }
}

Scene::~Scene() = default;

unsigned Scene::Layers() const {
  unsigned layers = SURFACE;
  if (m_Options.mesh) layers |= MESH;
  if (m_pOther != nullptr) layers |= MESH_OF;
  if (m_Options.contours > 0.0) layers |= CONTOURS;
  if (!m_Lines.empty()) layers |= LINES;
  return layers;
}

void Scene::Draw(GlContext& context, unsigned layers) const {
  glEnable(GL_NORMALIZE);
  // What lies on the surface stays in front of it, and contours in front of the mesh.
  glEnable(GL_POLYGON_OFFSET_FILL);
  glEnable(GL_POLYGON_OFFSET_LINE);
  glPushMatrix();
  glScaled(1.0, 1.0, m_dExaggeration);
  glTranslated(0.0, 0.0, -m_Centre.z);
  for (int i = 0; i < LAYERS; ++i) {
    if ((layers & 1U << i) == 0) continue;
    float const behind = 1U << i == SURFACE ? 2.0f : 1.0f;
    glPolygonOffset(behind, 2.0f * behind);
    context.DrawCompiledList(m_Lists[i]);
  }
  glPopMatrix();
}

void Scene::SetLight(GlContext& context, GlCoord const& eye) const {
  constexpr double STRONGEST = 1.2;
  context.EnableLighting(m_Options.light.has_value());
  if (!m_Options.light) return;
  context.SetAmbientLight(Grey(FROM_EVERYWHERE));
  GlLight* light = context.GetLight(0);
  if (light == nullptr) light = context.CreateLight();
  double const share = std::sin(m_Options.light->elevation * std::numbers::pi / 180.0);
  double const direct = std::min((1.0 - FROM_EVERYWHERE) / std::max(share, 1e-9), STRONGEST);
  light->SetAmbientLight(Grey(0.0f));
  light->SetDiffuseLight(Grey(static_cast<float>(direct)));
  light->SetCS(LightFrame(eye, *m_Options.light));
}

TPoint Scene::ToScene(TPoint const& p) const {
  return {p.x - m_Centre.x, p.y - m_Centre.y, (p.z - m_Centre.z) * m_dExaggeration};
}

TPoint Scene::FromScene(TPoint const& p) const {
  return {p.x + m_Centre.x, p.y + m_Centre.y, p.z / m_dExaggeration + m_Centre.z};
}

}  // namespace qeltin::cli
