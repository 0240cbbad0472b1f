#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "qeltin/render/GlDrawingAttributes.h"
#include "testing/GlPeer.h"
#include "testing/gl/RecordingGl.h"

namespace {

using qeltin::testing::GlCall;
using qeltin::testing::GlCalls;
using qeltin::testing::GlPeer;
using qeltin::testing::TakeGlCalls;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using Mode = GlDrawingAttributes::eDrawMode;

GlCalls CallsOf(GlDrawingAttributes const& attributes) {
  TakeGlCalls();
  attributes.SetRC(nullptr);
  return TakeGlCalls();
}

TEST(GlDrawingAttributesCalls, DefaultsAreAppliedInOrder) {
  EXPECT_THAT(CallsOf(GlDrawingAttributes()),
              ElementsAre("glFrontFace(GL_CCW)", "glShadeModel(GL_SMOOTH)",
                          "glPolygonMode(GL_FRONT, GL_FILL)", "glPolygonMode(GL_BACK, GL_FILL)",
                          "glEnable(GL_CULL_FACE)", "glCullFace(GL_BACK)", "glDisable(GL_BLEND)",
                          "glPointSize(1)", "glDisable(GL_LINE_STIPPLE)", "glLineWidth(1)",
                          "glColor4fv(0.5, 0.5, 0.5, 1)"));
}

TEST(GlDrawingAttributesCalls, EverythingElseIsAppliedInTheSameOrder) {
  GlPeer::DrawingLimits() = {1.0f, 10.0f, 1.0f, 1.0f, 10.0f, 1.0f};
  GlDrawingAttributes attributes;
  attributes.DisableDrawMode(GlDrawingAttributes::CULL_BACK);
  attributes.EnableDrawMode(GlDrawingAttributes::FRONT_LINE | GlDrawingAttributes::BACK_POINT |
                            GlDrawingAttributes::CULL_FRONT | GlDrawingAttributes::BLEND);
  attributes.SetPointSize(2.5f);
  attributes.SetLineWidth(3.5f);
  attributes.SetLineStipplePattern(0x0F0F);
  attributes.SetLineStippleFactor(300);
  attributes.SetColor(GlColor(0.1f, 0.2f, 0.3f, 0.4f));
  EXPECT_THAT(CallsOf(attributes),
              ElementsAre("glFrontFace(GL_CCW)", "glShadeModel(GL_SMOOTH)",
                          "glPolygonMode(GL_FRONT, GL_LINE)", "glPolygonMode(GL_BACK, GL_POINT)",
                          "glEnable(GL_CULL_FACE)", "glCullFace(GL_FRONT)", "glEnable(GL_BLEND)",
                          "glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA)", "glPointSize(2.5)",
                          "glEnable(GL_LINE_STIPPLE)", "glLineStipple(300, 3855)",
                          "glLineWidth(3.5)", "glColor4fv(0.1, 0.2, 0.3, 0.4)"));
}

TEST(GlDrawingAttributesCalls, BackIsCulledWhereBothSidesAreAskedFor) {
  GlDrawingAttributes attributes;
  attributes.EnableDrawMode(GlDrawingAttributes::CULL_FRONT | GlDrawingAttributes::CULL_BACK);
  EXPECT_THAT(CallsOf(attributes), Contains("glCullFace(GL_BACK)"));
  EXPECT_THAT(CallsOf(attributes), Not(Contains("glCullFace(GL_FRONT)")));
}

TEST(GlDrawingAttributesCalls, NothingIsCulledWithoutItsBits) {
  GlDrawingAttributes attributes;
  attributes.DisableDrawMode(GlDrawingAttributes::CULL_BACK);
  EXPECT_THAT(CallsOf(attributes), Contains("glDisable(GL_CULL_FACE)"));
}

TEST(GlDrawingAttributesCalls, OpaqueColourIsNotBlended) {
  GlDrawingAttributes attributes;
  attributes.EnableDrawMode(GlDrawingAttributes::BLEND);
  attributes.SetColor(GlColor(1, 0, 0, 1));
  EXPECT_THAT(CallsOf(attributes), Contains("glDisable(GL_BLEND)"));
  EXPECT_THAT(CallsOf(attributes), Not(Contains("glEnable(GL_BLEND)")));
}

TEST(GlDrawingAttributesCalls, TransparentColourIsNotBlendedWithoutTheBit) {
  GlDrawingAttributes attributes;
  attributes.SetColor(GlColor(1, 0, 0, 0.5f));
  EXPECT_THAT(CallsOf(attributes), Contains("glDisable(GL_BLEND)"));
}

TEST(GlDrawingAttributesCalls, WholePatternIsNoStippleWhateverTheFactor) {
  GlDrawingAttributes attributes;
  EXPECT_TRUE(attributes.SetLineStippleFactor(7));
  EXPECT_THAT(CallsOf(attributes), Contains("glDisable(GL_LINE_STIPPLE)"));
  attributes.SetLineStipplePattern(0xFFFE);
  EXPECT_THAT(CallsOf(attributes), Contains("glLineStipple(7, 65534)"));
}

std::string Drawn(int mode, int line, int point) {
  if ((mode & line) != 0) return "GL_LINE";
  return (mode & point) != 0 ? "GL_POINT" : "GL_FILL";
}

TEST(GlDrawingAttributesCalls, EveryModeIsAppliedByItsRules) {
  for (int mode = 0; mode < 0x100; ++mode) {
    for (float const alpha : {1.0f, 0.5f}) {
      GlDrawingAttributes attributes;
      attributes.DisableDrawMode(static_cast<Mode>(0xFF));
      attributes.EnableDrawMode(static_cast<Mode>(mode));
      attributes.SetColor(GlColor(0, 0, 0, alpha));
      GlCalls expected = {"glFrontFace(GL_CCW)", "glShadeModel(GL_SMOOTH)",
                          "glPolygonMode(GL_FRONT, " + Drawn(mode, 0x02, 0x08) + ")",
                          "glPolygonMode(GL_BACK, " + Drawn(mode, 0x04, 0x10) + ")"};
      bool const culls = (mode & 0x60) != 0;
      expected.push_back(culls ? "glEnable(GL_CULL_FACE)" : "glDisable(GL_CULL_FACE)");
      if (culls) {
        expected.push_back((mode & 0x40) != 0 ? "glCullFace(GL_BACK)" : "glCullFace(GL_FRONT)");
      }
      bool const blends = (mode & 0x80) != 0 && alpha < 1.0f;
      expected.push_back(blends ? "glEnable(GL_BLEND)" : "glDisable(GL_BLEND)");
      if (blends) expected.push_back("glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA)");
      expected.push_back("glPointSize(1)");
      expected.push_back("glDisable(GL_LINE_STIPPLE)");
      expected.push_back("glLineWidth(1)");
      expected.push_back(GlCall("glColor4fv", 0.0f, 0.0f, 0.0f, alpha));
      EXPECT_EQ(CallsOf(attributes), expected) << mode << ' ' << alpha;
    }
  }
}

}  // namespace
