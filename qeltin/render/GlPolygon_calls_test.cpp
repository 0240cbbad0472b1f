#include "qeltin/render/GlPolygon.h"

#include <vector>

#include "qeltin/products/TPolygon.h"
#include "testing/gl/RecordedDrawing.h"

namespace {

using qeltin::testing::GlCall;
using qeltin::testing::GlCalls;
using qeltin::testing::MetreTable;
using qeltin::testing::TakeGlCalls;
using testing::ElementsAre;
using testing::IsEmpty;

class GlPolygonCalls : public qeltin::testing::RecordedDrawing {
 protected:
  GlPolygonCalls() { m_Context.SetColorTable(MetreTable()); }

  TPolygon m_Line{std::vector<TPoint>{TPoint(1, 2, 51), TPoint(3, 4, 102), TPoint(5, 6, 204)}};
};

TEST_F(GlPolygonCalls, LineHasTheColourOfItsFirstPoint) {
  GlPolygon drawable(&m_Line);
  EXPECT_THAT(CallsOf(drawable, 1),
              ElementsAre("glBegin(GL_LINE_STRIP)", "glColor3f(0.2, 0.8, 0.39215687)",
                          "glVertex3f(1, 2, 51)", "glColor3f(0.2, 0.8, 0.39215687)",
                          "glVertex3f(3, 4, 102)", "glColor3f(0.2, 0.8, 0.39215687)",
                          "glVertex3f(5, 6, 204)", "glEnd()"));
}

TEST_F(GlPolygonCalls, HeightIsExaggeratedAboutTheReferenceHeightInItsTrueColour) {
  m_Context.SetRefZ(50);
  GlPolygon drawable(&m_Line);
  GlCalls const calls = CallsOf(drawable, 2);
  EXPECT_EQ(calls[1], "glColor3f(0.2, 0.8, 0.39215687)");
  EXPECT_EQ(calls[2], "glVertex3f(1, 2, 52)");
  EXPECT_EQ(calls[4], "glVertex3f(3, 4, 154)");
}

TEST_F(GlPolygonCalls, InvertedColourIsTheComplement) {
  ColorTable table;
  table.AddStop(0, ColorTable::MakeColor(51, 102, 255));
  m_Context.SetColorTable(table);
  GlPolygon drawable(&m_Line);
  EXPECT_FALSE(drawable.GetInvertColors());
  EXPECT_EQ(CallsOf(drawable, 1)[1], "glColor3f(0.2, 0.4, 1)");
  drawable.SetInvertColors(true);
  EXPECT_TRUE(drawable.GetInvertColors());
  EXPECT_EQ(CallsOf(drawable, 1)[1], GlCall("glColor3f", 1.0f - 0.2f, 1.0f - 0.4f, 0.0f));
  EXPECT_EQ(CallsOf(drawable, 1)[5], GlCall("glColor3f", 1.0f - 0.2f, 1.0f - 0.4f, 0.0f));
}

TEST_F(GlPolygonCalls, EmptyPolygonLeavesGlAlone) {
  TPolygon const nothing;
  GlPolygon drawable(&nothing);
  drawable.Draw(&m_Context, 1);
  EXPECT_THAT(TakeGlCalls(), IsEmpty());
}

TEST_F(GlPolygonCalls, SinglePointIsALineOfOneVertex) {
  TPolygon const point(std::vector<TPoint>{TPoint(1, 2, 0)});
  GlPolygon drawable(&point);
  EXPECT_THAT(CallsOf(drawable, 1),
              ElementsAre("glBegin(GL_LINE_STRIP)", "glColor3f(0, 1, 0.39215687)",
                          "glVertex3f(1, 2, 0)", "glEnd()"));
}

TEST_F(GlPolygonCalls, CopyDrawsTheSamePolygon) {
  GlPolygon drawable(&m_Line);
  drawable.SetInvertColors(true);
  drawable.GetDrawingAttributes()->SetLineStipplePattern(0x00FF);
  GlPolygon const copy(drawable);
  GlPolygon assigned(nullptr);
  assigned = copy;
  EXPECT_TRUE(assigned.GetInvertColors());
  EXPECT_EQ(*assigned.GetDrawingAttributes(), *drawable.GetDrawingAttributes());
  EXPECT_EQ(CallsOf(assigned, 1), CallsOf(drawable, 1));
}

}  // namespace
