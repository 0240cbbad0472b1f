#include "qeltin/persistence/PlainNumber.h"

#include <gtest/gtest.h>

#include <charconv>
#include <string>

#include "testing/Formula.h"
#include "testing/MakeSurvey.h"

// Whatever is taken has the value that the C runtime gives it, and takes as many characters.

namespace {

using qeltin::detail::ScanPlainNumber;
using qeltin::testing::Dice;
using qeltin::testing::SameBits;
using qeltin::testing::TestSeed;

constexpr double UNTOUCHED = 12345.0;

struct Scanned {
  long length = -1;  // -1 for a text that was left
  double value = UNTOUCHED;
};

Scanned Scan(std::string const& text) {
  std::string const padded = text + std::string(8, '\0');
  Scanned scanned;
  char const* const end = ScanPlainNumber(padded.data(), scanned.value);
  if (end != nullptr) scanned.length = end - padded.data();
  return scanned;
}

void ExpectAsByTheRuntime(std::string const& text) {
  Scanned const scanned = Scan(text);
  char* end = nullptr;
  double const expected = std::strtod(text.c_str(), &end);
  ASSERT_EQ(scanned.length, end - text.c_str()) << text;
  ASSERT_TRUE(SameBits(scanned.value, expected)) << text << " gave " << scanned.value;
}

void ExpectLeft(std::string const& text) {
  Scanned const scanned = Scan(text);
  EXPECT_EQ(scanned.length, -1) << text;
  EXPECT_EQ(scanned.value, UNTOUCHED) << text;
}

std::string RandomDigits(Dice& dice, int count) {
  std::string digits;
  for (int i = 0; i < count; ++i) digits += static_cast<char>('0' + dice.Below(10));
  return digits;
}

TEST(PlainNumber, IsRoundedAsTheRuntimeRoundsIt) {
  Dice dice(TestSeed());
  for (int run = 0; run < 200'000; ++run) {
    std::string text = dice.OneIn(3) ? (dice.OneIn(2) ? "-" : "+") : "";
    int const whole = 1 + dice.Below(15);
    text += RandomDigits(dice, whole);
    if (dice.OneIn(5))
      text += '.';
    else if (whole < 15)
      text += '.' + RandomDigits(dice, dice.Below(16 - whole));
    ExpectAsByTheRuntime(text);
  }
}

TEST(PlainNumber, MayHaveZerosInFrontAndBehind) {
  for (int zeros = 0; zeros <= 10; ++zeros) {
    ExpectAsByTheRuntime(std::string(zeros, '0') + "1.25");
    ExpectAsByTheRuntime("-7." + std::string(zeros, '0') + "3" + std::string(zeros % 4, '0'));
    ExpectAsByTheRuntime("0." + std::string(zeros, '0'));
    ExpectAsByTheRuntime("-0." + std::string(zeros, '0'));
  }
}

TEST(PlainNumber, OfEighteenDigitsIsTakenUpToTwoToThe53) {
  ExpectAsByTheRuntime("9007199254740992");
  ExpectAsByTheRuntime("009007199254740992");
  ExpectAsByTheRuntime("0.00000009007199");
  ExpectAsByTheRuntime("90071992547409.92");
  ExpectAsByTheRuntime("0.9007199254740992");
  ExpectLeft("9007199254740993");
  ExpectLeft("90071992547409.93");
  ExpectLeft("0009007199254740992");
  ExpectLeft("0.000000000000000000");
}

TEST(PlainNumber, WithManyDigitsIsLeft) {
  for (int digits = 19; digits < 70; ++digits) {
    ExpectLeft(std::string(static_cast<std::size_t>(digits), '0'));
    ExpectLeft("1." + std::string(static_cast<std::size_t>(digits), '0'));
    ExpectLeft(std::string(static_cast<std::size_t>(digits), '9'));
  }
}

TEST(PlainNumber, WithAnExponentOrAnXIsLeft) {
  for (char const* text : {"1e5", "1E5", "1.5e", "1.e+3", "0x10", "0X1p3", "00x", "12.5x"}) {
    ExpectLeft(text);
  }
}

TEST(PlainNumber, StartsWithADigitBehindItsSign) {
  for (char const* text : {"", "-", "+", ".5", "-.5", "+-1", "--1", "inf", "nan", " 1", ",1", "/1",
                           ":1", "\xb1", "\xff", "a1"}) {
    ExpectLeft(text);
  }
}

TEST(PlainNumber, EndsAtAnyCharacterThatDoesNotFit) {
  for (int c = 0; c < 256; ++c) {
    char const after = static_cast<char>(c);
    bool const fits = (after >= '0' && after <= '9') || after == '.' || (after | 0x20) == 'e' ||
                      (after | 0x20) == 'x';
    if (fits) continue;
    for (std::string const number : {"7", "-1234567", "12345678", "3.", "123.4567891"}) {
      Scanned const scanned = Scan(number + after + "99999999");
      EXPECT_EQ(scanned.length, static_cast<long>(number.size())) << number << " before " << c;
      EXPECT_EQ(scanned.value, std::stod(number)) << number << " before " << c;
    }
  }
  EXPECT_EQ(Scan("1.2.3").length, 3);
}

}  // namespace
