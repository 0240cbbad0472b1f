#include "qeltin/products/EarClipping.h"
#include "qeltin/products/TPolygon.h"

bool TPolygon::Triangulate(std::vector<TPoint>& triangles) const {
  triangles.clear();
  if (m_pPoints->size() < 3) return false;
  qeltin::detail::EarClipping(*m_pPoints).Run(triangles);
  return true;
}
