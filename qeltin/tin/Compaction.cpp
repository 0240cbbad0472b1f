#include "qeltin/tin/Compaction.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "qeltin/tin/InsertionOrder.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::detail {

namespace {

constexpr int NO_SLOT = -1;

// Returns the slot of an element, or NO_SLOT where it is in no slot of this pool.
template <typename T>
int SlotOf(TArray<T> const& pool, T const* element) {
  auto const distance =
      reinterpret_cast<std::uintptr_t>(element) - reinterpret_cast<std::uintptr_t>(pool.m_pData);
  if (distance % sizeof(T) != 0) return NO_SLOT;
  auto const slot = distance / sizeof(T);
  return slot < static_cast<std::size_t>(pool.m_iCapacity) ? static_cast<int>(slot) : NO_SLOT;
}

std::size_t Size(int count) { return static_cast<std::size_t>(count); }

}  // namespace

Compaction::Compaction(TIN& tin)
    : m_Tin(tin),
      m_Points(*tin.m_pPoints),
      m_Triangles(*tin.m_pTriangles),
      m_Mesh(m_Points.m_pData, m_Points.m_iCapacity) {}

bool Compaction::Run() {
  if (m_Points.m_iCount <= 0 || !ListFaces()) return false;
  if (m_Mesh.Faces().empty()) return false;
  m_Mesh.SetSeedCorners(SeedCorners());
  m_Mesh.TurnOver();
  if (!m_Mesh.IsSound() && !m_Mesh.Mend()) return false;
  if (!MakePools()) return false;
  FillPoints();
  NumberTriangles();
  FillTriangles();
  Publish();
  return true;
}

// Returns the neighbour across a side, where it leads back across the same side, or null.
TTriangle const* Compaction::Partner(TTriangle const& t, int side) {
  TTriangle const* const neighbour = t.m_pAdjacent[side];
  if (neighbour == nullptr || neighbour == &t) return nullptr;
  TPoint const* const a = t.m_pVertex[side];
  TPoint const* const b = t.m_pVertex[(side + 1) % 3];
  for (int k = 0; k < 3; ++k) {
    if (neighbour->m_pAdjacent[k] != &t) continue;
    TPoint const* const c = neighbour->m_pVertex[k];
    TPoint const* const d = neighbour->m_pVertex[(k + 1) % 3];
    if ((a == d && b == c) || (a == c && b == d)) return neighbour;
  }
  return nullptr;
}

// Lists the faces of the live triangles and of all that can be come by from them. Returns false
// where a neighbour is in no slot of the pool.
bool Compaction::ListFaces() {
  FindPlaces();
  m_FaceOfSlot.assign(Size(m_Triangles.m_iCapacity), NONE);
  m_bSeen.assign(Size(m_Triangles.m_iCapacity), false);
  m_Reached.assign(m_Triangles.m_pIndex, m_Triangles.m_pIndex + std::max(0, m_Triangles.m_iCount));
  for (int slot : m_Reached) m_bSeen[Size(slot)] = true;
  std::vector<Face>& faces = m_Mesh.Faces();
  faces.reserve(m_Reached.size());
  for (std::size_t i = 0; i < m_Reached.size(); ++i) {
    FetchAfter(i);
    Face face{{}, {}, m_Reached[i]};
    if (!ReachFrom(face.slot)) return false;
    if (!Read(face)) continue;
    m_FaceOfSlot[Size(face.slot)] = static_cast<int>(faces.size());
    faces.push_back(face);
  }
  for (Face& face : faces) {
    for (int& neighbour : face.adjacent) {
      if (neighbour < 0) continue;
      neighbour = m_FaceOfSlot[Size(neighbour)];
      if (neighbour == NONE) neighbour = Face::OPEN;
    }
  }
  return true;
}

void Compaction::FindPlaces() {
  m_HasPlace.resize(Size(m_Points.m_iCapacity));
  for (std::size_t slot = 0; slot < m_HasPlace.size(); ++slot) {
    TPoint const& p = m_Points.m_pData[slot];
    m_HasPlace[slot] = std::isfinite(p.x) && std::isfinite(p.y);
  }
}

