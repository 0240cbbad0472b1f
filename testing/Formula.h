#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "qeltin/kernel/TPoint.h"
#include "testing/MakeSurvey.h"

// For tests that compare an operation with its formula, written out in the test, bit by bit.
namespace qeltin::testing {

// Succeeds iff both are the same double, the sign of zero included, or both are not-a-number.
inline ::testing::AssertionResult SameBits(double actual, double expected) {
  bool const same = std::bit_cast<std::uint64_t>(actual) == std::bit_cast<std::uint64_t>(expected);
  if (same || (std::isnan(actual) && std::isnan(expected))) return ::testing::AssertionSuccess();
  char text[80];
  std::snprintf(text, sizeof text, "%.17g, where the formula gives %.17g", actual, expected);
  return ::testing::AssertionFailure() << text;
}

inline ::testing::AssertionResult SameBits(TPoint const& actual, TPoint const& expected) {
  if (auto x = SameBits(actual.x, expected.x); !x) return x << " in x";
  if (auto y = SameBits(actual.y, expected.y); !y) return y << " in y";
  if (auto z = SameBits(actual.z, expected.z); !z) return z << " in z";
  return ::testing::AssertionSuccess();
}

// Draws the inputs. A failure prints the seed that draws them again.
class FormulaInputs {
 public:
  FormulaInputs() : FormulaInputs(TestSeed()) {}

  // Small whole numbers, which often coincide or line up; grid coordinates; numbers of any size.
  double Number() {
    switch (Whole(0, 3)) {
      case 0:
        return Whole(-3, 3);
      case 1:
        return Between(400000.0, 600000.0);
      case 2:
        return Between(-1.0, 1.0);
      default:
        return Between(-1.0, 1.0) * std::pow(10.0, Whole(-12, 12));
    }
  }

  TPoint Point() { return {Number(), Number(), Number()}; }

  // A point of a survey: its numbers are of one size.
  TPoint Sounding() {
    return {Between(500000.0, 500100.0), Between(5900000.0, 5900100.0), Between(-40.0, -5.0)};
  }

  // A point of a lattice, where many triples are in line or on one circle.
  TPoint Node() { return {Line(), Line(), Line()}; }

  // One of the three kinds.
  TPoint AnyPoint() {
    switch (Whole(0, 2)) {
      case 0:
        return Point();
      case 1:
        return Sounding();
      default:
        return Node();
    }
  }

  double Between(double low, double high) { return m_Dice.Between(low, high); }
  int Whole(int low, int high) { return low + m_Dice.Below(high - low + 1); }

 private:
  explicit FormulaInputs(std::uint64_t seed)
      : m_Dice(seed), m_Trace(__FILE__, __LINE__, ::testing::Message() << "seed " << seed) {}

  double Line() { return Whole(-4, 4); }

  Dice m_Dice;
  ::testing::ScopedTrace m_Trace;
};

}  // namespace qeltin::testing
