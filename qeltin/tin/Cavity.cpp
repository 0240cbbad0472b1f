#include "qeltin/tin/Cavity.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "qeltin/kernel/SideTest.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::detail {

namespace {

constexpr std::size_t FIRST_ROOM = 64;  // members

// Where the sides of a fan triangle went, by RimEdge::ascending and ::swapped.
struct FanSides {
  signed char before;  // shared with the fan triangle on the rim edge before
  signed char rim;
  signed char after;  // shared with the fan triangle on the rim edge after
};
constexpr FanSides FAN_SIDES[2][2] = {{{2, 1, 0}, {1, 2, 0}}, {{0, 1, 2}, {0, 2, 1}}};

int After(int side) { return side == 2 ? 0 : side + 1; }

bool IsMarked(TTriangle const* t) { return (t->m_Flags & TRI_CAVITY) != 0; }

void Mark(TTriangle* t) {
  t->m_Flags |= TRI_CAVITY;
  t->m_InHole = 1;
}

// Returns the lowest side that leads to `neighbour`, or 3. No branches: which side it is cannot be
// foreseen.
int SideToward(TTriangle const& t, TTriangle const* neighbour) {
  bool const not_0 = t.m_pAdjacent[0] != neighbour;
  bool const not_1 = not_0 & (t.m_pAdjacent[1] != neighbour);
  bool const not_2 = not_1 & (t.m_pAdjacent[2] != neighbour);
  return int{not_0} + int{not_1} + int{not_2};
}

// Returns the side of `outer` that leads to `t` and runs from `to` to `from`, or -1.
int SideBack(TTriangle const& outer, TTriangle const* t, TPoint const* from, TPoint const* to) {
  for (int side = 0; side < 3; ++side) {
    if (outer.m_pAdjacent[side] == t && outer.m_pVertex[side] == to &&
        outer.m_pVertex[After(side)] == from) {
      return side;
    }
  }
  return -1;
}

}  // namespace

bool Cavity::Replace(TIN& tin, TPoint* p, TTriangle* start) {
  Grow(*p, start);
  bool const ring = ListRim();
  if (tin.m_bTiling) tin.m_bTiling = ring && CollectRim(tin, p);
  bool const simple =
      tin.m_bTiling || (ring && IsMutual() && RimIsSimple(p) && NewSlotsAreApart(tin));
  return simple ? FillRing(tin, p) : FillByValue(tin, p);
}

void Cavity::MakeRoom() {
  std::size_t const room = std::max(FIRST_ROOM, m_Members.size() * 2);
  m_Members.resize(room);
  m_After.resize(room + 3);
  m_EdgeAt.resize(room + 3);
  m_RimSides.resize(room * 3 + 1);
  m_Rim.resize(room + 2);
}

// Depth-first, neighbours 0, 1, 2 of each: the order is seen in the pools. The sides that face
// outward are kept in a ring: where the search crosses one, the other two of the triangle behind
// come in its place.
void Cavity::Grow(TPoint const& p, TTriangle* start) {
  static constexpr signed char FIRST[4] = {1, 2, 0, 1};  // by the side crossed
  static constexpr signed char SECOND[4] = {2, 0, 1, 2};
  TPoint const place = p;
  if (m_Members.empty()) MakeRoom();
  m_Members[0] = {start, 0, 0, 3, {1, 2, 3, INNER}};
  m_After[1] = 2;
  m_After[2] = 3;
  m_After[3] = 1;
  m_iMembers = 1;
  Mark(start);
  Member* member = m_Members.data();
  int side = 0;
  for (;;) {
    side += side == member->entry ? 1 : 0;
    if (side >= 3) {
      if (member == m_Members.data()) return;
      side = member->parent_side + 1;
      member = m_Members.data() + member->parent;
      continue;
    }
    TTriangle* const next = member->triangle->m_pAdjacent[side];
    if (next == nullptr || IsMarked(next) || next->TestCalcTri(place) == 0) {
      if (next != nullptr && IsMarked(next)) member->place[side] = INNER;
      ++side;
      continue;
    }
    Mark(next);
    auto const parent = static_cast<int>(member - m_Members.data());
    int const number = m_iMembers++;
    if (static_cast<std::size_t>(number) == m_Members.size()) {
      MakeRoom();
      member = m_Members.data() + parent;
    }
    int const entry = SideToward(*next, member->triangle);
    int const opened = std::exchange(member->place[side], INNER);
    int const added = number + 3;
    int* const after = m_After.data();
    after[added] = std::exchange(after[opened], added);
    member = m_Members.data() + number;
    *member = {next, parent, static_cast<signed char>(side), static_cast<signed char>(entry), {}};
    member->place[FIRST[entry]] = opened;
    member->place[SECOND[entry]] = added;
    side = 0;
  }
}

