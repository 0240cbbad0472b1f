#include "qeltin/platform/gl/OffscreenWindow.h"

#include <GL/gl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <set>
#include <thread>

namespace {

using testing::HasSubstr;

using Bytes = std::vector<unsigned char>;

PIXELFORMATDESCRIPTOR Wish(std::uint8_t colorBits, std::uint8_t depthBits) {
  PIXELFORMATDESCRIPTOR wish{};
  wish.cColorBits = colorBits;
  wish.cDepthBits = depthBits;
  return wish;
}

// A window with a context of its own.
class Opened {
 public:
  Opened(int width, int height, int samples = 0, PIXELFORMATDESCRIPTOR const& wish = Wish(24, 24))
      : m_Window(width, height, samples) {
    m_pDC->SetPixelFormat(m_pDC->ChoosePixelFormat(wish));
    m_pRC = m_pDC->CreateContext();
  }
  ~Opened() {
    m_pDC->DeleteContext(m_pRC);
    m_Window.ReleaseDC(m_pDC);
  }

  OffscreenWindow& Window() { return m_Window; }
  HDC DC() const { return m_pDC; }
  HGLRC RC() const { return m_pRC; }

  // Returns what the window shows after `draw`, and whether it could be read.
  Bytes Draw(std::function<void()> const& draw) {
    Bytes rgb;
    EXPECT_TRUE(m_pDC->MakeCurrent(m_pRC));
    draw();
    EXPECT_TRUE(m_Window.ReadPixels(rgb));
    m_pDC->SwapBuffers();
    EXPECT_TRUE(m_pDC->MakeCurrent(nullptr));
    return rgb;
  }

 private:
  OffscreenWindow m_Window;
  HDC m_pDC = m_Window.GetDC();
  HGLRC m_pRC = nullptr;
};

void Clear(float red, float green, float blue) {
  glClearColor(red, green, blue, 1);
  glClear(GL_COLOR_BUFFER_BIT);
}

// Clears a rectangle; y counts from the bottom.
void ClearPart(int x, int y, int width, int height, float red, float green, float blue) {
  glEnable(GL_SCISSOR_TEST);
  glScissor(x, y, width, height);
  Clear(red, green, blue);
  glDisable(GL_SCISSOR_TEST);
}

int Get(GLenum name) {
  GLint value = -1;
  glGetIntegerv(name, &value);
  return value;
}

class OffscreenWindowDrawing : public testing::Test {
 protected:
  void SetUp() override {
    Opened probe(1, 1);
    if (!probe.Window().IsOk())
      GTEST_SKIP() << "no drawing off-screen: " << probe.Window().GetError();
  }
};

TEST(OffscreenWindow, IsAtLeastOnePixelInSize) {
  OffscreenWindow window(0, -5);
  EXPECT_EQ(window.GetWidth(), 1);
  EXPECT_EQ(window.GetHeight(), 1);
  EXPECT_TRUE(window.Resize(-1, 0));
  EXPECT_EQ(window.GetWidth(), 1);
  EXPECT_EQ(window.GetHeight(), 1);
}

TEST(OffscreenWindow, ShowsNothingBeforeThereIsAContext) {
  OffscreenWindow window(4, 3);
  Bytes rgb = {1, 2, 3};
  EXPECT_FALSE(window.ReadPixels(rgb));
  EXPECT_TRUE(rgb.empty());
  EXPECT_EQ(window.GetSamples(), 0);
}

TEST(OffscreenWindow, HasOneSurfaceAllItsLife) {
  OffscreenWindow window(4, 3);
  HDC const surface = window.GetDC();
  ASSERT_NE(surface, nullptr);
  window.ReleaseDC(surface);
  EXPECT_EQ(window.GetDC(), surface);
}

TEST(OffscreenWindow, TakesMessages) {
  OffscreenWindow window(4, 3);
  EXPECT_TRUE(PostMessageW(&window, 7, 8, 9));
  PlatformMessage message;
  EXPECT_TRUE(window.Take(message));
  EXPECT_EQ(message.message, 7u);
}

// In a process of its own, which has not asked EGL for anything yet.
[[noreturn]] void TellErrorWith(char const* variable, char const* value) {
  setenv(variable, value, 1);
  Opened opened(4, 3);
  std::cerr << "told: " << opened.Window().GetError() << '\n';
  std::exit(opened.Window().IsOk() || opened.RC() != nullptr ? 1 : 0);
}

TEST(OffscreenWindowDeathTest, SaysThatThereIsNoEglDriver) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(TellErrorWith("__EGL_VENDOR_LIBRARY_DIRS", "/nowhere"), testing::ExitedWithCode(0),
              "told: no EGL driver here draws without a window system");
}

