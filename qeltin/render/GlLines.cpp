#include "qeltin/render/GlLines.h"

#include "qeltin/products/TPolygon.h"
#include "qeltin/render/GlContext.h"

void GlLines::Draw(GlContext const* context, double zScale) {
  m_Attributes.SetRC(context);
  context->BeginDrawLines();
  int const count = m_pPolygon->GetSize();
  for (int i = 0; i < count; ++i) {
    TPoint const& p = *m_pPolygon->Get(i);
    context->SetVertexColor(m_Color);
    context->Vertex(p.x, p.y, p.z * zScale);  // about 0, not about the reference height
  }
  context->EndDrawVertices();
}
