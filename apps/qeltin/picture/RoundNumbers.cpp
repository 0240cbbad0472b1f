#include "apps/qeltin/picture/RoundNumbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "apps/qeltin/Numbers.h"

namespace qeltin::cli {

RoundNumber RoundNumber::NotBelow(double least) {
  RoundNumber number(1, static_cast<int>(std::floor(std::log10(least))) - 1);
  while (number.Value() < least) number = number.Next();
  return number;
}

RoundNumber RoundNumber::NotAbove(double most) {
  RoundNumber number(1, static_cast<int>(std::floor(std::log10(most))) + 2);
  while (number.Value() > most) number = number.Previous();
  return number;
}

double RoundNumber::Value() const {
  std::string const text = std::to_string(m_iDigit) + 'e' + std::to_string(m_iExponent);
  double value = 0.0;
  ParseNumbers(text, &value, 1);
  return value;
}

std::string RoundNumber::Times(double count) const {
  return NumberStyle{std::clamp(-m_iExponent, 0, 17)}.Text(count * Value());
}

std::vector<double> RoundNumber::CountsWithin(double low, double high) const {
  double const value = Value();
  std::vector<double> counts;
  for (double count = std::ceil(low / value); count * value <= high; ++count) {
    counts.push_back(count);
  }
  return counts;
}

RoundNumber RoundNumber::Next() const {
  if (m_iDigit == 5) return {1, m_iExponent + 1};
  return {m_iDigit == 1 ? 2 : 5, m_iExponent};
}

RoundNumber RoundNumber::Previous() const {
  if (m_iDigit == 1) return {5, m_iExponent - 1};
  return {m_iDigit == 5 ? 2 : 1, m_iExponent};
}

std::string ShortNumber(double value) {
  constexpr int DIGITS = 10;
  if (value == 0.0 || !std::isfinite(value)) return NumberStyle{}.Text(value);
  std::array<char, 32> text;
  char* const end = std::to_chars(text.data(), text.data() + text.size(), value,
                                  std::chars_format::scientific, DIGITS - 1)
                        .ptr;
  double rounded = value;
  std::from_chars(text.data(), end, rounded);
  return NumberStyle{}.Text(rounded);
}

}  // namespace qeltin::cli
