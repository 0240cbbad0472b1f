#include "apps/qeltin/Boundary.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace qeltin::cli {

namespace {

using Side = Boundary::Side;

auto Key(Side const& side) { return std::tuple(side.from.x, side.from.y, side.to.x, side.to.y); }

std::vector<Side> SidesOf(TPolygon const& polygon) {
  std::vector<Side> sides;
  for (int i = 0; i < polygon.GetSize(); ++i) {
    TPoint from = *polygon.Get(i);
    TPoint to = *polygon.Get((i + 1) % polygon.GetSize());
    if (from.x == to.x && from.y == to.y) continue;
    if (std::pair(to.y, to.x) < std::pair(from.y, from.x)) std::swap(from, to);
    sides.push_back({from, to});
  }
  std::sort(sides.begin(), sides.end(),
            [](Side const& one, Side const& other) { return Key(one) < Key(other); });
  return sides;
}

void DropPairs(std::vector<Side>& sorted) {
  std::size_t kept = 0;
  for (Side const& side : sorted) {
    if (kept > 0 && Key(sorted[kept - 1]) == Key(side)) {
      --kept;
    } else {
      sorted[kept++] = side;
    }
  }
  sorted.resize(kept);
}

// Twice the area of the triangle, positive where `p` is to the left of the way from `a` to `b`.
double Turn(TPoint const& a, TPoint const& b, TPoint const& p) {
  return (b.x - a.x) * (p.y - a.y) - (p.x - a.x) * (b.y - a.y);
}

constexpr double ROUNDING = 1e-12;

// Returns true iff the line through the ends of `side` has the whole triangle on one side.
bool LeavesAside(Side const& side, TPoint const* const corners[3]) {
  double const turns[] = {Turn(side.from, side.to, *corners[0]),
                          Turn(side.from, side.to, *corners[1]),
                          Turn(side.from, side.to, *corners[2])};
  auto const [low, high] = std::minmax_element(turns, turns + 3);
  return *low >= -ROUNDING * *high || *high <= -ROUNDING * *low;
}

// Returns true iff `side` is on the outer side of a line through two corners.
bool IsBeyondASide(Side const& side, TPoint const* const corners[3]) {
  for (int k = 0; k < 3; ++k) {
    TPoint const& a = *corners[k];
    TPoint const& b = *corners[(k + 1) % 3];
    double const inner = Turn(a, b, *corners[(k + 2) % 3]);
    double const sign = std::copysign(1.0, inner);
    double const nearer = std::max(sign * Turn(a, b, side.from), sign * Turn(a, b, side.to));
    if (nearer <= ROUNDING * std::fabs(inner)) return true;
  }
  return false;
}

bool PassesThrough(Side const& side, TPoint const* const corners[3]) {
  auto const [low_x, high_x] = std::minmax({corners[0]->x, corners[1]->x, corners[2]->x});
  auto const [low_y, high_y] = std::minmax({corners[0]->y, corners[1]->y, corners[2]->y});
  if (side.to.y < low_y || side.from.y > high_y) return false;
  if (std::max(side.from.x, side.to.x) < low_x) return false;
  if (std::min(side.from.x, side.to.x) > high_x) return false;
  return !LeavesAside(side, corners) && !IsBeyondASide(side, corners);
}

}  // namespace

Boundary::Boundary(TPolygon const& polygon) : m_Sides(SidesOf(polygon)) {
  DropPairs(m_Sides);
  if (m_Sides.empty()) return;
  m_dBottom = m_Sides.front().from.y;
  m_dTop = m_Sides.front().to.y;
  for (Side const& side : m_Sides) {
    m_dBottom = std::min(m_dBottom, side.from.y);
    m_dTop = std::max(m_dTop, side.to.y);
  }
  m_Bands.resize(static_cast<std::size_t>(std::sqrt(static_cast<double>(m_Sides.size()))) + 1);
  for (Side const& side : m_Sides) {
    for (std::size_t i = BandOf(side.from.y); i <= BandOf(side.to.y); ++i) {
      m_Bands[i].push_back(&side);
    }
  }
}

std::size_t Boundary::BandOf(double y) const {
  if (!(y > m_dBottom)) return 0;
  auto const last = m_Bands.size() - 1;
  double const share = (y - m_dBottom) / (m_dTop - m_dBottom);
  return share < 1.0
             ? std::min(last, static_cast<std::size_t>(share * static_cast<double>(m_Bands.size())))
             : last;
}

bool Boundary::Contains(double x, double y) const {
  if (m_Bands.empty() || !(y >= m_dBottom && y <= m_dTop)) return false;
  TPoint const p{x, y, 0.0};
  bool inside = false;
  for (Side const* side : m_Bands[BandOf(y)]) {
    bool const level = side->from.y <= y && y < side->to.y;
    if (level && Turn(side->from, side->to, p) > 0.0) inside = !inside;
  }
  return inside;
}

void Boundary::SidesIn(TPoint const* const corners[3], std::vector<Side const*>& sides) const {
  if (m_Bands.empty()) return;
  auto const [low, high] = std::minmax({corners[0]->y, corners[1]->y, corners[2]->y});
  if (high < m_dBottom || low > m_dTop) return;
  auto const begin = static_cast<std::ptrdiff_t>(sides.size());
  for (std::size_t i = BandOf(low); i <= BandOf(high); ++i) SidesIn(corners, m_Bands[i], sides);
  std::sort(sides.begin() + begin, sides.end());
  sides.erase(std::unique(sides.begin() + begin, sides.end()), sides.end());
}

void Boundary::SidesIn(TPoint const* const corners[3], std::vector<Side const*> const& candidates,
                       std::vector<Side const*>& sides) {
  for (Side const* side : candidates) {
    if (PassesThrough(*side, corners)) sides.push_back(side);
  }
}

}  // namespace qeltin::cli
