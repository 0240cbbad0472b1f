#include "qeltin/tin/Cavity.h"

#include <algorithm>
#include <functional>
#include <tuple>

#include "qeltin/kernel/SideTest.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::detail {

namespace {

constexpr std::size_t LARGEST_SCANNED_RIM = 16;  // beyond it the table is quicker than a scan

// Where the sides of a fan triangle went, by RimEdge::ascending and ::swapped.
struct FanSides {
  int before;  // shared with the fan triangle on the rim edge before
  int rim;
  int after;  // shared with the fan triangle on the rim edge after
};
constexpr FanSides FAN_SIDES[2][2] = {{{2, 1, 0}, {1, 2, 0}}, {{0, 1, 2}, {0, 2, 1}}};

bool IsMarked(TTriangle const* t) { return (t->m_Flags & TRI_CAVITY) != 0; }

void Mark(TTriangle* t) {
  t->m_Flags |= TRI_CAVITY;
  t->m_InHole = 1;
}

bool IsAscending(TPoint const* a, TPoint const* b) { return std::less<>()(a, b); }

int SideToward(TTriangle const& t, TTriangle const* neighbour) {
  return t.m_pAdjacent[0] == neighbour ? 0 : t.m_pAdjacent[1] == neighbour ? 1 : 2;
}

// Returns the side of `outer` that leads to `t` and runs from `to` to `from`, or -1.
int SideBack(TTriangle const& outer, TTriangle const* t, TPoint const* from, TPoint const* to) {
  for (int side = 0; side < 3; ++side) {
    if (outer.m_pAdjacent[side] == t && outer.m_pVertex[side] == to &&
        outer.m_pVertex[(side + 1) % 3] == from) {
      return side;
    }
  }
  return -1;
}

}  // namespace

bool Cavity::Replace(TIN& tin, TPoint* p, TTriangle* start) {
  Grow(*p, start);
  if (tin.m_bTiling) tin.m_bTiling = CollectRim(tin, p) && LinkRing();
  bool const simple = tin.m_bTiling || (CollectRimChecked(p) && RimIsSimple(*p) &&
                                        InnerSidesAreApart() && NewSlotsAreApart(tin));
  bool const filled = simple ? FillRing(tin, p) : FillByValue(tin, p);
  if (!filled) Unmark();
  if (!m_Triangles.empty()) LeaveOver(tin);
  return filled;
}

// Depth-first, neighbours 0, 1, 2 of each: the order is seen in the pools.
void Cavity::Grow(TPoint const& p, TTriangle* start) {
  m_Triangles.clear();
  m_Path.clear();
  m_Triangles.push_back(start);
  Mark(start);
  TTriangle* triangle = start;
  std::size_t side = 0;
  for (;;) {
    while (side < 3) {
      TTriangle* const next = triangle->m_pAdjacent[side++];
      if (next == nullptr || IsMarked(next) || next->TestCalcTri(p) == 0) continue;
      Mark(next);
      m_Triangles.push_back(next);
      m_Path.emplace_back(triangle, side);
      triangle = next;
      side = 0;
    }
    if (m_Path.empty()) return;
    std::tie(triangle, side) = m_Path.back();
    m_Path.pop_back();
  }
}

// Collects the rim of a hole in a surface that tiles. Returns true iff `p` is certainly to the
// right of every edge: then the rim is one ring and the fan covers the hole once, because the
// angles under which the edges are seen are all of one sense and sum to one turn.
bool Cavity::CollectRim(TIN const& tin, TPoint* p) {
  m_Rim.resize(m_Triangles.size() * 3);
  RimEdge* edge = m_Rim.data();
  SideFan const seen(*p, SideErrorWithin(tin.m_dReach));
  bool certain = p->z == p->z && tin.IsWithinReach(*p);
  for (TTriangle* t : m_Triangles) {
    for (int side = 0; side < 3; ++side) {
      TTriangle* const outer = t->m_pAdjacent[side];
      if (outer != nullptr && IsMarked(outer)) continue;
      TPoint* const from = t->m_pVertex[side];
      TPoint* const to = t->m_pVertex[side == 2 ? 0 : side + 1];
      edge->from = from;
      edge->to = to;
      edge->outer = outer;
      edge->outer_side = outer == nullptr ? -1 : SideToward(*outer, t);
      edge->ascending = IsAscending(from, to);
      edge->swapped = !edge->ascending;
      certain &= seen.IsCertainlyClockwise(*from, *to) && from->z == from->z;
      ++edge;
    }
  }
  m_Rim.resize(static_cast<std::size_t>(edge - m_Rim.data()));
  return certain;
}

