#include <algorithm>

#include "qeltin/tin/Removal.h"
#include "qeltin/tin/TIN.h"

bool TIN::RemovePoint(TPoint const* point) {
  if (m_pPointMap == nullptr) return false;
  if (m_pRemoval == nullptr) m_pRemoval = std::make_unique<qeltin::detail::Removal>();
  return m_pRemoval->Remove(*this, point);
}

bool TIN::RemovePoint(TPoint const&) { return false; }

bool TIN::RemovePoint(double, double, double) { return false; }

bool TIN::PointIsOnHull(TPoint const* point) const {
  auto const& triangles = m_pPointMap->FindPoint(point).GetTriangles();
  return std::any_of(triangles.begin(), triangles.end(), [this](TTriangle const* t) {
    return t->m_pAdjacent[0] == nullptr || t->m_pAdjacent[1] == nullptr ||
           t->m_pAdjacent[2] == nullptr || !InBounds(*t->m_pVertex[0]) ||
           !InBounds(*t->m_pVertex[1]) || !InBounds(*t->m_pVertex[2]);
  });
}
