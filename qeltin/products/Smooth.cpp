#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <optional>

#include "qeltin/products/ContainmentIndex.h"
#include "qeltin/tin/TIN.h"

namespace {

TPoint CentroidOf(TTriangle const& t) {
  TPoint const& a = *t.m_pVertex[0];
  TPoint const& b = *t.m_pVertex[1];
  TPoint const& c = *t.m_pVertex[2];
  return {(a.x + b.x + c.x) / 3.0, (a.y + b.y + c.y) / 3.0, (a.z + b.z + c.z) / 3.0};
}

// Returns an empty surface for so many points, or null where memory is refused.
std::unique_ptr<TIN> MakeSurface(TPoint const& min, TPoint const& max, long long points) {
  constexpr long long MOST = std::numeric_limits<int>::max();
  return std::unique_ptr<TIN>(new (std::nothrow)
                                  TIN(min, max, static_cast<int>(std::min(points, MOST))));
}

}  // namespace

TIN* TIN::CreateSmooth(TPolygon const* polygon) const {
  std::unique_ptr<TIN> smooth =
      MakeSurface(m_WorldMin, m_WorldMax, 0LL + GetNumberOfTriangles() + 1000);
  if (smooth == nullptr || !smooth->m_pPoints->IsAllocated() ||
      !smooth->m_pTriangles->IsAllocated()) {
    return nullptr;
  }
  std::optional<qeltin::detail::ContainmentIndex> inside;
  if (polygon != nullptr) inside.emplace(*polygon);
  for (int i = 0; i < GetNumberOfTriangles(); ++i) {
    TTriangle const& t = *GetTriangle(i, true);
    if (!InBounds(t)) continue;
    TPoint const centroid = CentroidOf(t);
    if (!inside || inside->Contains(centroid.x, centroid.y)) smooth->AddPoint(centroid);
  }
  return smooth.release();
}
