#include <functional>
#include <list>
#include <utility>
#include <vector>

#include "testing/reference/ReferenceTin.h"
#include "testing/reference/StatedGeometry.h"

namespace qeltin::testing {

namespace {

// A side as an unordered pair: the lower address first.
using Pair = std::pair<TPoint*, TPoint*>;

Pair Ordered(TPoint* a, TPoint* b) { return std::less<TPoint*>()(b, a) ? Pair(b, a) : Pair(a, b); }

void Grow(TTriangle* from, TPoint const& p, std::vector<TTriangle*>& cavity);

void GrowOverNeighbours(TTriangle* from, TPoint const& p, std::vector<TTriangle*>& cavity) {
  for (TTriangle* n : from->m_pAdjacent) {
    if (n != nullptr && (n->m_Flags & TRI_CAVITY) == 0 && stated::InCachedCircle(*n, p)) {
      Grow(n, p, cavity);
    }
  }
}

void Grow(TTriangle* from, TPoint const& p, std::vector<TTriangle*>& cavity) {
  from->m_Flags |= TRI_CAVITY;
  cavity.push_back(from);
  GrowOverNeighbours(from, p, cavity);
}

std::vector<TTriangle*> OuterOf(std::vector<TTriangle*> const& cavity) {
  std::vector<TTriangle*> outer;
  for (TTriangle* t : cavity) {
    for (TTriangle* n : t->m_pAdjacent) {
      if (n != nullptr && (n->m_Flags & TRI_CAVITY) == 0) outer.push_back(n);
    }
  }
  return outer;
}

std::list<Pair> BoundaryOf(std::vector<TTriangle*> const& cavity) {
  std::list<Pair> boundary;
  for (TTriangle* t : cavity) {
    TPoint* const* const corner = t->m_pVertex;
    Pair const sides[3] = {Ordered(corner[0], corner[1]), Ordered(corner[1], corner[2]),
                           Ordered(corner[2], corner[0])};
    if (boundary.empty()) {
      boundary.assign(sides, sides + 3);
      continue;
    }
    for (Pair const& side : sides) {
      auto at = boundary.begin();
      while (at != boundary.end() && *at != side) ++at;
      if (at != boundary.end()) {
        boundary.erase(at);
      } else {
        boundary.push_back(side);
      }
    }
  }
  return boundary;
}

void Link(std::vector<TTriangle*> const& created, std::vector<TTriangle*> const& outer) {
  for (std::size_t i = 0; i < created.size(); ++i) {
    for (std::size_t j = i + 1; j < created.size(); ++j) {
      if (stated::SetAdjacentPointer(*created[i], created[j]) != -1) {
        stated::SetAdjacentPointer(*created[j], created[i]);
      }
    }
    for (TTriangle* o : outer) {
      if (stated::SetAdjacentPointer(*created[i], o) != -1) {
        stated::SetAdjacentPointer(*o, created[i]);
      }
    }
  }
}

}  // namespace

bool ReferenceTin::Accepts(TPoint const& p) {
  if (!InWorldBounds(p)) return false;
  if (m_pPoints->m_iCount == 0) Seed();
  return true;
}

TPoint* ReferenceTin::AddPoint(TPoint const& p, TTriangle* start) {
  if (start == nullptr || m_pPoints->m_iCount == m_pPoints->m_iCapacity) return nullptr;
  return AddPooled(m_pPoints->Add(p), start);
}

TPoint* ReferenceTin::AddPooled(TPoint* p, TTriangle* start) {
  if (m_pPointMap != nullptr) m_pPointMap->AddPoint(p);
  if (TPoint* const vertex = stated::XY_FindVertex(*start, *p)) return vertex;

  std::vector<TTriangle*> cavity;
  start->m_Flags |= TRI_CAVITY;
  cavity.push_back(start);
  GrowOverNeighbours(start, *p, cavity);
  std::vector<TTriangle*> const outer = OuterOf(cavity);
  std::list<Pair> const boundary = BoundaryOf(cavity);
  int const taken = static_cast<int>(boundary.size()) - static_cast<int>(cavity.size());
  if (taken > m_pTriangles->m_iCapacity - m_pTriangles->m_iCount) {
    m_bExhausted = true;
    return nullptr;
  }

  std::vector<TTriangle*> created;
  for (auto const& [a, b] : boundary) {
    TTriangle* t = nullptr;
    if (!cavity.empty()) {
      t = cavity.back();
      cavity.pop_back();
      *t = TTriangle(p, a, b);
    } else {
      t = m_pTriangles->Add(TTriangle(p, a, b));
      if (m_pPointMap != nullptr) m_pPointMap->AddTriangle(t);
    }
    created.push_back(t);
    if (stated::WhatSide(*t->m_pVertex[0], *t->m_pVertex[1], *t->m_pVertex[2]) < 0) {
      std::swap(t->m_pVertex[0], t->m_pVertex[1]);
    }
    t->m_Flags = 0;
    if (ReachesOut(*t)) t->m_Flags |= TRI_OUTSIDE;
    stated::CalcTri(*t);
  }
  Link(created, outer);
  Widen(*p);
  return p;
}

void ReferenceTin::Widen(TPoint const& p) {
  if (p.x < m_Min.x) m_Min.x = p.x;
  if (p.y < m_Min.y) m_Min.y = p.y;
  if (p.z < m_Min.z) m_Min.z = p.z;
  if (p.x > m_Max.x) m_Max.x = p.x;
  if (p.y > m_Max.y) m_Max.y = p.y;
  if (p.z > m_Max.z) m_Max.z = p.z;
}

}  // namespace qeltin::testing
