#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <ostream>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/gl/OffscreenWindow.h"
#include "qeltin/render/GlContext.h"
#include "qeltin/render/GlDrawable.h"
#include "qeltin/render/GlViewer.h"

namespace qeltin::testing {

struct Rgb {
  int red = 0;
  int green = 0;
  int blue = 0;

  bool operator==(Rgb const&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, Rgb const& c) {
  return out << '(' << c.red << ' ' << c.green << ' ' << c.blue << ')';
}

inline constexpr Rgb BLACK{0, 0, 0};
inline constexpr Rgb WHITE{255, 255, 255};
inline constexpr Rgb RED{255, 0, 0};
inline constexpr Rgb GREEN{0, 255, 0};
inline constexpr Rgb BLUE{0, 0, 255};

// A place on a picture in pixels from its upper left corner, and what was read back from GL. The
// centre of the first pixel is at (0.5, 0.5).
struct Place2D {
  double x;
  double y;
};

struct Picture {
  int width = 0;
  int height = 0;
  std::vector<unsigned char> rgb;

  Rgb At(int x, int y) const {
    unsigned char const* const p = rgb.data() + 3 * (y * width + x);
    return {p[0], p[1], p[2]};
  }

  int Count(Rgb const& color) const {
    int count = 0;
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) count += At(x, y) == color ? 1 : 0;
    }
    return count;
  }
};

// Returns how far the place is inside a figure with straight sides and no reentrant corner, in
// pixels; negative outside.
inline double DepthInside(Place2D const& p, std::vector<Place2D> const& corners) {
  double left = 1e9;
  double right = 1e9;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    Place2D const& a = corners[i];
    Place2D const& b = corners[(i + 1) % corners.size()];
    double const dx = b.x - a.x;
    double const dy = b.y - a.y;
    double const off = ((p.y - a.y) * dx - (p.x - a.x) * dy) / std::hypot(dx, dy);
    left = std::fmin(left, off);
    right = std::fmin(right, -off);
  }
  return std::fmax(left, right);
}

// For tests of what is seen: a context that draws off-screen and one viewer, from whose place one
// unit in the plane z = 0 is one pixel and the middle of the picture is the origin. No light, so
// that colours are those of the vertices. Skipped where no GL can be had.
class OffscreenDrawing : public ::testing::Test {
 protected:
  static constexpr int WIDTH = 120;
  static constexpr int HEIGHT = 80;
  static constexpr double EYE = 1000.0;

  // A row of pixels, and the y of its middle.
  static constexpr int ROW = 30;
  static constexpr double ROW_Y = HEIGHT / 2 - (ROW + 0.5);

  void SetUp() override {
    if (!m_Window.IsOk()) GTEST_SKIP() << "no drawing off-screen: " << m_Window.GetError();
    m_Context.SetViewport(WIDTH, HEIGHT);
    m_Context.EnableLighting(false);
    m_pViewer = m_Context.CreateViewer();
    m_pViewer->SetEyeFovy(2 * std::atan(HEIGHT / 2 / EYE) * 180 / M_PI);
    m_pViewer->SetEyeZNearAndFar(EYE / 2, EYE * 2);
    GlCoord eye;
    eye.SetOrigin(TPoint(0, 0, EYE));
    m_pViewer->SetCS(eye);
  }

  // Returns the picture of a frame in which `draw` draws in the viewer.
  Picture Draw(std::function<void()> const& draw) {
    m_Context.BeginDraw();
    DrawIn(m_pViewer, draw);
    return EndDraw();
  }

  Picture PictureOf(GlDrawable& drawable, double zScale = 1) {
    return Draw([&] { drawable.Draw(&m_Context, zScale); });
  }

  // For several viewers: BeginDraw, these, EndDraw.
  void DrawIn(GlViewer* viewer, std::function<void()> const& draw) {
    m_Context.BeginDrawViewer(viewer);
    draw();
    m_Context.EndDrawViewer(viewer);
  }

  Picture EndDraw() {
    Picture picture{WIDTH, HEIGHT, {}};
    EXPECT_TRUE(m_Window.ReadPixels(picture.rgb));
    m_Context.EndDraw();
    return picture;
  }

  // Emits a square about the origin that looks at the eye, in the colour and normal that GL has.
  void EmitSquare(double halfWidth) const {
    m_Context.BeginDrawQuads();
    m_Context.Vertex(-halfWidth, -halfWidth, 0.0);
    m_Context.Vertex(halfWidth, -halfWidth, 0.0);
    m_Context.Vertex(halfWidth, halfWidth, 0.0);
    m_Context.Vertex(-halfWidth, halfWidth, 0.0);
    m_Context.EndDrawVertices();
  }

  // Returns where the viewer shows a point.
  Place2D PlaceOf(TPoint const& p) const {
    TPoint const e = m_pViewer->GetCS() << p;
    double const scale = HEIGHT / 2 / std::tan(m_pViewer->GetEyeFovy() * M_PI / 360) / -e.z;
    return {WIDTH / 2 + e.x * scale / m_pViewer->GetEyeAspect(), HEIGHT / 2 - e.y * scale};
  }

  std::vector<Place2D> PlacesOf(std::vector<TPoint> const& points) const {
    std::vector<Place2D> places;
    for (TPoint const& p : points) places.push_back(PlaceOf(p));
    return places;
  }

  // Expects that the pixels whose centre is inside the figure have one colour and all others
  // another. Centres within a fiftieth of a pixel of a side are left to rounding.
  static void ExpectFigure(Picture const& picture, std::vector<Place2D> const& corners,
                           Rgb const& inside, Rgb const& outside) {
    int wrong = 0;
    int covered = 0;
    for (int y = 0; y < HEIGHT; ++y) {
      for (int x = 0; x < WIDTH; ++x) {
        double const depth = DepthInside({x + 0.5, y + 0.5}, corners);
        if (std::fabs(depth) < 0.02) continue;
        covered += depth > 0 ? 1 : 0;
        bool const isRight = picture.At(x, y) == (depth > 0 ? inside : outside);
        if (!isRight && ++wrong < 5) {
          ADD_FAILURE() << "pixel " << x << ' ' << y << " is " << picture.At(x, y) << ", "
                        << std::fabs(depth) << (depth > 0 ? " inside" : " outside");
        }
      }
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(covered, 0);
  }

  OffscreenWindow m_Window{WIDTH, HEIGHT};
  GlContext m_Context{&m_Window, 24, 24};
  GlViewer* m_pViewer = nullptr;
};

// A table with one colour.
inline ColorTable OneColor(Rgb const& color) {
  ColorTable table;
  table.AddStop(0.0, ColorTable::MakeColor(static_cast<unsigned char>(color.red),
                                           static_cast<unsigned char>(color.green),
                                           static_cast<unsigned char>(color.blue)));
  return table;
}

}  // namespace qeltin::testing
