#include "qeltin/tin/FaceMesh.h"

#include <algorithm>

#include "qeltin/kernel/SideTest.h"
#include "qeltin/kernel/TEdge.h"

namespace qeltin::detail {

bool FaceMesh::IsSound() {
  std::vector<Loop> loops;
  if (HasFlaws() || !FindLoops(loops)) return false;
  return loops.size() == 1 || FindSeedRectangle(loops) == NONE;
}

// Returns true iff the faces are sound and the seed rectangle is their only loop.
bool FaceMesh::IsTiled() {
  std::vector<Loop> loops;
  return !HasFlaws() && FindLoops(loops) && loops.size() == 1 && FindSeedRectangle(loops) != NONE;
}

bool FaceMesh::HasFlaws() const {
  return std::any_of(m_Faces.begin(), m_Faces.end(),
                     [this](Face const& face) { return !face.dropped && IsFlawed(face, false); });
}

bool FaceMesh::IsFlawed(Face const& face, bool strictly) const {
  if (face.slot == Face::FRAME) return false;
  for (int side = 0; side < 3; ++side) {
    if (face.adjacent[side] == Face::OPEN) return true;
    if (face.adjacent[side] == Face::HULL) continue;
    Face const& other = m_Faces[static_cast<std::size_t>(face.adjacent[side])];
    if (RunsBack(face, side, other)) continue;
    if (strictly || (TurnsRight(face) && TurnsRight(other))) return true;
  }
  return TurnsLeft(face);
}

// Returns true iff `other` has the side the other way round, as triangles that lie beside each
// other do.
bool FaceMesh::RunsBack(Face const& face, int side, Face const& other) const {
  auto const place = static_cast<int>(&face - m_Faces.data());
  for (int k = 0; k < 3; ++k) {
    if (other.adjacent[k] == place && other.corner[k] == face.corner[(side + 1) % 3] &&
        other.corner[(k + 1) % 3] == face.corner[side]) {
      return true;
    }
  }
  return false;
}

bool FaceMesh::TurnsRight(Face const& face) const {
  return CertainSide(At(face.corner[0]), At(face.corner[1]), At(face.corner[2])) == Side::Right;
}

bool FaceMesh::TurnsLeft(Face const& face) const {
  TPoint const& a = At(face.corner[0]);
  TPoint const& b = At(face.corner[1]);
  TPoint const& c = At(face.corner[2]);
  Side const side = CertainSide(a, b, c);
  if (side != Side::Uncertain) return side == Side::Left;
  TPoint from = a;
  TPoint to = b;
  return TEdge(&from, &to).WhatSide(c) < 0.0;
}

void FaceMesh::Drop(Face& face) {
  face.dropped = true;
  auto const place = static_cast<int>(&face - m_Faces.data());
  for (int neighbour : face.adjacent) {
    if (neighbour < 0) continue;
    for (int& back : m_Faces[static_cast<std::size_t>(neighbour)].adjacent) {
      if (back == place) back = Face::OPEN;
    }
  }
}

bool FaceMesh::IsSeedCorner(int vertex) const {
  return std::find(m_SeedCorners.begin(), m_SeedCorners.end(), vertex) != m_SeedCorners.end();
}

// Numbers the parts that neighbours join. Returns how many there are.
int FaceMesh::NumberParts(std::vector<int>& part) const {
  part.assign(m_Faces.size(), NONE);
  int parts = 0;
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < m_Faces.size(); ++i) {
    if (m_Faces[i].dropped || part[i] != NONE) continue;
    part[i] = parts;
    open.push_back(i);
    while (!open.empty()) {
      Face const& face = m_Faces[open.back()];
      open.pop_back();
      for (int neighbour : face.adjacent) {
        if (neighbour < 0 || part[static_cast<std::size_t>(neighbour)] != NONE) continue;
        part[static_cast<std::size_t>(neighbour)] = parts;
        open.push_back(static_cast<std::size_t>(neighbour));
      }
    }
    ++parts;
  }
  return parts;
}

