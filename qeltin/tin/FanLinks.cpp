#include "qeltin/tin/FanLinks.h"

#include <algorithm>

namespace qeltin::detail {

namespace {

int After(int side) { return side == 2 ? 0 : side + 1; }

// Returns the side with these two corners, in either direction. REQUIRES: there is one.
int SideOf(TTriangle const& t, TPoint const* a, TPoint const* b) {
  if (t.m_pVertex[0] != a && t.m_pVertex[0] != b) return 1;
  return t.m_pVertex[1] == a || t.m_pVertex[1] == b ? 0 : 2;
}

}  // namespace

bool FanLinks::Link(TPoint* p, Edges const& edges, Triangles const& fan, Triangles const& around) {
  if (!EnterEdges(p, edges) || !FindCorners(around)) return false;
  for (Vertex const& vertex : m_Vertices) {
    if (vertex.fans[1] == NONE) continue;
    TTriangle* const first = fan[static_cast<std::size_t>(vertex.fans[0])];
    TTriangle* const second = fan[static_cast<std::size_t>(vertex.fans[1])];
    first->m_pAdjacent[SideOf(*first, p, vertex.point)] = second;
    second->m_pAdjacent[SideOf(*second, p, vertex.point)] = first;
  }
  for (std::size_t i = 0; i < around.size(); ++i) {
    for (int side = 0; side < 3; ++side) {
      int const on = FanOn(m_Corners[i][static_cast<std::size_t>(side)],
                           m_Corners[i][static_cast<std::size_t>(After(side))]);
      if (on == NONE) continue;
      auto const& [a, b] = edges[static_cast<std::size_t>(on)];
      TTriangle* const t = fan[static_cast<std::size_t>(on)];
      t->m_pAdjacent[SideOf(*t, a, b)] = around[i];
      around[i]->m_pAdjacent[side] = t;
    }
  }
  return true;
}

// Numbers the ends of the edges. Returns false where two of the points, or one and `p`, are equal,
// where one does not equal itself, and where edges share both ends or three of them one.
bool FanLinks::EnterEdges(TPoint* p, Edges const& edges) {
  m_Table.Start(edges.size() * 2 + 1);
  m_Vertices.clear();
  m_Ends.clear();
  if (!m_Table.Add(p, APEX)) return false;
  m_Vertices.push_back({p, {NONE, NONE}});
  for (auto const& [a, b] : edges) {
    auto const fan = static_cast<int>(m_Ends.size());
    int const first = Enter(a, fan);
    int const second = Enter(b, fan);
    if (first == NONE || second == NONE || first == second) return false;
    m_Ends.push_back({first, second});
  }
  return std::none_of(m_Vertices.begin(), m_Vertices.end(), [&](Vertex const& vertex) {
    auto const number = static_cast<int>(&vertex - m_Vertices.data());
    return vertex.fans[1] != NONE &&
           OtherEnd(vertex.fans[0], number) == OtherEnd(vertex.fans[1], number);
  });
}

// Returns the number of an end of the edge of `fan`, or NONE.
int FanLinks::Enter(TPoint* point, int fan) {
  if (!(*point == *point)) return NONE;
  auto const added = static_cast<int>(m_Vertices.size());
  int const number = m_Table.FindOrAdd(point, added);
  if (number == added) m_Vertices.push_back({point, {NONE, NONE}});
  Vertex& vertex = m_Vertices[static_cast<std::size_t>(number)];
  if (number == APEX || vertex.point != point || vertex.fans[1] != NONE) return NONE;
  vertex.fans[vertex.fans[0] == NONE ? 0 : 1] = fan;
  return number;
}

// Numbers the corners of the triangles around. Returns false where one equals `p` or another corner
// of its triangle.
bool FanLinks::FindCorners(Triangles const& around) {
  m_Corners.clear();
  for (TTriangle const* t : around) {
    TPoint const& a = *t->m_pVertex[0];
    TPoint const& b = *t->m_pVertex[1];
    TPoint const& c = *t->m_pVertex[2];
    if (a == b || b == c || c == a) return false;
    m_Corners.push_back({m_Table.Find(a), m_Table.Find(b), m_Table.Find(c)});
    for (int corner : m_Corners.back()) {
      if (corner == APEX) return false;
    }
  }
  return true;
}

// Returns the number of the fan triangle on the edge between two vertices, or NONE.
int FanLinks::FanOn(int a, int b) const {
  if (a == NONE || b == NONE) return NONE;
  for (int fan : m_Vertices[static_cast<std::size_t>(a)].fans) {
    if (fan != NONE && OtherEnd(fan, a) == b) return fan;
  }
  return NONE;
}

int FanLinks::OtherEnd(int fan, int end) const {
  std::array<int, 2> const& ends = m_Ends[static_cast<std::size_t>(fan)];
  return ends[0] == end ? ends[1] : ends[0];
}

}  // namespace qeltin::detail