TEST(OffscreenWindowDeathTest, SaysThatNoDriverWorks) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(TellErrorWith("LIBGL_DRIVERS_PATH", "/nowhere"), testing::ExitedWithCode(0),
              "told: [^ ]+");
}

TEST_F(OffscreenWindowDrawing, ReadsRowsFromTheTopDown) {
  Opened opened(3, 2);
  Bytes const rgb = opened.Draw([] {
    Clear(0, 0, 0);
    ClearPart(0, 1, 1, 1, 1, 0, 0);
    ClearPart(2, 0, 1, 1, 0, 1, 1);
  });
  EXPECT_EQ(rgb, (Bytes{255, 0, 0, 0, 0, 0, 0, 0, 0,  //
                        0, 0, 0, 0, 0, 0, 0, 255, 255}));
}

TEST_F(OffscreenWindowDrawing, ReadsTheSameWhateverTheHostSetForItsOwnReading) {
  Opened opened(3, 2);
  Bytes const rgb = opened.Draw([] {
    Clear(0, 0, 1);
    glPixelStorei(GL_PACK_ALIGNMENT, 8);
    glPixelStorei(GL_PACK_ROW_LENGTH, 50);
    glPixelStorei(GL_PACK_SKIP_ROWS, 7);
    glPixelStorei(GL_PACK_SKIP_PIXELS, 7);
  });
  EXPECT_EQ(rgb, (Bytes{0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255}));
  opened.Draw([] {
    EXPECT_EQ(Get(GL_PACK_ALIGNMENT), 8);
    EXPECT_EQ(Get(GL_PACK_ROW_LENGTH), 50);
  });
}

TEST_F(OffscreenWindowDrawing, ReadsOnlyInAFrameOfItsOwn) {
  Opened one(2, 2);
  Opened other(2, 2);
  Bytes rgb;
  other.Draw([&] { EXPECT_FALSE(one.Window().ReadPixels(rgb)); });
  EXPECT_FALSE(one.Window().ReadPixels(rgb));
}

TEST_F(OffscreenWindowDrawing, WindowsKeepTheirPicturesApart) {
  Opened one(1, 1);
  Opened other(1, 1);
  one.Draw([] { Clear(1, 0, 0); });
  other.Draw([] { Clear(0, 1, 0); });
  EXPECT_EQ(one.Draw([] {}), (Bytes{255, 0, 0}));
  EXPECT_EQ(other.Draw([] {}), (Bytes{0, 255, 0}));
}

TEST_F(OffscreenWindowDrawing, DrawsOnAnyThread) {
  Opened opened(1, 1);
  Bytes rgb;
  std::thread([&] { rgb = opened.Draw([] { Clear(1, 1, 0); }); }).join();
  EXPECT_EQ(rgb, (Bytes{255, 255, 0}));
  EXPECT_EQ(opened.Draw([] { Clear(0, 1, 1); }), (Bytes{0, 255, 255}));
}

TEST_F(OffscreenWindowDrawing, IsACompatibilityContext) {
  Opened opened(1, 1);
  opened.Draw([] {
    glBegin(GL_QUADS);
    glEnd();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  });
}

struct Depths {
  int red, green, blue, depth;
};

