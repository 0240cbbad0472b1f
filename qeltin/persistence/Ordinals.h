#pragma once

#include <bit>
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
    if (IsInSlotOrder(*pool)) {
      m_iSlots = static_cast<std::size_t>(pool->m_iCount);
    } else {
      m_iSlots = static_cast<std::size_t>(pool->m_iCapacity);
      FillTable(*pool);
    }
  }
  ~Ordinals() { FreeZeroed(m_pPositions, PositionBytes()); }
  Ordinals(Ordinals const&) = delete;
  Ordinals& operator=(Ordinals const&) = delete;

  // Returns true iff the memory could be had.
  bool IsAllocated() const { return m_bAllocated; }

  // Has the memory that Of will look at for `element` fetched meanwhile.
  void Fetch(T const* element) const {
    std::size_t const slot = SlotOf(element);
    if (m_pPositions != nullptr && slot < m_iSlots) __builtin_prefetch(m_pPositions + slot);
  }

  // Returns the position of `element`, or -1 where it is null, in no slot of the pool, or in a slot
  // that is not live.
  std::int32_t Of(T const* element) const {
    std::size_t const slot = SlotOf(element);
    if (slot >= m_iSlots) return -1;
    return m_pPositions == nullptr ? static_cast<std::int32_t>(slot) : m_pPositions[slot] - 1;
  }

 private:
  // Returns n with n * odd == 1, modulo 2 to the power 64.
  static constexpr std::uint64_t InverseOf(std::uint64_t odd) {
    std::uint64_t inverse = odd;  // right in three bits; each step doubles them
    for (int bits = 3; bits < 64; bits *= 2) inverse *= 2 - odd * inverse;
    return inverse;
  }

  // A division that comes out even is a multiplication, and what does not come out even, or is no
  // address of the pool, gives a number beyond its slots.
  std::size_t SlotOf(T const* element) const {
    constexpr int TWOS = std::countr_zero(sizeof(T));
    constexpr std::uint64_t INVERSE = InverseOf(sizeof(T) >> TWOS);
    return std::rotr((reinterpret_cast<std::uintptr_t>(element) - m_iStart) * INVERSE, TWOS);
  }

  static bool IsInSlotOrder(TArray<T> const& pool) {
    for (int i = 0; i < pool.m_iCount; ++i) {
      if (pool.m_pIndex[i] != i) return false;
    }
    return true;
  }

  void FillTable(TArray<T> const& pool) {
    m_pPositions = static_cast<std::int32_t*>(AllocateZeroed(PositionBytes()));
    m_bAllocated = m_pPositions != nullptr;
    if (!m_bAllocated) return;
    for (int i = 0; i < pool.m_iCount; ++i) m_pPositions[pool.m_pIndex[i]] = i + 1;
  }

  std::size_t PositionBytes() const { return m_iSlots * sizeof(std::int32_t); }

  std::uintptr_t m_iStart = 0;
  std::size_t m_iSlots = 0;  // that a live element can be in
  bool m_bAllocated = true;
  // By slot: position + 1, or 0 for a slot that is not live. Null where the live order is that of
  // the slots.
  std::int32_t* m_pPositions = nullptr;
};

}  // namespace qeltin::detail