// Has the memory fetched that triangles are about to be read from.
void Compaction::FetchAfter(std::size_t i) const {
  constexpr std::size_t AHEAD = 8;
  if (i + 2 * AHEAD < m_Reached.size()) {
    __builtin_prefetch(m_Triangles.m_pData + m_Reached[i + 2 * AHEAD]);
  }
  if (i + AHEAD >= m_Reached.size()) return;
  for (TTriangle const* neighbour : m_Triangles.m_pData[m_Reached[i + AHEAD]].m_pAdjacent) {
    __builtin_prefetch(neighbour);
  }
}

bool Compaction::ReachFrom(int slot) {
  for (TTriangle const* neighbour : m_Triangles.m_pData[slot].m_pAdjacent) {
    if (neighbour == nullptr) continue;
    int const there = SlotOf(m_Triangles, neighbour);
    if (there == NO_SLOT) return false;
    if (m_bSeen[Size(there)]) continue;
    m_bSeen[Size(there)] = true;
    m_Reached.push_back(there);
  }
  return true;
}

// Finds the corners of `face` and, by slot, its neighbours. Returns false where the triangle in its
// slot is not joined to another, though it should be, or a corner is no place.
bool Compaction::Read(Face& face) const {
  TTriangle const& t = m_Triangles.m_pData[face.slot];
  if ((t.m_Flags & TRI_CAVITY) != 0) return false;
  bool joined = false;
  bool alone = true;
  for (int k = 0; k < 3; ++k) {
    face.corner[k] = SlotOf(m_Points, t.m_pVertex[k]);
    if (face.corner[k] == NO_SLOT || !m_HasPlace[Size(face.corner[k])]) return false;
    if (t.m_pVertex[k] == t.m_pVertex[(k + 1) % 3]) return false;
    bool const none = t.m_pAdjacent[k] == nullptr;
    TTriangle const* const partner = Partner(t, k);
    joined = joined || partner != nullptr;
    alone = alone && none;
    face.adjacent[k] = none ? Face::HULL : Face::OPEN;
    if (partner != nullptr) face.adjacent[k] = SlotOf(m_Triangles, partner);
  }
  return joined || alone;
}

// The points on the corners of the world box that the data bounds leave out.
std::vector<int> Compaction::SeedCorners() const {
  TPoint const& min = m_Tin.m_WorldMin;
  TPoint const& max = m_Tin.m_WorldMax;
  std::vector<int> corners;
  for (Face const& face : m_Mesh.Faces()) {
    for (int corner : face.corner) {
      TPoint const& p = m_Points.m_pData[corner];
      if ((p.x != min.x && p.x != max.x) || (p.y != min.y && p.y != max.y)) continue;
      if (m_Tin.InBounds(p)) continue;
      if (std::find(corners.begin(), corners.end(), corner) == corners.end()) {
        corners.push_back(corner);
      }
    }
  }
  return corners;
}

bool Compaction::MakePools() {
  std::vector<Face> const& faces = m_Mesh.Faces();
  auto const kept =
      std::count_if(faces.begin(), faces.end(), [](Face const& face) { return !face.dropped; });
  if (kept > m_Triangles.m_iCapacity) return false;
  m_pNewPoints = std::make_unique<TArray<TPoint>>(m_Points.m_iCapacity);
  m_pNewTriangles = std::make_unique<TArray<TTriangle>>(m_Triangles.m_iCapacity);
  return m_pNewPoints->IsAllocated() && m_pNewTriangles->IsAllocated();
}

// The points in use, in live order, and then those that the live order has lost. Their slots follow
// a curve: what lies together in plan does so in memory.
void Compaction::FillPoints() {
  constexpr int USED = -2;
  constexpr int LISTED = -3;
  m_NewPoint.assign(Size(m_Points.m_iCapacity), NONE);
  for (Face const& face : m_Mesh.Faces()) {
    if (face.dropped) continue;
    for (int corner : face.corner) m_NewPoint[Size(corner)] = USED;
  }
  std::vector<int> kept;
  auto const list = [&](int slot) {
    if (m_NewPoint[Size(slot)] != USED) return;
    m_NewPoint[Size(slot)] = LISTED;
    kept.push_back(slot);
  };
  for (int i = 0; i < m_Points.m_iCount; ++i) list(m_Points.m_pIndex[i]);
  for (int slot = 0; slot < m_Points.m_iCapacity; ++slot) list(slot);

  TArray<TPoint>& pool = *m_pNewPoints;
  int slots = 0;
  for (int slot : OrderAlongCurve(m_Points.m_pData, kept)) {
    m_NewPoint[Size(slot)] = slots;
    pool.m_pData[slots++] = m_Points.m_pData[slot];
  }
  for (int slot : kept) pool.m_pIndex[pool.m_iCount++] = m_NewPoint[Size(slot)];
}

