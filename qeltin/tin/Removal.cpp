#include "qeltin/tin/Removal.h"

#include <algorithm>

#include "qeltin/tin/TIN.h"

namespace qeltin::detail {

namespace {

constexpr int NONE = -1;

// Returns the side of `t` that joins the two points, or NONE.
int SideOf(TTriangle const& t, TPoint const* p, TPoint const* q) {
  for (int side = 0; side < 3; ++side) {
    TPoint const* const a = t.m_pVertex[side];
    TPoint const* const b = t.m_pVertex[(side + 1) % 3];
    if ((a == p && b == q) || (a == q && b == p)) return side;
  }
  return NONE;
}

}  // namespace

bool Removal::Remove(TIN& tin, TPoint const* point) {
  PointMapNode* const node = tin.m_pPointMap->Find(point);
  if (node == nullptr) return false;
  m_Fan = node->GetTriangles();
  CollectEdges(point);
  if (!JoinRing()) return false;

  bool const plain = CollectCorners(tin, point, node);
  m_Filler.Fill(m_Ring, m_NewTriangles);
  tin.m_bTiling = false;
  tin.m_Triangulator.ForgetIndex();
  if (plain && m_Filler.Ears().size() + 1 == m_NewTriangles.size()) {
    FillPlainly(tin);
  } else {
    FillByValue(tin, point);
  }
  tin.m_pPointMap->RemovePoint(point);
  tin.m_pPoints->Remove(point);
  return true;
}

void Removal::CollectEdges(TPoint const* point) {
  m_Edges.clear();
  for (TTriangle* t : m_Fan) {
    TPoint* const* const corner = t->m_pVertex;
    if (corner[0] == point) {
      m_Edges.push_back({corner[1], corner[2], t});
    } else if (corner[1] == point) {
      m_Edges.push_back({corner[2], corner[0], t});
    } else if (corner[2] == point) {
      m_Edges.push_back({corner[0], corner[1], t});
    }
  }
}

// Joins the edges into a ring, pass after pass. Returns false where a pass joins none of those that
// are left, and where fewer than three corners come out.
bool Removal::JoinRing() {
  if (m_Edges.empty()) return false;
  m_Front.clear();
  m_Back.clear();
  m_Back.push_back({m_Edges.back().start, nullptr});
  m_Back.push_back({m_Edges.back().end, m_Edges.back().triangle});
  m_Edges.pop_back();
  while (!m_Edges.empty()) {
    std::size_t left = 0;
    for (Edge const& edge : m_Edges) {
      if (!Join(edge)) m_Edges[left++] = edge;
    }
    if (left == m_Edges.size()) return false;
    m_Edges.resize(left);
  }
  m_Ring.clear();
  m_Along.clear();
  for (std::size_t i = m_Front.size(); i-- > 0;) m_Ring.push_back(m_Front[i].point);
  for (End const& end : m_Back) m_Ring.push_back(end.point);
  for (std::size_t i = m_Front.size(); i-- > 0;) m_Along.push_back(m_Front[i].triangle);
  for (std::size_t i = 1; i < m_Back.size(); ++i) m_Along.push_back(m_Back[i].triangle);
  m_bClosed = m_Ring.back() == m_Ring.front();
  m_Ring.pop_back();  // the first corner again; of an open fan a corner that is lost
  return m_Ring.size() >= 3;
}

bool Removal::Join(Edge const& edge) {
  TPoint* const back = m_Back.back().point;
  TPoint* const front = m_Front.empty() ? m_Back.front().point : m_Front.back().point;
  if (edge.start == back) {
    m_Back.push_back({edge.end, edge.triangle});
  } else if (edge.end == back) {
    m_Back.push_back({edge.start, edge.triangle});
  } else if (edge.start == front) {
    m_Front.push_back({edge.end, edge.triangle});
  } else if (edge.end == front) {
    m_Front.push_back({edge.start, edge.triangle});
  } else {
    return false;
  }
  return true;
}

// Returns the first neighbour that does not have the point, or null.
TTriangle* Removal::OuterOf(TTriangle const& t, TPoint const* point) {
  for (TTriangle* neighbour : t.m_pAdjacent) {
    if (neighbour != nullptr && !neighbour->XY_FindVertex(point)) return neighbour;
  }
  return nullptr;
}

// Takes the triangles that are left over out of the structure and the pool.
void Removal::ReleaseSurplus(TIN& tin) {
  for (TTriangle* t : m_Fan) {
    tin.CutOff(t);
    tin.m_pTriangles->Remove(t);
  }
}

// Returns false where the hole has to be filled by value.
bool Removal::CollectCorners(TIN& tin, TPoint const* point, PointMapNode const* node) {
  std::size_t const n = m_Ring.size();
  m_Corners.clear();
  if (!m_bClosed || m_Fan.size() != n) return false;
  for (std::size_t i = 0; i < n; ++i) {
    Corner corner{m_Ring[i], tin.m_pPointMap->Find(m_Ring[i]), m_Along[i],
                  OuterOf(*m_Along[i], point), NONE};
    if (corner.node == nullptr || corner.node == node) return false;
    __builtin_prefetch(corner.node->GetTriangles().data());
    if (corner.outer != nullptr) {
      corner.outerSide = SideOf(*corner.outer, m_Ring[i], m_Ring[i + 1 < n ? i + 1 : 0]);
      if (corner.outerSide == NONE) return false;
    }
    m_Corners.push_back(corner);
  }
  return AreApart();
}

// Returns true iff all corners of the hole are at different places, as numbers, and none of them is
// at the far corner of a triangle outside.
bool Removal::AreApart() const {
  auto const isAt = [](TPoint const& p, TPoint const& q) { return p.x == q.x && p.y == q.y; };
  for (std::size_t i = 0; i < m_Corners.size(); ++i) {
    TPoint const& p = *m_Corners[i].point;
    if (!(p == p)) return false;
    for (std::size_t j = 0; j < i; ++j) {
      if (isAt(p, *m_Corners[j].point)) return false;
    }
    if (m_Corners[i].outer == nullptr) continue;
    TPoint const& far = *m_Corners[i].outer->m_pVertex[(m_Corners[i].outerSide + 2) % 3];
    for (Corner const& other : m_Corners) {
      if (isAt(far, *other.point)) return false;
    }
  }
  return true;
}

void Removal::EraseBoth(PointMapNode& node, TTriangle const* first, TTriangle const* second) {
  std::erase_if(node.m_Triangles, [=](TTriangle const* t) { return t == first || t == second; });
}

// Overwrites triangles of the fan, the last one first, by those that fill the hole.
void Removal::FillPlainly(TIN& tin) {
  for (std::size_t i = 0; i < m_Corners.size(); ++i) {
    std::size_t const before = i == 0 ? m_Corners.size() - 1 : i - 1;
    EraseBoth(*m_Corners[i].node, m_Corners[i].fan, m_Corners[before].fan);
  }
  m_Fillings.clear();
  for (TTriangle const& filling : m_NewTriangles) {
    TTriangle* const t = m_Fan.back();
    m_Fan.pop_back();
    *t = filling;
    if (!tin.InBounds(*t)) t->m_Flags |= TRI_OUTSIDE;
    m_Fillings.push_back(t);
  }
  ReleaseSurplus(tin);
  m_Sides.clear();
  for (std::size_t i = 0; i < m_Corners.size(); ++i) {
    m_Sides.push_back({i, m_Corners[i].outer, m_Corners[i].outerSide});
  }
  for (std::size_t i = 0; i < m_Filler.Ears().size(); ++i) {
    CutEar(m_Filler.Ears()[i], m_Fillings[i]);
  }
  CutEar(0, m_Fillings.back());
}

// Joins an ear, or the triangle that is left, to what lies along its sides. Its corners are those
// at three positions that follow each other, the first two perhaps the other way round.
void Removal::CutEar(std::size_t position, TTriangle* ear) {
  std::size_t const middle = position + 1 < m_Sides.size() ? position + 1 : 0;
  std::size_t const last = middle + 1 < m_Sides.size() ? middle + 1 : 0;
  bool const turned = ear->m_pVertex[0] != m_Corners[m_Sides[position].corner].point;
  JoinSide(ear, 0, m_Sides[position]);
  JoinSide(ear, turned ? 2 : 1, m_Sides[middle]);
  int const open = turned ? 1 : 2;
  if (m_Sides.size() == 3) JoinSide(ear, open, m_Sides[last]);
  for (std::size_t at : {position, middle, last}) {
    m_Corners[m_Sides[at].corner].node->Enter(ear);
  }
  m_Sides[position] = {m_Sides[position].corner, ear, open};
  m_Sides.erase(m_Sides.begin() + static_cast<std::ptrdiff_t>(middle));
}

void Removal::JoinSide(TTriangle* t, int side, Side const& along) {
  if (along.across == nullptr) return;
  t->m_pAdjacent[side] = along.across;
  along.across->m_pAdjacent[along.back] = t;
}

}  // namespace qeltin::detail
