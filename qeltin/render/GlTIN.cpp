#include "qeltin/render/GlTIN.h"

#include "qeltin/render/GlContext.h"
#include "qeltin/render/ReliefPen.h"
#include "qeltin/tin/TIN.h"

using qeltin::detail::ReliefPen;

void GlTIN::Draw(GlContext const* context, double zScale) {
  m_Attributes.SetRC(context);
  if (m_Attributes.HasDrawMode(GlDrawingAttributes::FRONT_POINT)) {
    DrawPoints(*context, zScale);
  } else {
    DrawTriangles(*context, zScale);
  }
}

void GlTIN::DrawPoints(GlContext const& context, double zScale) const {
  ReliefPen const pen(context, zScale);
  context.BeginDrawPoints();
  context.SetVertexNormal(TPoint(0.0, 0.0, 1.0));
  int const count = m_pTIN->GetNumberOfPoints();
  for (int i = 0; i < count; ++i) {
    TPoint const& p = *m_pTIN->GetPoint(i);
    if (m_pTIN->InBounds(p)) pen.ColoredVertex(p);
  }
  context.EndDrawVertices();
}

void GlTIN::DrawTriangles(GlContext const& context, double zScale) const {
  ReliefPen const pen(context, zScale);
  context.BeginDrawTriangles();
  int const count = m_pTIN->GetNumberOfTriangles();
  for (int i = 0; i < count; ++i) {
    TTriangle const* const triangle = m_pTIN->GetTriangle(i, false);
    if (triangle == nullptr) continue;
    TPoint const normal = triangle->GetNormal();
    context.SetVertexNormal(normal.z < 0.0 ? TPoint(-normal.x, -normal.y, -normal.z) : normal);
    for (TPoint const* corner : triangle->m_pVertex) pen.ColoredVertex(*corner);
  }
  context.EndDrawVertices();
}