Depths DepthsFor(std::uint8_t colorBits, std::uint8_t depthBits) {
  Opened opened(1, 1, 0, Wish(colorBits, depthBits));
  Depths depths{};
  opened.Draw([&] {
    depths = {Get(GL_RED_BITS), Get(GL_GREEN_BITS), Get(GL_BLUE_BITS), Get(GL_DEPTH_BITS)};
    EXPECT_EQ(Get(GL_SAMPLES), 0);
  });
  return depths;
}

TEST_F(OffscreenWindowDrawing, HasTheColourDepthThatIsWished) {
  for (std::uint8_t const bits : {std::uint8_t{24}, std::uint8_t{32}}) {
    Depths const depths = DepthsFor(bits, 24);
    EXPECT_EQ(depths.red, 8);
    EXPECT_EQ(depths.green, 8);
    EXPECT_EQ(depths.blue, 8);
  }
  Depths const small = DepthsFor(16, 24);
  EXPECT_EQ(small.red + small.green + small.blue, 16);
}

TEST_F(OffscreenWindowDrawing, HasAtLeastTheDepthBufferThatIsWished) {
  EXPECT_GE(DepthsFor(24, 16).depth, 16);
  EXPECT_GE(DepthsFor(24, 24).depth, 24);
}

TEST_F(OffscreenWindowDrawing, GivesWhatComesNearestToAWishTooHigh) {
  Depths const depths = DepthsFor(255, 255);
  EXPECT_GE(depths.red, 8);
  EXPECT_GE(depths.depth, 24);
}

TEST_F(OffscreenWindowDrawing, KeepsItsFirstFormat) {
  Opened opened(1, 1);
  int const format = opened.DC()->ChoosePixelFormat(Wish(24, 24));
  int const other = opened.DC()->ChoosePixelFormat(Wish(16, 16));
  ASSERT_NE(format, other);
  EXPECT_TRUE(opened.DC()->SetPixelFormat(format));
  EXPECT_FALSE(opened.DC()->SetPixelFormat(other));
}

TEST_F(OffscreenWindowDrawing, HasNoFormatByANumberThatIsNone) {
  OffscreenWindow window(1, 1);
  EXPECT_FALSE(window.GetDC()->SetPixelFormat(0));
  EXPECT_FALSE(window.GetDC()->SetPixelFormat(1 << 30));
  EXPECT_EQ(window.GetDC()->CreateContext(), nullptr);
}

TEST_F(OffscreenWindowDrawing, TakesTheContextOffTheThreadThatDeletesIt) {
  Bytes rgb;
  Opened opened(1, 1);
  HGLRC const second = opened.DC()->CreateContext();
  EXPECT_TRUE(opened.DC()->MakeCurrent(second));
  opened.DC()->DeleteContext(second);
  EXPECT_FALSE(opened.Window().ReadPixels(rgb));
  EXPECT_EQ(opened.Draw([] { Clear(1, 0, 1); }), (Bytes{255, 0, 255}));
}

