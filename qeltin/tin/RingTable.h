#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "qeltin/kernel/TPoint.h"

namespace qeltin::detail {

// The vertices of a ring by value: finds the one that equals a point on x, y and z. Open addressing
// over at most half-full, power-of-two tables; the storage is kept between uses.
class RingTable {
 public:
  static constexpr int NONE = -1;

  // Forgets everything and makes room for `vertices` entries.
  void Start(std::size_t vertices) {
    std::size_t const size = std::bit_ceil(vertices * 2);
    m_Entries.assign(size, Entry{nullptr, NONE});
    m_iShift = 64 - std::countr_zero(size);
  }

  // Enters `vertex` under `number`. Returns false, changing nothing, where an equal one stands
  // already or the vertex does not equal itself, as one with a coordinate that is not a number.
  bool Add(TPoint const* vertex, int number) {
    if (!(*vertex == *vertex)) return false;
    Entry& entry = m_Entries[Slot(*vertex)];
    if (entry.vertex != nullptr) return false;
    entry = Entry{vertex, number};
    return true;
  }

  // Returns the number of the vertex equal to `vertex`, which is entered under `number` where there
  // is none. REQUIRES: it equals itself.
  int FindOrAdd(TPoint const* vertex, int number) {
    Entry& entry = m_Entries[Slot(*vertex)];
    if (entry.vertex == nullptr) entry = Entry{vertex, number};
    return entry.number;
  }

  // Returns the number of the vertex equal to `p`, or NONE.
  int Find(TPoint const& p) const { return m_Entries[Slot(p)].number; }

  // Equal for points of equal value; zero and minus zero are equal.
  static std::uint64_t Hash(TPoint const& p) {
    // Adding 0 makes one of the two zeros and leaves every other number alone.
    auto const x = std::bit_cast<std::uint64_t>(p.x + 0.0);
    auto const y = std::bit_cast<std::uint64_t>(p.y + 0.0);
    std::uint64_t const mixed = (x * 0x9E3779B97F4A7C15u) ^ ((y ^ (y >> 31)) * 0xC2B2AE3D27D4EB4Fu);
    return (mixed ^ (mixed >> 29)) * 0xBF58476D1CE4E5B9u;
  }

 private:
  struct Entry {
    TPoint const* vertex;
    int number;
  };

  // Returns the slot of the entry equal to `p`, or the free one where it would go.
  std::size_t Slot(TPoint const& p) const {
    std::size_t const mask = m_Entries.size() - 1;
    std::size_t slot = Hash(p) >> m_iShift;
    while (m_Entries[slot].vertex != nullptr && *m_Entries[slot].vertex != p) {
      slot = (slot + 1) & mask;
    }
    return slot;
  }

  std::vector<Entry> m_Entries;
  int m_iShift = 0;
};

}  // namespace qeltin::detail
