#include "qeltin/render/GlLines.h"

#include <vector>

#include "qeltin/products/TPolygon.h"
#include "testing/gl/RecordedDrawing.h"

namespace {

using qeltin::testing::GlCalls;
using testing::ElementsAre;

class GlLinesCalls : public qeltin::testing::RecordedDrawing {
 protected:
  TPolygon m_Ends{std::vector<TPoint>{TPoint(1, 2, 12), TPoint(3, 4, 0.25), TPoint(5, 6, -7)}};
};

TEST_F(GlLinesCalls, PointsAreEmittedInTheirOwnColour) {
  GlLines drawable(&m_Ends);
  EXPECT_THAT(CallsOf(drawable, 1),
              ElementsAre("glBegin(GL_LINES)", "glColor3f(1, 0.5, 0)", "glVertex3f(1, 2, 12)",
                          "glColor3f(1, 0.5, 0)", "glVertex3f(3, 4, 0.25)", "glColor3f(1, 0.5, 0)",
                          "glVertex3f(5, 6, -7)", "glEnd()"));
  drawable.SetColor(GlColor(0.1f, 0.2f, 0.3f, 0.4f));
  EXPECT_EQ(CallsOf(drawable, 1)[1], "glColor3f(0.1, 0.2, 0.3)");
}

TEST_F(GlLinesCalls, HeightIsExaggeratedAboutZeroWhateverTheReferenceHeight) {
  m_Context.SetRefZ(10);
  GlLines drawable(&m_Ends);
  GlCalls const calls = CallsOf(drawable, 2);
  EXPECT_EQ(calls[2], "glVertex3f(1, 2, 24)");
  EXPECT_EQ(calls[4], "glVertex3f(3, 4, 0.5)");
}

TEST_F(GlLinesCalls, AttributesAreAppliedWithoutPointsToo) {
  TPolygon const nothing;
  GlLines drawable(&nothing);
  EXPECT_THAT(CallsOf(drawable, 1), ElementsAre("glBegin(GL_LINES)", "glEnd()"));
}

TEST_F(GlLinesCalls, CopyDrawsTheSameLines) {
  GlLines drawable(&m_Ends);
  drawable.SetColor(GlColor::GLC_CYAN);
  drawable.GetDrawingAttributes()->SetLineStipplePattern(0x00FF);
  GlLines const copy(drawable);
  GlLines assigned(nullptr);
  assigned = copy;
  EXPECT_EQ(*assigned.GetDrawingAttributes(), *drawable.GetDrawingAttributes());
  EXPECT_EQ(CallsOf(assigned, 3), CallsOf(drawable, 3));
}

}  // namespace
