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
  void Widen(double x, double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) return;
    m_dLeft = std::min(m_dLeft, x);
    m_dBottom = std::min(m_dBottom, y);
    m_dRight = std::max(m_dRight, x);
    m_dTop = std::max(m_dTop, y);
  }

  // Ends the widening. Returns false where the box has no extent to speak of.
  bool Close() {
    m_dScale = CELLS / std::max(m_dRight - m_dLeft, m_dTop - m_dBottom);
    return std::isfinite(m_dScale) && m_dScale > 0.0;
  }

  std::uint32_t Code(double x, double y) const {
    return HilbertCode(Cell(x - m_dLeft), Cell(y - m_dBottom));
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

constexpr int DIGIT = 8;  // bits of a code
constexpr std::size_t VALUES = std::size_t{1} << DIGIT;
constexpr std::size_t DIGITS = 4;

std::size_t DigitOf(std::uint32_t code, std::size_t digit) {
  return code >> (digit * DIGIT) & (VALUES - 1);
}

// Where the points with each value of a digit begin.
using Starts = std::array<std::uint32_t, VALUES>;

// Turns counts into places.
void SumUp(Starts& starts, std::uint32_t sum = 0) {
  for (std::uint32_t& start : starts) sum += std::exchange(start, sum);
}

// Sorts by `digits` digits of the code from `lowest` up, an even number, or by the whole code. Both
// ranges hold `count` points; the result stands in `points`.
void SortByCode(OrderedPoint* points, OrderedPoint* scratch, std::size_t count, std::size_t lowest,
                std::size_t digits) {
  if (count < VALUES) {
    std::sort(points, points + count,
              [](OrderedPoint const& a, OrderedPoint const& b) { return a.scratch < b.scratch; });
    return;
  }
  std::array<Starts, DIGITS> starts{};
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t d = lowest; d < lowest + digits; ++d) {
      ++starts[d][DigitOf(points[i].scratch, d)];
    }
  }
  for (std::size_t d = lowest; d < lowest + digits; ++d) {
    SumUp(starts[d]);
    for (std::size_t i = 0; i < count; ++i) {
      scratch[starts[d][DigitOf(points[i].scratch, d)]++] = points[i];
    }
    std::swap(points, scratch);
  }
}

void FollowCurve(OrderedPoint* points, OrderedPoint* scratch, std::size_t count);

// Has the curve go on inside of cells that many of the sorted points share, as in clusters far
// apart, through the box of those. A cell is what codes have in common but for the lowest digit.
void FollowCurveInside(OrderedPoint* points, OrderedPoint* scratch, std::size_t count) {
  for (std::size_t begin = 0; begin < count;) {
    std::size_t end = begin + 1;
    while (end < count && points[end].scratch >> DIGIT == points[begin].scratch >> DIGIT) ++end;
    if (end - begin > CROWDED) FollowCurve(points + begin, scratch + begin, end - begin);
    begin = end;
  }
}

// Puts the points into the order of the curve through their own box.
void FollowCurve(OrderedPoint* points, OrderedPoint* scratch, std::size_t count) {
  Raster raster;
  for (std::size_t i = 0; i < count; ++i) raster.Widen(points[i].x, points[i].y);
  if (!raster.Close()) return;
  for (std::size_t i = 0; i < count; ++i) points[i].scratch = raster.Code(points[i].x, points[i].y);
  SortByCode(points, scratch, count, 0, DIGITS);
  FollowCurveInside(points, scratch, count);
}

std::vector<int> SlotsOf(std::vector<OrderedPoint> const& points) {
  std::vector<int> slots(points.size());
  std::transform(points.begin(), points.end(), slots.begin(),
                 [](OrderedPoint const& p) { return p.slot; });
  return slots;
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

void OrderInRounds(TPoint const* points, int const* shuffled, int count, OrderedPoint* ordered,
                   OrderedPoint* scratch) {
  if (count == 0) return;
  std::vector<int> const starts = RoundStarts(count);
  std::size_t const rounds = starts.size() - 1;

  // Each point is given to its round in slot order, which reads the points in one sweep.
  int const last = *std::max_element(shuffled, shuffled + count);
  std::size_t const slots = static_cast<std::size_t>(last) + 1;
  std::vector<std::uint8_t> round_of(slots, NO_ROUND);
  for (std::size_t round = 0; round < rounds; ++round) {
    for (int i = starts[round]; i < starts[round + 1]; ++i) {
      round_of[static_cast<std::size_t>(shuffled[i])] = static_cast<std::uint8_t>(round);
    }
  }
  Raster raster;
  for (std::size_t slot = 0; slot < slots; ++slot) {
    if (round_of[slot] != NO_ROUND) raster.Widen(points[slot].x, points[slot].y);
  }
  bool const has_extent = raster.Close();
  std::vector<std::uint32_t> codes(slots);
  std::vector<Starts> filled(rounds);
  for (std::size_t slot = 0; slot < slots; ++slot) {
    if (round_of[slot] == NO_ROUND) continue;
    if (has_extent) codes[slot] = raster.Code(points[slot].x, points[slot].y);
    ++filled[round_of[slot]][DigitOf(codes[slot], DIGITS - 1)];
  }
  for (std::size_t round = 0; round < rounds; ++round) {
    SumUp(filled[round], static_cast<std::uint32_t>(starts[round]));
  }
  for (std::size_t slot = 0; slot < slots; ++slot) {
    if (round_of[slot] == NO_ROUND) continue;
    TPoint const& p = points[slot];
    ordered[filled[round_of[slot]][DigitOf(codes[slot], DIGITS - 1)]++] = {
        p.x, p.y, p.z, static_cast<int>(slot), codes[slot]};
  }
  // Now the points are in order as far as the first digit goes, in parts that fit into a cache.
  std::size_t begin = 0;
  for (Starts const& ends : filled) {
    for (std::uint32_t const end : ends) {
      SortByCode(ordered + begin, scratch + begin, end - begin, 1, DIGITS - 2);
      FollowCurveInside(ordered + begin, scratch + begin, end - begin);
      begin = end;
    }
  }
}

std::vector<int> OrderInRounds(TPoint const* points, int const* shuffled, int count) {
  auto const size = static_cast<std::size_t>(count);
  std::vector<OrderedPoint> ordered(size);
  std::vector<OrderedPoint> scratch(size);
  OrderInRounds(points, shuffled, count, ordered.data(), scratch.data());
  return SlotsOf(ordered);
}

std::vector<int> OrderAlongCurve(TPoint const* points, std::vector<int> const& slots) {
  std::vector<OrderedPoint> ordered;
  ordered.reserve(slots.size());
  for (int slot : slots) {
    TPoint const& p = points[slot];
    ordered.push_back({p.x, p.y, p.z, slot, 0});
  }
  std::vector<OrderedPoint> scratch(slots.size());
  FollowCurve(ordered.data(), scratch.data(), ordered.size());
  return SlotsOf(ordered);
}

std::vector<int> RandomOrder(TPoint const* points, int count) {
  std::vector<int> shuffled(static_cast<std::size_t>(count));
  std::iota(shuffled.begin(), shuffled.end(), 0);
  ShuffleIndex(shuffled.data(), count);
  return count <= FEW_POINTS ? shuffled : OrderInRounds(points, shuffled.data(), count);
}

}  // namespace qeltin::detail
