#include "qeltin/render/GlContext.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <limits>
#include <memory>
#include <thread>
#include <type_traits>

#include "qeltin/render/GlDrawingAttributes.h"
#include "qeltin/render/GlLight.h"
#include "testing/GlPeer.h"
#include "testing/gl/OffscreenDrawing.h"

namespace {

using qeltin::testing::BLACK;
using qeltin::testing::BLUE;
using qeltin::testing::GlPeer;
using qeltin::testing::GREEN;
using qeltin::testing::OffscreenDrawing;
using qeltin::testing::Picture;
using qeltin::testing::RED;
using qeltin::testing::Rgb;
using qeltin::testing::WHITE;

// What needs no GL: a context without a window.
class GlContextState : public testing::Test {
 protected:
  GlContext m_Context{nullptr, 24, 24};
};

TEST_F(GlContextState, HasItsDefaults) {
  EXPECT_EQ(GlContext::DEFAULT_BACKGROUND_COLOR, GlColor(0, 0, 0, 1));
  EXPECT_EQ(GlContext::DEFAULT_LIGHT_MODEL_AMBIENT_LIGHT, GlColor(0.2f, 0.2f, 0.2f, 1));
  EXPECT_EQ(m_Context.GetBackgroundColor(), GlContext::DEFAULT_BACKGROUND_COLOR);
  EXPECT_EQ(m_Context.GetAmbientLight(), GlContext::DEFAULT_LIGHT_MODEL_AMBIENT_LIGHT);
  EXPECT_EQ(m_Context.RefZ(), 0);
  EXPECT_TRUE(m_Context.GetColorTable().GetStops().empty());
  EXPECT_TRUE(m_Context.IsDepthEnabled());
  EXPECT_TRUE(m_Context.IsLightingEnabled());
  EXPECT_TRUE(m_Context.IsAmbientLightEnabled());
  EXPECT_EQ(m_Context.GetViewportWidth(), 1);
  EXPECT_EQ(m_Context.GetViewportHeight(), 1);
  EXPECT_EQ(m_Context.GetNumberOfViewers(), 0);
  EXPECT_EQ(m_Context.GetNumberOfLights(), 0);
  EXPECT_EQ(m_Context.GetRC(), nullptr);
  EXPECT_EQ(m_Context.GetDC(), nullptr);
  EXPECT_EQ(m_Context.GetWindow(), nullptr);
  EXPECT_EQ(m_Context.GetPalette(), nullptr);
}

TEST_F(GlContextState, KeepsWhatItIsSetTo) {
  m_Context.SetRefZ(-12.5);
  m_Context.EnableDepth(false);
  m_Context.EnableLighting(false);
  m_Context.EnableAmbientLight(false);
  m_Context.SetAmbientLight(GlColor(2, 0, 0, 1));
  m_Context.SetBackgroundColor(GlColor(0, -1, 0, 0));
  EXPECT_EQ(m_Context.RefZ(), -12.5);
  EXPECT_FALSE(m_Context.IsDepthEnabled());
  EXPECT_FALSE(m_Context.IsLightingEnabled());
  EXPECT_FALSE(m_Context.IsAmbientLightEnabled());
  EXPECT_EQ(m_Context.GetAmbientLight(), GlColor(2, 0, 0, 1));
  EXPECT_EQ(m_Context.GetBackgroundColor(), GlColor(0, -1, 0, 0));
}

TEST_F(GlContextState, CopiesTheColourTable) {
  GlColorTable table;
  table.AddStop(0, 0x0000FF);
  m_Context.SetColorTable(table);
  table.AddStop(0, 0x00FF00);
  EXPECT_EQ(m_Context.GetColorTable().GetColor(0), 0x0000FFu);
}

TEST_F(GlContextState, ViewportOfNoSizeIsOnePixel) {
  m_Context.SetViewport(0, 0);
  EXPECT_EQ(m_Context.GetViewportWidth(), 1);
  EXPECT_EQ(m_Context.GetViewportHeight(), 1);
  m_Context.OnSize(0, 20);
  EXPECT_EQ(m_Context.GetViewportWidth(), 1);
  EXPECT_EQ(m_Context.GetViewportHeight(), 20);
  m_Context.SetViewport(-4, 3);
  EXPECT_EQ(m_Context.GetViewportWidth(), -4);
}

TEST_F(GlContextState, HasOneVirtualOperation) {
  EXPECT_TRUE(std::has_virtual_destructor_v<GlContext>);
  EXPECT_FALSE(std::is_copy_constructible_v<GlContext>);
}

TEST_F(GlContextState, GivesViewersInTheOrderOfTheirCreation) {
  GlViewer* const first = m_Context.CreateViewer();
  GlViewer* const second = m_Context.CreateViewer();
  EXPECT_EQ(m_Context.GetNumberOfViewers(), 2);
  EXPECT_EQ(m_Context.GetViewer(0), first);
  EXPECT_EQ(m_Context.GetViewer(1), second);
}

TEST_F(GlContextState, HasNoViewerOrLightOutOfRange) {
  m_Context.CreateViewer();
  m_Context.CreateLight();
  for (int const index : {-1, 1, 2, std::numeric_limits<int>::min()}) {
    EXPECT_EQ(m_Context.GetViewer(index), nullptr) << index;
    EXPECT_EQ(m_Context.GetLight(index), nullptr) << index;
  }
}

TEST_F(GlContextState, DestroysTheViewerThatIsAskedFor) {
  GlViewer* const first = m_Context.CreateViewer();
  GlViewer* const second = m_Context.CreateViewer();
  GlViewer* const third = m_Context.CreateViewer();
  m_Context.DestroyViewer(second);
  ASSERT_EQ(m_Context.GetNumberOfViewers(), 2);
  EXPECT_EQ(m_Context.GetViewer(0), first);
  EXPECT_EQ(m_Context.GetViewer(1), third);
}

TEST_F(GlContextState, LeavesAViewerAloneThatIsNotListed) {
  GlContext other(nullptr, 24, 24);
  GlViewer* const foreign = other.CreateViewer();
  m_Context.CreateViewer();
  m_Context.DestroyViewer(foreign);
  m_Context.DestroyViewer(nullptr);
  EXPECT_EQ(m_Context.GetNumberOfViewers(), 1);
  EXPECT_EQ(other.GetViewer(0), foreign);
  EXPECT_EQ(foreign->GetEyeFovy(), 27.0);
}

TEST_F(GlContextState, DestroysLightsInTheOrderOfTheirCreation) {
  GlLight* const first = m_Context.CreateLight();
  GlLight* const second = m_Context.CreateLight();
  m_Context.DestroyLight(first);
  ASSERT_EQ(m_Context.GetNumberOfLights(), 1);
  EXPECT_EQ(m_Context.GetLight(0), second);
  m_Context.DestroyLight(second);
  EXPECT_EQ(m_Context.GetNumberOfLights(), 0);
}

TEST_F(GlContextState, DestroyingTheSecondLightTakesTheFirstOffTheList) {
  GlLight* const first = m_Context.CreateLight();
  GlLight* const second = m_Context.CreateLight();
  unsigned int const number = GlPeer::NumberOf(*second);
  m_Context.DestroyLight(second);
  ASSERT_EQ(m_Context.GetNumberOfLights(), 1);
  EXPECT_EQ(m_Context.GetLight(0), second);
  EXPECT_EQ(GlPeer::NumberOf(GlPeer::Light()), number);  // the second is deleted
  m_Context.DestroyLight(first);
  EXPECT_EQ(m_Context.GetNumberOfLights(), 0);
}

TEST_F(GlContextState, DestroyingNoLightTakesTheFirstOffTheList) {
  std::unique_ptr<GlLight> const light(m_Context.CreateLight());
  m_Context.DestroyLight(nullptr);
  EXPECT_EQ(m_Context.GetNumberOfLights(), 0);
}

TEST_F(GlContextState, DestroysNoLightWhileItsListIsEmpty) {
  GlContext other(nullptr, 24, 24);
  GlLight* const foreign = other.CreateLight();
  m_Context.DestroyLight(foreign);
  EXPECT_EQ(other.GetLight(0), foreign);
  EXPECT_TRUE(foreign->IsEnabled());
}

TEST_F(GlContextState, DeletesItsLightsAtTheEnd) {
  unsigned int const free = GlPeer::NumberOf(GlPeer::Light());
  {
    GlContext context(nullptr, 24, 24);
    for (int i = 0; i < 3; ++i) context.CreateLight();
    EXPECT_EQ(GlPeer::NumberOf(*context.GetLight(0)), free);
    EXPECT_NE(GlPeer::NumberOf(GlPeer::Light()), free);
  }
  EXPECT_EQ(GlPeer::NumberOf(GlPeer::Light()), free);
}

TEST_F(GlContextState, LeavesTheLimitsAloneWithoutGl) {
  auto& limits = GlPeer::DrawingLimits();
  auto const before = limits;
  limits = {1, 2, 3, 4, 5, 6};
  { GlContext const context(nullptr, 24, 24); }
  EXPECT_EQ(limits.minPointSize, 1);
  EXPECT_EQ(limits.maxPointSize, 2);
  EXPECT_EQ(limits.pointSizeStep, 3);
  EXPECT_EQ(limits.minLineWidth, 4);
  EXPECT_EQ(limits.maxLineWidth, 5);
  EXPECT_EQ(limits.lineWidthStep, 6);
  limits = before;
}

// Returns whether `act` on another thread waits while `context` is in a frame, and is done after.
template <typename Act>
bool WaitsForTheFrame(GlContext& context, Act act) {
  std::atomic<bool> isDone = false;
  context.BeginDraw();
  std::thread other([&] {
    act();
    isDone = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(15));
  bool const hasWaited = !isDone;
  context.EndDraw();
  other.join();
  return hasWaited;
}

TEST_F(GlContextState, OtherThreadsWaitForTheEndOfAFrame) {
  GlContext& context = m_Context;
  GlViewer* viewer = context.CreateViewer();
  GlLight* light = context.CreateLight();
  EXPECT_TRUE(WaitsForTheFrame(context, [&] { context.OnSize(5, 6); }));
  EXPECT_TRUE(WaitsForTheFrame(context, [&] { context.SetViewport(7, 8); }));
  EXPECT_TRUE(WaitsForTheFrame(context, [&] { context.CreateViewer(); }));
  EXPECT_TRUE(WaitsForTheFrame(context, [&] { context.DestroyViewer(viewer); }));
  EXPECT_TRUE(WaitsForTheFrame(context, [&] { context.CreateLight(); }));
  EXPECT_TRUE(WaitsForTheFrame(context, [&] { context.DestroyLight(light); }));
  EXPECT_TRUE(WaitsForTheFrame(context, [&] { context.OnQueryNewPalette(); }));
  EXPECT_TRUE(WaitsForTheFrame(context, [&] { context.OnPaletteChanged(); }));
  EXPECT_TRUE(WaitsForTheFrame(context, [&] {
    context.BeginDraw();
    context.EndDraw();
  }));
  EXPECT_EQ(context.GetViewportWidth(), 7);
  EXPECT_EQ(context.GetNumberOfViewers(), 1);
  EXPECT_EQ(context.GetNumberOfLights(), 1);
}

TEST_F(GlContextState, ThreadOfTheFrameDoesNotWaitForItself) {
  m_Context.BeginDraw();
  m_Context.OnSize(5, 6);
  m_Context.DestroyViewer(m_Context.CreateViewer());
  m_Context.EndDraw();
  EXPECT_EQ(m_Context.GetViewportWidth(), 5);
}

TEST_F(GlContextState, EndsInTheMidstOfAFrame) {
  auto context = std::make_unique<GlContext>(nullptr, static_cast<unsigned char>(24),
                                             static_cast<unsigned char>(24));
  context->BeginDraw();
  context.reset();
  EXPECT_EQ(context, nullptr);
}

// What is seen.
class GlContextPicture : public OffscreenDrawing {
 protected:
  // A square about the middle of the picture, facing the eye.
  void Square(double half, double z, Rgb const& color) const {
    m_Context.SetVertexColor(GlColor(static_cast<float>(color.red) / 255.0f,
                                     static_cast<float>(color.green) / 255.0f,
                                     static_cast<float>(color.blue) / 255.0f, 1));
    m_Context.BeginDrawQuads();
    m_Context.SetVertexNormal(TPoint(0, 0, 1));
    m_Context.Vertex(-half, -half, z);
    m_Context.Vertex(half, -half, z);
    m_Context.Vertex(half, half, z);
    m_Context.Vertex(-half, half, z);
    m_Context.EndDrawVertices();
  }

  static Rgb Middle(Picture const& picture) { return picture.At(WIDTH / 2, HEIGHT / 2); }

  bool IsCurrent() const {
    std::vector<unsigned char> rgb;
    return m_Window.ReadPixels(rgb);
  }
};

TEST_F(GlContextPicture, GlIsCurrentInAFrameOnly) {
  EXPECT_FALSE(IsCurrent());
  m_Context.BeginDraw();
  EXPECT_TRUE(IsCurrent());
  m_Context.EndDraw();
  EXPECT_FALSE(IsCurrent());
}

TEST_F(GlContextPicture, NewViewportEndsTheDrawingOfAFrameOnTheSameThread) {
  m_Context.BeginDraw();
  m_Context.OnSize(WIDTH, HEIGHT);
  EXPECT_FALSE(IsCurrent());
  m_Context.EndDraw();
}

TEST_F(GlContextPicture, LimitsAreThoseOfTheDriver) {
  GlPeer::DrawingLimits() = {};
  GlContext const context(&m_Window, 24, 24);
  float min = 0;
  float max = 0;
  GlDrawingAttributes::GetPointSizeLimits(min, max);
  EXPECT_GT(min, 0);
  EXPECT_GE(max, 1);
  EXPECT_GT(GlDrawingAttributes::GetPointSizeStep(), 0);
  GlDrawingAttributes::GetLineWidthLimits(min, max);
  EXPECT_GT(min, 0);
  EXPECT_GE(max, 1);
  EXPECT_GT(GlDrawingAttributes::GetLineWidthStep(), 0);
  GlDrawingAttributes attributes;
  EXPECT_TRUE(attributes.SetPointSize(1));
  EXPECT_TRUE(attributes.SetLineWidth(1));
}

TEST_F(GlContextPicture, HintsAreForSpeed) {
  m_Context.BeginDraw();
  for (GLenum const hint : {GL_LINE_SMOOTH_HINT, GL_PERSPECTIVE_CORRECTION_HINT,
                            GL_POINT_SMOOTH_HINT, GL_POLYGON_SMOOTH_HINT}) {
    GLint mode = 0;
    glGetIntegerv(hint, &mode);
    EXPECT_EQ(mode, GL_FASTEST) << hint;
  }
  m_Context.EndDraw();
}

TEST_F(GlContextPicture, ViewerClearsToTheBackground) {
  m_Context.SetBackgroundColor(GlColor(0, 0, 1, 1));
  EXPECT_EQ(Draw([] {}).Count(BLUE), WIDTH * HEIGHT);
}

TEST_F(GlContextPicture, BackgroundChangesAtTheNextFrame) {
  m_Context.BeginDraw();
  m_Context.SetBackgroundColor(GlColor(0, 0, 1, 1));
  DrawIn(m_pViewer, [] {});
  EXPECT_EQ(EndDraw().Count(BLACK), WIDTH * HEIGHT);
  EXPECT_EQ(Draw([] {}).Count(BLUE), WIDTH * HEIGHT);
}

TEST_F(GlContextPicture, NearerCoversFartherWhateverTheOrder) {
  auto const draw = [this] {
    Square(10, 5, RED);
    Square(20, -5, GREEN);
  };
  Picture const deep = Draw(draw);
  EXPECT_EQ(Middle(deep), RED);
  EXPECT_EQ(deep.At(WIDTH / 2 + 15, HEIGHT / 2), GREEN);
  m_Context.EnableDepth(false);
  EXPECT_EQ(Middle(Draw(draw)), GREEN);
}

TEST_F(GlContextPicture, CompiledListShowsWhatWasCompiled) {
  Picture const immediate = Draw([this] { Square(10, 0, RED); });
  int id = 0;
  Picture const compiling = Draw([&] {
    id = m_Context.BeginCompileList();
    Square(10, 0, RED);
    m_Context.EndCompileList();
  });
  EXPECT_GT(id, 0);
  EXPECT_EQ(compiling.Count(BLACK), WIDTH * HEIGHT);
  Picture const listed = Draw([&] { EXPECT_TRUE(m_Context.DrawCompiledList(id)); });
  EXPECT_EQ(listed.rgb, immediate.rgb);
  EXPECT_EQ(Middle(listed), RED);
}

TEST_F(GlContextPicture, DeletedListIsNotDrawn) {
  Picture const picture = Draw([this] {
    int const id = m_Context.BeginCompileList();
    Square(10, 0, RED);
    m_Context.EndCompileList();
    m_Context.DeleteCompiledList(0);
    EXPECT_TRUE(m_Context.DrawCompiledList(id));
    m_Context.DeleteCompiledList(id);
    m_Context.DeleteCompiledList(id);
    EXPECT_FALSE(m_Context.DrawCompiledList(id));
  });
  EXPECT_EQ(Middle(picture), RED);
}

TEST_F(GlContextPicture, List1281IsNeverDrawn) {
  Draw([this] {
    int id = 0;
    while (id < 1281) {
      id = m_Context.BeginCompileList();
      m_Context.EndCompileList();
      EXPECT_EQ(m_Context.DrawCompiledList(id), id != 1281) << id;
    }
    EXPECT_EQ(id, 1281);
    EXPECT_TRUE(glIsList(1281));
  });
}

TEST_F(GlContextPicture, AmbientLightAloneShadesByItsColour) {
  m_Context.EnableLighting(true);
  auto const draw = [this] { Square(10, 0, WHITE); };
  EXPECT_EQ(Middle(Draw(draw)), (Rgb{51, 51, 51}));
  m_Context.SetAmbientLight(GlColor(1, 0, 0.2f, 1));
  EXPECT_EQ(Middle(Draw(draw)), (Rgb{255, 0, 51}));
  m_Context.EnableAmbientLight(false);
  EXPECT_EQ(Middle(Draw(draw)), BLACK);
}

TEST_F(GlContextPicture, LightShinesFromItsAxisRelativeToTheEye) {
  m_Context.EnableLighting(true);
  m_Context.EnableAmbientLight(false);
  GlLight* const light = m_Context.CreateLight();
  light->SetAmbientLight(GlColor(0, 0, 0, 1));
  light->SetDiffuseLight(GlColor(1, 1, 1, 1));
  light->SetSpecularLight(GlColor(0, 0, 0, 1));
  auto const draw = [this] { Square(10, 0, WHITE); };
  EXPECT_EQ(Middle(Draw(draw)), WHITE);

  GlCoord tilted;
  tilted.RotateAboutX(M_PI / 3);
  light->SetCS(tilted);
  EXPECT_NEAR(Middle(Draw(draw)).red, 127.5, 1);

  GlCoord behind;
  behind.RotateAboutX(M_PI);
  light->SetCS(behind);
  EXPECT_EQ(Middle(Draw(draw)), BLACK);

  m_Context.EnableLighting(false);
  EXPECT_EQ(Middle(Draw(draw)), WHITE);
}

TEST_F(GlContextPicture, LightAttributeGivesAPlaceWithoutLight) {
  m_Context.EnableLighting(true);
  m_Context.EnableAmbientLight(false);
  Picture const picture = Draw([this] {
    m_Context.PushLightAttribute();
    Square(20, 0, GREEN);
    m_Context.PopLightAttribute();
    Square(10, 1, GREEN);
  });
  EXPECT_EQ(Middle(picture), BLACK);
  EXPECT_EQ(picture.At(WIDTH / 2 + 15, HEIGHT / 2), GREEN);
}

TEST_F(GlContextPicture, PushedMatricesGiveTheCubeOfTheViewport) {
  Picture const picture = Draw([this] {
    m_Context.PushProjectionMatrix();
    m_Context.PushModelviewMatrix();
    Square(0.5, 0.9, BLUE);
    m_Context.PopModelviewMatrix();
    m_Context.PopProjectionMatrix();
    m_Context.PushModelviewMatrix();
    m_Context.PopModelviewMatrix();
    Square(5, 1, RED);
  });
  EXPECT_EQ(picture.Count(BLUE) + picture.Count(RED), WIDTH / 2 * HEIGHT / 2);
  EXPECT_EQ(picture.Count(RED), 100);
}

TEST_F(GlContextPicture, ContextsOfTwoWindowsDrawApart) {
  OffscreenWindow window(WIDTH, HEIGHT);
  auto other = std::make_unique<GlContext>(&window, static_cast<unsigned char>(24),
                                           static_cast<unsigned char>(24));
  other->SetViewport(WIDTH, HEIGHT);
  other->SetBackgroundColor(GlColor(0, 1, 0, 1));
  GlViewer* const viewer = other->CreateViewer();
  other->BeginDraw();
  other->BeginDrawViewer(viewer);
  other->EndDrawViewer(viewer);
  Picture picture{WIDTH, HEIGHT, {}};
  EXPECT_TRUE(window.ReadPixels(picture.rgb));
  other->EndDraw();
  EXPECT_EQ(picture.Count(GREEN), WIDTH * HEIGHT);
  EXPECT_EQ(Middle(Draw([this] { Square(10, 0, RED); })), RED);
  other.reset();
  EXPECT_EQ(Middle(Draw([this] { Square(10, 0, RED); })), RED);
}

TEST_F(GlContextPicture, ContextEndsInTheMidstOfItsFrame) {
  {
    GlContext context(&m_Window, 24, 24);
    context.BeginDraw();
    EXPECT_TRUE(IsCurrent());
  }
  EXPECT_FALSE(IsCurrent());
  EXPECT_EQ(Middle(Draw([this] { Square(10, 0, RED); })), RED);
}

}  // namespace
