#include <deque>
#include <utility>
#include <vector>

#include "testing/reference/ReferenceTin.h"
#include "testing/reference/Release.h"
#include "testing/reference/StatedGeometry.h"
#include "testing/reference/StatedPolygon.h"

namespace qeltin::testing {

namespace {

using Edge = std::pair<TPoint*, TPoint*>;

bool HasCorner(TTriangle const& t, TPoint const* point) {
  return t.m_pVertex[0] == point || t.m_pVertex[1] == point || t.m_pVertex[2] == point;
}

std::vector<TTriangle*> OuterOf(std::vector<TTriangle*> const& triangles, TPoint const* point) {
  std::vector<TTriangle*> outer;
  for (TTriangle* t : triangles) {
    TTriangle* found = nullptr;
    for (int k = 0; k < 3 && found == nullptr; ++k) {
      TTriangle* const n = t->m_pAdjacent[k];
      if (n != nullptr && !HasCorner(*n, point)) found = n;
    }
    if (found == nullptr) continue;
    bool there = false;
    for (TTriangle* o : outer) there = there || o == found;
    if (!there) outer.push_back(found);
  }
  return outer;
}

// Returns false where the edges do not join up.
bool MakeRing(std::vector<Edge> edges, std::deque<TPoint*>& ring) {
  if (edges.empty()) return false;
  ring.push_back(edges.back().first);
  ring.push_back(edges.back().second);
  edges.pop_back();
  while (!edges.empty()) {
    bool joined = false;
    for (std::size_t i = 0; i < edges.size();) {
      auto const [start, end] = edges[i];
      if (start == ring.back()) {
        ring.push_back(end);
      } else if (end == ring.back()) {
        ring.push_back(start);
      } else if (start == ring.front()) {
        ring.push_front(end);
      } else if (end == ring.front()) {
        ring.push_front(start);
      } else {
        ++i;
        continue;
      }
      edges.erase(edges.begin() + static_cast<std::ptrdiff_t>(i));
      joined = true;
    }
    if (!joined) return false;
  }
  return true;
}

}  // namespace

bool ReferenceTin::RemovePoint(TPoint const* point) {
  PointMapNode const& node = m_pPointMap->FindPoint(point);
  if (!node.IsValid()) return false;
  std::vector<TTriangle*> const around = node.GetTriangles();

  std::vector<TTriangle*> const outer = OuterOf(around, point);
  std::vector<TTriangle*> fan;
  std::vector<Edge> edges;
  for (TTriangle* t : around) {
    if (t->m_pVertex[0] == point) {
      edges.emplace_back(t->m_pVertex[1], t->m_pVertex[2]);
    } else if (t->m_pVertex[1] == point) {
      edges.emplace_back(t->m_pVertex[2], t->m_pVertex[0]);
    } else if (t->m_pVertex[2] == point) {
      edges.emplace_back(t->m_pVertex[0], t->m_pVertex[1]);
    }
    fan.push_back(t);
  }

  std::deque<TPoint*> ring;
  if (!MakeRing(edges, ring)) return false;
  ring.pop_back();
  if (ring.size() < 3) return false;

  std::vector<TTriangle> triangles;
  stated::FillHole(triangles, ring);

  std::vector<TTriangle*> created;
  for (TTriangle const& filling : triangles) {
    TTriangle* const t = fan.back();
    fan.pop_back();
    m_pPointMap->RemoveTriangle(t);
    *t = filling;
    m_pPointMap->AddTriangle(t);
    if (ReachesOut(*t)) t->m_Flags |= TRI_OUTSIDE;
    created.push_back(t);
  }
  for (TTriangle* t : fan) {
    RemoveTriangle(t);
    stated::Release(*m_pTriangles, t);
  }
  m_pPointMap->RemovePoint(point);
  stated::Release(*m_pPoints, point);

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
  return true;
}

}  // namespace qeltin::testing
