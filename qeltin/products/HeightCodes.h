#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/TArray.h"

namespace qeltin::detail {

// A small number for the height of each point of a pool: between which of some levels it is, and
// which of 64 fine steps it falls into, turn after turn. A scan over all triangles finds those that
// the levels cross, and those that may be flat, in a table that a cache holds, without a look at
// the points.
//
// Threads: reads the pool while it is built, nothing afterwards.
template <typename Code>
class HeightCodes {
 public:
  // Levels that there is room for: a rank more is needed, and one for what is not a number.
  static constexpr std::size_t MOST_LEVELS = (std::numeric_limits<Code>::max() >> 6) - 1;

  // The levels at the places from `first` to `last`, without it, may cross a triangle.
  struct Levels {
    std::size_t first;
    std::size_t last;
  };

  // Codes the points of `pool`, which must stay as they are. `levels` rise, and none of them is
  // not-a-number. REQUIRES: at most MOST_LEVELS.
  HeightCodes(TArray<TPoint> const& pool, std::span<double const> levels)
      : m_pFirst(pool.m_pData),
        m_Codes(static_cast<std::size_t>(pool.m_iCount)),
        m_iLevels(static_cast<unsigned>(levels.size())) {
    for (std::size_t i = 0; i < m_Codes.size(); ++i) {
      double const z = m_pFirst[i].z;
      unsigned const rank = z == z ? CountUpTo(levels, z) : m_iLevels + 1;
      m_Codes[i] = static_cast<Code>(rank << RANK | StepOf(z));
    }
  }

  // Returns false only where no level runs between corners of `t`, and their heights do not agree
  // to less than 1e-11.
  bool MayMatter(TTriangle const& t) const {
    std::size_t const a = SlotOf(t.m_pVertex[0]);
    std::size_t const b = SlotOf(t.m_pVertex[1]);
    std::size_t const c = SlotOf(t.m_pVertex[2]);
    if (a >= m_Codes.size() || b >= m_Codes.size() || c >= m_Codes.size()) return true;
    unsigned const code = m_Codes[a];
    unsigned const other = m_Codes[b];
    unsigned const third = m_Codes[c];
    unsigned const ranks = ((code ^ other) | (code ^ third)) >> RANK;
    return (ranks | (AreNear(code, other) & AreNear(code, third))) != 0;
  }

  // Has the codes fetched that MayMatter will look at.
  [[gnu::always_inline]] void Prefetch(TTriangle const& t) const {
    for (TPoint const* corner : t.m_pVertex) {
      std::size_t const slot = SlotOf(corner);
      if (slot < m_Codes.size()) __builtin_prefetch(&m_Codes[slot]);
    }
  }

  // Returns the levels that cross `t`; all of them where a corner is not a number or of another
  // pool.
  Levels LevelsOf(TTriangle const& t) const {
    unsigned low = m_iLevels;
    unsigned high = 0;
    for (TPoint const* corner : t.m_pVertex) {
      std::size_t const slot = SlotOf(corner);
      unsigned const rank = slot < m_Codes.size() ? m_Codes[slot] >> RANK : m_iLevels + 1;
      if (rank > m_iLevels) return {0, m_iLevels};
      low = std::min(low, rank);
      high = std::max(high, rank);
    }
    return {low, high};
  }

 private:
  static constexpr unsigned RANK = 6;  // bits below it
  static constexpr unsigned STEPS = (1U << RANK) - 1;

  static unsigned StepOf(double z) {
    // The sum rounds to whole steps of 1e-9, in its lowest bits. Heights too large for that differ
    // by more than a step or not at all.
    constexpr double STEPS_PER_UNIT = 1e9;
    constexpr double WHOLE = 6755399441055744.0;  // 1.5 times 2 to the power 52
    return std::bit_cast<std::uint64_t>(z * STEPS_PER_UNIT + WHOLE) & STEPS;
  }

  // Returns how many levels are at or below `z`. By halves, without a branch on what it finds:
  // hardly a point's answer foretells the next one's.
  static unsigned CountUpTo(std::span<double const> levels, double z) {
    double const* first = levels.data();
    for (std::size_t count = levels.size(); count > 0;) {
      std::size_t const half = (count + 1) / 2;
      first += half & (0 - std::size_t{first[half - 1] <= z});  // a compiler makes ?: a branch
      count -= half;
    }
    return static_cast<unsigned>(first - levels.data());
  }

  // Returns 1 or 0. Whoever asks combines the answers without a branch.
  static unsigned AreNear(unsigned code, unsigned other) {
    return ((code - other + 1) & STEPS) <= 2 ? 1U : 0U;
  }

  // A number past the table for a point of another pool.
  std::size_t SlotOf(TPoint const* p) const {
    auto const distance =
        reinterpret_cast<std::uintptr_t>(p) - reinterpret_cast<std::uintptr_t>(m_pFirst);
    return distance / sizeof(TPoint);
  }

  TPoint const* m_pFirst;
  std::vector<Code> m_Codes;
  unsigned m_iLevels;
};

}  // namespace qeltin::detail
