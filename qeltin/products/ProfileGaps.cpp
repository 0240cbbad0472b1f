#include "qeltin/products/ProfileTracer.h"
#include "qeltin/tin/PlanRay.h"

namespace qeltin::detail {

// Moves the ends of the line that lie off every triangle to where it meets the surface. Returns
// false where it does not.
bool ProfileTracer::FindSurface() {
  Crossings const found = Scan();
  if (m_pFirst == nullptr) {
    if (found.nearest.triangle == nullptr) return false;
    m_From = PlaceAt(found.nearest.along);
    m_pFirst = HolderOfStart(found.nearest.triangle);
  }
  if (m_pLast == nullptr) {
    if (found.farthest.triangle == nullptr) return false;
    m_To = PlaceAt(found.farthest.along);
    m_pLast = HolderOfStart(found.farthest.triangle);  // the start, not the end
  }
  return true;
}

// Looks at every triangle until both ends are known, and takes those that hold one. Returns where
// the line meets the surface first and last.
ProfileTracer::Crossings ProfileTracer::Scan() {
  Crossings found{{nullptr, m_dLength}, {nullptr, 0.0}};
  int const triangles = m_Tin.GetNumberOfTriangles();
  for (int i = 0; i < triangles && (m_pFirst == nullptr || m_pLast == nullptr); ++i) {
    TTriangle* const t = m_Tin.GetTriangle(i, true);
    if (t->XY_HasPoint(m_From)) m_pFirst = t;
    if (t->XY_HasPoint(m_To)) m_pLast = t;
    if (m_pFirst == nullptr || m_pLast == nullptr) ScanSides(t, found);
  }
  return found;
}

void ProfileTracer::ScanSides(TTriangle* t, Crossings& found) const {
  PlanRay const ray{m_From.x, m_From.y, m_dUx, m_dUy};
  PlanRay::Sight const corners[3] = {ray.See(*t->m_pVertex[0]), ray.See(*t->m_pVertex[1]),
                                     ray.See(*t->m_pVertex[2])};
  for (int const side : {2, 0, 1}) {
    auto const& a = corners[side];
    auto const& b = corners[(side + 1) % 3];
    if (!(a.across * b.across <= 0.0)) continue;
    double const along = a.along + (b.along - a.along) * a.across / (a.across - b.across);
    if (m_pFirst == nullptr && 0.0 < along && along < found.nearest.along) {
      found.nearest = {t, along};
    }
    if (m_pLast == nullptr && found.farthest.along < along && along < m_dLength) {
      found.farthest = {t, along};
    }
  }
}

// Returns `t`, or the first neighbour of it that holds the start where `t` does not.
TTriangle* ProfileTracer::HolderOfStart(TTriangle* t) const {
  if (t->XY_HasPoint(m_From)) return t;
  for (TTriangle* const neighbour : t->m_pAdjacent) {
    if (neighbour != nullptr && neighbour->XY_HasPoint(m_From)) return neighbour;
  }
  return t;
}

}  // namespace qeltin::detail
