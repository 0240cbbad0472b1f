#include "qeltin/tin/InsertionOrder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>

#include "qeltin/tin/TArray.h"

namespace qeltin::detail {

namespace {

constexpr int FEW_POINTS = 8192;      // that RandomOrder leaves as they are shuffled
constexpr int FIRST_ROUND = 256;      // points; at most
constexpr double ROUND_GROWTH = 8.0;  // each round goes to this many times the points so far
constexpr std::size_t CROWDED = 16;   // points in one cell of the curve, which then goes on inside
constexpr std::uint8_t NO_ROUND = 0xFF;

// A Hilbert curve through a square of 2^16 cells a side, four levels a step through a table.
constexpr int LEVELS = 16;
constexpr int LEVELS_PER_STEP = 4;

struct Step {
  std::uint8_t digits;  // along the curve, LEVELS_PER_STEP levels
  std::uint8_t state;   // orientation of the curve inside
};

// One level: in each of four orientations, the place along the curve and the orientation inside of
// each quadrant, numbered 2 x + y.
constexpr std::uint8_t PLACE[4][4] = {{0, 1, 3, 2}, {0, 3, 1, 2}, {2, 3, 1, 0}, {2, 1, 3, 0}};
constexpr std::uint8_t INSIDE[4][4] = {{1, 0, 3, 0}, {0, 2, 1, 1}, {2, 1, 2, 3}, {3, 3, 0, 2}};

constexpr std::array<std::array<Step, 256>, 4> MakeSteps() {
  std::array<std::array<Step, 256>, 4> steps{};
  for (std::size_t start = 0; start < 4; ++start) {
    for (unsigned x = 0; x < 16; ++x) {
      for (unsigned y = 0; y < 16; ++y) {
        auto state = static_cast<std::uint8_t>(start);
        unsigned digits = 0;
        for (int level = LEVELS_PER_STEP - 1; level >= 0; --level) {
          unsigned const quadrant = ((x >> level) & 1U) * 2U + ((y >> level) & 1U);
          digits = digits * 4U + PLACE[state][quadrant];
          state = INSIDE[state][quadrant];
        }
        steps[start][x * 16 + y] = {static_cast<std::uint8_t>(digits), state};
      }
    }
  }
  return steps;
}

constexpr auto STEPS = MakeSteps();

std::uint32_t HilbertCode(std::uint32_t x, std::uint32_t y) {
  std::uint32_t code = 0;
  std::uint8_t state = 0;
  for (int shift = LEVELS - LEVELS_PER_STEP; shift >= 0; shift -= LEVELS_PER_STEP) {
    Step const step = STEPS[state][((x >> shift) & 15U) * 16U + ((y >> shift) & 15U)];
    code = code << 8 | step.digits;
    state = step.state;
  }
  return code;
}

// Maps a box onto the square of the curve. Not-a-number and infinities go to its edge.
class Raster {
 public:
  void Widen(TPoint const& p) {
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) return;
    m_dLeft = std::min(m_dLeft, p.x);
    m_dBottom = std::min(m_dBottom, p.y);
    m_dRight = std::max(m_dRight, p.x);
    m_dTop = std::max(m_dTop, p.y);
  }

  // Ends the widening. Returns false where the box has no extent to speak of.
  bool Close() {
    m_dScale = CELLS / std::max(m_dRight - m_dLeft, m_dTop - m_dBottom);
    return std::isfinite(m_dScale) && m_dScale > 0.0;
  }

  std::uint32_t Code(TPoint const& p) const {
    return HilbertCode(Cell(p.x - m_dLeft), Cell(p.y - m_dBottom));
  }

 private:
  static constexpr double CELLS = 1 << LEVELS;

  std::uint32_t Cell(double offset) const {
    double const cell = offset * m_dScale;
    if (!(cell > 0.0)) return 0;
    return static_cast<std::uint32_t>(std::min(cell, CELLS - 1.0));
  }

