#include "qeltin/render/ReliefPen.h"

#include <cstdint>

#include "qeltin/render/GlContext.h"

namespace qeltin::detail {

namespace {

float Channel(std::uint32_t color, int shift) {
  return static_cast<float>(color >> shift & 0xFF) / 255.0f;
}

}  // namespace

ReliefPen::ReliefPen(GlContext const& context, double zScale)
    : m_Context(context), m_dRefZ(context.RefZ()), m_dScale(zScale) {}

GlColor ReliefPen::ColorOf(double z) const {
  std::uint32_t const color = m_Context.GetColorTable().GetColor(z);
  return {Channel(color, 0), Channel(color, 8), Channel(color, 16), 1.0f};
}

void ReliefPen::Vertex(TPoint const& p) const {
  m_Context.Vertex(p.x, p.y, (p.z - m_dRefZ) * m_dScale + m_dRefZ);
}

void ReliefPen::ColoredVertex(TPoint const& p) const {
  m_Context.SetVertexColor(ColorOf(p.z));
  Vertex(p);
}

}  // namespace qeltin::detail