// Lists the sides of the cavity that lie on the rim. Returns true iff they are as many as a ring
// has whose triangles meet only where the search crossed from one to the other.
bool Cavity::ListRim() {
  RimSide* const sides = m_RimSides.data();
  int* const edge_at = m_EdgeAt.data();
  int count = 0;
  for (Member const *member = m_Members.data(), *end = member + m_iMembers; member != end;
       ++member) {
    for (int side = 0; side < 3; ++side) {
      // Written in any case, and kept or not: half of them are kept, and nothing tells which.
      int const place = member->place[side];
      sides[count] = {member->triangle, side, place};
      edge_at[place] = count;
      count += place != INNER ? 1 : 0;
    }
  }
  m_iEdges = count;
  return count == m_iMembers + 2;
}

// Begins rim edge `i` with what is the same in any structure.
Cavity::RimEdge& Cavity::StartEdge(int i) {
  RimSide const& rim = m_RimSides[static_cast<std::size_t>(i)];
  RimEdge& edge = m_Rim[static_cast<std::size_t>(i)];
  TPoint* const from = rim.triangle->m_pVertex[rim.side];
  TPoint* const to = rim.triangle->m_pVertex[After(rim.side)];
  bool const ascending = std::less<>()(from, to);
  edge.ends[0] = ascending ? from : to;
  edge.ends[1] = ascending ? to : from;
  edge.outer = rim.triangle->m_pAdjacent[rim.side];
  edge.next = m_EdgeAt[static_cast<std::size_t>(m_After[static_cast<std::size_t>(rim.place)])];
  edge.ascending = ascending;
  return edge;
}

// Collects the rim of a hole in a surface that tiles. Returns true iff `p` is certainly to the
// right of every edge: then the rim is one ring and the fan covers the hole once, because the
// angles under which the edges are seen are all of one sense and sum to one turn.
bool Cavity::CollectRim(TIN const& tin, TPoint* p) {
  SideFan const seen(*p, SideErrorWithin(tin.m_dReach));
  bool certain = p->z == p->z && tin.IsWithinReach(*p);
  for (int i = 0; i < m_iEdges; ++i) {
    TTriangle const* const inside = m_RimSides[static_cast<std::size_t>(i)].triangle;
    RimEdge& edge = StartEdge(i);
    edge.outer_side = edge.outer == nullptr ? -1 : SideToward(*edge.outer, inside);
    edge.swapped = !edge.ascending;
    TPoint const& from = *edge.From();
    certain &= seen.IsCertainlyClockwise(from, *edge.To()) && from.z == from.z;
  }
  return certain;
}

// Returns true iff the triangles in and around the hole point at each other across the same two
// corners.
bool Cavity::IsMutual() const {
  for (int i = 0; i < m_iMembers; ++i) {
    Member const& member = m_Members[static_cast<std::size_t>(i)];
    TTriangle const& t = *member.triangle;
    for (int side = 0; side < 3; ++side) {
      TTriangle const* const beside = t.m_pAdjacent[side];
      if (beside == nullptr) continue;
      if (SideBack(*beside, &t, t.m_pVertex[side], t.m_pVertex[After(side)]) < 0) return false;
      // A mark may be left over from a hole that shrank.
      if (member.place[side] == INNER && beside->m_InHole == 0) return false;
    }
  }
  return true;
}

// Collects the rim of a hole in any structure. REQUIRES: IsMutual.
void Cavity::CollectRimChecked(TPoint* p) {
  for (int i = 0; i < m_iEdges; ++i) {
    TTriangle const* const inside = m_RimSides[static_cast<std::size_t>(i)].triangle;
    RimEdge& edge = StartEdge(i);
    edge.outer_side =
        edge.outer == nullptr ? -1 : SideBack(*edge.outer, inside, edge.From(), edge.To());
    edge.swapped = TEdge(p, edge.ends[0]).WhatSide(*edge.ends[1]) < 0.0;
  }
}

// Returns true iff linking along the ring does what comparing all sides by value would: no two of
// the rim's vertices, `p` and the far corners of the triangles around are equal by value, except a
// far corner that is itself on the rim between two edges of its own triangle. No side inside the
// hole joins two vertices that a rim edge joins, because it cuts the ring in two.
// REQUIRES: the rim is one ring.
bool Cavity::RimIsSimple(TPoint* p) {
  if (!(*p == *p)) return false;
  CollectRimChecked(p);
  m_Table.Start(static_cast<std::size_t>(m_iEdges));
  for (int i = 0; i < m_iEdges; ++i) {
    if (!m_Table.Add(m_Rim[static_cast<std::size_t>(i)].From(), i)) return false;
  }
  if (m_Table.Find(*p) != RingTable::NONE) return false;
  return std::all_of(m_Rim.begin(), m_Rim.begin() + m_iEdges,
                     [&](RimEdge const& edge) { return ApexIsApart(edge, *p); });
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
  if (after_apex.From() != apex || after_apex.To() == edge.To()) return false;
  if (after_apex.To() == edge.From() && after_apex.outer != edge.outer) return false;
  RimEdge const& after_to = m_Rim[static_cast<std::size_t>(edge.next)];
  if (after_to.To() == apex && after_to.outer != edge.outer) return false;
  return edge.To() != apex;
}

