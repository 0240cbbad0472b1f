#include "qeltin/render/GlViewer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>

#include "testing/GlPeer.h"
#include "testing/PlaceInTable.h"
#include "testing/gl/OffscreenDrawing.h"

namespace {

using namespace qeltin::testing;

void ExpectSame(GlViewer const& a, GlViewer const& b) {
  for (int bit = 1; bit != 0x100; bit <<= 1) EXPECT_EQ(a.HasState(bit), b.HasState(bit)) << bit;
  EXPECT_EQ(a.GetEyeFovy(), b.GetEyeFovy());
  EXPECT_EQ(a.GetEyeAspect(), b.GetEyeAspect());
  EXPECT_EQ(a.GetEyeZNear(), b.GetEyeZNear());
  EXPECT_EQ(a.GetEyeZFar(), b.GetEyeZFar());
  EXPECT_EQ(a.GetClipX(), b.GetClipX());
  EXPECT_EQ(a.GetClipY(), b.GetClipY());
  EXPECT_EQ(a.GetClipWidth(), b.GetClipWidth());
  EXPECT_EQ(a.GetClipHeight(), b.GetClipHeight());
  EXPECT_EQ(a.GetFrameColor(), b.GetFrameColor());
  EXPECT_EQ(a.GetCS().GetOrigin(), b.GetCS().GetOrigin());
}

TEST(GlViewer, IsMadeByAContextOnly) {
  EXPECT_FALSE(std::is_default_constructible_v<GlViewer>);
  EXPECT_TRUE(std::has_virtual_destructor_v<GlViewer>);
}

TEST(GlViewer, VirtualOperationsKeepTheirOrder) {
  EXPECT_EQ(PlaceInTable(GlPeer::DrawFrameOperation()), 2);
}

TEST(GlViewer, HasItsDefaults) {
  GlViewer const viewer = GlPeer::MakeViewer();
  EXPECT_EQ(GlViewer::DEFAULT_STATE, 25);
  EXPECT_TRUE(viewer.HasState(GlViewer::VIEWER_SHOW));
  EXPECT_FALSE(viewer.HasState(GlViewer::VIEWER_CLIP));
  EXPECT_TRUE(viewer.HasState(GlViewer::VIEWER_CLIP_VIEWPORT));
  EXPECT_TRUE(viewer.HasState(GlViewer::VIEWER_FRAME));
  EXPECT_FALSE(viewer.HasState(GlViewer::VIEWER_FRAME_INSET));
  EXPECT_EQ(viewer.GetEyeFovy(), 27.0);
  EXPECT_EQ(viewer.GetEyeAspect(), 1.0);
  EXPECT_EQ(viewer.GetEyeZNear(), 0.5);
  EXPECT_EQ(viewer.GetEyeZFar(), 10000.0);
  EXPECT_EQ(viewer.GetClipX(), 10);
  EXPECT_EQ(viewer.GetClipY(), 10);
  EXPECT_EQ(viewer.GetClipWidth(), 150);
  EXPECT_EQ(viewer.GetClipHeight(), 100);
  EXPECT_EQ(viewer.GetFrameColor(), GlColor(1, 1, 1, 1));
  EXPECT_EQ(viewer.GetCS().GetOrigin(), TPoint(0, 0, 0));
}

TEST(GlViewer, StatesAreTheseBits) {
  EXPECT_EQ(GlViewer::VIEWER_SHOW, 0x01);
  EXPECT_EQ(GlViewer::VIEWER_CLIP, 0x04);
  EXPECT_EQ(GlViewer::VIEWER_CLIP_VIEWPORT, 0x08);
  EXPECT_EQ(GlViewer::VIEWER_FRAME, 0x10);
  EXPECT_EQ(GlViewer::VIEWER_FRAME_INSET, 0x20);
}

TEST(GlViewer, StateIsFoundIfAllOfItsBitsAreSet) {
  GlViewer viewer = GlPeer::MakeViewer();
  EXPECT_TRUE(viewer.HasState(0x19));
  EXPECT_FALSE(viewer.HasState(0x15));
  EXPECT_TRUE(viewer.HasState(0));
  viewer.EnableState(0x04 | 0x20);
  EXPECT_TRUE(viewer.HasState(0x3D));
  viewer.DisableState(0x01 | 0x04);
  EXPECT_FALSE(viewer.HasState(0x01));
  EXPECT_TRUE(viewer.HasState(0x38));
}

TEST(GlViewer, FieldOfViewIsRefusedFromAHalfTurnOn) {
  GlViewer viewer = GlPeer::MakeViewer();
  EXPECT_FALSE(viewer.SetEyeFovy(180.0));
  EXPECT_FALSE(viewer.SetEyeFovy(1e9));
  EXPECT_FALSE(viewer.SetEyeFovy(-1e-300));
  EXPECT_EQ(viewer.GetEyeFovy(), 27.0);
  EXPECT_TRUE(viewer.SetEyeFovy(0.0));
  EXPECT_EQ(viewer.GetEyeFovy(), 0.0);
  double const widest = std::nextafter(180.0, 0.0);
  EXPECT_TRUE(viewer.SetEyeFovy(widest));
  EXPECT_EQ(viewer.GetEyeFovy(), widest);
}

TEST(GlViewer, NoAspectIsRefused) {
  GlViewer viewer = GlPeer::MakeViewer();
  for (double const aspect : {0.0, -3.0, 1e300, std::numeric_limits<double>::infinity()}) {
    EXPECT_TRUE(viewer.SetEyeAspect(aspect));
    EXPECT_EQ(viewer.GetEyeAspect(), aspect);
  }
}

TEST(GlViewer, NearIsTheSmallerSizeOfTheTwo) {
  GlViewer viewer = GlPeer::MakeViewer();
  EXPECT_TRUE(viewer.SetEyeZNearAndFar(-5, 2));
  EXPECT_EQ(viewer.GetEyeZNear(), 2.0);
  EXPECT_EQ(viewer.GetEyeZFar(), 5.0);
  EXPECT_TRUE(viewer.SetEyeZNearAndFar(1, -3));
  EXPECT_EQ(viewer.GetEyeZNear(), 1.0);
  EXPECT_EQ(viewer.GetEyeZFar(), 3.0);
}

TEST(GlViewer, NearAndFarOfOneSizeAreRefused) {
  GlViewer viewer = GlPeer::MakeViewer();
  EXPECT_FALSE(viewer.SetEyeZNearAndFar(3, -3));
  EXPECT_FALSE(viewer.SetEyeZNearAndFar(0, 0));
  EXPECT_EQ(viewer.GetEyeZNear(), 0.5);
  EXPECT_EQ(viewer.GetEyeZFar(), 10000.0);
}

TEST(GlViewer, ClipRectangleIsRefusedByItsPositionAgainstItsSize) {
  GlViewer viewer = GlPeer::MakeViewer();
  EXPECT_FALSE(viewer.SetClipRectangle(1, 0, 1, 1));
  EXPECT_FALSE(viewer.SetClipRectangle(0, 1, 1, 1));
  EXPECT_FALSE(viewer.SetClipRectangle(200, 0, 100, 100));
  EXPECT_FALSE(viewer.SetClipRectangle(-1, 0, 100, 100));
  EXPECT_FALSE(viewer.SetClipRectangle(0, -1, 100, 100));
  EXPECT_FALSE(viewer.SetClipRectangle(0, 0, 0, 100));
  EXPECT_EQ(viewer.GetClipX(), 10);
  EXPECT_EQ(viewer.GetClipY(), 10);
  EXPECT_EQ(viewer.GetClipWidth(), 150);
  EXPECT_EQ(viewer.GetClipHeight(), 100);
  EXPECT_TRUE(viewer.SetClipRectangle(0, 0, 1, 1));
  EXPECT_TRUE(viewer.SetClipRectangle(99, 49, 100, 50));
  EXPECT_EQ(viewer.GetClipX(), 99);
  EXPECT_EQ(viewer.GetClipY(), 49);
  EXPECT_EQ(viewer.GetClipWidth(), 100);
  EXPECT_EQ(viewer.GetClipHeight(), 50);
}

TEST(GlViewer, CopyCopiesEveryField) {
  GlViewer viewer = GlPeer::MakeViewer();
  viewer.EnableState(0x24);
  viewer.SetEyeFovy(50);
  viewer.SetEyeAspect(2);
  viewer.SetEyeZNearAndFar(1, 2);
  viewer.SetClipRectangle(1, 2, 3, 4);
  viewer.SetFrameColor(GlColor(0.1f, 0.2f, 0.3f, 0.4f));
  GlCoord cs;
  cs.SetOrigin(TPoint(5, 6, 7));
  viewer.SetCS(cs);
  GlViewer const copy = viewer;
  ExpectSame(copy, viewer);
  GlViewer assigned = GlPeer::MakeViewer();
  assigned = viewer;
  ExpectSame(assigned, viewer);
}

// --- What is seen -------------------------------------------------------------------------------

class GlViewerPicture : public OffscreenDrawing {
 protected:
  // A viewer with a place of its own: x and y count from the lower left corner of the picture.
  GlViewer* AddViewer(int x, int y, int width, int height) {
    GlViewer* const viewer = m_Context.CreateViewer();
    viewer->EnableState(GlViewer::VIEWER_CLIP);
    viewer->DisableState(GlViewer::VIEWER_FRAME);
    EXPECT_TRUE(viewer->SetClipRectangle(x, y, width, height));
    viewer->SetCS(m_pViewer->GetCS());
    viewer->SetEyeFovy(m_pViewer->GetEyeFovy());
    viewer->SetEyeZNearAndFar(m_pViewer->GetEyeZNear(), m_pViewer->GetEyeZFar());
    return viewer;
  }

