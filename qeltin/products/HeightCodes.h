#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/TArray.h"

namespace qeltin::detail {

// One byte for the height of each point of a pool: on which side of a level it is, and which of 64
// fine steps it falls into, turn after turn. A scan over all triangles finds those that the level
// crosses, and those that may be flat, in a table that the nearest cache holds, without a look at
// the points.
//
// Threads: reads the pool while it is built, nothing afterwards.
class HeightCodes {
 public:
  // Codes the points of `pool`, which must stay as they are.
  HeightCodes(TArray<TPoint> const& pool, double level)
      : m_pFirst(pool.m_pData), m_Codes(static_cast<std::size_t>(pool.m_iCount)) {
    for (std::size_t i = 0; i < m_Codes.size(); ++i) m_Codes[i] = CodeOf(m_pFirst[i].z, level);
  }

  // Returns false only where all three corners of `t` are above the level or all three below, and
  // their heights do not agree to less than 1e-11.
  bool MayMatter(TTriangle const& t) const {
    std::size_t const a = SlotOf(t.m_pVertex[0]);
    std::size_t const b = SlotOf(t.m_pVertex[1]);
    std::size_t const c = SlotOf(t.m_pVertex[2]);
    if (a >= m_Codes.size() || b >= m_Codes.size() || c >= m_Codes.size()) return true;
    unsigned const code = m_Codes[a];
    unsigned const other = m_Codes[b];
    unsigned const third = m_Codes[c];
    unsigned const sides = ((code ^ other) | (code ^ third)) & SIDES;
    return (sides | (AreNear(code, other) & AreNear(code, third))) != 0;
  }

 private:
  static constexpr unsigned ABOVE = 128;
  static constexpr unsigned BELOW = 64;
  static constexpr unsigned SIDES = ABOVE | BELOW;  // neither is set for what is not a number
  static constexpr unsigned STEPS = 63;

  static std::uint8_t CodeOf(double z, double level) {
    // The sum rounds to whole steps of 1e-9, in its lowest bits. Heights too large for that differ
    // by more than a step or not at all.
    constexpr double STEPS_PER_UNIT = 1e9;
    constexpr double WHOLE = 6755399441055744.0;  // 1.5 times 2 to the power 52
    auto const steps = std::bit_cast<std::uint64_t>(z * STEPS_PER_UNIT + WHOLE);
    unsigned const side = (z >= level ? ABOVE : 0U) | (z < level ? BELOW : 0U);
    return static_cast<std::uint8_t>(side | (steps & STEPS));
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
  std::vector<std::uint8_t> m_Codes;
};

}  // namespace qeltin::detail
