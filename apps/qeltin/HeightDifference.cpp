#include "apps/qeltin/HeightDifference.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "apps/qeltin/Surface.h"

namespace qeltin::cli {

std::vector<TPoint> VerticesOf(TIN const& tin) {
  std::vector<TPoint const*> corners;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const t = tin.GetTriangle(i, true);
    corners.insert(corners.end(), std::begin(t->m_pVertex), std::end(t->m_pVertex));
  }
  std::sort(corners.begin(), corners.end());
  corners.erase(std::unique(corners.begin(), corners.end()), corners.end());
  Box world;
  tin.GetWorldBounds(world.min, world.max);
  std::vector<TPoint> vertices;
  for (TPoint const* corner : corners) {
    if (!IsSeedCorner(*corner, world)) vertices.push_back(*corner);
  }
  std::sort(vertices.begin(), vertices.end());
  return vertices;
}

HeightDifference CompareHeights(std::vector<TPoint> const& before, TIN const& after) {
  std::vector<TPoint> const kept = VerticesOf(after);
  std::vector<TPoint> gone;
  std::set_difference(before.begin(), before.end(), kept.begin(), kept.end(),
                      std::back_inserter(gone));
  HeightDifference difference;
  difference.removed = static_cast<long long>(gone.size());
  double sum = 0.0;
  for (TPoint const& p : gone) {
    double z = 0.0;
    if (!after.GetZ(p, z, nullptr)) {
      ++difference.beside;
      continue;
    }
    double const size = std::fabs(z - p.z);
    sum += size;
    if (size > difference.largest) {
      difference.largest = size;
      difference.place = p;
    }
  }
  long long const compared = difference.removed - difference.beside;
  if (compared > 0) difference.mean = sum / static_cast<double>(compared);
  return difference;
}

}  // namespace qeltin::cli
