#include <utility>

#include "testing/reference/StatedGeometry.h"
#include "testing/reference/StatedPolygon.h"

namespace qeltin::testing::stated {

namespace {

void TurnClockwise(TTriangle& t) {
  if (WhatSide(*t.m_pVertex[0], *t.m_pVertex[1], *t.m_pVertex[2]) < 0) {
    std::swap(t.m_pVertex[0], t.m_pVertex[1]);
  }
}

}  // namespace

bool FillHole(std::vector<TTriangle>& result, std::deque<TPoint*>& ring) {
  std::vector<TPoint> polygon;
  for (TPoint const* p : ring) polygon.push_back(*p);
  result.clear();
  std::size_t n = ring.size();
  if (n < 3) return false;
  TTriangle chosen;
  while (n > 3) {
    double bestRadius = 9e20;
    std::size_t best = 0;
    for (std::size_t i = 0; i < n; ++i) {
      TPoint* const a = ring[i];
      TPoint* const b = ring[(i + 1) % n];
      TPoint* const c = ring[(i + 2) % n];
      TTriangle t(a, b, c);
      double const r = CircumcircleRadius(*a, *b, *c);
      t.m_RadiusSq = r;
      if (!(bestRadius > r)) continue;
      TPoint const middle((a->x + c->x) / 2, (a->y + c->y) / 2, (a->z + c->z) / 2);
      bool const inside = PointInPolygon(polygon, middle);
      TurnClockwise(t);
      bool rejected = false;
      for (TPoint const* p : ring) {
        if (p == a || p == b || p == c) continue;
        if (XY_HasPoint(t, *p)) rejected = true;
      }
      if (rejected || !inside) continue;
      bestRadius = r;
      best = i;
      for (int k = 0; k < 3; ++k) chosen.m_pVertex[k] = t.m_pVertex[k];
    }
    if (chosen.m_pVertex[0] == nullptr) {
      chosen = TTriangle(ring[0], ring[1], ring[2]);
      TurnClockwise(chosen);
    }
    CalcTri(chosen);
    result.push_back(chosen);
    auto const middle = static_cast<std::ptrdiff_t>(best == n - 1 ? 0 : best + 1);
    ring.erase(ring.begin() + middle);
    polygon.erase(polygon.begin() + middle);
    n = ring.size();
  }
  TTriangle last(ring[0], ring[1], ring[2]);
  TurnClockwise(last);
  CalcTri(last);
  result.push_back(last);
  return result.size() / 3 == polygon.size() - 2;
}

}  // namespace qeltin::testing::stated
