#pragma once

#include <cstdint>

#include "qeltin/tin/TArray.h"

namespace qeltin::testing::stated {

inline std::uint32_t LowHalf(void const* address) {
  return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(address));
}

// Releases the slot whose number is the distance of `element` in bytes, found by a search of the
// index from the back. Nothing where no slot is live.
template <typename T>
void Release(TArray<T>& pool, T const* element) {
  auto const p = static_cast<std::int32_t>(LowHalf(element) - LowHalf(pool.m_pData));
  if (p < 0 || p >= pool.m_iCapacity || pool.m_iCount <= 0) return;
  --pool.m_iCount;
  int const e = pool.m_pIndex[pool.m_iCount];
  if (e == p) return;
  for (int j = pool.m_iCount; j >= 0; --j) {
    if (pool.m_pIndex[j] != p) continue;
    pool.m_pIndex[j] = e;
    pool.m_pIndex[pool.m_iCount] = p;
    return;
  }
}

}  // namespace qeltin::testing::stated