// Collects the rim of a hole in any structure. Returns false where the triangles in and around the
// hole do not point at each other across the same two corners.
bool Cavity::CollectRimChecked(TPoint* p) {
  m_Rim.clear();
  bool mutual = true;
  for (TTriangle* t : m_Triangles) {
    for (int side = 0; side < 3; ++side) {
      TTriangle* const outer = t->m_pAdjacent[side];
      TPoint* const from = t->m_pVertex[side];
      TPoint* const to = t->m_pVertex[(side + 1) % 3];
      int const back = outer == nullptr ? -1 : SideBack(*outer, t, from, to);
      if (outer != nullptr && back < 0) mutual = false;
      if (outer != nullptr && IsMarked(outer)) {
        if (outer->m_InHole == 0) mutual = false;  // a mark left over from a hole that shrank
        continue;
      }
      bool const ascending = IsAscending(from, to);
      bool const swapped = TEdge(p, ascending ? from : to).WhatSide(ascending ? *to : *from) < 0.0;
      m_Rim.push_back({from, to, outer, nullptr, back, 0, ascending, swapped, false});
    }
  }
  return mutual;
}

// Finds the rim edge after each. Returns false where the rim is not joined up.
// REQUIRES: each vertex begins at most one rim edge.
bool Cavity::LinkRing() {
  auto const edges = static_cast<int>(m_Rim.size());
  RimEdge* const rim = m_Rim.data();
  if (m_Rim.size() > LARGEST_SCANNED_RIM) {
    m_Table.Start(m_Rim.size());
    for (int i = 0; i < edges; ++i) m_Table.Add(rim[i].from, i);
    for (int i = 0; i < edges; ++i) {
      rim[i].next = m_Table.Find(*rim[i].to);
      if (rim[i].next == RingTable::NONE) return false;
    }
    return true;
  }
  TPoint const* begins[LARGEST_SCANNED_RIM];
  for (int i = 0; i < edges; ++i) begins[i] = rim[i].from;
  for (int i = 0; i < edges; ++i) {
    TPoint const* const to = rim[i].to;
    int next = 0;
    while (next < edges && begins[next] != to) ++next;
    if (next == edges) return false;
    rim[i].next = next;
  }
  return true;
}

// Returns true iff linking along the ring does what comparing all sides by value would: the rim is
// one ring, and no two of its vertices, `p` and the far corners of the triangles around are equal
// by value, except a far corner that is itself on the rim between two edges of its own triangle.
bool Cavity::RimIsSimple(TPoint const& p) {
  std::size_t const edges = m_Rim.size();
  if (edges < 3 || !(p == p)) return false;

  m_Table.Start(edges);
  for (std::size_t i = 0; i < edges; ++i) {
    if (!m_Table.Add(m_Rim[i].from, static_cast<int>(i))) return false;
  }
  if (m_Table.Find(p) != RingTable::NONE) return false;

  for (RimEdge& edge : m_Rim) {
    edge.next = m_Table.Find(*edge.to);
    if (edge.next == RingTable::NONE) return false;
    if (m_Rim[static_cast<std::size_t>(edge.next)].from != edge.to) return false;
  }
  std::size_t met = 1;
  for (int i = m_Rim[0].next; i != 0; i = m_Rim[static_cast<std::size_t>(i)].next) {
    if (++met > edges) return false;
  }
  if (met != edges) return false;

  return std::all_of(m_Rim.begin(), m_Rim.end(),
                     [&](RimEdge const& edge) { return ApexIsApart(edge, p); });
}

// The triangle outside is (to, from, apex). Its other sides may be rim edges only as apex -> from
// and to -> apex, and then they must lead to itself.
bool Cavity::ApexIsApart(RimEdge const& edge, TPoint const& p) const {
  if (edge.outer == nullptr) return true;
  TPoint const* const apex = edge.outer->m_pVertex[(edge.outer_side + 2) % 3];
  if (*apex == p) return false;
  int const begun = m_Table.Find(*apex);
  if (begun == RingTable::NONE) return true;

  RimEdge const& after_apex = m_Rim[static_cast<std::size_t>(begun)];
  if (after_apex.from != apex || after_apex.to == edge.to) return false;
  if (after_apex.to == edge.from && after_apex.outer != edge.outer) return false;
  RimEdge const& after_to = m_Rim[static_cast<std::size_t>(edge.next)];
  if (after_to.to == apex && after_to.outer != edge.outer) return false;
  RimEdge const& after_from = m_Rim[static_cast<std::size_t>(m_Table.Find(*edge.from))];
  return after_from.to != apex;
}

