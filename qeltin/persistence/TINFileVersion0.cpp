#include <vector>

#include "qeltin/persistence/LoadedPools.h"
#include "qeltin/persistence/NativeFormat.h"
#include "qeltin/persistence/TINFile.h"

using qeltin::detail::MakePool;
using qeltin::detail::SetCorner;

namespace {

// A reference is the address that a slot had in the program that wrote the file. Only its low half
// counts, so that a larger pool would be ambiguous.
constexpr long long LARGEST_POOL = 1LL << 32;

// Returns the slot that a pointer field, read from the file, refers to, or null where it is none of
// the pool's. `start` is the low half of the address of slot 0 at that time.
template <typename T>
T* Slot(TArray<T> const& pool, std::uint32_t start, T const* field) {
  if (field == nullptr) return nullptr;
  auto const address = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(field));
  std::uint32_t const distance = address - start;
  std::uint32_t const slot = distance / sizeof(T);
  bool const exact = distance % sizeof(T) == 0;
  return exact && slot < static_cast<std::uint32_t>(pool.m_iCapacity) ? pool.m_pData + slot
                                                                      : nullptr;
}

// Reads counts, slots and index table of a pool. Null where they cannot be those of a pool.
template <typename T>
TArray<T>* ReadImage(FileStream& in, long long& memory) {
  std::int32_t live = 0;
  std::int32_t capacity = 0;
  in.Read(&live, sizeof live);
  in.Read(&capacity, sizeof capacity);
  if (capacity * static_cast<long long>(sizeof(T)) > LARGEST_POOL) return nullptr;
  TArray<T>* const pool = MakePool<T>(live, capacity, memory);
  if (pool == nullptr) return nullptr;
  auto const slots = static_cast<unsigned long long>(capacity);
  in.Read(static_cast<void*>(pool->m_pData), slots * sizeof(T));
  in.Read(pool->m_pIndex, slots * sizeof(int));
  pool->m_iCount = live;
  return pool;
}

// Finds out which slots are live. Returns false where the live part of the index table names a slot
// twice, or one that is none: such a table may not stay. A free part that does not name the free
// slots is made anew, in their order.
template <typename T>
bool CheckIndex(TArray<T>& pool, std::vector<bool>& isLive) {
  auto const capacity = static_cast<std::size_t>(pool.m_iCapacity);
  auto const slotAt = [&](int i) { return static_cast<std::size_t>(pool.m_pIndex[i]); };
  isLive.assign(capacity, false);
  for (int i = 0; i < pool.m_iCount; ++i) {
    if (slotAt(i) >= capacity || isLive[slotAt(i)]) return false;
    isLive[slotAt(i)] = true;
  }

  std::vector<bool> seen = isLive;
  bool sound = true;
  for (int i = pool.m_iCount; i < pool.m_iCapacity && sound; ++i) {
    sound = slotAt(i) < capacity && !seen[slotAt(i)];
    if (sound) seen[slotAt(i)] = true;
  }
  if (sound) return true;
  int* next = pool.m_pIndex + pool.m_iCount;
  for (std::size_t slot = 0; slot < capacity; ++slot) {
    if (!isLive[slot]) *next++ = static_cast<int>(slot);
  }
  return true;
}

}  // namespace

unsigned int TINFile::LoadVersion0(TIN& tin) {
  FileStream& in = *m_pFile;
  in.Seek(0, 0);
  if (!ReadMagic() || ReadInt(-1) != 0) return static_cast<unsigned int>(tin.GetNumberOfPoints());

  for (TPoint* corner : {&tin.m_Max, &tin.m_Min, &tin.m_WorldMax, &tin.m_WorldMin}) {
    in.Read(corner, sizeof *corner);
  }
  tin.m_pPoints = ReadImage<TPoint>(in, m_iMemory);
  if (tin.m_pPoints == nullptr) return Refuse(tin);
  auto const pointStart = static_cast<std::uint32_t>(ReadInt(0));
  auto const triangleStart = static_cast<std::uint32_t>(ReadInt(0));
  tin.m_pTriangles = ReadImage<TTriangle>(in, m_iMemory);
  if (tin.m_pTriangles == nullptr) return Refuse(tin);

  TArray<TPoint>& points = *tin.m_pPoints;
  TArray<TTriangle>& triangles = *tin.m_pTriangles;
  std::vector<bool> live;
  if (!CheckIndex(points, live) || !CheckIndex(triangles, live)) return Refuse(tin);
  for (int slot = 0; slot < triangles.m_iCapacity; ++slot) {
    TTriangle& t = triangles.m_pData[slot];
    t.m_InHole = 0;
    bool const isLive = live[static_cast<std::size_t>(slot)];
    for (int k = 0; k < 3; ++k) {
      TTriangle* const adjacent = Slot(triangles, triangleStart, t.m_pAdjacent[k]);
      bool const none = !isLive || adjacent == nullptr ||
                        !live[static_cast<std::size_t>(adjacent - triangles.m_pData)];
      t.m_pAdjacent[k] = none ? nullptr : adjacent;
      if (isLive) {
        SetCorner(t, k, Slot(points, pointStart, t.m_pVertex[k]), points);
      } else {
        t.m_pVertex[k] = nullptr;  // what a free slot holds means nothing here
      }
    }
  }
  return static_cast<unsigned int>(points.m_iCount);
}
