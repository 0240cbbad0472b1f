#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/TArray.h"

namespace qeltin::detail {

// Tells the live slots of a pool, as they are when it is made, from the others, and from triangles
// of another pool.
//
// Threads: reads the pool while it is built, nothing afterwards.
class LiveSlots {
 public:
  explicit LiveSlots(TArray<TTriangle> const& pool)
      : m_pFirst(pool.m_pData), m_Live(static_cast<std::size_t>(pool.m_iCapacity)) {
    for (int i = 0; i < pool.m_iCount; ++i)
      m_Live[static_cast<std::size_t>(pool.m_pIndex[i])] = true;
  }

  bool Has(TTriangle const* triangle) const {
    if (std::less<>()(triangle, m_pFirst)) return false;
    auto const slot = static_cast<std::size_t>(triangle - m_pFirst);
    return slot < m_Live.size() && m_Live[slot];
  }

 private:
  TTriangle const* m_pFirst;
  std::vector<bool> m_Live;
};

}  // namespace qeltin::detail
