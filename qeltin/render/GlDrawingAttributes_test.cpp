#include "qeltin/render/GlDrawingAttributes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "testing/GlPeer.h"
#include "testing/gl/OffscreenDrawing.h"

namespace {

using namespace qeltin::testing;
using Mode = GlDrawingAttributes::eDrawMode;

// Taken before any test, and so before any context.
bool const pointSizeWasTakenAtFirst = GlDrawingAttributes().SetPointSize(1.0f);
bool const lineWidthWasTakenAtFirst = GlDrawingAttributes().SetLineWidth(1.0f);
float const pointSizeStepAtFirst = GlDrawingAttributes::GetPointSizeStep();
float const lineWidthStepAtFirst = GlDrawingAttributes::GetLineWidthStep();

// Sets the limits of the process, and sets them back.
class WithLimits : public testing::Test {
 protected:
  WithLimits() { GlPeer::DrawingLimits() = {0.5f, 20.0f, 0.125f, 1.0f, 8.0f, 0.25f}; }
  ~WithLimits() override { GlPeer::DrawingLimits() = m_Before; }

 private:
  GlPeer::Limits m_Before = GlPeer::DrawingLimits();
};
using GlDrawingAttributesTest = WithLimits;

TEST_F(GlDrawingAttributesTest, HaveTheirDefaults) {
  GlDrawingAttributes const attributes;
  EXPECT_EQ(attributes.GetPointSize(), 1.0f);
  EXPECT_EQ(attributes.GetLineStipplePattern(), 0xFFFF);
  EXPECT_EQ(attributes.GetLineStippleFactor(), 1);
  EXPECT_EQ(attributes.GetLineWidth(), 1.0f);
  EXPECT_EQ(attributes.GetColor(), GlColor(0.5f, 0.5f, 0.5f, 1.0f));
  for (int bit = 1; bit < 0x100; bit <<= 1) {
    EXPECT_EQ(attributes.HasDrawMode(static_cast<Mode>(bit)), bit == 0x40) << bit;
  }
  EXPECT_EQ(GlDrawingAttributes::DEFAULT_POINT_SIZE, 1.0f);
  EXPECT_EQ(GlDrawingAttributes::DEFAULT_LINE_STIPPLE_PATTERN, 0xFFFF);
  EXPECT_EQ(GlDrawingAttributes::DEFAULT_LINE_STIPPLE_FACTOR, 1);
  EXPECT_EQ(GlDrawingAttributes::DEFAULT_LINE_WIDTH, 1.0f);
  EXPECT_EQ(GlDrawingAttributes::DEFAULT_COLOR, GlColor(0.5f, 0.5f, 0.5f, 1.0f));
  EXPECT_EQ(GlDrawingAttributes::DEFAULT_DRAW_MODE, 0x40);
}

TEST_F(GlDrawingAttributesTest, DrawModesAreTheseBits) {
  EXPECT_EQ(GlDrawingAttributes::FRONT_LINE, 0x02);
  EXPECT_EQ(GlDrawingAttributes::BACK_LINE, 0x04);
  EXPECT_EQ(GlDrawingAttributes::FRONT_POINT, 0x08);
  EXPECT_EQ(GlDrawingAttributes::BACK_POINT, 0x10);
  EXPECT_EQ(GlDrawingAttributes::CULL_FRONT, 0x20);
  EXPECT_EQ(GlDrawingAttributes::CULL_BACK, 0x40);
  EXPECT_EQ(GlDrawingAttributes::BLEND, 0x80);
}

TEST_F(GlDrawingAttributesTest, CompareFieldByField) {
  GlDrawingAttributes const plain;
  GlDrawingAttributes other = plain;
  EXPECT_TRUE(other == plain);
  EXPECT_FALSE(other != plain);
  EXPECT_TRUE(other.SetPointSize(2.0f));
  EXPECT_TRUE(other != plain);
  other.SetToDefault();
  EXPECT_TRUE(other == plain);
  EXPECT_TRUE(other.SetLineWidth(2.0f));
  EXPECT_TRUE(other != plain);
  other = plain;
  EXPECT_TRUE(other == plain);
  other.SetLineStipplePattern(0xFFFE);
  EXPECT_TRUE(other != plain);
  other = plain;
  EXPECT_TRUE(other.SetLineStippleFactor(2));
  EXPECT_TRUE(other != plain);
  other = plain;
  other.SetColor(GlColor(0.5f, 0.5f, 0.5f, 0.5f));
  EXPECT_TRUE(other != plain);
  other = plain;
  other.EnableDrawMode(GlDrawingAttributes::BLEND);
  EXPECT_TRUE(other != plain);
  other.SetToDefault();
  EXPECT_TRUE(other == plain);
}

TEST_F(GlDrawingAttributesTest, SizesAreRefusedBeforeThereIsAContext) {
  EXPECT_FALSE(pointSizeWasTakenAtFirst);
  EXPECT_FALSE(lineWidthWasTakenAtFirst);
  EXPECT_EQ(pointSizeStepAtFirst, 0.0f);
  EXPECT_EQ(lineWidthStepAtFirst, 0.0f);
}

TEST_F(GlDrawingAttributesTest, LimitsAreThoseOfTheLatestContext) {
  float min = -1.0f;
  float max = -1.0f;
  GlDrawingAttributes::GetPointSizeLimits(min, max);
  EXPECT_EQ(min, 0.5f);
  EXPECT_EQ(max, 20.0f);
  EXPECT_EQ(GlDrawingAttributes::GetPointSizeStep(), 0.125f);
  GlDrawingAttributes::GetLineWidthLimits(min, max);
  EXPECT_EQ(min, 1.0f);
  EXPECT_EQ(max, 8.0f);
  EXPECT_EQ(GlDrawingAttributes::GetLineWidthStep(), 0.25f);
}

TEST_F(GlDrawingAttributesTest, SizesWithinTheLimitsAreTaken) {
  GlDrawingAttributes attributes;
  EXPECT_TRUE(attributes.SetPointSize(0.5f));
  EXPECT_EQ(attributes.GetPointSize(), 0.5f);
  EXPECT_TRUE(attributes.SetPointSize(20.0f));
  EXPECT_EQ(attributes.GetPointSize(), 20.0f);
  EXPECT_TRUE(attributes.SetLineWidth(1.0f));
  EXPECT_TRUE(attributes.SetLineWidth(8.0f));
  EXPECT_EQ(attributes.GetLineWidth(), 8.0f);
}

TEST_F(GlDrawingAttributesTest, SizesOutsideTheLimitsAreRefused) {
  GlDrawingAttributes attributes;
  EXPECT_FALSE(attributes.SetPointSize(std::nextafter(0.5f, 0.0f)));
  EXPECT_FALSE(attributes.SetPointSize(std::nextafter(20.0f, 99.0f)));
  EXPECT_FALSE(attributes.SetPointSize(std::numeric_limits<float>::quiet_NaN()));
  EXPECT_EQ(attributes.GetPointSize(), 1.0f);
  EXPECT_FALSE(attributes.SetLineWidth(std::nextafter(1.0f, 0.0f)));
  EXPECT_FALSE(attributes.SetLineWidth(std::nextafter(8.0f, 99.0f)));
  EXPECT_EQ(attributes.GetLineWidth(), 1.0f);
}

TEST_F(GlDrawingAttributesTest, StippleFactorIsRefusedBelowOne) {
  GlDrawingAttributes attributes;
  EXPECT_FALSE(attributes.SetLineStippleFactor(0));
  EXPECT_FALSE(attributes.SetLineStippleFactor(-1));
  EXPECT_EQ(attributes.GetLineStippleFactor(), 1);
  EXPECT_TRUE(attributes.SetLineStippleFactor(2147483647));
  EXPECT_EQ(attributes.GetLineStippleFactor(), 2147483647);
}

TEST_F(GlDrawingAttributesTest, DrawModeIsFoundIfAnyOfItsBitsIsSet) {
  GlDrawingAttributes attributes;
  Mode const either = GlDrawingAttributes::FRONT_LINE | GlDrawingAttributes::BLEND;
  EXPECT_FALSE(attributes.HasDrawMode(either));
  attributes.EnableDrawMode(GlDrawingAttributes::FRONT_LINE);
  EXPECT_TRUE(attributes.HasDrawMode(either));
  EXPECT_FALSE(attributes.HasDrawMode(GlDrawingAttributes::BLEND));
  attributes.DisableDrawMode(GlDrawingAttributes::FRONT_LINE);
  EXPECT_FALSE(attributes.HasDrawMode(either));
  attributes.EnableDrawMode(either);
  EXPECT_TRUE(attributes.HasDrawMode(GlDrawingAttributes::FRONT_LINE));
  EXPECT_TRUE(attributes.HasDrawMode(GlDrawingAttributes::BLEND));
  EXPECT_TRUE(attributes.HasDrawMode(GlDrawingAttributes::CULL_BACK));
}

// --- What is seen -------------------------------------------------------------------------------

class GlDrawingAttributesPicture : public OffscreenDrawing {
 protected:
  // Returns what a front looks like that is drawn with the attributes alone.
  Rgb ColorWith(GlDrawingAttributes const& attributes) {
    Picture const picture = Draw([&] {
      attributes.SetRC(&m_Context);
      EmitSquare(WIDTH);
    });
    return picture.At(WIDTH / 2, HEIGHT / 2);
  }
};

TEST_F(GlDrawingAttributesPicture, TransparentColourIsMixedWithWhatIsBehind) {
  m_Context.SetBackgroundColor(GlColor(0, 0, 1, 1));
  GlDrawingAttributes attributes;
  attributes.SetColor(GlColor(1, 0, 0, 0.4f));
  EXPECT_EQ(ColorWith(attributes), RED);  // without the bit
  attributes.EnableDrawMode(GlDrawingAttributes::BLEND);
  EXPECT_EQ(ColorWith(attributes), (Rgb{102, 0, 153}));
}

TEST_F(GlDrawingAttributesPicture, SidesAreCulledByTheirBits) {
  GlDrawingAttributes attributes;
  attributes.SetColor(GlColor::GLC_RED);
  EXPECT_EQ(ColorWith(attributes), RED);
  attributes.DisableDrawMode(GlDrawingAttributes::CULL_BACK);
  attributes.EnableDrawMode(GlDrawingAttributes::CULL_FRONT);
  EXPECT_EQ(ColorWith(attributes), BLACK);
  attributes.EnableDrawMode(GlDrawingAttributes::CULL_BACK);
  EXPECT_EQ(ColorWith(attributes), RED);
}

}  // namespace
