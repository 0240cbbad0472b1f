#include "qeltin/render/GlPolygon.h"

#include <gtest/gtest.h>

#include <vector>

#include "qeltin/products/TPolygon.h"
#include "testing/gl/OffscreenDrawing.h"

namespace {

using namespace qeltin::testing;

using GlPolygonPicture = OffscreenDrawing;

TEST_F(GlPolygonPicture, LineIsOpen) {
  m_Context.SetColorTable(OneColor(RED));
  double const far = HEIGHT / 2 - (ROW + 20 + 0.5);
  TPolygon const line(std::vector<TPoint>{TPoint(-50, ROW_Y, 0), TPoint(50.5, ROW_Y, 0),
                                          TPoint(50.5, far, 0), TPoint(-50, far, 0)});
  GlPolygon drawable(&line);
  Picture const picture = PictureOf(drawable);
  EXPECT_EQ(picture.At(WIDTH / 2, ROW), RED);
  EXPECT_EQ(picture.At(WIDTH / 2 + 50, ROW + 10), RED);
  EXPECT_EQ(picture.At(WIDTH / 2, ROW + 20), RED);
  for (int x = 0; x < WIDTH / 2; ++x) EXPECT_EQ(picture.At(x, ROW + 10), BLACK) << x;
}

TEST_F(GlPolygonPicture, InvertedLineHasTheComplement) {
  TPolygon const line(std::vector<TPoint>{TPoint(-50, ROW_Y, 0), TPoint(50, ROW_Y, 0)});
  m_Context.SetColorTable(OneColor({51, 102, 255}));
  GlPolygon drawable(&line);
  EXPECT_EQ(PictureOf(drawable).At(WIDTH / 2, ROW), (Rgb{51, 102, 255}));
  drawable.SetInvertColors(true);
  EXPECT_EQ(PictureOf(drawable).At(WIDTH / 2, ROW), (Rgb{204, 153, 0}));
}

}  // namespace
