#include "qeltin/tin/FaceMesh.h"

#include <algorithm>

#include "qeltin/kernel/SideTest.h"
#include "qeltin/kernel/TTriangle.h"

namespace qeltin::detail {

namespace {

constexpr int MOST_ROUNDS = 40;              // each drops more faces around what could not be filled
constexpr std::size_t LARGEST_LOOP = 2000;   // corners; filling takes the cube of their number
constexpr int SEED_CORNERS = 4;

}  // namespace

bool FaceMesh::IsSound() {
  std::vector<Loop> loops;
  if (HasFlaws() || !FindLoops(loops)) return false;
  return loops.size() == 1 || FindSeedRectangle(loops) == NONE;
}

// Returns true iff the faces are sound and the seed rectangle is their only loop.
bool FaceMesh::IsTiled() {
  std::vector<Loop> loops;
  return !HasFlaws() && FindLoops(loops) && loops.size() == 1 &&
         FindSeedRectangle(loops) != NONE;
}

bool FaceMesh::Mend() {
  DropAllButTheLargestPart();
  if (IsTiled()) return true;
  std::vector<char> lost(static_cast<std::size_t>(m_iSlots), false);
  for (Face const& face : m_Faces) {
    if (face.dropped) continue;
    for (int vertex : face.corner) lost[static_cast<std::size_t>(vertex)] = true;
  }
  if (!AddFrame()) return false;
  DropFlawed();
  std::size_t const given = m_Faces.size();

  for (int round = 0; round < MOST_ROUNDS; ++round) {
    DropAllButTheLargestPart();
    if (m_Faces.back().dropped) return false;  // one of the frame, which is not joined to the rest
    m_InTheWay.assign(given, false);
    std::vector<Loop> loops;
    if (FindLoops(loops) && FillAll(loops) && InsertVertices(lost)) {
      RemoveFrame();
      return true;
    }
    TakeBack(given);
    if (!DropWhatIsInTheWay()) return false;
  }
  return false;
}

// Puts a face beyond each side of the seed rectangle and joins them in a ring, by way of a corner
// that is nowhere. With them there is no hull, every side without neighbour is one of a hole, and
// the faces on the sides of the rectangle can be replaced as any other. Returns false without a seed
// rectangle.
bool FaceMesh::AddFrame() {
  if (!SortSeedCorners()) return false;
  for (Face& face : m_Faces) std::replace(face.adjacent, face.adjacent + 3, Face::HULL, Face::OPEN);
  auto const first = static_cast<int>(m_Faces.size());
  auto const inside = static_cast<std::size_t>(first);
  for (int i = 0; i < SEED_CORNERS; ++i) {
    int const from = m_SeedCorners[static_cast<std::size_t>(i)];
    int const to = m_SeedCorners[static_cast<std::size_t>((i + 1) % SEED_CORNERS)];
    m_Faces.push_back({{to, from, m_iSlots},
                       {Face::OPEN, first + (i + SEED_CORNERS - 1) % SEED_CORNERS,
                        first + (i + 1) % SEED_CORNERS},
                       Face::FRAME});
    for (std::size_t place = 0; place < inside; ++place) {
      for (int k = 0; k < 3; ++k) {
        Face const& face = m_Faces[place];
        if (face.dropped || face.adjacent[k] != Face::OPEN || face.corner[k] != from ||
            face.corner[(k + 1) % 3] != to || m_Faces.back().adjacent[0] != Face::OPEN) {
          continue;
        }
        Join(static_cast<int>(3 * place) + k, 3 * (first + i));
      }
    }
  }
  return true;
}

void FaceMesh::RemoveFrame() {
  for (Face& face : m_Faces) {
    if (face.slot != Face::FRAME) continue;
    Drop(face);
    int* const sides = m_Faces[static_cast<std::size_t>(face.adjacent[0])].adjacent;
    std::replace(sides, sides + 3, Face::OPEN, Face::HULL);
  }
}

// Puts the corners of the seed rectangle in clockwise order. Returns false where they are not four
// corners of a convex figure.
bool FaceMesh::SortSeedCorners() {
  if (m_SeedCorners.size() != SEED_CORNERS) return false;
  std::sort(m_SeedCorners.begin(), m_SeedCorners.end(), [this](int a, int b) {
    return At(a).x != At(b).x ? At(a).x < At(b).x : At(a).y < At(b).y;
  });
  // Now south-west, north-west, south-east, north-east.
  std::swap(m_SeedCorners[2], m_SeedCorners[3]);
  for (std::size_t i = 0; i < SEED_CORNERS; ++i) {
    TPoint const& a = At(m_SeedCorners[i]);
    TPoint const& b = At(m_SeedCorners[(i + 1) % SEED_CORNERS]);
    if (CertainSide(a, b, At(m_SeedCorners[(i + 2) % SEED_CORNERS])) != Side::Right) return false;
  }
  return true;
}

bool FaceMesh::HasFlaws() const {
  return std::any_of(m_Faces.begin(), m_Faces.end(), [this](Face const& face) {
    return !face.dropped && IsFlawed(face, false);
  });
}

void FaceMesh::DropFlawed() {
  std::vector<std::size_t> flawed;
  for (std::size_t i = 0; i < m_Faces.size(); ++i) {
    if (!m_Faces[i].dropped && IsFlawed(m_Faces[i], true)) flawed.push_back(i);
  }
  for (std::size_t i : flawed) Drop(m_Faces[i]);
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

// Returns true iff `other` has the side the other way round, as triangles that lie beside each other
// do.
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

// Returns false where nothing could be dropped.
bool FaceMesh::DropWhatIsInTheWay() {
  bool dropped = false;
  for (std::size_t i = 0; i < m_Faces.size(); ++i) {
    Face& face = m_Faces[i];
    if (!m_InTheWay[i] || face.dropped || face.slot == Face::FRAME) continue;
    Drop(face);
    dropped = true;
  }
  return dropped;
}

bool FaceMesh::IsSeedCorner(int vertex) const {
  return std::find(m_SeedCorners.begin(), m_SeedCorners.end(), vertex) != m_SeedCorners.end();
}

void FaceMesh::DropAllButTheLargestPart() {
  std::vector<int> part(m_Faces.size(), NONE);
  std::vector<int> sizes;
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < m_Faces.size(); ++i) {
    if (m_Faces[i].dropped || part[i] != NONE) continue;
    auto const number = static_cast<int>(sizes.size());
    sizes.push_back(0);
    part[i] = number;
    open.push_back(i);
    while (!open.empty()) {
      Face const& face = m_Faces[open.back()];
      open.pop_back();
      ++sizes.back();
      for (int neighbour : face.adjacent) {
        if (neighbour < 0 || part[static_cast<std::size_t>(neighbour)] != NONE) continue;
        part[static_cast<std::size_t>(neighbour)] = number;
        open.push_back(static_cast<std::size_t>(neighbour));
      }
    }
  }
  auto const largest = std::max_element(sizes.begin(), sizes.end()) - sizes.begin();
  for (std::size_t i = 0; i < m_Faces.size(); ++i) {
    if (!m_Faces[i].dropped && part[i] != largest) Drop(m_Faces[i]);
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
    loops.push_back(loop);
  }
  return true;
}

bool FaceMesh::FillAll(std::vector<Loop> const& loops) {
  bool filled = true;
  for (Loop const& loop : loops) {
    if (Fill(loop)) continue;
    filled = false;
    for (int side : loop) MarkInTheWay(side / 3);
  }
  return filled;
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

// Fills the hole inside the loop by clipping ears, the one with the smallest circumcircle first. Each
// ear turns right for certain and has no other corner in it: a loop that crosses itself runs out of
// them.
bool FaceMesh::Fill(Loop const& loop) {
  if (loop.size() > LARGEST_LOOP || loop.size() < 3) return false;
  // Seen from the hole the sides run the other way. Corner i begins the one across sides[i].
  Loop sides(loop.rbegin(), loop.rend());
  std::vector<int> corners;
  for (int side : sides) corners.push_back(End(side));

  while (corners.size() >= 3) {
    std::size_t const n = corners.size();
    std::size_t best = n;
    double least = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
      int const p = corners[i];
      int const q = corners[(i + 1) % n];
      int const r = corners[(i + 2) % n];
      if (CertainSide(At(p), At(q), At(r)) != Side::Right) continue;
      if (std::any_of(corners.begin(), corners.end(), [&](int vertex) {
            return vertex != p && vertex != q && vertex != r && !IsOutside(vertex, p, q, r);
          })) {
        continue;
      }
      TPoint a = At(p), b = At(q), c = At(r);
      double const radius = TTriangle(&a, &b, &c).XY_CircumcircleRadius();
      if (best != n && !(radius < least)) continue;
      best = i;
      least = radius;
    }
    if (best == n) return false;

    std::size_t const middle = (best + 1) % n;
    auto const made = static_cast<int>(3 * m_Faces.size());
    m_Faces.push_back({{corners[best], corners[middle], corners[(best + 2) % n]},
                       {Face::OPEN, Face::OPEN, Face::OPEN},
                       Face::MADE});
    Join(made, sides[best]);
    Join(made + 1, sides[middle]);
    if (n == 3) {
      Join(made + 2, sides[(best + 2) % n]);
      return true;
    }
    sides[best] = made + 2;
    corners.erase(corners.begin() + static_cast<std::ptrdiff_t>(middle));
    sides.erase(sides.begin() + static_cast<std::ptrdiff_t>(middle));
  }
  return false;
}

bool FaceMesh::IsOutside(int vertex, int p, int q, int r) const {
  TPoint const& v = At(vertex);
  return CertainSide(At(p), At(q), v) == Side::Left || CertainSide(At(q), At(r), v) == Side::Left ||
         CertainSide(At(r), At(p), v) == Side::Left;
}

void FaceMesh::Join(int side, int other) {
  Across(side) = other / 3;
  Across(other) = side / 3;
}

void FaceMesh::TakeBack(std::size_t faces) {
  m_Faces.resize(faces);
  for (Face& face : m_Faces) {
    for (int& neighbour : face.adjacent) {
      if (neighbour >= static_cast<int>(faces)) neighbour = Face::OPEN;
    }
  }
}

// Puts the vertices, as far as they have lost all their faces, into those that were made. Returns
// false, with the faces around marked, where one is not inside of such a face for certain.
bool FaceMesh::InsertVertices(std::vector<char> lost) {
  for (Face const& face : m_Faces) {
    if (face.dropped || face.slot == Face::FRAME) continue;
    for (int vertex : face.corner) lost[static_cast<std::size_t>(vertex)] = false;
  }
  bool inserted = true;
  for (int vertex = 0; vertex < m_iSlots; ++vertex) {
    if (!lost[static_cast<std::size_t>(vertex)]) continue;
    auto const at = std::find_if(m_Faces.rbegin(), m_Faces.rend(), [&](Face const& face) {
      return face.slot == Face::MADE && IsInside(vertex, face);
    });
    if (at != m_Faces.rend()) {
      Insert(vertex, static_cast<int>(&*at - m_Faces.data()));
      continue;
    }
    inserted = false;
    MarkAround(vertex);
  }
  return inserted;
}

// Marks the faces that may have the vertex inside, and those beside them.
void FaceMesh::MarkAround(int vertex) {
  for (std::size_t i = 0; i < m_Faces.size(); ++i) {
    Face const& face = m_Faces[i];
    if (face.dropped || face.slot == Face::FRAME) continue;
    if (IsOutside(vertex, face.corner[0], face.corner[1], face.corner[2])) continue;
    MarkInTheWay(static_cast<int>(i));
    for (int neighbour : face.adjacent) {
      if (neighbour >= 0) MarkInTheWay(neighbour);
    }
  }
}

void FaceMesh::MarkInTheWay(int face) {
  auto const place = static_cast<std::size_t>(face);
  if (place < m_InTheWay.size()) m_InTheWay[place] = true;
}

bool FaceMesh::IsInside(int vertex, Face const& face) const {
  TPoint const& v = At(vertex);
  for (int k = 0; k < 3; ++k) {
    if (CertainSide(At(face.corner[k]), At(face.corner[(k + 1) % 3]), v) != Side::Right) {
      return false;
    }
  }
  return true;
}

// Splits the face at this place, which has the vertex inside, into three.
void FaceMesh::Insert(int vertex, int place) {
  Face const whole = m_Faces[static_cast<std::size_t>(place)];
  auto const added = static_cast<int>(m_Faces.size());
  int const part[3] = {place, added, added + 1};
  m_Faces.resize(m_Faces.size() + 2);
  for (int k = 0; k < 3; ++k) {
    m_Faces[static_cast<std::size_t>(part[k])] = {
        {whole.corner[k], whole.corner[(k + 1) % 3], vertex},
        {whole.adjacent[k], part[(k + 1) % 3], part[(k + 2) % 3]},
        Face::MADE};
    for (int& back : m_Faces[static_cast<std::size_t>(whole.adjacent[k])].adjacent) {
      if (back == place && whole.adjacent[k] != place) back = part[k];
    }
  }
}

}  // namespace qeltin::detail