void FaceMesh::DropAllButTheLargestPart() {
  std::vector<int> part;
  std::vector<int> sizes(static_cast<std::size_t>(NumberParts(part)));
  for (int number : part) {
    if (number != NONE) ++sizes[static_cast<std::size_t>(number)];
  }
  auto const largest = std::max_element(sizes.begin(), sizes.end()) - sizes.begin();
  for (std::size_t i = 0; i < m_Faces.size(); ++i) {
    if (!m_Faces[i].dropped && part[i] != largest) Drop(m_Faces[i]);
  }
}

// Drops the parts without a side of the hull.
void FaceMesh::DropStrayParts() {
  std::vector<int> part;
  std::vector<char> kept(static_cast<std::size_t>(NumberParts(part)), false);
  for (std::size_t i = 0; i < m_Faces.size(); ++i) {
    if (m_Faces[i].slot == Face::FRAME) kept[static_cast<std::size_t>(part[i])] = true;
  }
  for (std::size_t i = 0; i < m_Faces.size(); ++i) {
    if (!m_Faces[i].dropped && !kept[static_cast<std::size_t>(part[i])]) Drop(m_Faces[i]);
  }
}

// Follows the sides without neighbour, each to where the next one begins. Returns false, with the
// faces on such sides marked, where a vertex begins two of them.
bool FaceMesh::FindLoops(std::vector<Loop>& loops) {
  std::fill(m_Begun.begin(), m_Begun.end(), NONE);
  std::vector<int> sides;
  bool simple = true;
  for (std::size_t i = 0; i < m_Faces.size(); ++i) {
    for (int k = 0; k < 3; ++k) {
      if (m_Faces[i].dropped || m_Faces[i].adjacent[k] >= 0) continue;
      auto const side = static_cast<int>(3 * i) + k;
      int& begun = m_Begun[static_cast<std::size_t>(Start(side))];
      simple = simple && begun == NONE;
      begun = begun == NONE ? side : PINCHED;
      sides.push_back(side);
    }
  }
  if (!simple) {
    for (int side : sides) {
      if (IsPinched(Start(side)) || IsPinched(End(side))) MarkInTheWay(side / 3);
    }
    return false;
  }
  for (int first : sides) {
    if (m_Begun[static_cast<std::size_t>(Start(first))] == NONE) continue;
    Loop loop;
    for (int side = first; side != NONE;) {
      loop.push_back(side);
      m_Begun[static_cast<std::size_t>(Start(side))] = NONE;
      side = m_Begun[static_cast<std::size_t>(End(side))];
    }
    if (End(loop.back()) != Start(loop.front())) return false;
    loops.push_back(loop);
  }
  return true;
}

void FaceMesh::TurnOver() {
  if (std::any_of(m_Faces.begin(), m_Faces.end(),
                  [this](Face const& face) { return TurnsRight(face); })) {
    return;
  }
  for (Face& face : m_Faces) {
    std::swap(face.corner[0], face.corner[1]);
    std::swap(face.adjacent[1], face.adjacent[2]);
  }
}

// Returns which of the loops is the seed rectangle, or NONE.
int FaceMesh::FindSeedRectangle(std::vector<Loop> const& loops) {
  auto const at = std::find_if(loops.begin(), loops.end(),
                               [this](Loop const& loop) { return IsSeedRectangle(loop); });
  return at == loops.end() ? NONE : static_cast<int>(at - loops.begin());
}

bool FaceMesh::IsSeedRectangle(Loop const& loop) {
  if (loop.size() != SEED_CORNERS) return false;
  for (std::size_t i = 0; i < SEED_CORNERS; ++i) {
    if (Across(loop[i]) != Face::HULL) return false;
    if (!IsSeedCorner(Start(loop[i]))) return false;
    TPoint const& after = At(End(loop[(i + 1) % SEED_CORNERS]));
    if (CertainSide(At(Start(loop[i])), At(End(loop[i])), after) != Side::Right) return false;
  }
  return true;
}

void FaceMesh::MarkInTheWay(int face) {
  auto const place = static_cast<std::size_t>(face);
  if (place < m_InTheWay.size()) m_InTheWay[place] = true;
}

}  // namespace qeltin::detail
