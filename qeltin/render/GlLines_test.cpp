#include "qeltin/render/GlLines.h"

#include <gtest/gtest.h>

#include <vector>

#include "qeltin/products/TPolygon.h"
#include "testing/gl/OffscreenDrawing.h"

namespace {

using namespace qeltin::testing;

class GlLinesPicture : public OffscreenDrawing {
 protected:
  // From the left edge of the picture to the right.
  TPolygon m_Line{std::vector<TPoint>{TPoint(-WIDTH / 2, ROW_Y, 0), TPoint(WIDTH / 2, ROW_Y, 0)}};
};

TEST_F(GlLinesPicture, LineCoversItsRowAndNoOther) {
  GlLines drawable(&m_Line);
  drawable.SetColor(GlColor::GLC_GREEN);
  Picture const picture = PictureOf(drawable);
  for (int x = 0; x < WIDTH; ++x) EXPECT_EQ(picture.At(x, ROW), GREEN) << x;
  EXPECT_EQ(picture.Count(GREEN), WIDTH);
  EXPECT_EQ(picture.Count(BLACK), WIDTH * (HEIGHT - 1));
}

TEST_F(GlLinesPicture, WideLineCoversRowsOnBothSides) {
  GlLines drawable(&m_Line);
  drawable.SetColor(GlColor::GLC_GREEN);
  ASSERT_TRUE(drawable.GetDrawingAttributes()->SetLineWidth(3));
  Picture const picture = PictureOf(drawable);
  for (int y = 0; y < HEIGHT; ++y) {
    EXPECT_EQ(picture.At(WIDTH / 2, y), y >= ROW - 1 && y <= ROW + 1 ? GREEN : BLACK) << y;
  }
}

TEST_F(GlLinesPicture, StippleDrawsThePiecesOfItsPattern) {
  GlLines drawable(&m_Line);
  drawable.SetColor(GlColor::GLC_GREEN);
  drawable.GetDrawingAttributes()->SetLineStipplePattern(0x1F01);
  ASSERT_TRUE(drawable.GetDrawingAttributes()->SetLineStippleFactor(2));
  Picture const picture = PictureOf(drawable);
  for (int x = 0; x < WIDTH; ++x) {
    bool const drawn = (0x1F01 >> (x / 2 % 16) & 1) != 0;
    EXPECT_EQ(picture.At(x, ROW), drawn ? GREEN : BLACK) << x;
  }
}

TEST_F(GlLinesPicture, PointsPairUp) {
  TPolygon const ends(std::vector<TPoint>{TPoint(-50, ROW_Y, 0), TPoint(-20, ROW_Y, 0),
                                          TPoint(20, ROW_Y, 0), TPoint(50, ROW_Y, 0),
                                          TPoint(0, -30, 0)});
  GlLines drawable(&ends);
  drawable.SetColor(GlColor::GLC_GREEN);
  Picture const picture = PictureOf(drawable);
  EXPECT_EQ(picture.At(25, ROW), GREEN);
  EXPECT_EQ(picture.At(WIDTH / 2, ROW), BLACK);
  EXPECT_EQ(picture.At(95, ROW), GREEN);
  EXPECT_EQ(picture.At(WIDTH / 2, HEIGHT / 2 + 30), BLACK);  // the fifth has no partner
}

}  // namespace
