#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace qeltin::detail {

static_assert(std::endian::native == std::endian::little, "the first digit is the lowest byte");

// A run of decimal digits.
struct DigitRun {
  static constexpr int MOST = 18;  // that are sure to fit; a longer run has no value

  std::uint64_t value = 0;
  int count = 0;

  // Takes the digits at `at`, eight at once, and returns the place behind them, or behind the
  // first of them that are too many.
  char const* Take(char const* at) {
    constexpr std::uint64_t POWERS[] = {1,       10,        100,        1'000,      10'000,
                                        100'000, 1'000'000, 10'000'000, 100'000'000};
    for (int taken = 8; taken == 8 && count <= MOST; at += taken, count += taken) {
      std::uint64_t word;
      std::memcpy(&word, at, sizeof word);
      word ^= 0x3030303030303030;  // digits become their values, and all else more than 9
      std::uint64_t const others = (word | (word + 0x7676767676767676)) & 0x8080808080808080;
      taken = others == 0 ? 8 : std::countr_zero(others) / 8;
      // Two shifts: one of 64 bits is none.
      word = word << (32 - 4 * taken) << (32 - 4 * taken);  // with zeros in front
      word = (word * 10 + (word >> 8)) & 0x00FF00FF00FF00FF;
      word = (word * 100 + (word >> 16)) & 0x0000FFFF0000FFFF;
      word = (word * 10'000 + (word >> 32)) & 0xFFFFFFFF;
      value = value * POWERS[taken] + word;
    }
    return at;
  }
};

// Scans what nearly every number of a survey is: a sign or none, digits, and a point with digits or
// none behind it; all digits together a whole number up to 2 to the power 53, so that one division
// rounds the value correctly. Returns the place behind the number, or null for any other text, and
// for a number that an exponent or an "x" may follow.
//
// REQUIRES: something that is no digit stands at or behind `at`, and 8 bytes from there on can be
// read.
inline char const* ScanPlainNumber(char const* at, double& value) {
  constexpr double POWERS[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8, 1e9,
                               1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18};
  bool const negative = *at == '-';
  if (negative || *at == '+') ++at;
  DigitRun digits;
  at = digits.Take(at);
  int const whole = digits.count;
  if (whole == 0) return nullptr;
  if (*at == '.') at = digits.Take(at + 1);
  char const after = *at | 0x20;
  if (digits.count > DigitRun::MOST || digits.value > std::uint64_t{1} << 53 || after == 'e' ||
      after == 'x') {
    return nullptr;
  }
  double const size =
      static_cast<double>(static_cast<std::int64_t>(digits.value)) / POWERS[digits.count - whole];
  value = negative ? -size : size;
  return at;
}

}  // namespace qeltin::detail
