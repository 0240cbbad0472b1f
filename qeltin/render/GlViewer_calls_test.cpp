#include "qeltin/render/GlViewer.h"
#include "testing/GlPeer.h"
#include "testing/gl/RecordedDrawing.h"

namespace {

using qeltin::testing::GlCall;
using qeltin::testing::GlCalls;
using qeltin::testing::GlPeer;
using qeltin::testing::TakeGlCalls;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class GlViewerCalls : public qeltin::testing::RecordedDrawing {
 protected:
  GlCalls Projection() {
    GlPeer::SetProjection(m_Viewer, &m_Context);
    return TakeGlCalls();
  }

  GlCalls Frame() {
    GlPeer::DrawFrame(m_Viewer, &m_Context);
    return TakeGlCalls();
  }

  GlViewer m_Viewer = GlPeer::MakeViewer();
};

TEST_F(GlViewerCalls, NewViewerFillsTheWindow) {
  EXPECT_THAT(Projection(), ElementsAre("glDisable(GL_SCISSOR_TEST)", "glViewport(0, 0, 400, 100)",
                                        "glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT)",
                                        "gluPerspective(27, 4, 0.5, 10000)"));
}

TEST_F(GlViewerCalls, ClippedViewerHasItsRectangleAsViewport) {
  m_Viewer.EnableState(GlViewer::VIEWER_CLIP);
  EXPECT_THAT(Projection(), ElementsAre("glEnable(GL_SCISSOR_TEST)", "glScissor(10, 10, 150, 100)",
                                        "glViewport(10, 10, 150, 100)",
                                        "glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT)",
                                        "gluPerspective(27, 1.5, 0.5, 10000)"));
}

TEST_F(GlViewerCalls, ClippedViewerWithoutItsViewportKeepsThatOfTheWindow) {
  m_Viewer.EnableState(GlViewer::VIEWER_CLIP);
  m_Viewer.DisableState(GlViewer::VIEWER_CLIP_VIEWPORT);
  EXPECT_THAT(Projection(), ElementsAre("glEnable(GL_SCISSOR_TEST)", "glScissor(10, 10, 150, 100)",
                                        "glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT)",
                                        "gluPerspective(27, 1.5, 0.5, 10000)"));
}

TEST_F(GlViewerCalls, AspectStretchesTheRatioOfThePlace) {
  m_Viewer.EnableState(GlViewer::VIEWER_CLIP);
  EXPECT_TRUE(m_Viewer.SetClipRectangle(1, 2, 100, 30));
  EXPECT_TRUE(m_Viewer.SetEyeAspect(0.7));
  EXPECT_TRUE(m_Viewer.SetEyeFovy(44.5));
  EXPECT_TRUE(m_Viewer.SetEyeZNearAndFar(2, 3));
  EXPECT_EQ(Projection().back(), GlCall("gluPerspective", 44.5, 100.0 / 30.0 * 0.7, 2.0, 3.0));
}

GlCalls FrameCalls(double a, double b) {
  GlCalls calls = {"glMatrixMode(GL_PROJECTION)",
                   "glPushMatrix()",
                   "glLoadIdentity()",
                   "glMatrixMode(GL_MODELVIEW)",
                   "glPushMatrix()",
                   "glLoadIdentity()",
                   "glLineWidth(2)",
                   "glColor3fv(0.25, 0.5, 0.75)",
                   "glBegin(GL_LINES)"};
  double const corners[8][2] = {{a, a}, {b, a}, {b, a}, {b, b}, {b, b}, {a, b}, {a, b}, {a, a}};
  for (auto const& corner : corners) {
    calls.push_back(
        GlCall("glVertex3f", static_cast<float>(corner[0]), static_cast<float>(corner[1]), 0.0f));
  }
  calls.insert(calls.end(), {"glEnd()", "glMatrixMode(GL_PROJECTION)", "glPopMatrix()",
                             "glMatrixMode(GL_MODELVIEW)", "glPopMatrix()"});
  return calls;
}

TEST_F(GlViewerCalls, FrameIsFourLinesOnTheEdge) {
  m_Viewer.EnableState(GlViewer::VIEWER_CLIP);
  m_Viewer.SetFrameColor(GlColor(0.25f, 0.5f, 0.75f, 0.5f));
  EXPECT_EQ(Frame(), FrameCalls(1, -1));
}

TEST_F(GlViewerCalls, InsetFrameIsAHundredthInside) {
  m_Viewer.EnableState(GlViewer::VIEWER_CLIP | GlViewer::VIEWER_FRAME_INSET);
  m_Viewer.SetFrameColor(GlColor(0.25f, 0.5f, 0.75f, 0.5f));
  EXPECT_EQ(Frame(), FrameCalls(0.98, -0.98));
}

TEST_F(GlViewerCalls, FrameNeedsTheClipRectangle) {
  EXPECT_TRUE(m_Viewer.HasState(GlViewer::VIEWER_FRAME));
  EXPECT_FALSE(m_Viewer.HasState(GlViewer::VIEWER_CLIP));
  EXPECT_THAT(Frame(), IsEmpty());
  m_Viewer.EnableState(GlViewer::VIEWER_CLIP);
  m_Viewer.DisableState(GlViewer::VIEWER_FRAME);
  EXPECT_THAT(Frame(), IsEmpty());
}

TEST_F(GlViewerCalls, FrameIsDrawnByItselfWithoutVIEWER_SHOW) {
  m_Viewer.EnableState(GlViewer::VIEWER_CLIP);
  m_Viewer.DisableState(GlViewer::VIEWER_SHOW);
  EXPECT_THAT(Frame(), Contains("glBegin(GL_LINES)"));
}

TEST_F(GlViewerCalls, ContextDrawsTheFrameOfAViewerWithAllThreeStates) {
  for (int const missing : {0, 0x01, 0x04, 0x10}) {
    GlViewer* const viewer = m_Context.CreateViewer();
    viewer->EnableState(0x01 | 0x04 | 0x10);
    viewer->DisableState(missing);
    TakeGlCalls();
    m_Context.EndDrawViewer(viewer);
    GlCalls const calls = TakeGlCalls();
    if (missing == 0) {
      EXPECT_THAT(calls, Contains("glBegin(GL_LINES)"));
    } else {
      EXPECT_THAT(calls, Not(Contains("glBegin(GL_LINES)"))) << missing;
    }
    EXPECT_EQ(calls.back(), "glFlush()");
  }
}

}  // namespace
