#include <algorithm>
#include <utility>

#include "qeltin/kernel/SideTest.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/FaceMesh.h"

namespace qeltin::detail {

namespace {

constexpr int MOST_ROUNDS = 40;             // each drops more faces around what could not be filled
constexpr std::size_t LARGEST_LOOP = 2000;  // corners; filling takes the cube of their number

}  // namespace

bool FaceMesh::Mend() {
  bool const seeded = SortSeedCorners();
  if (seeded) DropAllButTheLargestPart();
  if (seeded && IsTiled()) return true;
  std::vector<char> lost(static_cast<std::size_t>(m_iSlots), false);
  for (Face const& face : m_Faces) {
    if (face.dropped) continue;
    for (int vertex : face.corner) lost[static_cast<std::size_t>(vertex)] = true;
  }
  seeded ? AddFrame() : AddLooseFrame();
  DropFlawed();
  std::size_t const given = m_Faces.size();

  for (int round = 0; round < MOST_ROUNDS; ++round) {
    seeded ? DropAllButTheLargestPart() : DropStrayParts();
    if (m_Faces.back().dropped) return false;  // one of the frame, which is not joined to the rest
    m_InTheWay.assign(given, false);
    std::vector<Loop> loops;
    if (FindLoops(loops) && FillAll(loops) && InsertVertices(lost)) {
      RemoveFrame();
      return seeded || IsSound();
    }
    TakeBack(given);
    if (!DropWhatIsInTheWay()) return false;
  }
  return false;
}

// Puts a face beyond each side of the seed rectangle and joins them in a ring, by way of a corner
// that is nowhere. With them there is no hull, every side without neighbour is one of a hole, and
// the faces on the sides of the rectangle can be replaced as any other.
// REQUIRES: a seed rectangle, its corners sorted.
void FaceMesh::AddFrame() {
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
}

// Puts a face beyond each side of the hull, with the same effect. They do not know each other: each
// is its own neighbour across the other sides.
void FaceMesh::AddLooseFrame() {
  std::size_t const inside = m_Faces.size();
  for (std::size_t place = 0; place < inside; ++place) {
    for (int k = 0; k < 3; ++k) {
      if (m_Faces[place].dropped || m_Faces[place].adjacent[k] != Face::HULL) continue;
      auto const made = static_cast<int>(m_Faces.size());
      int from = m_Faces[place].corner[k];
      int to = m_Faces[place].corner[(k + 1) % 3];
      if (TurnsLeft(m_Faces[place])) std::swap(from, to);
      m_Faces.push_back({{to, from, m_iSlots}, {Face::OPEN, made, made}, Face::FRAME});
      Join(static_cast<int>(3 * place) + k, 3 * made);
    }
  }
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

void FaceMesh::DropFlawed() {
  std::vector<std::size_t> flawed;
  for (std::size_t i = 0; i < m_Faces.size(); ++i) {
    if (!m_Faces[i].dropped && IsFlawed(m_Faces[i], true)) flawed.push_back(i);
  }
  for (std::size_t i : flawed) Drop(m_Faces[i]);
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

bool FaceMesh::FillAll(std::vector<Loop> const& loops) {
  bool filled = true;
  for (Loop const& loop : loops) {
    if (Fill(loop)) continue;
    filled = false;
    for (int side : loop) MarkInTheWay(side / 3);
  }
  return filled;
}

// Fills the hole inside the loop by clipping ears, the one with the smallest circumcircle first.
// Each ear turns right for certain and has no other corner in it: a loop that crosses itself runs
// out of them.
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
    auto const made = m_Faces.begin() + static_cast<std::ptrdiff_t>(m_InTheWay.size());
    auto const at =
        std::find_if(made, m_Faces.end(), [&](Face const& face) { return IsInside(vertex, face); });
    if (at != m_Faces.end()) {
      Insert(vertex, static_cast<int>(at - m_Faces.begin()));
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
