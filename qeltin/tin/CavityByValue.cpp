#include <algorithm>
#include <bit>
#include <cstdint>
#include <functional>
#include <utility>

#include "qeltin/tin/Cavity.h"
#include "qeltin/tin/TIN.h"

// The filling of holes of any shape, as rounding or a broken structure makes them. What is linked
// is what comparing every side with every other by value would link, in the same order.

namespace qeltin::detail {

namespace {

using Triangles = std::vector<TTriangle*>;

// An edge by address, the lower one first.
using Pair = std::pair<TPoint*, TPoint*>;

Pair PairOf(TTriangle const& t, int side) {
  Pair edge(t.m_pVertex[side], t.m_pVertex[(side + 1) % 3]);
  if (std::less<>()(edge.second, edge.first)) std::swap(edge.first, edge.second);
  return edge;
}

std::uint64_t HashOf(Pair const& edge) {
  return std::hash<TPoint*>()(edge.first) * 0x9E3779B97F4A7C15u +
         std::hash<TPoint*>()(edge.second) * 0xC2B2AE3D27D4EB4Fu;
}

// Chains of numbers under hashes, the latest number of a chain first.
class Chains {
 public:
  static constexpr int END = -1;

  explicit Chains(std::size_t numbers)
      : m_Heads(std::bit_ceil(numbers + 1), END), m_Next(numbers, END) {}

  void Add(std::uint64_t hash, int number) {
    int& head = Head(hash);
    m_Next[static_cast<std::size_t>(number)] = std::exchange(head, number);
  }
  int First(std::uint64_t hash) const { return const_cast<Chains*>(this)->Head(hash); }
  int After(int number) const { return m_Next[static_cast<std::size_t>(number)]; }

 private:
  int& Head(std::uint64_t hash) { return m_Heads[(hash ^ (hash >> 32)) & (m_Heads.size() - 1)]; }

  std::vector<int> m_Heads;
  std::vector<int> m_Next;
};

// Collects the edges of a hole: an edge that comes a second time goes, whatever triangle it is of.
class Boundary {
 public:
  explicit Boundary(std::size_t triangles) : m_Chains(triangles * 3) {}

  void Append(Pair const& edge) {
    m_Chains.Add(HashOf(edge), static_cast<int>(m_Edges.size()));
    m_Edges.push_back(edge);
    m_IsThere.push_back(true);
    ++m_iThere;
  }

  void Toggle(Pair const& edge) {
    // The first one that is there goes, and so the last of its chain.
    int there = Chains::END;
    for (int i = m_Chains.First(HashOf(edge)); i != Chains::END; i = m_Chains.After(i)) {
      auto const at = static_cast<std::size_t>(i);
      if (m_IsThere[at] && m_Edges[at] == edge) there = i;
    }
    if (there == Chains::END) {
      Append(edge);
    } else {
      m_IsThere[static_cast<std::size_t>(there)] = false;
      --m_iThere;
    }
  }

  bool IsEmpty() const { return m_iThere == 0; }

  // Returns the edges that are there, in the order in which they came.
  std::vector<Pair> Edges() const {
    std::vector<Pair> edges;
    for (std::size_t i = 0; i < m_Edges.size(); ++i) {
      if (m_IsThere[i]) edges.push_back(m_Edges[i]);
    }
    return edges;
  }

 private:
  Chains m_Chains;
  std::vector<Pair> m_Edges;
  std::vector<bool> m_IsThere;
  std::size_t m_iThere = 0;
};

std::vector<Pair> BoundaryOf(Triangles const& cavity) {
  Boundary boundary(cavity.size());
  for (TTriangle const* t : cavity) {
    bool const first = boundary.IsEmpty();  // then its sides are not even compared with each other
    for (int side = 0; side < 3; ++side) {
      if (first) {
        boundary.Append(PairOf(*t, side));
      } else {
        boundary.Toggle(PairOf(*t, side));
      }
    }
  }
  return boundary.Edges();
}

// Finds triangles that may share a side with another.
class SideTable {
 public:
  explicit SideTable(Triangles const& triangles) : m_Chains(triangles.size() * 3) {
    for (std::size_t i = 0; i < triangles.size(); ++i) {
      for (int side = 0; side < 3; ++side) {
        m_Chains.Add(Hash(*triangles[i], side), static_cast<int>(i) * 3 + side);
      }
    }
  }

