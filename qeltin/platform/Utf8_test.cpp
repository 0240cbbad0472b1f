#include "qeltin/platform/Utf8.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace {

using qeltin::FromUtf8;
using qeltin::ToUtf8;

std::wstring Units(std::initializer_list<unsigned> units) {
  std::wstring text;
  for (unsigned const unit : units) text.push_back(static_cast<wchar_t>(unit));
  return text;
}

TEST(Utf8, EveryLengthOfSequence) {
  EXPECT_EQ(ToUtf8(L"a\u00e9\u20ac\U0001F30A"), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8C\x8A");
  EXPECT_EQ(FromUtf8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8C\x8A"), L"a\u00e9\u20ac\U0001F30A");
  EXPECT_EQ(ToUtf8(L""), "");
  EXPECT_EQ(FromUtf8(""), L"");
}

TEST(Utf8, APairOfSurrogatesIsOneCharacter) {
  EXPECT_EQ(ToUtf8(Units({0xD83C, 0xDF0A})), "\xF0\x9F\x8C\x8A");
}

TEST(Utf8, AUnitThatIsNoCharacterBecomesTheReplacement) {
  std::string const replacement = "\xEF\xBF\xBD";
  EXPECT_EQ(ToUtf8(Units({0xD800})), replacement);
  EXPECT_EQ(ToUtf8(Units({0xD800, 'x'})), replacement + "x");
  EXPECT_EQ(ToUtf8(Units({0xDC00})), replacement);
  EXPECT_EQ(ToUtf8(Units({0x110000})), replacement);
  EXPECT_EQ(ToUtf8(Units({0xFFFFFFFF})), replacement);
}

TEST(Utf8, AByteThatIsNoUtf8TravelsAsALowSurrogate) {
  EXPECT_EQ(FromUtf8("a\xFF"), Units({'a', 0xDCFF}));
  EXPECT_EQ(FromUtf8("\xC3"), Units({0xDCC3}));              // cut off
  EXPECT_EQ(FromUtf8("\xC0\x80"), Units({0xDCC0, 0xDC80}));  // overlong
  EXPECT_EQ(FromUtf8("\xE0\x80\x80"), Units({0xDCE0, 0xDC80, 0xDC80}));
  EXPECT_EQ(FromUtf8("\xED\xA0\x80"), Units({0xDCED, 0xDCA0, 0xDC80}));  // a surrogate
  EXPECT_EQ(FromUtf8("\xF4\x90\x80\x80"), Units({0xDCF4, 0xDC90, 0xDC80, 0xDC80}));
  EXPECT_EQ(ToUtf8(Units({'a', 0xDCFF})), "a\xFF");
}

TEST(Utf8, EveryStringOfBytesComesBack) {
  char const* const given = std::getenv("QELTIN_TEST_SEED");
  unsigned const seed = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                                         : std::random_device{}();
  SCOPED_TRACE(::testing::Message() << "QELTIN_TEST_SEED=" << seed);
  std::mt19937 random(seed);
  for (int i = 0; i < 20000; ++i) {
    std::string bytes;
    for (unsigned n = random() % 8; n > 0; --n) bytes.push_back(static_cast<char>(random() | 0x80));
    bytes.push_back('.');
    for (unsigned n = random() % 4; n > 0; --n) bytes.push_back(static_cast<char>(random()));
    ASSERT_EQ(ToUtf8(FromUtf8(bytes)), bytes);
  }
}

}  // namespace
