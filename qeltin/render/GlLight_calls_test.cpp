#include "qeltin/render/GlLight.h"

#include <memory>

#include "testing/GlPeer.h"
#include "testing/gl/RecordedDrawing.h"

namespace {

using qeltin::testing::GlCalls;
using qeltin::testing::GlPeer;
using qeltin::testing::TakeGlCalls;
using testing::ElementsAre;
using testing::IsEmpty;

class GlLightCalls : public qeltin::testing::RecordedDrawing {
 protected:
  GlCalls CallsOf(GlPeer::Light& light) {
    TakeGlCalls();
    light.SetRC(&m_Context);
    return TakeGlCalls();
  }
};

TEST_F(GlLightCalls, LightIsPlacedInItsFrameAndThenColoured) {
  GlPeer::Light light;
  GlCoord cs;
  cs.SetOrigin(TPoint(1, 2, 3));
  light.SetCS(cs);
  light.SetAmbientLight(GlColor(0.1f, 0.2f, 0.3f, 0.4f));
  light.SetDiffuseLight(GlColor(0.5f, 0.6f, 0.7f, 0.8f));
  light.SetSpecularLight(GlColor(0.9f, 1, 0, 1));
  EXPECT_THAT(CallsOf(light),
              ElementsAre("glEnable(GL_LIGHT0)", "glMatrixMode(GL_MODELVIEW)", "glPushMatrix()",
                          "glTranslated(1, 2, 3)", "glRotated(0, 1, 0, 0)", "glRotated(0, 0, 1, 0)",
                          "glRotated(0, 0, 0, 1)", "glLightfv(GL_LIGHT0, GL_POSITION, 0, 0, 1, 0)",
                          "glLightfv(GL_LIGHT0, GL_AMBIENT, 0.1, 0.2, 0.3, 0.4)",
                          "glLightfv(GL_LIGHT0, GL_DIFFUSE, 0.5, 0.6, 0.7, 0.8)",
                          "glLightfv(GL_LIGHT0, GL_SPECULAR, 0.9, 1, 0, 1)", "glPopMatrix()"));
}

TEST_F(GlLightCalls, DisabledLightIsSwitchedOffAndKeepsItsNumber) {
  GlPeer::Light first;
  GlPeer::Light second;
  second.Enable(false);
  EXPECT_THAT(CallsOf(second), ElementsAre("glDisable(GL_LIGHT1)"));
  GlPeer::Light third;
  EXPECT_EQ(CallsOf(third).front(), "glEnable(GL_LIGHT2)");
}

TEST_F(GlLightCalls, NinthLightStaysDarkUntilAnotherIsGone) {
  auto first = std::make_unique<GlPeer::Light>();
  GlPeer::Light others[7];
  GlPeer::Light ninth;
  EXPECT_THAT(CallsOf(ninth), IsEmpty());
  EXPECT_EQ(CallsOf(others[6]).front(), "glEnable(GL_LIGHT7)");
  first.reset();
  EXPECT_EQ(CallsOf(ninth).front(), "glEnable(GL_LIGHT0)");
}

TEST_F(GlLightCalls, NinthLightThatIsDisabledTakesTheFreedNumberToo) {
  auto first = std::make_unique<GlPeer::Light>();
  GlPeer::Light others[7];
  GlPeer::Light ninth;
  ninth.Enable(false);
  first.reset();
  EXPECT_THAT(CallsOf(ninth), ElementsAre("glDisable(GL_LIGHT0)"));
}

TEST_F(GlLightCalls, CopiedLightTakesANumberAtItsFirstFrame) {
  GlPeer::Light light;
  GlPeer::Light copy(light);
  EXPECT_EQ(CallsOf(copy).front(), "glEnable(GL_LIGHT1)");
  EXPECT_EQ(CallsOf(copy).front(), "glEnable(GL_LIGHT1)");
}

TEST_F(GlLightCalls, LightOfASecondContextHasTheNextNumber) {
  qeltin::testing::RecordingWindow window(10, 10);
  GlContext other(&window, 24, 24);
  m_Context.CreateLight();
  other.CreateLight();
  GlViewer* const viewer = other.CreateViewer();
  TakeGlCalls();
  other.BeginDrawViewer(viewer);
  EXPECT_THAT(TakeGlCalls(), testing::Contains("glEnable(GL_LIGHT1)"));
}

}  // namespace
