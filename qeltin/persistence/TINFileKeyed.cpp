#include "qeltin/persistence/LoadedPools.h"
#include "qeltin/persistence/NativeFormat.h"
#include "qeltin/persistence/TINFile.h"

using qeltin::detail::MakePool;
using qeltin::detail::POINT_MARGIN;
using qeltin::detail::SetCorner;
using qeltin::detail::TRIANGLE_MARGIN;
using qeltin::detail::TriangleTail;

namespace {

// Returns the element under `key`, or null.
template <typename T>
T* Find(std::map<std::uint64_t, T*> const& map, std::uint64_t key) {
  auto const at = map.find(key);
  return at == map.end() ? nullptr : at->second;
}

// Enters an element; the first one under a key stays. Keys mostly come in ascending order.
template <typename T>
void Enter(std::map<std::uint64_t, T*>& map, std::uint32_t key, T* element) {
  map.emplace_hint(map.end(), key, element);
}

}  // namespace

unsigned int TINFile::LoadVersion1(TIN& tin) {
  if (!LoadKeyed(tin, false)) return Refuse(tin);
  return static_cast<unsigned int>(tin.GetNumberOfPoints());
}

unsigned int TINFile::LoadVersion2(TIN& tin) {
  bool const loaded = LoadKeyed(tin, true);
  Close();
  return loaded ? 1 : Refuse(tin);  // 1 for any number of points
}

bool TINFile::LoadKeyed(TIN& tin, bool flags) {
  ReadBoxes(tin);
  std::int32_t const points = ReadInt(0);
  tin.m_pPoints = MakePool<TPoint>(points, points + 0LL + POINT_MARGIN, m_iMemory);
  if (tin.m_pPoints == nullptr) return false;
  ReadKeyedPoints(*tin.m_pPoints, points);

  std::int32_t const triangles = ReadInt(0);
  m_iMemory -= 3LL * static_cast<long long>(sizeof(std::uint64_t)) * triangles;  // m_AdjacentKeys
  tin.m_pTriangles = MakePool<TTriangle>(triangles, triangles + 0LL + TRIANGLE_MARGIN, m_iMemory);
  if (tin.m_pTriangles == nullptr) return false;
  ReadKeyedTriangles(tin, triangles, flags);
  UpdateTrianglePointers(tin);
  return true;
}

void TINFile::ReadKeyedPoints(TArray<TPoint>& points, std::int32_t count) {
  m_mapPoints.clear();
  std::uint32_t key = 0;
  TPoint p;
  for (std::int32_t i = 0; i < count; ++i) {
    m_pFile->Read(&key, sizeof key);
    m_pFile->Read(&p, sizeof p);
    Enter(m_mapPoints, key, points.Add(p));
  }
}

void TINFile::ReadKeyedTriangles(TIN& tin, std::int32_t count, bool flags) {
  m_mapTriangles.clear();
  m_AdjacentKeys.clear();
  m_AdjacentKeys.reserve(3 * static_cast<std::size_t>(count));
  std::uint32_t key = 0;
  std::uint64_t corners[3] = {};
  for (std::int32_t i = 0; i < count; ++i) {
    m_pFile->Read(&key, sizeof key);
    m_pFile->Read(corners, sizeof corners);
    TTriangle* const t = tin.m_pTriangles->Add(TTriangle());
    Enter(m_mapTriangles, key, t);

    // Fresh with each triangle, other than the values above: a file that has run out gives none.
    std::uint64_t adjacent[3] = {};
    TriangleTail tail;
    m_pFile->Read(adjacent, sizeof adjacent);
    if (flags) m_pFile->Read(&tail, sizeof tail);
    m_AdjacentKeys.insert(m_AdjacentKeys.end(), adjacent, adjacent + 3);
    t->m_Flags = tail.flags;
    t->m_Reserved = tail.reserved;  // version 3 drops it here
    for (int k = 0; k < 3; ++k) SetCorner(*t, k, Find(m_mapPoints, corners[k]), *tin.m_pPoints);
    t->CalcTri();
  }
}

// The keys wait beside the triangles: one that names nothing must not stand in a pointer.
void TINFile::UpdateTrianglePointers(TIN& tin) {
  std::uint64_t const* key = m_AdjacentKeys.data();
  for (int i = 0; i < tin.m_pTriangles->m_iCount; ++i) {
    for (TTriangle*& adjacent : tin.m_pTriangles->At(i)->m_pAdjacent) {
      adjacent = Find(m_mapTriangles, *key++);
    }
  }
}