// Returns true iff no slot that the fan takes anew is a triangle in or around the hole, as it can
// be after slots were released by their byte distance.
bool Cavity::NewSlotsAreApart(TIN const& tin) const {
  if (!HasRoom(tin, m_iEdges)) return true;
  TArray<TTriangle> const& pool = *tin.m_pTriangles;
  for (int i = m_iMembers; i < m_iEdges; ++i) {
    TTriangle const* const slot = pool.At(pool.m_iCount + i - m_iMembers);
    if (IsMarked(slot)) return false;
    if (std::any_of(m_Rim.begin(), m_Rim.begin() + m_iEdges,
                    [slot](RimEdge const& edge) { return edge.outer == slot; })) {
      return false;
    }
  }
  return true;
}

bool Cavity::HasRoom(TIN const& tin, int edges) const {
  return edges - m_iMembers <= tin.m_pTriangles->m_iCapacity - tin.m_pTriangles->m_iCount;
}

void Cavity::GiveUp(TIN& tin) {
  for (int i = 0; i < m_iMembers; ++i) {
    TTriangle* const t = m_Members[static_cast<std::size_t>(i)].triangle;
    t->m_Flags = static_cast<unsigned char>(t->m_Flags & ~TRI_CAVITY);
  }
  LeaveOver(tin, 0);
}

// A hole that swallowed a vertex has fewer rim edges than triangles. Those that the fan did not
// need stay live, marked and cut off, and a walk may begin in one of them.
void Cavity::LeaveOver(TIN& tin, int edges) {
  for (int i = 0; i < m_iMembers - edges; ++i) {
    m_Members[static_cast<std::size_t>(i)].triangle->m_InHole = 0;
    tin.m_bTiling = false;
  }
}

// Returns the slot of the fan triangle with the corners (p, a, b) on rim edge `edge`, asked for in
// rising order: the last cavity triangle that is left, or a new slot. Its fields are the caller's
// to write. A triangle overwritten in place is not moved in the point map; only new slots are
// entered.
TTriangle* Cavity::TakeSlot(TIN& tin, int edge, TPoint* p, TPoint* a, TPoint* b) const {
  if (edge < m_iMembers) return m_Members[static_cast<std::size_t>(m_iMembers - 1 - edge)].triangle;
  TTriangle* const slot = tin.m_pTriangles->At(tin.m_pTriangles->m_iCount++);
  if (tin.m_pPointMap == nullptr) return slot;
  slot->m_pVertex[0] = p;
  slot->m_pVertex[1] = a;
  slot->m_pVertex[2] = b;
  tin.m_pPointMap->AddTriangle(slot);
  return slot;
}

bool Cavity::FillRing(TIN& tin, TPoint* p) {
  if (!HasRoom(tin, m_iEdges)) {
    GiveUp(tin);
    return false;
  }
  RimEdge* const rim = m_Rim.data();
  for (int i = 0; i < m_iEdges; ++i) {
    rim[i].fan = TakeSlot(tin, i, p, rim[i].ends[0], rim[i].ends[1]);
    rim[i].from_outside = !tin.InBounds(*rim[i].From());
  }
  bool const outside = !tin.InBounds(*p);
  for (int i = 0; i < m_iEdges; ++i) {
    RimEdge const& edge = rim[i];
    RimEdge const& next = rim[edge.next];
    TTriangle& t = *edge.fan;
    TPoint* const first[2] = {p, edge.ends[0]};  // not by ?:, whose branch none foresees
    t.m_pVertex[0] = first[edge.swapped];
    t.m_pVertex[1] = first[!edge.swapped];
    t.m_pVertex[2] = edge.ends[1];
    t.CalcTri();
    t.m_Flags = (outside | edge.from_outside | next.from_outside) ? TRI_OUTSIDE : 0;
    t.m_Reserved = 0;
    t.m_InHole = 0;

    FanSides const& sides = FAN_SIDES[edge.ascending][edge.swapped];
    t.m_pAdjacent[sides.rim] = edge.outer;
    if (edge.outer != nullptr) edge.outer->m_pAdjacent[edge.outer_side] = &t;
    t.m_pAdjacent[sides.after] = next.fan;
    next.fan->m_pAdjacent[FAN_SIDES[next.ascending][next.swapped].before] = &t;
  }
  tin.m_Triangulator.m_Fan.Note(p, m_iEdges, [rim](int i) { return rim[i].fan; });
  return true;
}

}  // namespace qeltin::detail
