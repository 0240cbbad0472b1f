#include "qeltin/render/GlGrid.h"

#include <gtest/gtest.h>

#include <vector>

#include "qeltin/products/TGrid.h"
#include "qeltin/tin/TIN.h"
#include "testing/TINPeer.h"
#include "testing/gl/OffscreenDrawing.h"

namespace {

using namespace qeltin::testing;

class GlGridPicture : public OffscreenDrawing {
 protected:
  GlGridPicture() { m_Context.SetColorTable(OneColor(RED)); }

  Picture BothSidesOf(TGrid const& grid) {
    GlGrid drawable(&grid);
    drawable.GetDrawingAttributes()->DisableDrawMode(GlDrawingAttributes::CULL_BACK);
    return PictureOf(drawable);
  }

  // A surface of points 5 apart, without one at `gap`, that reaches beyond the square from -30 to
  // 30 of its grids.
  static void Build(TIN& tin, TPoint const& gap) {
    tin.Init(441, TPoint(-50, -50), TPoint(50, 50));
    for (int y = -50; y <= 50; y += 5) {
      for (int x = -50; x <= 50; x += 5) {
        if (!gap.XY_EqualsTo(TPoint(x, y))) tin.AddPoint(x, y, 0);
      }
    }
    tin.FilterTriangles(7.5);
    TINPeer::Min(tin) = TPoint(-30, -30);
    TINPeer::Max(tin) = TPoint(30, 30);
  }
};

constexpr TPoint NOWHERE(99, 99);

TEST_F(GlGridPicture, StripsCoverAllButTheLastColumn) {
  TIN tin;
  Build(tin, NOWHERE);
  TGrid const grid(tin, 10, 10);
  ASSERT_EQ(grid.GetNumberOfNodesX(), 7);
  for (int i = 0; i < 7; ++i) ASSERT_NE(grid.GetNode(6, i), nullptr);
  std::vector<TPoint> const drawn = {TPoint(-30, -30), TPoint(20, -30), TPoint(20, 30),
                                     TPoint(-30, 30)};
  ExpectFigure(BothSidesOf(grid), PlacesOf(drawn), RED, BLACK);
}

TEST_F(GlGridPicture, MissingNodeLeavesAHoleInBothOfItsRows) {
  TIN tin;
  Build(tin, TPoint(0, 0));
  TGrid const grid(tin, 10, 10);
  ASSERT_EQ(grid.GetNode(3, 3), nullptr);
  Picture const picture = BothSidesOf(grid);
  auto const at = [&](double x, double y) {
    Place2D const place = PlaceOf(TPoint(x, y));
    return picture.At(static_cast<int>(place.x), static_cast<int>(place.y));
  };
  EXPECT_EQ(at(-5.5, 3.5), BLACK);
  EXPECT_EQ(at(5.5, 3.5), BLACK);
  EXPECT_EQ(at(5.5, -3.5), BLACK);
  EXPECT_EQ(at(-15.5, 3.5), RED);
  EXPECT_EQ(at(15.5, 3.5), RED);
  EXPECT_EQ(at(0.5, 15.5), RED);
  EXPECT_EQ(at(0.5, -15.5), RED);
}

TEST_F(GlGridPicture, StripThatBeginsInItsLowerRowTurnsItsBackOnOneWhoLooksFromAbove) {
  TIN tin;
  Build(tin, NOWHERE);
  TGrid const grid(tin, 10, 10);
  GlGrid drawable(&grid);
  EXPECT_EQ(PictureOf(drawable).Count(RED), 0);
}

TEST_F(GlGridPicture, StripThatBeginsInItsUpperRowTurnsItsFront) {
  TIN tin;
  Build(tin, TPoint(-30, -30));
  TGrid const grid(tin, 10, 10);
  ASSERT_EQ(grid.GetNode(0, 0), nullptr);
  GlGrid drawable(&grid);
  std::vector<TPoint> const drawn = {TPoint(-30, -20), TPoint(-20, -30), TPoint(20, -30),
                                     TPoint(20, -20)};
  ExpectFigure(PictureOf(drawable), PlacesOf(drawn), RED, BLACK);
}

}  // namespace