// Returns true iff no rim edge joins the same two vertices as a side inside the hole.
// REQUIRES: RimIsSimple.
bool Cavity::InnerSidesAreApart() const {
  auto const is_rim = [&](TPoint const* from, TPoint const* to) {
    int const begun = m_Table.Find(*from);
    return begun != RingTable::NONE && m_Rim[static_cast<std::size_t>(begun)].from == from &&
           m_Rim[static_cast<std::size_t>(begun)].to == to;
  };
  for (TTriangle const* t : m_Triangles) {
    for (int side = 0; side < 3; ++side) {
      TTriangle const* const neighbour = t->m_pAdjacent[side];
      if (neighbour == nullptr || !IsMarked(neighbour)) continue;
      TPoint const* const from = t->m_pVertex[side];
      TPoint const* const to = t->m_pVertex[(side + 1) % 3];
      if (is_rim(from, to) || is_rim(to, from)) return false;
    }
  }
  return true;
}

// Returns true iff no slot that the fan takes anew is a triangle in or around the hole, as it can
// be after slots were released by their byte distance.
bool Cavity::NewSlotsAreApart(TIN const& tin) const {
  if (!HasRoom(tin, m_Rim.size())) return true;
  TArray<TTriangle> const& pool = *tin.m_pTriangles;
  for (std::size_t i = m_Triangles.size(); i < m_Rim.size(); ++i) {
    TTriangle const* slot = pool.At(pool.m_iCount + static_cast<int>(i - m_Triangles.size()));
    if (IsMarked(slot)) return false;
    for (RimEdge const& edge : m_Rim) {
      if (edge.outer == slot) return false;
    }
  }
  return true;
}

bool Cavity::HasRoom(TIN const& tin, std::size_t edges) const {
  TArray<TTriangle> const& pool = *tin.m_pTriangles;
  return edges <= m_Triangles.size() + static_cast<std::size_t>(pool.m_iCapacity - pool.m_iCount);
}

void Cavity::Unmark() {
  for (TTriangle* t : m_Triangles) {
    t->m_Flags = static_cast<unsigned char>(t->m_Flags & ~TRI_CAVITY);
  }
}

// A hole that swallowed a vertex has fewer rim edges than triangles. Those that the fan did not
// need stay live, marked and cut off, and a walk may begin in one of them.
void Cavity::LeaveOver(TIN& tin) {
  for (TTriangle* t : m_Triangles) t->m_InHole = 0;
  tin.m_bTiling = false;
}

// Returns the last cavity triangle that is left, or a new slot, with the corners (p, a, b). Every
// other field is the caller's to write. A triangle overwritten in place is not moved in the point
// map; only new slots are entered.
TTriangle* Cavity::TakeSlot(TIN& tin, TPoint* p, TPoint* a, TPoint* b) {
  bool const reused = !m_Triangles.empty();
  TTriangle* slot = nullptr;
  if (reused) {
    slot = m_Triangles.back();
    m_Triangles.pop_back();
  } else {
    slot = tin.m_pTriangles->At(tin.m_pTriangles->m_iCount++);
  }
  slot->m_Reserved = 0;
  slot->m_InHole = 0;
  slot->m_pVertex[0] = p;
  slot->m_pVertex[1] = a;
  slot->m_pVertex[2] = b;
  if (!reused && tin.m_pPointMap != nullptr) tin.m_pPointMap->AddTriangle(slot);
  return slot;
}

bool Cavity::FillRing(TIN& tin, TPoint* p) {
  if (!HasRoom(tin, m_Rim.size())) return false;
  bool const outside = !tin.InBounds(*p);
  for (RimEdge& edge : m_Rim) edge.from_outside = !tin.InBounds(*edge.from);

  RimEdge* const rim = m_Rim.data();
  for (RimEdge& edge : m_Rim) {
    TTriangle* const t = edge.ascending ? TakeSlot(tin, p, edge.from, edge.to)
                                        : TakeSlot(tin, p, edge.to, edge.from);
    if (edge.swapped) std::swap(t->m_pVertex[0], t->m_pVertex[1]);
    bool const hidden = outside || edge.from_outside || rim[edge.next].from_outside;
    t->m_Flags = hidden ? TRI_OUTSIDE : 0;
    t->CalcTri();
    t->m_pAdjacent[FAN_SIDES[edge.ascending][edge.swapped].rim] = edge.outer;
    if (edge.outer != nullptr) edge.outer->m_pAdjacent[edge.outer_side] = t;
    edge.fan = t;
  }
  for (RimEdge const& edge : m_Rim) {
    RimEdge const& next = rim[edge.next];
    edge.fan->m_pAdjacent[FAN_SIDES[edge.ascending][edge.swapped].after] = next.fan;
    next.fan->m_pAdjacent[FAN_SIDES[next.ascending][next.swapped].before] = edge.fan;
  }
  return true;
}

}  // namespace qeltin::detail
