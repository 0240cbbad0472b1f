#pragma once

#include <string>
#include <vector>

namespace qeltin::cli {

// A round number: 1, 2 or 5 times a power of ten.
class RoundNumber {
 public:
  // Returns the smallest one that is not below `least`. REQUIRES: least > 0, finite.
  static RoundNumber NotBelow(double least);

  // Returns the largest one that is not above `most`. REQUIRES: most > 0, finite.
  static RoundNumber NotAbove(double most);

  // The double that is nearest to it.
  double Value() const;

  // Returns `count` times this number, with as many decimals as this number has.
  std::string Times(double count) const;

  // Returns the whole numbers which, times this number, lie from `low` to `high`, both included.
  std::vector<double> CountsWithin(double low, double high) const;

 private:
  RoundNumber(int digit, int exponent) : m_iDigit(digit), m_iExponent(exponent) {}

  RoundNumber Next() const;
  RoundNumber Previous() const;

  int m_iDigit;
  int m_iExponent;
};

// Returns a number with 10 digits at most, so that the rounding of sums and products of round
// numbers does not show.
std::string ShortNumber(double value);

}  // namespace qeltin::cli
