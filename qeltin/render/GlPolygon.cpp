#include "qeltin/render/GlPolygon.h"

#include "qeltin/products/TPolygon.h"
#include "qeltin/render/GlContext.h"
#include "qeltin/render/ReliefPen.h"

namespace {

GlColor ComplementOf(GlColor color) {
  color.SetRed(1.0f - color.GetRed());
  color.SetGreen(1.0f - color.GetGreen());
  color.SetBlue(1.0f - color.GetBlue());
  return color;
}

}  // namespace

void GlPolygon::Draw(GlContext const* context, double zScale) {
  int const count = m_pPolygon->GetSize();
  if (count == 0) return;
  m_Attributes.SetRC(context);
  context->BeginDrawLineStrip();
  qeltin::detail::ReliefPen const pen(*context, zScale);
  GlColor color = pen.ColorOf(m_pPolygon->Get(0)->z);
  if (m_bInvertColors) color = ComplementOf(color);
  for (int i = 0; i < count; ++i) {
    context->SetVertexColor(color);
    pen.Vertex(*m_pPolygon->Get(i));
  }
  context->EndDrawVertices();
}
