#include "qeltin/persistence/NumberScanner.h"

#include <cmath>
#include <limits>

#include "qeltin/platform/CLocale.h"

namespace qeltin::detail {

namespace {

// More than the 768 digits that can decide how a double is rounded.
constexpr std::size_t MAX_DIGITS = 800;

// Beyond any exponent that the digits of a real file could make good for.
constexpr long long MAX_EXPONENT = 1'000'000'000'000'000;

int Lower(int c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; }

// Returns the value of a digit, or -1.
int DigitOf(int c, bool hex) {
  if (c >= '0' && c <= '9') return c - '0';
  int const lower = Lower(c);
  return hex && lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

}  // namespace

bool NumberScanner::Take(int c) {
  switch (m_State) {
    case State::START:
      if (c == '+' || c == '-') {
        m_bNegative = c == '-';
        m_State = State::SIGNED;
        return true;
      }
      return TakeFirst(c);
    case State::SIGNED:
      return TakeFirst(c);
    case State::WORD:
      if (m_pWord[m_iLetters] == '\0' || Lower(c) != m_pWord[m_iLetters]) return false;
      ++m_iLetters;
      return true;
    case State::ZERO:
      m_State = State::MANTISSA;
      m_bHex = Lower(c) == 'x';
      m_bHasDigit = !m_bHex;
      return m_bHex || TakeMantissa(c);
    case State::MANTISSA:
      return TakeMantissa(c);
    default:
      return TakeExponent(c);
  }
}

bool NumberScanner::TakeFirst(int c) {
  m_State = State::MANTISSA;
  if (c == '0') {
    m_State = State::ZERO;
    return true;
  }
  int const lower = Lower(c);
  if (lower != 'n' && lower != 'i') return TakeMantissa(c);
  m_State = State::WORD;
  m_pWord = lower == 'n' ? "nan" : "infinity";
  m_iLetters = 1;
  return true;
}

bool NumberScanner::TakeMantissa(int c) {
  int const digit = DigitOf(c, m_bHex);
  if (digit >= 0) {
    AddDigit(digit);
    return true;
  }
  if (m_bHasDigit && Lower(c) == (m_bHex ? 'p' : 'e')) {
    m_State = State::EXPONENT_SIGN;
    return true;
  }
  if (c != '.' || m_bHasPoint) return false;
  m_bHasPoint = true;
  return true;
}

bool NumberScanner::TakeExponent(int c) {
  bool const first = m_State == State::EXPONENT_SIGN;
  m_State = State::EXPONENT;
  if (first && (c == '+' || c == '-')) {
    m_bExponentNegative = c == '-';
    return true;
  }
  int const digit = DigitOf(c, false);
  if (digit < 0) return false;
  if (m_iExponent < MAX_EXPONENT) m_iExponent = 10 * m_iExponent + digit;
  return true;
}

void NumberScanner::AddDigit(int digit) {
  m_bHasDigit = true;
  bool const leadingZero = digit == 0 && m_Digits.empty();
  if (!leadingZero && m_Digits.size() == MAX_DIGITS) {
    m_bSticky = m_bSticky || digit != 0;
    if (!m_bHasPoint) ++m_iScale;
    return;
  }
  if (!leadingZero) m_Digits.push_back("0123456789abcdef"[digit]);
  if (m_bHasPoint) --m_iScale;
}

bool NumberScanner::GetValue(double& value) const {
  double const sign = m_bNegative ? -1.0 : 1.0;
  if (m_State == State::WORD) {
    if (m_iLetters != 3 && m_iLetters != 8) return false;  // nan, inf, infinity
    using Limits = std::numeric_limits<double>;
    value = std::copysign(*m_pWord == 'n' ? Limits::quiet_NaN() : Limits::infinity(), sign);
    return true;
  }
  if (!m_bHasDigit && !(m_bHex && m_bHasPoint)) return false;
  if (m_Digits.empty()) {
    value = sign * 0.0;
    return true;
  }
  long long const exponent = m_bExponentNegative ? -m_iExponent : m_iExponent;
  long long const scale = m_iScale - (m_bSticky ? 1 : 0);
  std::string text = m_bHex ? "0x" + m_Digits : m_Digits;
  if (m_bSticky) text += '1';
  text += (m_bHex ? "p" : "e") + std::to_string((m_bHex ? 4 * scale : scale) + exponent);
  value = sign * StrtodInCLocale(text.c_str());
  return true;
}

}  // namespace qeltin::detail
