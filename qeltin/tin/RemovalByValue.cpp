#include <algorithm>

#include "qeltin/tin/Removal.h"
#include "qeltin/tin/TIN.h"

// The filling of a hole where corners share a place, a side has not the triangle outside that it
// should have, or a round finds no ear. What is linked is what comparing every side with every
// other by value links, in the same order.

namespace qeltin::detail {

void Removal::CollectOuter(TPoint const* point) {
  m_Outer.clear();
  for (TTriangle const* t : m_Fan) {
    TTriangle* const outer = OuterOf(*t, point);
    if (outer == nullptr) continue;
    if (std::find(m_Outer.begin(), m_Outer.end(), outer) == m_Outer.end()) {
      m_Outer.push_back(outer);
    }
  }
}

// Overwrites triangles of the fan, the last one first, by those that fill the hole.
void Removal::FillByValue(TIN& tin, TPoint const* point) {
  CollectOuter(point);
  m_Entries.clear();
  m_Created.clear();
  m_Values.clear();
  for (TTriangle const& filling : m_NewTriangles) {
    TTriangle* const t = m_Fan.back();
    m_Fan.pop_back();
    EraseFromMap(tin, t);
    *t = filling;
    EnterIntoMap(tin, t);
    if (!tin.InBounds(*t)) t->m_Flags |= TRI_OUTSIDE;
    m_Created.push_back(NumberCorners(t));
  }
  for (TTriangle const* t : m_Fan) EraseFromMap(tin, t);
  ReleaseSurplus(tin);
  Link();
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
  for (Value const& value : m_Values) {
    if (value.point == point) return value.number;
  }
  auto number = static_cast<int>(m_Values.size());
  for (Value const& value : m_Values) {
    if (*value.point == *point) number = std::min(number, value.number);
  }
  if (!(*point == *point)) number = EQUALS_NOTHING;
  m_Values.push_back({point, number});
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