  // Returns the positions of all that share a side with `triangle` by value, and perhaps of others,
  // in ascending order. Valid until the next call.
  std::vector<int> const& Candidates(TTriangle const& triangle) {
    m_Found.clear();
    for (int side = 0; side < 3; ++side) {
      for (int i = m_Chains.First(Hash(triangle, side)); i != Chains::END; i = m_Chains.After(i)) {
        m_Found.push_back(i / 3);
      }
    }
    std::sort(m_Found.begin(), m_Found.end());
    m_Found.erase(std::unique(m_Found.begin(), m_Found.end()), m_Found.end());
    return m_Found;
  }

 private:
  // Equal for sides of equal ends, in either direction.
  static std::uint64_t Hash(TTriangle const& t, int side) {
    return RingTable::Hash(*t.m_pVertex[side]) + RingTable::Hash(*t.m_pVertex[(side + 1) % 3]);
  }

  Chains m_Chains;
  std::vector<int> m_Found;
};

// Returns true iff some side has ends of equal value: such a side equals every side that it
// touches.
bool HasPointSide(Triangles const& triangles) {
  return std::any_of(triangles.begin(), triangles.end(), [](TTriangle const* t) {
    return *t->m_pVertex[0] == *t->m_pVertex[1] || *t->m_pVertex[1] == *t->m_pVertex[2] ||
           *t->m_pVertex[2] == *t->m_pVertex[0];
  });
}

void Link(TTriangle* a, TTriangle* b) {
  if (a->SetAdjacentPointer(b) != -1) b->SetAdjacentPointer(a);
}

// Links each triangle of `created`, in order, with those after it and then with each of `outer`.
// Pairs that cannot share a side are left out: linking them would do nothing.
void LinkAll(Triangles const& created, Triangles const& outer) {
  if (HasPointSide(created) || HasPointSide(outer)) {
    for (std::size_t i = 0; i < created.size(); ++i) {
      for (std::size_t j = i + 1; j < created.size(); ++j) Link(created[i], created[j]);
      for (TTriangle* o : outer) Link(created[i], o);
    }
    return;
  }
  SideTable among_created(created);
  SideTable among_outer(outer);
  for (std::size_t i = 0; i < created.size(); ++i) {
    for (int j : among_created.Candidates(*created[i])) {
      auto const later = static_cast<std::size_t>(j);
      if (later > i) Link(created[i], created[later]);
    }
    for (int j : among_outer.Candidates(*created[i])) {
      Link(created[i], outer[static_cast<std::size_t>(j)]);
    }
  }
}

// Returns the neighbours outside the hole, one as often as it touches.
Triangles OuterOf(Triangles const& cavity) {
  Triangles outer;
  for (TTriangle const* t : cavity) {
    for (TTriangle* neighbour : t->m_pAdjacent) {
      if (neighbour != nullptr && (neighbour->m_Flags & TRI_CAVITY) == 0) {
        outer.push_back(neighbour);
      }
    }
  }
  return outer;
}

}  // namespace

// Returns true iff no slot that the fan takes anew is in the hole already.
bool Cavity::NewSlotsAreUnmarked(TIN const& tin, int edges) const {
  TArray<TTriangle> const& pool = *tin.m_pTriangles;
  for (int i = 0; i < edges - m_iMembers; ++i) {
    if ((pool.At(pool.m_iCount + i)->m_Flags & TRI_CAVITY) != 0) return false;
  }
  return true;
}

bool Cavity::FillByValue(TIN& tin, TPoint* p) {
  Triangles cavity;
  for (int i = 0; i < m_iMembers; ++i) {
    cavity.push_back(m_Members[static_cast<std::size_t>(i)].triangle);
  }
  Triangles const outer = OuterOf(cavity);
  std::vector<Pair> const boundary = BoundaryOf(cavity);
  auto const edges = static_cast<int>(boundary.size());
  if (!HasRoom(tin, edges)) {
    GiveUp(tin);
    return false;
  }

  bool const apart = NewSlotsAreUnmarked(tin, edges);
  Triangles created;
  for (auto const& [a, b] : boundary) {
    TTriangle* const t = TakeSlot(tin, static_cast<int>(created.size()), p, a, b);
    *t = TTriangle(p, a, b);
    t->SortVertices();
    t->m_Flags = tin.InBounds(*t) ? 0 : TRI_OUTSIDE;
    t->CalcTri();
    created.push_back(t);
  }
  if (!apart || !m_FanLinks.Link(p, boundary, created, outer)) LinkAll(created, outer);
  tin.m_Triangulator.m_Fan.Note(p, edges,
                                [&](int i) { return created[static_cast<std::size_t>(i)]; });
  LeaveOver(tin, edges);
  return true;
}

}  // namespace qeltin::detail
