#include "apps/qeltin/PlaneDistances.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_set>
#include <vector>

#include "qeltin/decimate/TPlane.h"

namespace qeltin::cli {

namespace {

constexpr int SAMPLES = 4000;
constexpr int LARGEST_FAN = 1000;

// Returns the neighbour of `t` across the side that begins at `centre`, or null.
TTriangle const* NextAround(TTriangle const& t, TPoint const* centre) {
  for (int k = 0; k < 3; ++k) {
    if (t.m_pVertex[k] == centre) return t.m_pAdjacent[k];
  }
  return nullptr;
}

// Fills `ring` with the neighbours of `centre`. Returns false where the fan is not closed, or
// reaches a hidden triangle.
bool CollectRing(TTriangle const* first, TPoint const* centre, std::vector<TPoint*>& ring) {
  ring.clear();
  TTriangle const* t = first;
  do {
    if (t == nullptr || t->IsHidden() || ring.size() > LARGEST_FAN) return false;
    for (int k = 0; k < 3; ++k) {
      if (t->m_pVertex[k] == centre) ring.push_back(t->m_pVertex[(k + 1) % 3]);
    }
    t = NextAround(*t, centre);
  } while (t != first);
  return true;
}

double DistanceOf(TTriangle const* t, TPoint const* p, std::vector<TPoint*>& ring) {
  TPlane plane;
  if (!CollectRing(t, p, ring) || plane.Fit(ring) == 0) {
    return std::numeric_limits<double>::infinity();
  }
  return std::fabs(plane.a * p->x + plane.b * p->y + plane.c - p->z) /
         std::sqrt(plane.a * plane.a + plane.b * plane.b + 1.0);
}

// Returns the distances in rising order, without the vertices that no error lets go.
std::vector<double> SampleDistances(TIN const& tin, double& share) {
  std::vector<double> distances;
  std::vector<TPoint*> ring;
  std::unordered_set<TPoint const*> seen;
  int const count = tin.GetNumberOfTriangles();
  int const step = std::max(1, count / SAMPLES);
  for (int i = 0; i < count; i += step) {
    TTriangle const* const t = tin.GetTriangle(i, false);
    if (t == nullptr) continue;
    for (TPoint const* corner : t->m_pVertex) {
      if (seen.insert(corner).second) distances.push_back(DistanceOf(t, corner, ring));
    }
  }
  std::erase_if(distances, [](double distance) { return !std::isfinite(distance); });
  std::sort(distances.begin(), distances.end());
  share = static_cast<double>(distances.size()) / static_cast<double>(seen.size());
  return distances;
}

}  // namespace

float ErrorFor(int wanted, int left, TIN const& tin) {
  constexpr double MOST_AT_ONCE = 0.2;
  double share = 0.0;
  std::vector<double> const distances = SampleDistances(tin, share);
  if (distances.empty()) return 0.0f;
  double const go = std::min((wanted + KEPT_AT_START) / (share * left), MOST_AT_ONCE);
  auto const rank = static_cast<std::size_t>(go * static_cast<double>(distances.size()));
  double const error = distances[std::min(rank, distances.size() - 1)];
  return std::nextafter(static_cast<float>(error), HUGE_VALF);
}

}  // namespace qeltin::cli
