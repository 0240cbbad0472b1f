#include "qeltin/render/GlColor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>

#include "testing/Formula.h"

namespace {

using qeltin::testing::FormulaInputs;

constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
constexpr float ENDLESS = std::numeric_limits<float>::infinity();

GlColor FromHSV(float h, float s, float v) {
  GlColor color;
  color.SetHSV(h, s, v);
  return color;
}

TEST(GlColor, IsFourFloatsInOrder) {
  EXPECT_EQ(sizeof(GlColor), 16u);
  EXPECT_TRUE(std::is_trivially_copyable_v<GlColor>);
  GlColor const color(0.125f, 0.25f, 0.5f, 0.75f);
  EXPECT_EQ(color.GetRed(), 0.125f);
  EXPECT_EQ(color.GetGreen(), 0.25f);
  EXPECT_EQ(color.GetBlue(), 0.5f);
  EXPECT_EQ(color.GetAlpha(), 0.75f);
  float const* const channels = color.GetArrayOf4();
  EXPECT_EQ(channels[0], 0.125f);
  EXPECT_EQ(channels[1], 0.25f);
  EXPECT_EQ(channels[2], 0.5f);
  EXPECT_EQ(channels[3], 0.75f);
}

TEST(GlColor, IsOpaqueBlackByDefault) {
  EXPECT_EQ(GlColor::DEFAULT_RED, 0.0f);
  EXPECT_EQ(GlColor::DEFAULT_GREEN, 0.0f);
  EXPECT_EQ(GlColor::DEFAULT_BLUE, 0.0f);
  EXPECT_EQ(GlColor::DEFAULT_ALPHA, 1.0f);
  EXPECT_EQ(GlColor(), GlColor(0, 0, 0, 1));
}

TEST(GlColor, ConstructorKeepsWhatIsOutOfRange) {
  EXPECT_EQ(GlColor(2, 0, 0, 1).GetRed(), 2.0f);
  EXPECT_EQ(GlColor(0, -3, 0, 7).GetGreen(), -3.0f);
  EXPECT_EQ(GlColor(0, -3, 0, 7).GetAlpha(), 7.0f);
}

TEST(GlColor, SettersClamp) {
  GlColor color;
  color.SetRed(2.0f);
  EXPECT_EQ(color.GetRed(), 1.0f);
  color.SetRed(-1.0f);
  EXPECT_EQ(color.GetRed(), 0.0f);
  color.SetGreen(1.5f);
  color.SetBlue(ENDLESS);
  color.SetAlpha(-ENDLESS);
  EXPECT_EQ(color, GlColor(0, 1, 1, 0));
  float const belowOne = std::nextafter(1.0f, 0.0f);
  float const aboveZero = std::nextafter(0.0f, 1.0f);
  color.SetGreen(belowOne);
  color.SetBlue(aboveZero);
  EXPECT_EQ(color, GlColor(0, belowOne, aboveZero, 0));
}

TEST(GlColor, SettersTakeNotANumberAsZero) {
  GlColor color(1, 1, 1, 1);
  color.SetRed(NOT_A_NUMBER);
  color.SetGreen(NOT_A_NUMBER);
  color.SetBlue(NOT_A_NUMBER);
  color.SetAlpha(NOT_A_NUMBER);
  EXPECT_EQ(color, GlColor(0, 0, 0, 0));
}

TEST(GlColor, EqualityIsExactInAllFourChannels) {
  GlColor const color(0.1f, 0.2f, 0.3f, 0.4f);
  EXPECT_TRUE(color == GlColor(0.1f, 0.2f, 0.3f, 0.4f));
  EXPECT_FALSE(color != GlColor(0.1f, 0.2f, 0.3f, 0.4f));
  EXPECT_TRUE(color != GlColor(std::nextafter(0.1f, 1.0f), 0.2f, 0.3f, 0.4f));
  EXPECT_TRUE(color != GlColor(0.1f, std::nextafter(0.2f, 1.0f), 0.3f, 0.4f));
  EXPECT_TRUE(color != GlColor(0.1f, 0.2f, std::nextafter(0.3f, 1.0f), 0.4f));
  EXPECT_TRUE(color != GlColor(0.1f, 0.2f, 0.3f, std::nextafter(0.4f, 1.0f)));
}

TEST(GlColor, HasNamedColours) {
  EXPECT_EQ(GlColor::GLC_BLACK, GlColor(0, 0, 0, 1));
  EXPECT_EQ(GlColor::GLC_BLUE, GlColor(0, 0, 1, 1));
  EXPECT_EQ(GlColor::GLC_CYAN, GlColor(0, 1, 1, 1));
  EXPECT_EQ(GlColor::GLC_DARKGRAY, GlColor(0.25f, 0.25f, 0.25f, 1));
  EXPECT_EQ(GlColor::GLC_GRAY, GlColor(0.5f, 0.5f, 0.5f, 1));
  EXPECT_EQ(GlColor::GLC_GREEN, GlColor(0, 1, 0, 1));
  EXPECT_EQ(GlColor::GLC_LIGHTGRAY, GlColor(0.75f, 0.75f, 0.75f, 1));
  EXPECT_EQ(GlColor::GLC_MAGENTA, GlColor(1, 0, 1, 1));
  EXPECT_EQ(GlColor::GLC_ORANGE, GlColor(1, 0.7812f, 0, 1));
  EXPECT_EQ(GlColor::GLC_PINK, GlColor(1, 0.6836f, 0.6836f, 1));
  EXPECT_EQ(GlColor::GLC_RED, GlColor(1, 0, 0, 1));
  EXPECT_EQ(GlColor::GLC_WHITE, GlColor(1, 1, 1, 1));
  EXPECT_EQ(GlColor::GLC_YELLOW, GlColor(1, 1, 0, 1));
}

TEST(GlColor, NamedColoursCanBeOverwritten) {
  GlColor const pink = GlColor::GLC_PINK;
  GlColor::GLC_PINK.SetGreen(0.5f);
  EXPECT_EQ(GlColor::GLC_PINK, GlColor(1, 0.5f, 0.6836f, 1));
  GlColor::GLC_PINK = pink;
  EXPECT_EQ(GlColor::GLC_PINK, GlColor(1, 0.6836f, 0.6836f, 1));
}

// --- Hue, saturation, value ---------------------------------------------------------------------

TEST(GlColor, HueRunsThroughTheSixSectors) {
  EXPECT_EQ(FromHSV(0.0f, 1.0f, 1.0f), GlColor::GLC_RED);
  EXPECT_EQ(FromHSV(0.5f, 1.0f, 1.0f), GlColor::GLC_CYAN);
  EXPECT_EQ(FromHSV(0.25f, 1.0f, 1.0f), GlColor(0.5f, 1, 0, 1));
  EXPECT_EQ(FromHSV(0.75f, 1.0f, 1.0f), GlColor(0.5f, 0, 1, 1));
  EXPECT_EQ(FromHSV(0.0625f, 1.0f, 1.0f), GlColor(1, 0.375f, 0, 1));
  EXPECT_EQ(FromHSV(0.4375f, 1.0f, 1.0f), GlColor(0, 1, 0.625f, 1));
  EXPECT_EQ(FromHSV(0.5625f, 1.0f, 1.0f), GlColor(0, 0.625f, 1, 1));
  EXPECT_EQ(FromHSV(0.9375f, 1.0f, 1.0f), GlColor(1, 0, 0.375f, 1));
}

TEST(GlColor, HueOneIsHueZero) {
  EXPECT_EQ(FromHSV(1.0f, 1.0f, 1.0f), FromHSV(0.0f, 1.0f, 1.0f));
  EXPECT_EQ(FromHSV(1.0f, 1.0f, 1.0f), GlColor(1, 0, 0, 1));
}

TEST(GlColor, HueOutsideItsRangeIsBlack) {
  GlColor const black(0, 0, 0, 1);
  for (float const h :
       {std::nextafter(1.0f, 2.0f), 2.0f, 1e30f, ENDLESS, -0.01f, -1e30f, -ENDLESS, NOT_A_NUMBER}) {
    EXPECT_EQ(FromHSV(h, 0.5f, 1.0f), black) << h;
  }
}

TEST(GlColor, WithoutSaturationValueIsTheGray) {
  EXPECT_EQ(FromHSV(0.3f, 0.0f, 0.625f), GlColor(0.625f, 0.625f, 0.625f, 1));
}

TEST(GlColor, HueKeepsAlpha) {
  GlColor color(0, 0, 0, 0.25f);
  color.SetHSV(0.0f, 1.0f, 1.0f);
  EXPECT_EQ(color, GlColor(1, 0, 0, 0.25f));
}

float Clamped(float channel) { return channel > 0.0f ? std::fmin(channel, 1.0f) : 0.0f; }

GlColor HSVByFormula(float h, float s, float v) {
  if (h == 1.0f) h = 0.0f;
  float const x = static_cast<float>(double{h} * 6);
  double const i = std::floor(double{x});
  double const f = x - i;
  float const p = static_cast<float>((1 - double{s}) * v);
  float const q = static_cast<float>((1 - s * f) * v);
  float const t = static_cast<float>((1 - (1 - f) * s) * v);
  float r = 0, g = 0, b = 0;
  if (i == 0) r = v, g = t, b = p;
  if (i == 1) r = q, g = v, b = p;
  if (i == 2) r = p, g = v, b = t;
  if (i == 3) r = p, g = q, b = v;
  if (i == 4) r = t, g = p, b = v;
  if (i == 5) r = v, g = p, b = q;
  return {Clamped(r), Clamped(g), Clamped(b), 1.0f};
}

TEST(GlColor, HueFollowsItsFormulaOnRandomValues) {
  FormulaInputs in;
  for (int i = 0; i < 5000; ++i) {
    double const margin = i % 4 == 0 ? 0.5 : 0.0;
    auto const h = static_cast<float>(in.Between(-margin, 1.0 + margin));
    auto const s = static_cast<float>(in.Between(-margin, 1.0 + margin));
    auto const v = static_cast<float>(in.Between(-margin, 1.0 + margin));
    EXPECT_EQ(FromHSV(h, s, v), HSVByFormula(h, s, v)) << h << ' ' << s << ' ' << v;
  }
}

// --- Gray ---------------------------------------------------------------------------------------

TEST(GlColor, GrayScaleLeavesAGrayAlone) {
  GlColor gray = GlColor::GLC_GRAY;
  EXPECT_FALSE(gray.ColorToGrayScale());
  EXPECT_EQ(gray, GlColor::GLC_GRAY);
  GlColor bright(7, 7, 7, 0.5f);
  EXPECT_FALSE(bright.ColorToGrayScale());
  EXPECT_EQ(bright, GlColor(7, 7, 7, 0.5f));
}

TEST(GlColor, GrayScaleOfRedIsThreeTenths) {
  GlColor red = GlColor::GLC_RED;
  EXPECT_TRUE(red.ColorToGrayScale());
  EXPECT_EQ(red, GlColor(0.3f, 0.3f, 0.3f, 1));
}

TEST(GlColor, GrayScaleKeepsAlphaAndClamps) {
  GlColor color(9, 0, 0, 0.125f);
  EXPECT_TRUE(color.ColorToGrayScale());
  EXPECT_EQ(color, GlColor(1, 1, 1, 0.125f));
  GlColor dark(-9, 0, 0, 0.125f);
  EXPECT_TRUE(dark.ColorToGrayScale());
  EXPECT_EQ(dark, GlColor(0, 0, 0, 0.125f));
}

TEST(GlColor, GrayScaleOfNotANumberIsBlack) {
  GlColor color(NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER, 1);
  EXPECT_TRUE(color.ColorToGrayScale());
  EXPECT_EQ(color, GlColor(0, 0, 0, 1));
}

TEST(GlColor, GrayScaleIsComputedInDoublePrecision) {
  FormulaInputs in;
  for (int i = 0; i < 5000; ++i) {
    GlColor color(static_cast<float>(in.Between(0, 1)), static_cast<float>(in.Between(0, 1)),
                  static_cast<float>(in.Between(0, 1)), 0.5f);
    double const sum = 0.3 * color.GetRed() + 0.59 * color.GetGreen() + 0.11 * color.GetBlue();
    auto const gray = static_cast<float>(sum);
    EXPECT_TRUE(color.ColorToGrayScale());
    EXPECT_EQ(color, GlColor(gray, gray, gray, 0.5f));
  }
}

}  // namespace