TEST_F(OffscreenWindowDrawing, ResizedWindowDrawsInItsNewSize) {
  Opened opened(1, 1);
  opened.Draw([] { Clear(1, 0, 0); });
  EXPECT_TRUE(opened.Window().Resize(3, 2));
  EXPECT_EQ(opened.Window().GetWidth(), 3);
  EXPECT_EQ(opened.Window().GetHeight(), 2);
  Bytes const rgb = opened.Draw([] {
    Clear(0, 0, 0);
    ClearPart(2, 1, 1, 1, 1, 1, 1);
  });
  EXPECT_EQ(rgb, (Bytes{0, 0, 0, 0, 0, 0, 255, 255, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_TRUE(opened.Window().IsOk());
}

TEST_F(OffscreenWindowDrawing, SaysWhenAPictureIsLargerThanTheDriverDraws) {
  int limit = 0;
  Opened(1, 1).Draw([&] {
    GLint limits[2];
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, limits);
    limit = limits[0];
  });
  Opened opened(limit + 1, 1);
  opened.DC()->MakeCurrent(opened.RC());
  opened.DC()->MakeCurrent(nullptr);
  EXPECT_FALSE(opened.Window().IsOk());
  EXPECT_THAT(opened.Window().GetError(), HasSubstr(std::to_string(limit)));
}

// Draws an edge that is not upright and returns the different values of red along it.
std::set<int> Shades(Opened& opened) {
  Bytes const rgb = opened.Draw([] {
    Clear(0, 0, 0);
    glColor3f(1, 1, 1);
    glBegin(GL_TRIANGLES);
    glVertex2f(-1, -1);
    glVertex2f(1, -1);
    glVertex2f(-0.7F, 1);
    glEnd();
  });
  std::set<int> shades;
  for (std::size_t i = 0; i < rgb.size(); i += 3) shades.insert(rgb[i]);
  return shades;
}

TEST_F(OffscreenWindowDrawing, WithoutSamplesAPixelIsInOrOut) {
  Opened opened(32, 32);
  EXPECT_EQ(opened.Window().GetSamples(), 0);
  EXPECT_EQ(Shades(opened), (std::set<int>{0, 255}));
}

class OffscreenWindowSamples : public OffscreenWindowDrawing {
 protected:
  void SetUp() override {
    OffscreenWindowDrawing::SetUp();
    if (IsSkipped()) return;
    Opened probe(1, 1, 4);
    probe.Draw([] {});
    if (probe.Window().GetSamples() == 0) GTEST_SKIP() << "the driver takes one sample a pixel";
  }
};

TEST_F(OffscreenWindowSamples, MakeEdgesSmooth) {
  Opened opened(32, 32, 4);
  EXPECT_GT(Shades(opened).size(), 3u);
  EXPECT_GE(opened.Window().GetSamples(), 4);
}

TEST_F(OffscreenWindowSamples, ShowTheWholePictureThroughAScissor) {
  Opened opened(3, 2, 4);
  auto const cut = [] {
    Clear(0, 0, 1);
    glEnable(GL_SCISSOR_TEST);
    glScissor(1, 1, 1, 1);
    Clear(1, 0, 0);
  };
  Bytes const expected = {0, 0, 255, 255, 0, 0, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255};
  EXPECT_EQ(opened.Draw(cut), expected);
  EXPECT_EQ(opened.Draw([] {
    EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
    glDisable(GL_SCISSOR_TEST);
  }),
            expected);
}

TEST_F(OffscreenWindowSamples, MayBeReadInTheMidstOfAFrame) {
  Opened opened(1, 1, 4);
  Bytes const rgb = opened.Draw([&] {
    Bytes early;
    Clear(1, 0, 0);
    EXPECT_TRUE(opened.Window().ReadPixels(early));
    EXPECT_EQ(early, (Bytes{255, 0, 0}));
    Clear(0, 1, 0);
  });
  EXPECT_EQ(rgb, (Bytes{0, 255, 0}));
}

TEST_F(OffscreenWindowSamples, AreThereInAnotherSize) {
  Opened opened(1, 1, 4);
  opened.Draw([] { Clear(1, 0, 0); });
  EXPECT_TRUE(opened.Window().Resize(32, 32));
  EXPECT_TRUE(opened.DC()->MakeCurrent(opened.RC()));
  glViewport(0, 0, 32, 32);
  EXPECT_GT(Shades(opened).size(), 3u);
}

TEST_F(OffscreenWindowSamples, AreAsManyAsTheDriverHas) {
  Opened opened(8, 8, 1 << 20);
  opened.Draw([] { Clear(1, 0, 0); });
  EXPECT_GE(opened.Window().GetSamples(), 4);
  EXPECT_TRUE(opened.Window().IsOk());
}

TEST_F(OffscreenWindowSamples, KeepTheDepthTest) {
  Opened opened(1, 1, 4);
  Bytes const rgb = opened.Draw([] {
    Clear(0, 0, 0);
    glClear(GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    glColor3f(1, 0, 0);
    glRectf(-1, -1, 1, 1);
    glColor3f(0, 1, 0);
    glTranslatef(0, 0, 0.5F);  // away from the eye
    glRectf(-1, -1, 1, 1);
  });
  EXPECT_EQ(rgb, (Bytes{255, 0, 0}));
}

}  // namespace
