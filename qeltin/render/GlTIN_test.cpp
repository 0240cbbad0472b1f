#include "qeltin/render/GlTIN.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "testing/HandMadeMesh.h"
#include "testing/gl/OffscreenDrawing.h"

namespace {

using namespace qeltin::testing;

class GlTINPicture : public OffscreenDrawing {
 protected:
  GlTINPicture() { m_Context.SetColorTable(OneColor(RED)); }

  void ShowBothSides(GlTIN& drawable) {
    drawable.GetDrawingAttributes()->DisableDrawMode(GlDrawingAttributes::CULL_BACK);
  }

  // The eye goes round the origin, which stays in the middle, and up.
  void LookFrom(double azimuth, double elevation) {
    GlCoord eye;
    eye.RotateAboutZ(azimuth);
    eye.RotateAboutX(elevation);
    eye.MoveForward(-EYE);
    m_pViewer->SetCS(eye);
  }

  HandMadeMesh m_Mesh;
};

std::vector<TPoint> CornersOf(TTriangle const& t) {
  return {*t.m_pVertex[0], *t.m_pVertex[1], *t.m_pVertex[2]};
}

TEST_F(GlTINPicture, TriangleCoversItsPixelsAndNoOthers) {
  TTriangle const* const t = m_Mesh.LayClockwise(
      m_Mesh.Point(-40.3, -20.7, 0), m_Mesh.Point(5.1, 30.2, 0), m_Mesh.Point(50.9, -33.3, 0));
  GlTIN drawable(&m_Mesh.tin);
  ShowBothSides(drawable);
  ExpectFigure(PictureOf(drawable), PlacesOf(CornersOf(*t)), RED, BLACK);
}

TEST_F(GlTINPicture, TriangleIsSeenInPerspectiveFromEverySide) {
  TTriangle const* const t = m_Mesh.LayClockwise(
      m_Mesh.Point(-30.3, -20.7, 9), m_Mesh.Point(5.1, 30.2, -12), m_Mesh.Point(30.9, -23.3, 20));
  GlTIN drawable(&m_Mesh.tin);
  ShowBothSides(drawable);
  for (double const azimuth : {0.0, 1.0, 2.5, 4.0, 5.5}) {
    for (double const elevation : {0.3, 0.9, 1.4}) {
      LookFrom(azimuth, elevation);
      SCOPED_TRACE(testing::Message() << azimuth << ' ' << elevation);
      ExpectFigure(PictureOf(drawable), PlacesOf(CornersOf(*t)), RED, BLACK);
    }
  }
}

TEST_F(GlTINPicture, ExaggeratedTriangleIsSeenAtItsDrawnHeights) {
  m_Mesh.LayClockwise(m_Mesh.Point(-30, -20, 12), m_Mesh.Point(5, 30, 8), m_Mesh.Point(30, -23, 2));
  m_Context.SetRefZ(10);
  LookFrom(0.4, 1.2);
  GlTIN drawable(&m_Mesh.tin);
  ShowBothSides(drawable);
  std::vector<TPoint> const drawn = {TPoint(-30, -20, 16), TPoint(5, 30, 4), TPoint(30, -23, -14)};
  ExpectFigure(PictureOf(drawable, 3), PlacesOf(drawn), RED, BLACK);
}

TEST_F(GlTINPicture, SurfaceTurnsItsBackOnOneWhoLooksFromAbove) {
  TTriangle const* const t = m_Mesh.LayClockwise(m_Mesh.Point(-40, -20, 0), m_Mesh.Point(5, 30, 0),
                                                 m_Mesh.Point(50, -33, 0));
  GlTIN drawable(&m_Mesh.tin);
  EXPECT_EQ(PictureOf(drawable).Count(BLACK), WIDTH * HEIGHT);

  GlCoord below;
  below.RotateAboutY(M_PI);
  below.MoveForward(-EYE);
  m_pViewer->SetCS(below);
  ExpectFigure(PictureOf(drawable), PlacesOf(CornersOf(*t)), RED, BLACK);
  drawable.GetDrawingAttributes()->DisableDrawMode(GlDrawingAttributes::CULL_BACK);
  drawable.GetDrawingAttributes()->EnableDrawMode(GlDrawingAttributes::CULL_FRONT);
  EXPECT_EQ(PictureOf(drawable).Count(BLACK), WIDTH * HEIGHT);
}

TEST_F(GlTINPicture, NearerTriangleHidesTheOtherInEitherOrder) {
  ColorTable table;
  table.AddStop(1, ColorTable::MakeColor(255, 0, 0));
  table.AddStop(2, ColorTable::MakeColor(0, 0, 255));
  m_Context.SetColorTable(table);
  HandMadeMesh other;
  for (HandMadeMesh* mesh : {&m_Mesh, &other}) {
    for (double const z : {mesh == &other ? 2.0 : 1.0, mesh == &other ? 1.0 : 2.0}) {
      mesh->LayClockwise(mesh->Point(-40, -20, z), mesh->Point(5, 30, z), mesh->Point(50, -33, z));
    }
    GlTIN drawable(&mesh->tin);
    ShowBothSides(drawable);
    Picture const picture = PictureOf(drawable);
    EXPECT_EQ(picture.At(WIDTH / 2, HEIGHT / 2), BLUE);
    EXPECT_EQ(picture.Count(RED), 0);
  }
}

TEST_F(GlTINPicture, WithoutDepthTheLaterTriangleIsSeen) {
  ColorTable table;
  table.AddStop(1, ColorTable::MakeColor(255, 0, 0));
  table.AddStop(2, ColorTable::MakeColor(0, 0, 255));
  m_Context.SetColorTable(table);
  m_Context.EnableDepth(false);
  for (double const z : {2.0, 1.0}) {
    m_Mesh.LayClockwise(m_Mesh.Point(-40, -20, z), m_Mesh.Point(5, 30, z),
                        m_Mesh.Point(50, -33, z));
  }
  GlTIN drawable(&m_Mesh.tin);
  ShowBothSides(drawable);
  EXPECT_EQ(PictureOf(drawable).At(WIDTH / 2, HEIGHT / 2), RED);
}

TEST_F(GlTINPicture, ColourGoesOverBetweenTheCorners) {
  ColorTable table;
  table.AddStop(0, ColorTable::MakeColor(0, 0, 0));
  table.AddStop(255, ColorTable::MakeColor(255, 255, 255));
  m_Context.SetColorTable(table);
  m_Mesh.LayClockwise(m_Mesh.Point(-60, -40, 0), m_Mesh.Point(-60, 40, 0),
                      m_Mesh.Point(60, 0, 120));
  GlTIN drawable(&m_Mesh.tin);
  ShowBothSides(drawable);
  Picture const picture = PictureOf(drawable, 0);  // flat, in true colours
  for (int x = 1; x < 110; ++x) {
    EXPECT_NEAR(picture.At(x, HEIGHT / 2).red, x + 0.5, 1.01) << x;
  }
}

TEST_F(GlTINPicture, PointsAreSquaresAboutTheirPlaces) {
  TPoint* const a = m_Mesh.Point(-39.5, 20.5, 0);
  TPoint* const b = m_Mesh.Point(10.5, -10.5, 0);
  GlTIN drawable(&m_Mesh.tin);
  drawable.GetDrawingAttributes()->EnableDrawMode(GlDrawingAttributes::FRONT_POINT);
  ASSERT_TRUE(drawable.GetDrawingAttributes()->SetPointSize(3));
  Picture const picture = PictureOf(drawable);
  EXPECT_EQ(picture.Count(RED), 18);
  for (TPoint const* p : {a, b}) {
    Place2D const place = PlaceOf(*p);
    for (int dy = -2; dy <= 2; ++dy) {
      for (int dx = -2; dx <= 2; ++dx) {
        bool const inside = dx * dx < 4 && dy * dy < 4;
        EXPECT_EQ(picture.At(static_cast<int>(place.x) + dx, static_cast<int>(place.y) + dy),
                  inside ? RED : BLACK);
      }
    }
  }
}

TEST_F(GlTINPicture, LinesModeLeavesTheInsideOpen) {
  m_Mesh.LayClockwise(m_Mesh.Point(-40, -20, 0), m_Mesh.Point(5, 30, 0), m_Mesh.Point(50, -33, 0));
  GlTIN drawable(&m_Mesh.tin);
  ShowBothSides(drawable);
  drawable.GetDrawingAttributes()->EnableDrawMode(GlDrawingAttributes::BACK_LINE);
  Picture const picture = PictureOf(drawable);
  EXPECT_EQ(picture.At(WIDTH / 2, HEIGHT / 2), BLACK);
  EXPECT_GT(picture.Count(RED), 100);
  EXPECT_LT(picture.Count(RED), 300);
}

}  // namespace
