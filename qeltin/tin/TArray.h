#pragma once

#include <cassert>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>

#include "qeltin/platform/ZeroedMemory.h"

namespace qeltin::detail {

// Shuffles index[0 .. count) with a generator seeded from the system's random device.
QELTIN_API void ShuffleIndex(int* index, int count);

}  // namespace qeltin::detail

// A pool of slots that never grows and never moves an element: addresses stay valid for the pool's
// life, which is why points and triangles may point at each other.
//
// m_pIndex is a permutation of the slots. Its first m_iCount entries are the slots in use, in live
// order; the others are free, and the next free slot is m_pIndex[m_iCount]. So the position of an
// element in live order and its slot are different things, and hosts see positions only.
//
// T is a record whose default state is all bytes zero; untouched slots cost no memory.
//
// Threads: no lock. One writer, or any number of readers.
template <typename T>
class TArray {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>,
                "slots are zeroed and copied as bytes");

 public:
  int m_iCount = 0;
  int m_iCapacity;
  T* m_pData;     // owned, m_iCapacity elements; null where memory was refused
  int* m_pIndex;  // owned, m_iCapacity entries

  // A capacity below 1 becomes 10. Where memory is refused the pool has no slot at all.
  explicit TArray(int capacity)
      : m_iCapacity(capacity < 1 ? 10 : capacity),
        m_pData(static_cast<T*>(qeltin::detail::AllocateZeroed(DataBytes()))),
        m_pIndex(static_cast<int*>(qeltin::detail::AllocateZeroed(IndexBytes()))) {
    if (!IsAllocated()) GiveUp();
    ResetIndex();
  }

  // Copies every slot, free ones too. Pointers inside elements keep their values: they still point
  // into the pools of the source.
  TArray(TArray const& other) : TArray(other.m_iCapacity) {
    if (!IsAllocated() || !other.IsAllocated()) return;
    m_iCount = other.m_iCount;
    std::memcpy(static_cast<void*>(m_pData), other.m_pData, DataBytes());
    std::memcpy(m_pIndex, other.m_pIndex, IndexBytes());
  }
  TArray& operator=(TArray const&) = delete;

  ~TArray() { Free(); }

  // Returns true iff both blocks could be had.
  bool IsAllocated() const { return m_pData != nullptr && m_pIndex != nullptr; }

  bool IsFull() const { return m_iCount == m_iCapacity; }

  // Returns element `position` of the live order. REQUIRES: 0 <= position < m_iCapacity.
  T* At(int position) const {
    assert(position >= 0 && position < m_iCapacity);
    return m_pData + m_pIndex[position];
  }

  // Takes the next free slot, copies `value` in and returns its address; null on a full pool.
  T* Add(T const& value) {
    if (IsFull()) return nullptr;
    T* const slot = m_pData + m_pIndex[m_iCount++];
    *slot = value;
    return slot;
  }

  // Releases the slot whose number is the distance in BYTES of `element` from the start of the
  // block. So element 0 is released as one expects, an element at a byte distance of the capacity
  // or more is not released at all, and any other one releases some slot further on. Nothing where
  // no slot is live.
  void Remove(T const* element) {
    auto const distance =
        static_cast<std::int32_t>(LowHalf(element) - LowHalf(m_pData));  // bytes, not elements
    if (distance < 0 || distance >= m_iCapacity || m_iCount <= 0) return;
    --m_iCount;
    int const last = m_pIndex[m_iCount];
    if (last == distance) return;
    int const place = PlaceOf(distance);
    if (place > m_iCount) return;
    m_pIndex[place] = last;
    m_pIndex[m_iCount] = distance;
    if (m_pPlaces == nullptr) return;
    m_pPlaces[last] = place;
    m_pPlaces[distance] = m_iCount;
  }

  // Puts the live order into a random one. Another order on every run.
  void Shuffle() { qeltin::detail::ShuffleIndex(m_pIndex, m_iCount); }

  // Makes every slot free, in slot order. The elements keep what they hold.
  void Reset() {
    m_iCount = 0;
    ResetIndex();
  }

 private:
  std::size_t DataBytes() const { return sizeof(T) * static_cast<std::size_t>(m_iCapacity); }
  std::size_t IndexBytes() const { return sizeof(int) * static_cast<std::size_t>(m_iCapacity); }

  void Free() {
    qeltin::detail::FreeZeroed(m_pData, DataBytes());
    qeltin::detail::FreeZeroed(m_pIndex, IndexBytes());
    qeltin::detail::FreeZeroed(m_pPlaces, IndexBytes());
  }

  // Returns where m_pIndex holds `slot`, or m_iCapacity where a host has overwritten it. A place
  // once noted is only believed after a look.
  int PlaceOf(int slot) {
    if (m_pPlaces == nullptr) {
      m_pPlaces = static_cast<int*>(qeltin::detail::AllocateZeroed(IndexBytes()));
    }
    if (m_pPlaces != nullptr && m_pIndex[m_pPlaces[slot]] == slot) return m_pPlaces[slot];
    int place = m_iCapacity;
    for (int i = 0; i < m_iCapacity; ++i) {
      if (m_pIndex[i] == slot) place = i;
      if (m_pPlaces != nullptr) m_pPlaces[m_pIndex[i]] = i;
    }
    return place;
  }

  void GiveUp() {
    Free();
    m_pData = nullptr;
    m_pIndex = nullptr;
    m_iCapacity = 0;
  }

  void ResetIndex() {
    for (int i = 0; i < m_iCapacity; ++i) m_pIndex[i] = i;
  }

  static std::uint32_t LowHalf(void const* address) {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(address));
  }

  int* m_pPlaces = nullptr;  // owned, by slot; null until a release has searched m_pIndex
};

// Where a point search of a surface without a seed rectangle may start: a position in plan and the
// triangle there, by its position in live order.
struct TArrayStartPoint {
  double x;
  double y;
  double z;
  std::int32_t triangle;
};
