#pragma once

#include <string>

namespace qeltin::detail {

// Takes the characters of one number, one after the other, as "%lf" of the C runtime's formatted
// scanning takes them in the C locale: a sign, decimal or hexadecimal digits, a point, an exponent;
// "inf", "infinity" and "nan" in any case. White space before the number is the caller's.
//
// Where "%lf" is lenient, so is this: an exponent that has no digits is taken and counts as 0, and
// "0x." is 0. "0x" alone, "." alone and "infi" are no numbers, although their characters are gone.
//
// Memory is bounded whatever the length of the number, and the value is rounded correctly.
// Threads: a value; one thread at a time.
class NumberScanner {
 public:
  static constexpr int END_OF_TEXT = -1;

  // Returns true iff the character (0 to 255, or END_OF_TEXT) belongs to the number. After a false
  // the number is over and the character is not taken.
  bool Take(int c);

  // Sets `value` and returns true iff what was taken is a number. REQUIRES: Take answered false.
  bool GetValue(double& value) const;

 private:
  enum class State { START, SIGNED, WORD, ZERO, MANTISSA, EXPONENT_SIGN, EXPONENT };

  bool TakeFirst(int c);
  bool TakeMantissa(int c);
  bool TakeExponent(int c);
  void AddDigit(int digit);

  State m_State = State::START;
  char const* m_pWord = "";  // "infinity" or "nan"
  int m_iLetters = 0;        // of it that were taken
  bool m_bNegative = false;
  bool m_bHex = false;
  bool m_bHasDigit = false;  // a digit other than the 0 of "0x"
  bool m_bHasPoint = false;
  bool m_bExponentNegative = false;
  bool m_bSticky = false;  // a digit other than 0 was left out of m_Digits
  std::string m_Digits;    // from the first one that is not 0
  long long m_iScale = 0;  // the point stands this many digits right of the end of m_Digits
  long long m_iExponent = 0;
};

}  // namespace qeltin::detail
