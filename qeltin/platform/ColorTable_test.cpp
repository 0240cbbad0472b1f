#include "qeltin/platform/ColorTable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double HIGHEST = std::numeric_limits<double>::max();

TEST(ColorTable, KeepsRedInTheLowByte) {
  EXPECT_EQ(ColorTable::MakeColor(0x12, 0x34, 0x56), 0x563412u);
}

TEST(ColorTable, WithoutStopsHasOneColour) {
  ColorTable const table;
  EXPECT_EQ(table.GetColor(-5), ColorTable::NO_COLOR);
  EXPECT_EQ(table.GetColor(INF), ColorTable::NO_COLOR);
}

TEST(ColorTable, GoesOverInAStraightLineChannelByChannel) {
  ColorTable table;
  table.AddStop(10, ColorTable::MakeColor(0, 100, 255));
  table.AddStop(20, ColorTable::MakeColor(200, 100, 0));
  EXPECT_EQ(table.GetColor(10), ColorTable::MakeColor(0, 100, 255));
  EXPECT_EQ(table.GetColor(12.5), ColorTable::MakeColor(50, 100, 191));  // 191.25
  EXPECT_EQ(table.GetColor(15), ColorTable::MakeColor(100, 100, 128));   // 127.5
  EXPECT_EQ(table.GetColor(20), ColorTable::MakeColor(200, 100, 0));
}

TEST(ColorTable, StaysBeyondTheEnds) {
  ColorTable table;
  table.AddStop(10, 0x000011);
  table.AddStop(20, 0x220000);
  for (double const below : {9.999, -HIGHEST, -INF}) EXPECT_EQ(table.GetColor(below), 0x000011u);
  for (double const above : {20.001, HIGHEST, INF}) EXPECT_EQ(table.GetColor(above), 0x220000u);
}

TEST(ColorTable, HasNoColourForWhatIsNotANumber) {
  ColorTable table;
  table.AddStop(0, 0x123456);
  EXPECT_EQ(table.GetColor(NOT_A_NUMBER), ColorTable::NO_COLOR);
  EXPECT_EQ(table.GetColor(-NOT_A_NUMBER), ColorTable::NO_COLOR);
}

TEST(ColorTable, TakesStopsInAnyOrder) {
  ColorTable table;
  table.AddStop(20, 0x140000);
  table.AddStop(0, 0x000000);
  table.AddStop(10, 0x00000A);
  ASSERT_EQ(table.GetStops().size(), 3u);
  EXPECT_EQ(table.GetStops()[1].height, 10);
  EXPECT_EQ(table.GetColor(5), 0x000005u);
  EXPECT_EQ(table.GetColor(15), 0x0A0005u);
  table.RemoveAllStops();
  EXPECT_EQ(table.GetColor(5), ColorTable::NO_COLOR);
}

TEST(ColorTable, StepsAtTwoStopsOfOneHeight) {
  ColorTable table;
  table.AddStop(0, 0x0000FF);
  table.AddStop(0, 0x00FF00);
  EXPECT_EQ(table.GetColor(-1e-300), 0x0000FFu);
  EXPECT_EQ(table.GetColor(0), 0x00FF00u);
  EXPECT_EQ(table.GetColor(1e-300), 0x00FF00u);
}

TEST(ColorTable, RefusesStopsAtNoHeight) {
  ColorTable table;
  for (double const height : {NOT_A_NUMBER, INF, -INF}) EXPECT_FALSE(table.AddStop(height, 0));
  EXPECT_TRUE(table.GetStops().empty());
}

TEST(ColorTable, DropsWhatIsAboveTheBlue) {
  ColorTable table;
  table.AddStop(0, 0xFF123456);
  EXPECT_EQ(table.GetColor(0), 0x123456u);
}

TEST(ColorTable, StaysBetweenItsStopsWhereTheRangeOverflows) {
  ColorTable table;
  table.AddStop(-HIGHEST, 0x000000);
  table.AddStop(HIGHEST, 0x0000FF);
  for (double const height : {-HIGHEST, -1.0, 0.0, 1e307, HIGHEST}) {
    EXPECT_LE(table.GetColor(height), 0xFFu) << height;
  }
  ColorTable narrow;
  narrow.AddStop(0, 0x000000);
  narrow.AddStop(std::numeric_limits<double>::denorm_min(), 0x0000FF);
  EXPECT_EQ(narrow.GetColor(0), 0u);
  EXPECT_EQ(narrow.GetColor(1e-323), 0xFFu);
}

