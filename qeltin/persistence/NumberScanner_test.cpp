#include "qeltin/persistence/NumberScanner.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "testing/MakeSurvey.h"

namespace {

using qeltin::detail::NumberScanner;
using qeltin::testing::Dice;
using qeltin::testing::TestSeed;

struct Scan {
  bool isNumber = false;
  double value = -1.0;
  std::size_t taken = 0;
};

Scan ScanText(std::string const& text) {
  NumberScanner scanner;
  Scan scan;
  auto const next = [&] {
    return scan.taken < text.size() ? static_cast<unsigned char>(text[scan.taken])
                                    : NumberScanner::END_OF_TEXT;
  };
  while (scanner.Take(next())) ++scan.taken;
  scan.isNumber = scanner.GetValue(scan.value);
  return scan;
}

TEST(NumberScanner, TakesTheCharactersOfOneNumber) {
  Scan const scan = ScanText("-12.5e-1,7");
  EXPECT_TRUE(scan.isNumber);
  EXPECT_EQ(scan.value, -1.25);
  EXPECT_EQ(scan.taken, 8U);
}

TEST(NumberScanner, AnExponentWithoutDigitsIsTakenAndCountsAs0) {
  EXPECT_EQ(ScanText("7e").value, 7.0);
  EXPECT_EQ(ScanText("7e").taken, 2U);
  EXPECT_EQ(ScanText("7e+,").taken, 3U);
}

TEST(NumberScanner, HexadecimalNumbers) {
  EXPECT_EQ(ScanText("0xA.8p1").value, 21.0);
  EXPECT_EQ(ScanText("0x.").value, 0.0);
  EXPECT_FALSE(ScanText("0x").isNumber);
  EXPECT_FALSE(ScanText("0xp1").isNumber);
}

TEST(NumberScanner, Words) {
  EXPECT_TRUE(std::isinf(ScanText("inf").value));
  EXPECT_TRUE(std::isinf(ScanText("INFINITY").value));
  EXPECT_TRUE(std::isnan(ScanText("nan(1)").value));
  EXPECT_EQ(ScanText("nan(1)").taken, 3U);
  EXPECT_FALSE(ScanText("infi").isNumber);
  EXPECT_FALSE(ScanText("na").isNumber);
}

TEST(NumberScanner, WhatIsNoNumberLeavesTheValue) {
  for (char const* text : {"", "+", "-", ".", "+.", "e5", "x"}) {
    EXPECT_FALSE(ScanText(text).isNumber) << text;
    EXPECT_EQ(ScanText(text).value, -1.0) << text;
  }
}

TEST(NumberScanner, DigitsBeyondMemoryStillRound) {
  std::string const half = "9007199254740993";  // half way between two doubles
  EXPECT_EQ(ScanText(half).value, 9007199254740992.0);
  EXPECT_EQ(ScanText(half + "." + std::string(5000, '0') + "1").value, 9007199254740994.0);
  EXPECT_EQ(ScanText("1" + std::string(5000, '0') + "e-5000").value, 1.0);
  EXPECT_EQ(ScanText("0." + std::string(5000, '0') + "1e5001").value, 1.0);
}

// The middle between two neighbouring small doubles has up to 767 digits, and every one counts.
TEST(NumberScanner, TheLastOfManyDigitsDecides) {
  Dice dice(TestSeed());
  for (int i = 0; i < 300; ++i) {
    double const low = std::ldexp(dice.Between(1, 2), -1022 + dice.Below(30));
    double const high = std::nextafter(low, 1.0);
    char text[1200];
    std::snprintf(text, sizeof text, "%.1076Lf", (static_cast<long double>(low) + high) / 2);
    std::string middle = text;
    middle.erase(middle.find_last_not_of('0') + 1);
    std::string below = middle;
    --below.back();
    EXPECT_EQ(ScanText(below + "9").value, low);
    EXPECT_EQ(ScanText(middle).value, std::strtod(middle.c_str(), nullptr));
    EXPECT_EQ(ScanText(middle + std::string(dice.Below(99), '0') + "1").value, high);
  }
}

}  // namespace