// Gives the faces slots in the order of their lowest corners, and positions in their own.
void Compaction::NumberTriangles() {
  std::vector<Face> const& faces = m_Mesh.Faces();
  TArray<TTriangle>& pool = *m_pNewTriangles;
  std::vector<int> starts(Size(m_pNewPoints->m_iCount) + 1);
  auto const startOf = [&](Face const& face) -> int& {
    return starts[Size(std::min({m_NewPoint[Size(face.corner[0])], m_NewPoint[Size(face.corner[1])],
                                 m_NewPoint[Size(face.corner[2])]}))];
  };
  for (Face const& face : faces) {
    if (!face.dropped) ++startOf(face);
  }
  m_NewPosition.reserve(faces.size());
  m_NewTriangle.reserve(faces.size());
  int slots = 0;
  for (int& start : starts) slots += std::exchange(start, slots);
  for (Face const& face : faces) {
    m_NewPosition.push_back(face.dropped ? NONE : pool.m_iCount);
    m_NewTriangle.push_back(face.dropped ? NONE : startOf(face)++);
    if (!face.dropped) pool.m_pIndex[pool.m_iCount++] = m_NewTriangle.back();
  }
}

void Compaction::FillTriangles() {
  std::vector<Face> const& faces = m_Mesh.Faces();
  for (std::size_t i = 0; i < faces.size(); ++i) {
    Face const& face = faces[i];
    if (face.dropped) continue;
    bool const made = face.slot == Face::MADE;
    TTriangle& t = m_pNewTriangles->m_pData[m_NewTriangle[i]];
    if (!made) t = m_Triangles.m_pData[face.slot];
    for (int k = 0; k < 3; ++k) {
      int const neighbour = face.adjacent[k];
      t.m_pVertex[k] = m_pNewPoints->m_pData + m_NewPoint[Size(face.corner[k])];
      t.m_pAdjacent[k] =
          neighbour < 0 ? nullptr : m_pNewTriangles->m_pData + m_NewTriangle[Size(neighbour)];
    }
    if (!made) continue;
    t.CalcTri();
    if (!m_Tin.InBounds(t)) t.m_Flags |= TRI_OUTSIDE;
  }
}

// Returns the new position of the triangle in this slot, or NONE.
int Compaction::NewPosition(int slot) const {
  int const face = slot == NO_SLOT ? NONE : m_FaceOfSlot[Size(slot)];
  return face == NONE ? NONE : m_NewPosition[Size(face)];
}

// Rewrites the positions of triangles in a list, and drops those of triangles that are gone.
template <typename T, typename PositionOf>
void Compaction::Follow(TArray<T>& list, PositionOf positionOf) const {
  int kept = 0;
  for (int i = 0; i < list.m_iCount; ++i) {
    T entry = *list.At(i);
    int& position = positionOf(entry);
    if (position < 0 || position >= m_Triangles.m_iCount) continue;
    position = NewPosition(m_Triangles.m_pIndex[position]);
    if (position != NONE) *list.At(kept++) = entry;
  }
  list.m_iCount = kept;
}

void Compaction::Publish() {
  if (m_Tin.m_pBorder != nullptr) {
    Follow(*m_Tin.m_pBorder, [](int& position) -> int& { return position; });
  }
  if (m_Tin.m_pStartPoints != nullptr) {
    Follow(*m_Tin.m_pStartPoints, [](TArrayStartPoint& start) -> int& { return start.triangle; });
  }
  int const last = NewPosition(SlotOf(m_Triangles, m_Tin.m_pLastTriangle));
  m_Tin.ReplacePools(m_pNewPoints.release(), m_pNewTriangles.release());
  m_Tin.m_pLastTriangle = m_Tin.m_pTriangles->At(last == NONE ? 0 : last);
}

}  // namespace qeltin::detail
