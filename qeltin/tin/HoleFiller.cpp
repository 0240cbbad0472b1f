#include "qeltin/tin/HoleFiller.h"

#include <algorithm>
#include <limits>

#include "qeltin/kernel/SideTest.h"

namespace qeltin::detail {

namespace {

constexpr double LARGEST_RADIUS = 9e20;  // no ear is taken from here on
constexpr double UNKNOWN = -1.0;
constexpr double NEVER = std::numeric_limits<double>::infinity();

// What the sine of the angle at corner 2 comes to differs from the sine by less than 2e-15. So
// where that is above 1e-6 the square of the radius is right up to 1e-8 of it. Beside 1 rounding
// can make the radius none.
constexpr double SMALLEST_SINE_SQUARE = 1e-12;
constexpr double LARGEST_SINE_SQUARE = 1.0 - 1e-9;
constexpr double CERTAIN = 1.0 - 1e-7;  // a square below this share of another one is the smaller

// Returns the triangle of three successive corners of the ring, as they are.
TTriangle TriangleAt(std::vector<TPoint*> const& ring, std::size_t position) {
  std::size_t const n = ring.size();
  std::size_t const middle = position + 1 < n ? position + 1 : 0;
  std::size_t const last = middle + 1 < n ? middle + 1 : 0;
  return {ring[position], ring[middle], ring[last]};
}

TTriangle ClockwiseAt(std::vector<TPoint*> const& ring, std::size_t position) {
  TTriangle t = TriangleAt(ring, position);
  TPoint* const* const corner = t.m_pVertex;
  if (CertainSide(*corner[0], *corner[1], *corner[2]) != Side::Right) t.SortVertices();
  return t;
}

double Square(double x, double y) { return x * x + y * y; }

bool IsInScale(double square) { return square > 1e-60 && square < 1e60; }

}  // namespace

bool HoleFiller::Fill(Ring& ring, std::vector<TTriangle>& result) {
  result.clear();
  m_Ears.clear();
  if (ring.size() < 3) return false;
  m_Positions.clear();
  m_Radii.clear();
  m_dNearest = NEVER;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    m_Positions.push_back(*ring[i]);
    m_Radii.push_back(EstimateAt(ring, i));
    m_dNearest = std::min(Square(ring[i]->x, ring[i]->y), m_dNearest);
  }
  m_Polygon = m_Positions;

  while (ring.size() > 3) {
    std::optional<std::size_t> const ear = SmallestEar(ring);
    if (ear || result.empty()) {
      result.push_back(ClockwiseAt(ring, ear.value_or(0)));
      result.back().CalcTri();
    } else {
      result.push_back(TTriangle(result.back()));  // the last one again, not the corners clipped
    }
    if (ear) m_Ears.push_back(*ear);
    Clip(ring, (ear.value_or(0) + 1) % ring.size());
  }
  result.push_back(ClockwiseAt(ring, 0));
  result.back().CalcTri();
  return result.size() / 3 == static_cast<std::size_t>(m_Polygon.GetSize()) - 2;
}

HoleFiller::Radius HoleFiller::EstimateAt(Ring const& ring, std::size_t position) const {
  TTriangle const t = TriangleAt(ring, position);
  TPoint const& a = *t.m_pVertex[0];
  TPoint const& b = *t.m_pVertex[1];
  TPoint const& c = *t.m_pVertex[2];
  double const ax = a.x - c.x;
  double const ay = a.y - c.y;
  double const bx = b.x - c.x;
  double const by = b.y - c.y;
  double const p = Square(ax, ay);
  double const q = Square(bx, by);
  double const side = Square(a.x - b.x, a.y - b.y);
  double const cross = by * ax - bx * ay;
  double const sine = cross * cross;
  if (IsInScale(p) && IsInScale(q) && IsInScale(side) && sine > SMALLEST_SINE_SQUARE * (p * q) &&
      sine < LARGEST_SINE_SQUARE * (p * q)) {
    double const square = side * (p * q) / (4.0 * sine);
    if (square < LARGEST_RADIUS * LARGEST_RADIUS * CERTAIN) return {square, UNKNOWN, false};
  }
  double const radius = t.XY_CircumcircleRadius();
  return {radius < LARGEST_RADIUS ? radius * radius : NEVER, radius, false};
}

double HoleFiller::ExactAt(Ring const& ring, std::size_t position) {
  double& radius = m_Radii[position].exact;
  if (radius == UNKNOWN) radius = TriangleAt(ring, position).XY_CircumcircleRadius();
  return radius;
}

bool HoleFiller::IsSmaller(Ring const& ring, std::size_t position, std::size_t than) {
  double const square = m_Radii[position].square;
  double const other = m_Radii[than].square;
  if (square < other * CERTAIN) return true;
  if (other < square * CERTAIN) return false;
  return ExactAt(ring, position) < ExactAt(ring, than);
}

// Asks the corners in the order of their radii, those of one radius in ring order.
std::optional<std::size_t> HoleFiller::SmallestEar(Ring const& ring) {
  std::size_t const n = ring.size();
  for (Radius& radius : m_Radii) radius.refused = radius.square == NEVER;
  for (;;) {
    std::size_t best = n;
    for (std::size_t i = 0; i < n; ++i) {
      if (m_Radii[i].refused) continue;
      if (best == n || IsSmaller(ring, i, best)) best = i;
    }
    if (best == n) return std::nullopt;
    if (IsEar(ring, best)) return best;
    m_Radii[best].refused = true;
  }
}

bool HoleFiller::IsEar(Ring const& ring, std::size_t position) {
  bool const allAreFar = m_dNearest * m_dNearest * CERTAIN > m_Radii[position].square;
  if (!allAreFar && HasCornerInTheWay(ring, position)) return false;
  TTriangle const t = TriangleAt(ring, position);
  TPoint const& a = *t.m_pVertex[0];
  TPoint const& c = *t.m_pVertex[2];
  return m_Polygon.PointInPolygon(TPoint((a.x + c.x) / 2, (a.y + c.y) / 2));
}

// The circle of the ear is not calculated: its centre is (0, 0) and its squared radius the radius.
// So only corners of the ring that lie that close to the origin can be in the way.
bool HoleFiller::HasCornerInTheWay(Ring const& ring, std::size_t position) {
  TTriangle ear = ClockwiseAt(ring, position);
  ear.m_RadiusSq = ExactAt(ring, position);
  return std::any_of(ring.begin(), ring.end(),
                     [&](TPoint const* p) { return !ear.XY_FindVertex(p) && ear.XY_HasPoint(*p); });
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
    m_Radii[i] = EstimateAt(ring, i);
  }
}

}  // namespace qeltin::detail