  double m_dLeft = INFINITY;
  double m_dBottom = INFINITY;
  double m_dRight = -INFINITY;
  double m_dTop = -INFINITY;
  double m_dScale = 0.0;
};

// A slot under its code, which stands in the high half: sorting the numbers sorts the places.
using Place = std::uint64_t;

Place MakePlace(std::uint32_t code, int slot) {
  return Place{code} << 32 | static_cast<std::uint32_t>(slot);
}
std::uint32_t CodeOf(Place place) { return static_cast<std::uint32_t>(place >> 32); }
int SlotOf(Place place) { return static_cast<int>(place & 0xFFFFFFFFU); }

// Sorts by code, by radix from the lowest digit up. Both ranges hold `count` places; the result
// stands in `places`.
void SortByCode(Place* places, Place* scratch, std::size_t count) {
  constexpr int DIGIT = 8;
  constexpr std::size_t VALUES = std::size_t{1} << DIGIT;
  constexpr std::size_t DIGITS = 4;
  if (count < VALUES) {
    std::sort(places, places + count);
    return;
  }
  std::array<std::array<std::uint32_t, VALUES>, DIGITS> starts{};
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t d = 0; d < DIGITS; ++d) {
      ++starts[d][CodeOf(places[i]) >> (d * DIGIT) & (VALUES - 1)];
    }
  }
  for (auto& digit : starts) {
    std::uint32_t sum = 0;
    for (std::uint32_t& start : digit) sum += std::exchange(start, sum);
    for (std::size_t i = 0; i < count; ++i) {
      auto const d = static_cast<std::size_t>(&digit - starts.data());
      scratch[digit[CodeOf(places[i]) >> (d * DIGIT) & (VALUES - 1)]++] = places[i];
    }
    std::swap(places, scratch);  // an even number of digits: the result ends where it began
  }
}

// Puts the places into the order of the curve through their own box. Where many share one cell, as
// in clusters far apart, the curve goes on through the box of those.
void FollowCurve(TPoint const* points, Place* places, Place* scratch, std::size_t count) {
  Raster raster;
  for (std::size_t i = 0; i < count; ++i) raster.Widen(points[SlotOf(places[i])]);
  if (!raster.Close()) return;
  for (std::size_t i = 0; i < count; ++i) {
    int const slot = SlotOf(places[i]);
    places[i] = MakePlace(raster.Code(points[slot]), slot);
  }
  SortByCode(places, scratch, count);
  for (std::size_t begin = 0; begin < count;) {
    std::size_t end = begin + 1;
    while (end < count && CodeOf(places[end]) == CodeOf(places[begin])) ++end;
    if (end - begin > CROWDED) FollowCurve(points, places + begin, scratch + begin, end - begin);
    begin = end;
  }
}

// Returns where each round begins among `count` points, and `count` at the end.
std::vector<int> RoundStarts(int count) {
  std::vector<int> starts;
  double size = count;
  for (; size > FIRST_ROUND; size /= ROUND_GROWTH) starts.push_back(static_cast<int>(size));
  starts.push_back(0);
  std::reverse(starts.begin(), starts.end());
  if (starts.size() == 1) starts.push_back(count);
  return starts;
}

}  // namespace

std::vector<int> OrderInRounds(TPoint const* points, int const* shuffled, int count) {
  if (count == 0) return {};
  std::vector<int> const starts = RoundStarts(count);

  // Each point is given to its round in slot order, which reads the points in one sweep.
  int const slots = *std::max_element(shuffled, shuffled + count) + 1;
  std::vector<std::uint8_t> round_of(static_cast<std::size_t>(slots), NO_ROUND);
  for (std::size_t round = 0; round + 1 < starts.size(); ++round) {
    for (int i = starts[round]; i < starts[round + 1]; ++i) {
      round_of[static_cast<std::size_t>(shuffled[i])] = static_cast<std::uint8_t>(round);
    }
  }
  auto const size = static_cast<std::size_t>(count);
  std::vector<Place> places(size);
  std::vector<Place> scratch(size);
  std::vector<int> filled(starts);
  for (int slot = 0; slot < slots; ++slot) {
    std::uint8_t const round = round_of[static_cast<std::size_t>(slot)];
    if (round != NO_ROUND) places[static_cast<std::size_t>(filled[round]++)] = MakePlace(0, slot);
  }
  for (std::size_t round = 0; round + 1 < starts.size(); ++round) {
    auto const begin = static_cast<std::size_t>(starts[round]);
    auto const end = static_cast<std::size_t>(starts[round + 1]);
    FollowCurve(points, &places[begin], &scratch[begin], end - begin);
  }
  std::vector<int> order(size);
  std::transform(&places[0], &places[0] + size, order.begin(), SlotOf);
  return order;
}

std::vector<int> RandomOrder(TPoint const* points, int count) {
  std::vector<int> shuffled(static_cast<std::size_t>(count));
  std::iota(shuffled.begin(), shuffled.end(), 0);
  ShuffleIndex(shuffled.data(), count);
  return count <= FEW_POINTS ? shuffled : OrderInRounds(points, shuffled.data(), count);
}

}  // namespace qeltin::detail