  void DrawSquare(GlColor const& color, double halfWidth) {
    m_Context.SetVertexColor(color);
    EmitSquare(halfWidth);
  }

  // Expects one colour in the rectangle, which counts from the lower left corner of the picture.
  static void ExpectAll(Picture const& picture, int x, int y, int width, int height,
                        Rgb const& color) {
    for (int row = HEIGHT - y - height; row < HEIGHT - y; ++row) {
      for (int column = x; column < x + width; ++column) {
        ASSERT_EQ(picture.At(column, row), color) << column << ' ' << row;
      }
    }
  }
};

TEST_F(GlViewerPicture, BackgroundFillsAWholeViewer) {
  m_Context.SetBackgroundColor(GlColor(0.2f, 0.4f, 0.6f, 1));
  EXPECT_EQ(Draw([] {}).Count({51, 102, 153}), WIDTH * HEIGHT);
}

TEST_F(GlViewerPicture, LaterViewerOverlapsTheEarlierInItsRectangleOnly) {
  GlViewer* const left = AddViewer(0, 0, 70, 60);
  GlViewer* const right = AddViewer(40, 20, 60, 50);
  m_Context.BeginDraw();
  DrawIn(m_pViewer, [&] { DrawSquare(GlColor::GLC_WHITE, 100); });
  DrawIn(left, [&] { DrawSquare(GlColor::GLC_RED, 200); });
  m_Context.SetBackgroundColor(GlColor::GLC_GREEN);  // from the next frame on
  DrawIn(right, [&] { DrawSquare(GlColor::GLC_BLUE, 8); });
  Picture const picture = EndDraw();
  ExpectAll(picture, 0, 0, 40, 60, RED);
  ExpectAll(picture, 40, 0, 30, 20, RED);
  ExpectAll(picture, 100, 0, 20, HEIGHT, WHITE);
  ExpectAll(picture, 0, 70, WIDTH, 10, WHITE);
  // The small square stands in the middle of the right one: 80 rows of the scene are 50 pixels.
  ExpectAll(picture, 66, 41, 8, 8, BLUE);
  ExpectAll(picture, 40, 20, 24, 50, BLACK);
  ExpectAll(picture, 76, 20, 24, 50, BLACK);
}

TEST_F(GlViewerPicture, ClipWithoutItsViewportCutsTheSceneOfTheWindow) {
  GlViewer* const cut = AddViewer(30, 10, 60, 40);
  cut->DisableState(GlViewer::VIEWER_CLIP_VIEWPORT);
  m_Context.BeginDraw();
  DrawIn(m_pViewer, [] {});
  DrawIn(cut, [&] { DrawSquare(GlColor::GLC_RED, 20); });
  Picture const picture = EndDraw();
  // The rectangle and the window have the same ratio, and the square keeps the middle of the
  // window.
  ExpectAll(picture, 40, 20, 40, 30, RED);
  EXPECT_EQ(picture.Count(RED), 40 * 30);
}

TEST_F(GlViewerPicture, ClipWithoutItsViewportTakesTheRatioOfTheRectangle) {
  GlViewer* const cut = AddViewer(0, 0, 100, 80);
  cut->DisableState(GlViewer::VIEWER_CLIP_VIEWPORT);
  EXPECT_TRUE(cut->SetClipRectangle(0, 0, 120, 40));
  m_Context.BeginDraw();
  DrawIn(m_pViewer, [] {});
  DrawIn(cut, [&] { DrawSquare(GlColor::GLC_RED, 20); });
  Picture const picture = EndDraw();
  // Twice as wide as the window, so that the square is half as wide; its upper half is cut.
  ExpectAll(picture, 50, 20, 20, 20, RED);
  EXPECT_EQ(picture.Count(RED), 20 * 20);
}

TEST_F(GlViewerPicture, AspectSqueezesTheScene) {
  m_pViewer->SetEyeAspect(2);
  Picture const picture = Draw([&] { DrawSquare(GlColor::GLC_RED, 20); });
  ExpectAll(picture, 50, 20, 20, 40, RED);
  EXPECT_EQ(picture.Count(RED), 20 * 40);
}

TEST_F(GlViewerPicture, FrameIsDrawnOnTheEdgeOfTheClipRectangle) {
  GlViewer* const framed = AddViewer(20, 10, 60, 50);
  framed->EnableState(GlViewer::VIEWER_FRAME);
  framed->SetFrameColor(GlColor::GLC_GREEN);
  m_Context.BeginDraw();
  DrawIn(m_pViewer, [] {});
  DrawIn(framed, [&] { DrawSquare(GlColor::GLC_RED, 1000); });
  Picture const picture = EndDraw();
  ExpectAll(picture, 21, 11, 58, 48, RED);  // of the two pixels of width the scissor leaves one
  EXPECT_EQ(picture.Count(RED), 58 * 48);
  ExpectAll(picture, 22, 10, 56, 1, GREEN);
  ExpectAll(picture, 22, 59, 56, 1, GREEN);
  ExpectAll(picture, 20, 12, 1, 46, GREEN);
  ExpectAll(picture, 79, 12, 1, 46, GREEN);
  EXPECT_EQ(picture.Count(BLACK), WIDTH * HEIGHT - 60 * 50);
}

TEST_F(GlViewerPicture, InsetFrameLeavesARimOfTheScene) {
  GlViewer* const framed = AddViewer(0, 0, 100, 80);
  framed->EnableState(GlViewer::VIEWER_FRAME | GlViewer::VIEWER_FRAME_INSET);
  framed->SetFrameColor(GlColor::GLC_GREEN);
  m_Context.BeginDraw();
  DrawIn(framed, [&] { DrawSquare(GlColor::GLC_RED, 1000); });
  Picture const picture = EndDraw();
  int const row = HEIGHT / 2;
  EXPECT_EQ(picture.At(0, row), GREEN);  // the line is 2 pixels wide, about 1 pixel from the edge
  EXPECT_EQ(picture.At(1, row), GREEN);
  EXPECT_EQ(picture.At(2, row), RED);
  EXPECT_EQ(picture.At(97, row), RED);
  EXPECT_EQ(picture.At(98, row), GREEN);
  EXPECT_EQ(picture.At(99, row), GREEN);
}

TEST_F(GlViewerPicture, FrameWithoutClipIsNotSeen) {
  m_pViewer->EnableState(GlViewer::VIEWER_FRAME);
  EXPECT_EQ(Draw([&] { DrawSquare(GlColor::GLC_RED, 1000); }).Count(RED), WIDTH * HEIGHT);
}

}  // namespace
