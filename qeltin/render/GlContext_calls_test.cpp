#include "qeltin/render/GlContext.h"

#include <string>
#include <string_view>

#include "qeltin/render/GlLight.h"
#include "qeltin/render/GlViewer.h"
#include "testing/GlPeer.h"
#include "testing/gl/RecordedDrawing.h"

namespace {

using qeltin::testing::Append;
using qeltin::testing::GlCalls;
using qeltin::testing::GlPeer;
using qeltin::testing::RecordedDrawing;
using qeltin::testing::RecordGlCall;
using qeltin::testing::RecordingWindow;
using qeltin::testing::TakeGlCalls;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using GlContextCalls = RecordedDrawing;

// What construction asks once there is a context, current or not.
GlCalls HintsAndLimits() {
  return {"glHint(GL_LINE_SMOOTH_HINT, GL_FASTEST)",
          "glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_FASTEST)",
          "glHint(GL_POINT_SMOOTH_HINT, GL_FASTEST)",
          "glHint(GL_POLYGON_SMOOTH_HINT, GL_FASTEST)",
          "glGetFloatv(GL_POINT_SIZE_RANGE)",
          "glGetFloatv(GL_POINT_SIZE_GRANULARITY)",
          "glGetFloatv(GL_LINE_WIDTH_RANGE)",
          "glGetFloatv(GL_LINE_WIDTH_GRANULARITY)"};
}

// Puts what construction asks after the window has been asked for its surface and format.
GlCalls Opened(GlCalls const& then) {
  GlCalls calls = {"GetDC()", "ChoosePixelFormat(40, 1, 4133, 0, 24, 16)", "SetPixelFormat(1)"};
  Append(calls, then);
  return calls;
}

TEST_F(GlContextCalls, ConstructionAsksInThisOrder) {
  GlContext context(&m_Window, 24, 16);
  GlCalls expected = Opened({"CreateContext()", "MakeCurrent(context)", "glewInit()"});
  Append(expected, HintsAndLimits());
  expected.push_back("MakeCurrent(null)");
  EXPECT_THAT(TakeGlCalls(), ElementsAreArray(expected));
  EXPECT_TRUE(GlPeer::IsGlewReady(context));
  EXPECT_NE(context.GetDC(), nullptr);
  EXPECT_NE(context.GetRC(), nullptr);
  EXPECT_EQ(context.GetWindow(), &m_Window);
  EXPECT_EQ(context.GetPalette(), nullptr);
}

TEST_F(GlContextCalls, ConstructionSetsTheLimitsOfTheProcess) {
  GlPeer::DrawingLimits() = {};
  GlContext const context(&m_Window, 24, 16);
  auto const& limits = GlPeer::DrawingLimits();
  EXPECT_EQ(limits.minPointSize, qeltin::testing::RECORDED_POINT_SIZES[0]);
  EXPECT_EQ(limits.maxPointSize, qeltin::testing::RECORDED_POINT_SIZES[1]);
  EXPECT_EQ(limits.pointSizeStep, qeltin::testing::RECORDED_POINT_SIZE_STEP);
  EXPECT_EQ(limits.minLineWidth, qeltin::testing::RECORDED_LINE_WIDTHS[0]);
  EXPECT_EQ(limits.maxLineWidth, qeltin::testing::RECORDED_LINE_WIDTHS[1]);
  EXPECT_EQ(limits.lineWidthStep, qeltin::testing::RECORDED_LINE_WIDTH_STEP);
}

struct WindowWithoutContext : RecordingWindow {
  WindowWithoutContext() : RecordingWindow(1, 1) {}
  RenderingContext* CreateContext() override {
    RecordGlCall("CreateContext()");
    return nullptr;
  }
};

TEST_F(GlContextCalls, ConstructionGoesOnWithoutARenderingContext) {
  WindowWithoutContext window;
  GlContext context(&window, 24, 16);
  GlCalls expected = Opened({"CreateContext()"});
  Append(expected, HintsAndLimits());
  expected.push_back("MakeCurrent(null)");
  EXPECT_THAT(TakeGlCalls(), ElementsAreArray(expected));
  EXPECT_FALSE(GlPeer::IsGlewReady(context));
  EXPECT_EQ(context.GetRC(), nullptr);
}

struct WindowThatStaysUnbound : RecordingWindow {
  WindowThatStaysUnbound() : RecordingWindow(1, 1) {}
  bool MakeCurrent(RenderingContext* context) override {
    RecordGlCall(context == nullptr ? "MakeCurrent(null)" : "MakeCurrent(context)");
    return false;
  }
};

TEST_F(GlContextCalls, ConstructionGoesOnWhereTheContextIsNotMadeCurrent) {
  WindowThatStaysUnbound window;
  GlContext const context(&window, 24, 16);
  GlCalls expected = Opened({"CreateContext()", "MakeCurrent(context)"});
  Append(expected, HintsAndLimits());
  expected.push_back("MakeCurrent(null)");
  EXPECT_THAT(TakeGlCalls(), ElementsAreArray(expected));
  EXPECT_FALSE(GlPeer::IsGlewReady(context));
}

// All of the window system's operations, as the recording surface writes them.
bool IsOfTheWindow(std::string_view call) { return !call.starts_with("gl"); }

void ExpectNoWindow(HWND window) {
  TakeGlCalls();
  {
    GlContext context(window, 24, 16);
    EXPECT_EQ(context.GetWindow(), window);
    EXPECT_EQ(context.GetDC(), nullptr);
    EXPECT_EQ(context.GetRC(), nullptr);
    EXPECT_FALSE(GlPeer::IsGlewReady(context));
    GlViewer* const viewer = context.CreateViewer();
    context.OnSize(30, 20);
    EXPECT_EQ(context.GetViewportWidth(), 30);
    context.BeginDraw();
    context.BeginDrawViewer(viewer);
    context.EndDrawViewer(viewer);
    context.EndDraw();
  }
  for (std::string const& call : TakeGlCalls()) EXPECT_FALSE(IsOfTheWindow(call)) << call;
}

TEST_F(GlContextCalls, NullWindowIsNotDrawnOn) { ExpectNoWindow(nullptr); }

TEST_F(GlContextCalls, MereMessageTargetIsNotDrawnOn) {
  MessageTarget target;
  ExpectNoWindow(&target);
}

TEST_F(GlContextCalls, DestructionDeletesTheContextAndThenGivesTheSurfaceBack) {
  {
    GlContext context(&m_Window, 24, 16);
    context.CreateViewer();
    context.CreateLight();
    TakeGlCalls();
  }
  EXPECT_THAT(TakeGlCalls(), ElementsAre("DeleteContext()", "ReleaseDC()"));
}

TEST_F(GlContextCalls, FrameBracketClearsNothing) {
  m_Context.SetBackgroundColor(GlColor(0.25f, 0.5f, 0.75f, 0.125f));
  m_Context.BeginDraw();
  EXPECT_THAT(TakeGlCalls(),
              ElementsAre("MakeCurrent(context)", "glClearColor(0.25, 0.5, 0.75, 0.125)",
                          "glEnable(GL_DEPTH_TEST)"));
  m_Context.EndDraw();
  EXPECT_THAT(TakeGlCalls(), ElementsAre("SwapBuffers()", "MakeCurrent(null)"));
}

TEST_F(GlContextCalls, DepthTestIsSwitchedAtTheNextFrame) {
  m_Context.BeginDraw();
  TakeGlCalls();
  m_Context.EnableDepth(false);
  EXPECT_THAT(TakeGlCalls(), IsEmpty());
  m_Context.EndDraw();
  m_Context.BeginDraw();
  EXPECT_EQ(TakeGlCalls().back(), "glDisable(GL_DEPTH_TEST)");
  m_Context.EndDraw();
}

TEST_F(GlContextCalls, ViewportIsSetWithTheContextCurrent) {
  m_Context.SetViewport(640, 0);
  GlCalls const expected = {"MakeCurrent(context)", "glViewport(0, 0, 640, 1)",
                            "MakeCurrent(null)"};
  EXPECT_EQ(TakeGlCalls(), expected);
  m_Context.OnSize(640, 0);
  EXPECT_EQ(TakeGlCalls(), expected);
}

struct OpenContext : GlContext {
  using GlContext::GlContext;
  using GlContext::ReleaseCurrentRC;
  using GlContext::SetRCAsCurrent;
  using GlContext::UpdateViewport;
};

TEST_F(GlContextCalls, NotedViewportTouchesNoGl) {
  OpenContext context(&m_Window, 24, 16);
  TakeGlCalls();
  context.UpdateViewport(0, 7);
  EXPECT_EQ(context.GetViewportWidth(), 1);
  EXPECT_EQ(context.GetViewportHeight(), 7);
  EXPECT_THAT(TakeGlCalls(), IsEmpty());
}

TEST_F(GlContextCalls, DerivedContextMayMakeGlCurrentWithoutAFrame) {
  OpenContext context(&m_Window, 24, 16);
  TakeGlCalls();
  context.SetRCAsCurrent();
  context.ReleaseCurrentRC();
  EXPECT_THAT(TakeGlCalls(), ElementsAre("MakeCurrent(context)", "MakeCurrent(null)"));
}

TEST_F(GlContextCalls, PaletteEventsAskNothing) {
  m_Context.OnQueryNewPalette();
  m_Context.OnPaletteChanged();
  EXPECT_THAT(TakeGlCalls(), IsEmpty());
}

// What a viewer is set up with, apart from lighting.
class GlContextViewerCalls : public GlContextCalls {
 protected:
  GlContextViewerCalls() : m_pViewer(m_Context.CreateViewer()) {
    GlCoord cs;
    cs.SetOrigin(TPoint(1, 2, 3));
    m_pViewer->SetCS(cs);
    cs.ResetRC(&m_Context);
    m_Camera = TakeGlCalls();
  }

