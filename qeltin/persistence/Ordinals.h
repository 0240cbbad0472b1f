#pragma once

#include <cstdint>

#include "qeltin/platform/ZeroedMemory.h"
#include "qeltin/tin/TArray.h"

namespace qeltin::detail {

// The way back from an address to its position in the live order of a pool, in one step: by the
// slot at that address. REQUIRES: the pool, null for none, outlives this and does not change.
//
// Threads: any number of readers.
template <typename T>
class Ordinals {
 public:
  explicit Ordinals(TArray<T> const* pool) {
    if (pool == nullptr) return;
    m_iStart = reinterpret_cast<std::uintptr_t>(pool->m_pData);
    m_iBytes = sizeof(T) * static_cast<std::size_t>(pool->m_iCapacity);
    m_pPositions = static_cast<std::int32_t*>(AllocateZeroed(PositionBytes()));
    if (m_pPositions == nullptr) return;
    for (int i = 0; i < pool->m_iCount; ++i) m_pPositions[pool->m_pIndex[i]] = i + 1;
  }
  ~Ordinals() { FreeZeroed(m_pPositions, PositionBytes()); }
  Ordinals(Ordinals const&) = delete;
  Ordinals& operator=(Ordinals const&) = delete;

  // Returns true iff the memory could be had.
  bool IsAllocated() const { return m_iBytes == 0 || m_pPositions != nullptr; }

  // Fetches what Of will look at, for a call a few steps on.
  void Fetch(T const* element) const {
    std::size_t const distance = reinterpret_cast<std::uintptr_t>(element) - m_iStart;
    if (distance < m_iBytes) __builtin_prefetch(m_pPositions + distance / sizeof(T));
  }

  // Returns the position of `element`, or -1 where it is null, in no slot of the pool, or in a slot
  // that is not live.
  std::int32_t Of(T const* element) const {
    std::size_t const distance = reinterpret_cast<std::uintptr_t>(element) - m_iStart;
    if (distance >= m_iBytes || distance % sizeof(T) != 0) return -1;
    return m_pPositions[distance / sizeof(T)] - 1;
  }

 private:
  std::size_t PositionBytes() const { return m_iBytes / sizeof(T) * sizeof(std::int32_t); }

  std::uintptr_t m_iStart = 0;
  std::size_t m_iBytes = 0;
  std::int32_t* m_pPositions = nullptr;  // by slot: position + 1, or 0 for a slot that is not live
};

}  // namespace qeltin::detail
