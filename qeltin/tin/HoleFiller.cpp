#include "qeltin/tin/HoleFiller.h"

#include <limits>

namespace qeltin::detail {

namespace {

constexpr double LARGEST_RADIUS = 9e20;  // no ear is taken from here on

// Returns the triangle of three successive corners of the ring, as they are.
TTriangle TriangleAt(std::vector<TPoint*> const& ring, std::size_t position) {
  std::size_t const n = ring.size();
  std::size_t const middle = position + 1 < n ? position + 1 : 0;
  std::size_t const last = middle + 1 < n ? middle + 1 : 0;
  return {ring[position], ring[middle], ring[last]};
}

double RadiusAt(std::vector<TPoint*> const& ring, std::size_t position) {
  return TriangleAt(ring, position).XY_CircumcircleRadius();
}

TTriangle ClockwiseAt(std::vector<TPoint*> const& ring, std::size_t position) {
  TTriangle t = TriangleAt(ring, position);
  t.SortVertices();
  return t;
}

}  // namespace

bool HoleFiller::Fill(Ring& ring, std::vector<TTriangle>& result) {
  result.clear();
  if (ring.size() < 3) return false;
  m_Positions.clear();
  m_Radii.clear();
  for (std::size_t i = 0; i < ring.size(); ++i) {
    m_Positions.push_back(*ring[i]);
    m_Radii.push_back(RadiusAt(ring, i));
  }
  m_Polygon = m_Positions;

  while (ring.size() > 3) {
    std::optional<Ear> const ear = SmallestEar(ring);
    if (ear) {
      result.push_back(ear->triangle);
      result.back().CalcTri();
    } else if (!result.empty()) {
      result.push_back(TTriangle(result.back()));  // the last one again, not the corners clipped
    } else {
      result.push_back(ClockwiseAt(ring, 0));
      result.back().CalcTri();
    }
    Clip(ring, ((ear ? ear->position : 0) + 1) % ring.size());
  }
  result.push_back(ClockwiseAt(ring, 0));
  result.back().CalcTri();
  return result.size() / 3 == static_cast<std::size_t>(m_Polygon.GetSize()) - 2;
}

// Asks the corners in the order of their radii, those of one radius in ring order.
std::optional<HoleFiller::Ear> HoleFiller::SmallestEar(Ring const& ring) const {
  std::size_t const n = ring.size();
  double asked = -std::numeric_limits<double>::infinity();
  std::size_t after = n;  // of the corners with the radius `asked`, those from here on are left
  for (;;) {
    std::size_t best = n;
    double radius = LARGEST_RADIUS;
    for (std::size_t i = 0; i < n; ++i) {
      double const r = m_Radii[i];
      if (r < radius && (r > asked || (r == asked && i >= after))) {
        radius = r;
        best = i;
      }
    }
    if (best == n) return std::nullopt;
    TTriangle ear = ClockwiseAt(ring, best);
    ear.m_RadiusSq = radius;
    if (IsEar(ring, best, ear)) return Ear{best, ear};
    asked = radius;
    after = best + 1;
  }
}

// The circle of `ear` is not calculated: its centre is (0, 0) and its squared radius the radius.
// So only corners of the ring that lie that close to the origin can be in the way.
bool HoleFiller::IsEar(Ring const& ring, std::size_t position, TTriangle const& ear) const {
  for (TPoint const* p : ring) {
    if (!ear.XY_FindVertex(p) && ear.XY_HasPoint(*p)) return false;
  }
  std::size_t const n = ring.size();
  TPoint const& a = *ring[position];
  TPoint const& c = *ring[(position + 2) % n];
  return m_Polygon.PointInPolygon(TPoint((a.x + c.x) / 2, (a.y + c.y) / 2));
}

void HoleFiller::Clip(Ring& ring, std::size_t middle) {
  auto const at = static_cast<std::ptrdiff_t>(middle);
  ring.erase(ring.begin() + at);
  m_Radii.erase(m_Radii.begin() + at);
  m_Polygon.Remove(static_cast<int>(middle));
  std::size_t const n = ring.size();
  if (n == 3) return;
  for (std::size_t back = 1; back <= 2; ++back) {
    std::size_t const i = (middle + n - back) % n;
    m_Radii[i] = RadiusAt(ring, i);
  }
}

}  // namespace qeltin::detail