// What is seen of a colour: red, green and blue light, and the lightness L* of CIE 1976 (sRGB).
struct Light {
  double red, green, blue;

  static double Linear(unsigned int channel) {
    double const c = channel / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  }

  explicit Light(std::uint32_t color)
      : red(Linear(color & 0xFF)), green(Linear(color >> 8 & 0xFF)), blue(Linear(color >> 16)) {}
  Light(double r, double g, double b) : red(r), green(g), blue(b) {}

  // As seen without the red or the green cones: Machado, Oliveira and Fernandes, A physiologically-
  // based model for simulation of color vision deficiency (IEEE TVCG 15, 2009).
  Light WithoutRedCones() const {
    return {0.152286 * red + 1.052583 * green - 0.204868 * blue,
            0.114503 * red + 0.786281 * green + 0.099216 * blue,
            -0.003882 * red - 0.048116 * green + 1.051998 * blue};
  }
  Light WithoutGreenCones() const {
    return {0.367322 * red + 0.860646 * green - 0.227968 * blue,
            0.280085 * red + 0.672501 * green + 0.047413 * blue,
            -0.011820 * red + 0.042940 * green + 0.968881 * blue};
  }

  double Lightness() const {
    double const y = 0.2126729 * red + 0.7151522 * green + 0.0721750 * blue;
    return y > 216.0 / 24389 ? 116 * std::cbrt(y) - 16 : y * 24389 / 27;
  }
};

struct NamedRamp {
  std::string name;
  std::function<ColorTable(double, double)> make;
};

class ColorRamp : public testing::TestWithParam<NamedRamp> {};

TEST_P(ColorRamp, SpansTheRange) {
  ColorTable const ramp = GetParam().make(-30.25, 12.5);
  EXPECT_EQ(ramp.GetStops().front().height, -30.25);
  EXPECT_EQ(ramp.GetStops().back().height, 12.5);
}

TEST_P(ColorRamp, StandsOnItsHeadFromHighToLow) {
  ColorTable const upright = GetParam().make(0, 8);
  ColorTable const reversed = GetParam().make(8, 0);
  for (double const height : {0.0, 1.0, 2.5, 4.0, 8.0}) {
    EXPECT_EQ(reversed.GetColor(height), upright.GetColor(8 - height)) << height;
  }
}

TEST_P(ColorRamp, IsAStepWithoutARange) {
  ColorTable const flat = GetParam().make(3, 3);
  ColorTable const ramp = GetParam().make(0, 1);
  EXPECT_EQ(flat.GetColor(2.99), ramp.GetColor(0));
  EXPECT_EQ(flat.GetColor(3), ramp.GetColor(1));
}

TEST_P(ColorRamp, HasNoStopsWithoutAFiniteRange) {
  EXPECT_TRUE(GetParam().make(0, INF).GetStops().empty());
  EXPECT_TRUE(GetParam().make(NOT_A_NUMBER, 0).GetStops().empty());
}

TEST_P(ColorRamp, RisesInLightnessInEvenSteps) {
  ColorTable const ramp = GetParam().make(0, 32);
  auto const lightness = [&](double height) { return Light(ramp.GetColor(height)).Lightness(); };
  double const step = (lightness(32) - lightness(0)) / 32;
  EXPECT_GT(step, 2);
  for (int i = 0; i < 32; ++i) EXPECT_NEAR(lightness(i + 1) - lightness(i), step, step / 5) << i;
}

TEST_P(ColorRamp, RisesInLightnessForTheColourBlind) {
  ColorTable const ramp = GetParam().make(0, 32);
  for (int i = 0; i < 32; ++i) {
    Light const low(ramp.GetColor(i));
    Light const high(ramp.GetColor(i + 1));
    EXPECT_GT(high.WithoutRedCones().Lightness(), low.WithoutRedCones().Lightness() + 1) << i;
    EXPECT_GT(high.WithoutGreenCones().Lightness(), low.WithoutGreenCones().Lightness() + 1) << i;
  }
}

INSTANTIATE_TEST_SUITE_P(All, ColorRamp,
                         testing::Values(NamedRamp{"Bathymetry", ColorTable::Bathymetry},
                                         NamedRamp{"Terrain", ColorTable::Terrain},
                                         NamedRamp{"Grey", ColorTable::Grey}),
                         [](auto const& named) { return named.param.name; });

}  // namespace
