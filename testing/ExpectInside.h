#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/TINPeer.h"

namespace qeltin::testing {

// Expects of a loaded surface that every pointer of every slot, live or free, is null or leads to a
// slot of its pool, and that a live corner is never null.
inline void ExpectInside(TIN const& tin) {
  TArray<TPoint> const* const points = TINPeer::Points(tin);
  TArray<TTriangle> const* const triangles = TINPeer::Triangles(tin);
  ASSERT_EQ(points == nullptr, triangles == nullptr);
  if (points == nullptr) return;
  auto const isSlot = [](auto const& pool, auto const* element) {
    auto const distance =
        reinterpret_cast<char const*>(element) - reinterpret_cast<char const*>(pool.m_pData);
    auto const size = static_cast<std::ptrdiff_t>(sizeof *element);
    return distance >= 0 && distance < pool.m_iCapacity * size && distance % size == 0;
  };
  auto const isPermutation = [](auto const& pool) {
    std::vector<bool> seen(static_cast<std::size_t>(pool.m_iCapacity));
    for (int i = 0; i < pool.m_iCapacity; ++i) {
      auto const slot = static_cast<std::size_t>(pool.m_pIndex[i]);
      if (slot >= seen.size() || seen[slot]) return false;
      seen[slot] = true;
    }
    return pool.m_iCount >= 0 && pool.m_iCount <= pool.m_iCapacity;
  };
  ASSERT_TRUE(isPermutation(*points));
  ASSERT_TRUE(isPermutation(*triangles));
  for (int i = 0; i < triangles->m_iCapacity; ++i) {
    TTriangle const& t = *triangles->At(i);
    for (int k = 0; k < 3; ++k) {
      TPoint const* const corner = t.m_pVertex[k];
      ASSERT_TRUE(corner == nullptr ? i >= triangles->m_iCount : isSlot(*points, corner));
      ASSERT_TRUE(t.m_pAdjacent[k] == nullptr || isSlot(*triangles, t.m_pAdjacent[k]));
      if (t.m_pAdjacent[k] != nullptr) {
        ASSERT_NE(t.m_pAdjacent[k]->m_pVertex[0], nullptr);  // a live one
      }
    }
  }
}

}  // namespace qeltin::testing