  GlCalls Begin(GlViewer* viewer) {
    m_Context.BeginDrawViewer(viewer);
    return TakeGlCalls();
  }

  GlCalls End(GlViewer* viewer) {
    m_Context.EndDrawViewer(viewer);
    return TakeGlCalls();
  }

  GlCalls Expected(GlCalls const& lighting) {
    GlCalls calls = {"glMatrixMode(GL_PROJECTION)", "glLoadIdentity()"};
    GlPeer::SetProjection(*m_pViewer, &m_Context);
    Append(calls, TakeGlCalls());
    Append(calls, {"glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()"});
    Append(calls, lighting);
    Append(calls, m_Camera);
    return calls;
  }

  static GlCalls Lit(std::string const& ambient) {
    return {"glEnable(GL_LIGHTING)", "glEnable(GL_COLOR_MATERIAL)",
            "glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE)",
            "glLightModelfv(GL_LIGHT_MODEL_AMBIENT, " + ambient + ")"};
  }

  GlViewer* m_pViewer;
  GlCalls m_Camera;
};

TEST_F(GlContextViewerCalls, ViewerIsSetUpInThisOrder) {
  EXPECT_EQ(Begin(m_pViewer), Expected(Lit("0.2, 0.2, 0.2, 1")));
}

TEST_F(GlContextViewerCalls, LightsStandInListOrderAheadOfTheCamera) {
  GlLight* const first = m_Context.CreateLight();
  GlLight* const second = m_Context.CreateLight();
  GlCoord cs;
  cs.SetOrigin(TPoint(4, 5, 6));
  second->SetCS(cs);
  first->Enable(false);
  GlCalls lighting = Lit("0.2, 0.2, 0.2, 1");
  Append(lighting, {"glDisable(GL_LIGHT0)", "glEnable(GL_LIGHT1)", "glMatrixMode(GL_MODELVIEW)",
                    "glPushMatrix()", "glTranslated(4, 5, 6)", "glRotated(0, 1, 0, 0)",
                    "glRotated(0, 0, 1, 0)", "glRotated(0, 0, 0, 1)",
                    "glLightfv(GL_LIGHT1, GL_POSITION, 0, 0, 1, 0)",
                    "glLightfv(GL_LIGHT1, GL_AMBIENT, 0.5, 0.5, 0.5, 1)",
                    "glLightfv(GL_LIGHT1, GL_DIFFUSE, 0.5, 0.5, 0.5, 1)",
                    "glLightfv(GL_LIGHT1, GL_SPECULAR, 1, 1, 1, 1)", "glPopMatrix()"});
  EXPECT_EQ(Begin(m_pViewer), Expected(lighting));
}

TEST_F(GlContextViewerCalls, NoLightIsSetUpWithoutLighting) {
  m_Context.CreateLight();
  m_Context.EnableLighting(false);
  EXPECT_EQ(Begin(m_pViewer), Expected({"glDisable(GL_LIGHTING)"}));
}

TEST_F(GlContextViewerCalls, AmbientLightIsBlackWhileItIsOff) {
  m_Context.SetAmbientLight(GlColor(0.25f, 0.5f, 0.75f, 0.5f));
  m_Context.EnableAmbientLight(false);
  EXPECT_EQ(Begin(m_pViewer), Expected(Lit("0, 0, 0, 1")));
  EXPECT_EQ(m_Context.GetAmbientLight(), GlColor(0.25f, 0.5f, 0.75f, 0.5f));
  m_Context.EnableAmbientLight(true);
  EXPECT_EQ(Begin(m_pViewer), Expected(Lit("0.25, 0.5, 0.75, 0.5")));
}

TEST_F(GlContextViewerCalls, NullViewerIsIgnored) {
  EXPECT_THAT(Begin(nullptr), IsEmpty());
  EXPECT_THAT(End(nullptr), IsEmpty());
}

TEST_F(GlContextViewerCalls, NewViewerEndsWithoutAFrame) {
  EXPECT_THAT(End(m_pViewer), ElementsAre("glFlush()"));
}

TEST_F(GlContextViewerCalls, FrameNeedsAllOfItsThreeStates) {
  m_pViewer->EnableState(GlViewer::VIEWER_CLIP);
  GlPeer::DrawFrame(*m_pViewer, &m_Context);
  GlCalls framed = TakeGlCalls();
  EXPECT_THAT(framed, Contains("glBegin(GL_LINES)"));
  framed.push_back("glFlush()");
  EXPECT_EQ(End(m_pViewer), framed);
  for (int const state : {0x01, 0x04, 0x10}) {
    m_pViewer->DisableState(state);
    EXPECT_THAT(End(m_pViewer), ElementsAre("glFlush()")) << state;
    m_pViewer->EnableState(state);
  }
}

TEST_F(GlContextCalls, PrimitivesAreOneCallEach) {
  GlContext const& context = m_Context;
  context.BeginDrawPoints();
  context.BeginDrawLines();
  context.BeginDrawLineStrip();
  context.BeginDrawLineLoop();
  context.BeginDrawTriangles();
  context.BeginDrawTriangleStrip();
  context.BeginDrawTriangleFan();
  context.BeginDrawQuads();
  context.BeginDrawQuadStrip();
  context.BeginDrawPolygon();
  context.EndDrawVertices();
  EXPECT_THAT(
      TakeGlCalls(),
      ElementsAre("glBegin(GL_POINTS)", "glBegin(GL_LINES)", "glBegin(GL_LINE_STRIP)",
                  "glBegin(GL_LINE_LOOP)", "glBegin(GL_TRIANGLES)", "glBegin(GL_TRIANGLE_STRIP)",
                  "glBegin(GL_TRIANGLE_FAN)", "glBegin(GL_QUADS)", "glBegin(GL_QUAD_STRIP)",
                  "glBegin(GL_POLYGON)", "glEnd()"));
}

TEST_F(GlContextCalls, VerticesAreNarrowedToSinglePrecision) {
  m_Context.Vertex(TPoint(0.1, 1e-50, 16777217));
  m_Context.Vertex(0.1, -0.1, 0.2);
  m_Context.Vertex(0.1f, -0.1f, 0.2f);
  m_Context.Vertex(1e10, 0.3);
  m_Context.Vertex(1.5f, 0.3f);
  m_Context.SetVertexNormal(TPoint(0.1, 0.2, -1));
  m_Context.SetVertexEdgeFlag(true);
  m_Context.SetVertexEdgeFlag(false);
  EXPECT_THAT(
      TakeGlCalls(),
      ElementsAre("glVertex3f(0.1, 0, 16777216)", "glVertex3f(0.1, -0.1, 0.2)",
                  "glVertex3f(0.1, -0.1, 0.2)", "glVertex2f(1e+10, 0.3)", "glVertex2f(1.5, 0.3)",
                  "glNormal3f(0.1, 0.2, -1)", "glEdgeFlag(1)", "glEdgeFlag(0)"));
}

TEST_F(GlContextCalls, VertexColourDropsItsAlpha) {
  m_Context.SetVertexColor(GlColor(0.25f, 2, -1, 0.5f));
  EXPECT_THAT(TakeGlCalls(), ElementsAre("glColor3f(0.25, 2, -1)"));
}

TEST_F(GlContextCalls, PushedMatrixBeginsAsTheIdentity) {
  m_Context.PushProjectionMatrix();
  m_Context.PushModelviewMatrix();
  m_Context.PopProjectionMatrix();
  m_Context.PopModelviewMatrix();
  EXPECT_THAT(TakeGlCalls(),
              ElementsAre("glMatrixMode(GL_PROJECTION)", "glPushMatrix()", "glLoadIdentity()",
                          "glMatrixMode(GL_MODELVIEW)", "glPushMatrix()", "glLoadIdentity()",
                          "glMatrixMode(GL_PROJECTION)", "glPopMatrix()",
                          "glMatrixMode(GL_MODELVIEW)", "glPopMatrix()"));
}

TEST_F(GlContextCalls, PushedLightAttributeSwitchesLightingOff) {
  m_Context.PushLightAttribute();
  m_Context.PopLightAttribute();
  EXPECT_THAT(TakeGlCalls(), ElementsAre("glPushAttrib(GL_LIGHTING_BIT)", "glDisable(GL_LIGHTING)",
                                         "glPopAttrib()"));
}

TEST_F(GlContextCalls, CompiledListIsCompiledOnlyAndDrawnByItsNumber) {
  int const id = m_Context.BeginCompileList();
  m_Context.EndCompileList();
  std::string const number = std::to_string(id);
  EXPECT_THAT(TakeGlCalls(),
              ElementsAre("glGenLists(1)", "glNewList(" + number + ", GL_COMPILE)", "glEndList()"));
  EXPECT_TRUE(m_Context.DrawCompiledList(id));
  EXPECT_THAT(TakeGlCalls(), ElementsAre("glIsList(" + number + ")", "glCallList(" + number + ")"));
  m_Context.DeleteCompiledList(id);
  EXPECT_THAT(TakeGlCalls(), ElementsAre("glDeleteLists(" + number + ", 1)"));
  EXPECT_FALSE(m_Context.DrawCompiledList(id));
  EXPECT_THAT(TakeGlCalls(), ElementsAre("glIsList(" + number + ")"));
}

TEST_F(GlContextCalls, List1281IsRefusedWithoutAskingGl) {
  EXPECT_FALSE(m_Context.DrawCompiledList(1281));
  EXPECT_THAT(TakeGlCalls(), IsEmpty());
  EXPECT_FALSE(m_Context.DrawCompiledList(1282));
  EXPECT_THAT(TakeGlCalls(), ElementsAre("glIsList(1282)"));
}

TEST_F(GlContextCalls, DeletingList0DoesNothing) {
  m_Context.DeleteCompiledList(0);
  EXPECT_THAT(TakeGlCalls(), IsEmpty());
}

}  // namespace
