#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/tin/RingTable.h"

namespace qeltin::detail {

// From a place in plan to a handle: open addressing over at most half-full, power-of-two tables.
// Places are told apart by 64 bits of a hash, so that a handle found is a guess to be proved.
//
// Threads: no lock. Lookups only read.
template <typename Handle>
class PlanTable {
 public:
  struct Entry {
    std::uint64_t hash = 0;  // 0 for a free one
    Handle handle{};
  };

  void Clear() {
    m_Entries.clear();
    m_iUsed = 0;
  }

  // Returns the entry of the place of `p`, or null. It stays where it is until the next Add or
  // Remove.
  Entry* Find(TPoint const& p) {
    if (m_iUsed == 0) return nullptr;
    Entry& entry = m_Entries[SlotOf(Hash(p))];
    return entry.hash == 0 ? nullptr : &entry;
  }

  // Makes room for so many entries at once.
  void Reserve(std::size_t entries) {
    std::size_t size = SMALLEST;
    while (size < entries * 2) size *= 2;
    if (size > m_Entries.size()) Resize(size);
  }

  // Has the memory that Find and Add will look at for `p` fetched meanwhile. REQUIRES: Reserve.
  [[gnu::always_inline]] void Prefetch(TPoint const& p) const {
    __builtin_prefetch(&m_Entries[Hash(p) & (m_Entries.size() - 1)]);
  }

  // REQUIRES: the place has no entry.
  void Add(TPoint const& p, Handle handle) {
    if ((m_iUsed + 1) * 2 > m_Entries.size()) {
      Resize(m_Entries.empty() ? SMALLEST : m_Entries.size() * 2);
    }
    std::uint64_t const hash = Hash(p);
    m_Entries[SlotOf(hash)] = {hash, handle};
    ++m_iUsed;
  }

  void Remove(Entry* entry) {
    std::size_t const mask = m_Entries.size() - 1;
    auto hole = static_cast<std::size_t>(entry - m_Entries.data());
    for (std::size_t i = (hole + 1) & mask; m_Entries[i].hash != 0; i = (i + 1) & mask) {
      std::size_t const home = m_Entries[i].hash & mask;
      if (((i - home) & mask) < ((i - hole) & mask)) continue;  // it would stand before its home
      m_Entries[hole] = m_Entries[i];
      hole = i;
    }
    m_Entries[hole] = {};
    --m_iUsed;
  }

 private:
  static constexpr std::size_t SMALLEST = 16;

  static std::uint64_t Hash(TPoint const& p) {
    std::uint64_t const hash = RingTable::Hash(p);
    std::uint64_t const mixed = hash ^ (hash >> 32);
    return mixed == 0 ? 1 : mixed;
  }

  // Returns the slot of the entry with this hash, or the free one where it would go.
  std::size_t SlotOf(std::uint64_t hash) const {
    std::size_t const mask = m_Entries.size() - 1;
    std::size_t slot = hash & mask;
    while (m_Entries[slot].hash != 0 && m_Entries[slot].hash != hash) slot = (slot + 1) & mask;
    return slot;
  }

  void Resize(std::size_t size) {
    std::vector<Entry> const before = std::exchange(m_Entries, std::vector<Entry>(size));
    for (Entry const& entry : before) {
      if (entry.hash != 0) m_Entries[SlotOf(entry.hash)] = entry;
    }
  }

  std::vector<Entry> m_Entries;
  std::size_t m_iUsed = 0;
};

}  // namespace qeltin::detail
