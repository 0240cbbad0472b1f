#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>

#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/TArray.h"

namespace qeltin::detail {

// What a loaded pool has free beyond the elements of the file.
constexpr int POINT_MARGIN = 1000;
constexpr int TRIANGLE_MARGIN = 2000;

// Returns the bytes of memory that the pools of a file of `size` bytes may take, -1 for a size that
// is not known: 64 times the size, and 64 MiB at least.
inline long long MemoryFor(long long size) {
  constexpr long long FACTOR = 64;
  constexpr long long LEAST = 64LL << 20;
  constexpr long long MOST = std::numeric_limits<long long>::max();
  return size > MOST / FACTOR ? MOST : std::max(FACTOR * size, LEAST);
}

// Returns a pool of `capacity` slots that is to hold `live` elements, and takes what it costs off
// `memory`. Returns null where the numbers, which come from a file, are no numbers of a pool, where
// they ask for more than there is in `memory`. The caller owns it. Throws std::bad_alloc where the
// system has no more.
template <typename T>
TArray<T>* MakePool(long long live, long long capacity, long long& memory) {
  if (live < 0 || live > capacity || capacity > std::numeric_limits<int>::max()) return nullptr;
  memory -= capacity * static_cast<long long>(sizeof(T) + sizeof(int));
  if (memory < 0) return nullptr;
  auto* const pool = new (std::nothrow) TArray<T>(static_cast<int>(capacity));
  if (pool != nullptr && pool->IsAllocated()) return pool;
  delete pool;
  throw std::bad_alloc();
}

// Returns the element with this ordinal, from 0, among the `count` of a file, or null without one.
// REQUIRES: a pool that was fresh when the first of them was read: its table tells then where an
// element not yet read will live.
template <typename T>
T* Element(TArray<T> const& pool, std::int64_t ordinal, std::int32_t count) {
  return ordinal >= 0 && ordinal < count ? pool.At(static_cast<int>(ordinal)) : nullptr;
}

// Sets corner k. Without a corner, the triangle gets slot 0 of its points instead, and is hidden.
inline void SetCorner(TTriangle& t, int k, TPoint* corner, TArray<TPoint> const& points) {
  t.m_pVertex[k] = corner != nullptr ? corner : points.m_pData;
  if (corner == nullptr) t.m_Flags |= TRI_OUTSIDE;
}

}  // namespace qeltin::detail
