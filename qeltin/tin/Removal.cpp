#include "qeltin/tin/Removal.h"

#include <algorithm>

#include "qeltin/tin/TIN.h"

namespace qeltin::detail {

bool Removal::Remove(TIN& tin, TPoint const* point) {
  PointMapNode* const node = tin.m_pPointMap->Find(point);
  if (node == nullptr) return false;
  m_Fan = node->GetTriangles();
  CollectOuter(point);
  CollectEdges(point);
  if (!JoinRing()) return false;

  m_Entries.clear();
  m_Entries.push_back({point, node});
  m_Filler.Fill(m_Ring, m_NewTriangles);
  FillFan(tin);
  ReleaseSurplus(tin);
  tin.m_pPointMap->RemovePoint(point);
  tin.m_pPoints->Remove(point);
  Link();
  return true;
}

void Removal::CollectOuter(TPoint const* point) {
  m_Outer.clear();
  for (TTriangle const* t : m_Fan) {
    for (TTriangle* neighbour : t->m_pAdjacent) {
      if (neighbour == nullptr || neighbour->XY_FindVertex(point)) continue;
      if (std::find(m_Outer.begin(), m_Outer.end(), neighbour) == m_Outer.end()) {
        m_Outer.push_back(neighbour);
      }
      break;
    }
  }
}

void Removal::CollectEdges(TPoint const* point) {
  m_Edges.clear();
  for (TTriangle const* t : m_Fan) {
    TPoint* const* const corner = t->m_pVertex;
    if (corner[0] == point) {
      m_Edges.push_back({corner[1], corner[2]});
    } else if (corner[1] == point) {
      m_Edges.push_back({corner[2], corner[0]});
    } else if (corner[2] == point) {
      m_Edges.push_back({corner[0], corner[1]});
    }
  }
}

// Joins the edges into a ring, pass after pass. Returns false where a pass joins none of those that
// are left, and where fewer than three corners come out.
bool Removal::JoinRing() {
  if (m_Edges.empty()) return false;
  m_Front.clear();
  m_Ring = {m_Edges.back().start, m_Edges.back().end};
  m_Edges.pop_back();
  while (!m_Edges.empty()) {
    std::size_t left = 0;
    for (Edge const& edge : m_Edges) {
      if (!Join(edge)) m_Edges[left++] = edge;
    }
    if (left == m_Edges.size()) return false;
    m_Edges.resize(left);
  }
  m_Ring.insert(m_Ring.begin(), m_Front.rbegin(), m_Front.rend());
  m_Ring.pop_back();  // the first corner again; of an open fan a corner that is lost
  return m_Ring.size() >= 3;
}

bool Removal::Join(Edge const& edge) {
  TPoint* const back = m_Ring.back();
  TPoint* const front = m_Front.empty() ? m_Ring.front() : m_Front.back();
  if (edge.start == back) {
    m_Ring.push_back(edge.end);
  } else if (edge.end == back) {
    m_Ring.push_back(edge.start);
  } else if (edge.start == front) {
    m_Front.push_back(edge.end);
  } else if (edge.end == front) {
    m_Front.push_back(edge.start);
  } else {
    return false;
  }
  return true;
}

// Overwrites triangles of the fan, the last one first, by those that fill the hole.
void Removal::FillFan(TIN& tin) {
  m_Created.clear();
  m_Corners.clear();
  tin.m_bTiling = false;
  tin.m_Triangulator.ForgetIndex();
  for (TTriangle const& filling : m_NewTriangles) {
    TTriangle* const t = m_Fan.back();
    m_Fan.pop_back();
    EraseFromMap(tin, t);
    *t = filling;
    EnterIntoMap(tin, t);
    if (!tin.InBounds(*t)) t->m_Flags |= TRI_OUTSIDE;
    m_Created.push_back(NumberCorners(t));
  }
}

void Removal::ReleaseSurplus(TIN& tin) {
  for (TTriangle* t : m_Fan) {
    tin.CutOff(t);
    EraseFromMap(tin, t);
    tin.m_pTriangles->Remove(t);
  }
}

void Removal::Link() {
  m_NumberedOuter.clear();
  for (TTriangle* t : m_Outer) m_NumberedOuter.push_back(NumberCorners(t));
  for (std::size_t i = 0; i < m_Created.size(); ++i) {
    for (std::size_t j = i + 1; j < m_Created.size(); ++j) {
      if (Adjoin(m_Created[i], m_Created[j])) Adjoin(m_Created[j], m_Created[i]);
    }
    for (Numbered const& outer : m_NumberedOuter) {
      if (Adjoin(m_Created[i], outer)) Adjoin(outer, m_Created[i]);
    }
  }
}

PointMapNode* Removal::NodeOf(TIN& tin, TPoint const* point) {
  for (Entry const& entry : m_Entries) {
    if (entry.point == point) return entry.node;
  }
  m_Entries.push_back({point, tin.m_pPointMap->Find(point)});
  return m_Entries.back().node;
}

// As PointMap::RemoveTriangle.
void Removal::EraseFromMap(TIN& tin, TTriangle const* triangle) {
  for (TPoint const* corner : triangle->m_pVertex) {
    if (PointMapNode* const node = NodeOf(tin, corner)) node->Erase(triangle);
  }
}

// As PointMap::AddTriangle.
void Removal::EnterIntoMap(TIN& tin, TTriangle* triangle) {
  for (TPoint const* corner : triangle->m_pVertex) {
    PointMapNode* const node = NodeOf(tin, corner);
    if (node == nullptr) return;
    node->Enter(triangle);
  }
}

int Removal::NumberOf(TPoint const* point) {
  for (Corner const& corner : m_Corners) {
    if (corner.point == point) return corner.number;
  }
  auto number = static_cast<int>(m_Corners.size());
  for (Corner const& corner : m_Corners) {
    if (*corner.point == *point) number = std::min(number, corner.number);
  }
  if (!(*point == *point)) number = EQUALS_NOTHING;
  m_Corners.push_back({point, number});
  return number;
}

Removal::Numbered Removal::NumberCorners(TTriangle* triangle) {
  Numbered numbered{triangle, {}};
  for (int k = 0; k < 3; ++k) numbered.corner[k] = NumberOf(triangle->m_pVertex[k]);
  numbered.corner[3] = numbered.corner[0];
  return numbered;
}

// As TTriangle::SetAdjacentPointer. Returns true iff `here` has a side that `there` has too. A side
// with both ends in one place is any side that has an end there.
bool Removal::Adjoin(Numbered const& here, Numbered const& there) {
  for (int side = 0; side < 3; ++side) {
    int const a = here.corner[side];
    int const b = here.corner[side + 1];
    if (a == EQUALS_NOTHING || b == EQUALS_NOTHING) continue;
    for (int theirs = 0; theirs < 3; ++theirs) {
      int const c = there.corner[theirs];
      int const d = there.corner[theirs + 1];
      if ((a != c && a != d) || (b != c && b != d)) continue;
      here.triangle->m_pAdjacent[side] = there.triangle;
      return true;
    }
  }
  return false;
}

}  // namespace qeltin::detail
