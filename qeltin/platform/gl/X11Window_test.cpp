#include "qeltin/platform/gl/X11Window.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "qeltin/platform/gl/OffscreenWindow.h"
#include "testing/gl/Screen.h"
#include "testing/gl/Xvfb.h"

namespace {

using namespace std::chrono_literals;
using qeltin::testing::AskToClose;
using qeltin::testing::ReadScreen;
using qeltin::testing::Xvfb;
using Kind = WindowEvent::Kind;
using Bytes = std::vector<unsigned char>;

constexpr auto LONG_ENOUGH = 30s;

Bytes const RED = {255, 0, 0};
Bytes const GREEN = {0, 255, 0};

PIXELFORMATDESCRIPTOR Wished(int depth_bits) {
  PIXELFORMATDESCRIPTOR wished{};
  wished.cColorBits = 24;
  wished.cDepthBits = static_cast<unsigned char>(depth_bits);
  return wished;
}

// A context on a window that draws on the calling thread.
class Drawing {
 public:
  explicit Drawing(DrawingWindow& window) : m_Surface(*window.GetDC()) {
    m_Surface.SetPixelFormat(m_Surface.ChoosePixelFormat(Wished(24)));
    m_pContext = m_Surface.CreateContext();
    m_bCurrent = m_pContext != nullptr && m_Surface.MakeCurrent(m_pContext);
  }
  ~Drawing() {
    m_Surface.MakeCurrent(nullptr);
    m_Surface.DeleteContext(m_pContext);
  }
  Drawing(Drawing const&) = delete;
  Drawing& operator=(Drawing const&) = delete;

  bool IsCurrent() const { return m_bCurrent; }

  void Fill(float red, float green, float blue) const {
    glClearColor(red, green, blue, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
  }

  // Ends a frame and begins the next.
  void Show() const {
    m_Surface.SwapBuffers();
    m_Surface.MakeCurrent(nullptr);
    m_Surface.MakeCurrent(m_pContext);
  }

 private:
  DrawingSurface& m_Surface;
  RenderingContext* m_pContext = nullptr;
  bool m_bCurrent = false;
};

Bytes ReadBack(int x, int y, int width, int height) {
  Bytes pixels(std::size_t{3} * width * height);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(x, y, width, height, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
  return pixels;
}

class X11Window_ : public testing::Test {
 protected:
  void SetUp() override {
    if (m_Server.Display().empty()) GTEST_SKIP() << "there is no Xvfb to show windows on";
  }

  std::unique_ptr<X11Window> Open(int width = 200, int height = 150) const {
    auto window = std::make_unique<X11Window>(L"test window", width, height, m_Server.Display());
    EXPECT_TRUE(window->IsOk()) << window->GetError();
    return window;
  }

  // Drops events until one of that kind comes.
  static std::optional<WindowEvent> Await(X11Window& window, Kind kind) {
    auto const end = std::chrono::steady_clock::now() + LONG_ENOUGH;
    WindowEvent event;
    while (std::chrono::steady_clock::now() < end) {
      if (window.NextEvent(event, 1s) && event.kind == kind) return event;
    }
    ADD_FAILURE() << "the event does not come";
    return {};
  }

  Bytes AwaitScreen(int x, int y, Bytes const& wanted) const {
    auto const end = std::chrono::steady_clock::now() + LONG_ENOUGH;
    Bytes seen;
    while (seen != wanted && std::chrono::steady_clock::now() < end) {
      seen = ReadScreen(m_Server.Display(), x, y, 1, 1);
    }
    return seen;
  }

  Xvfb m_Server;
};

// With a user who types and moves the pointer.
class X11Window_WithUser : public X11Window_ {
 protected:
  void SetUp() override {
    X11Window_::SetUp();
    if (!IsSkipped() && !m_Server.Xdotool("version").starts_with("xdotool")) {
      GTEST_SKIP() << "there is no xdotool to play the user";
    }
  }
};

TEST(X11Window_WithoutServer, TellsWhyAndDrawsNothing) {
  X11Window window(L"nowhere", 100, 80, ":64321");
  EXPECT_FALSE(window.IsOk());
  EXPECT_EQ(window.GetError(), "there is no X server at :64321");
  EXPECT_EQ(window.GetWidth(), 100);
  EXPECT_EQ(window.GetHeight(), 80);
  window.SetTitle(L"still nowhere");
  window.Resize(10, 10);
  WindowEvent event;
  EXPECT_TRUE(window.NextEvent(event, 0ms));
  EXPECT_EQ(event.kind, Kind::CLOSE);

  DrawingSurface& surface = *window.GetDC();
  EXPECT_EQ(surface.ChoosePixelFormat(Wished(24)), 0);
  EXPECT_FALSE(surface.SetPixelFormat(1));
  EXPECT_EQ(surface.CreateContext(), nullptr);
  EXPECT_FALSE(surface.MakeCurrent(nullptr));
  surface.SwapBuffers();
  surface.DeleteContext(nullptr);
}

TEST_F(X11Window_, HasAsManyBitsAsAreAskedForAndTwoBuffers) {
  for (int const depth_bits : {16, 24}) {
    auto const window = Open();
    DrawingSurface& surface = *window->GetDC();
    ASSERT_TRUE(surface.SetPixelFormat(surface.ChoosePixelFormat(Wished(depth_bits))));
    RenderingContext* const context = surface.CreateContext();
    ASSERT_TRUE(surface.MakeCurrent(context));
    GLint bits = 0;
    for (GLenum const name : {GL_RED_BITS, GL_GREEN_BITS, GL_BLUE_BITS}) {
      glGetIntegerv(name, &bits);
      EXPECT_EQ(bits, 8);
    }
    glGetIntegerv(GL_DEPTH_BITS, &bits);
    EXPECT_GE(bits, depth_bits);
    GLboolean doubled = GL_FALSE;
    glGetBooleanv(GL_DOUBLEBUFFER, &doubled);
    EXPECT_EQ(doubled, GL_TRUE);
    surface.DeleteContext(context);
    EXPECT_EQ(glGetString(GL_VERSION), nullptr) << "a deleted context is current";
    EXPECT_TRUE(window->IsOk()) << window->GetError();
  }
}

TEST_F(X11Window_, KnowsTheFixedFunctions) {
  auto const window = Open();
  Drawing const drawing(*window);
  ASSERT_TRUE(drawing.IsCurrent());
  GLuint const list = glGenLists(1);
  EXPECT_NE(list, 0u);
  glNewList(list, GL_COMPILE);
  glBegin(GL_TRIANGLES);
  glEnd();
  glEndList();
  EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_F(X11Window_, HasOneFormatForLife) {
  auto const window = Open();
  DrawingSurface& surface = *window->GetDC();
  EXPECT_FALSE(surface.SetPixelFormat(0));
  int const format = surface.ChoosePixelFormat(Wished(24));
  EXPECT_TRUE(surface.SetPixelFormat(format));
  EXPECT_TRUE(surface.SetPixelFormat(format));
  EXPECT_FALSE(surface.SetPixelFormat(format + 1));
  EXPECT_EQ(window->GetDC(), &surface);
}

// Every third pixel of a row and of a column lies in the triangle or beside it, none on its edge.
Bytes DrawScene(DrawingWindow& window) {
  Drawing const drawing(window);
  EXPECT_TRUE(drawing.IsCurrent());
  glViewport(0, 0, window.GetWidth(), window.GetHeight());
  drawing.Fill(0.0f, 0.0f, 0.5f);
  glEnable(GL_DEPTH_TEST);
  glClear(GL_DEPTH_BUFFER_BIT);
  for (float const shift : {0.0f, 0.25f}) {
    glBegin(GL_TRIANGLES);
    glColor3f(1.0f, 0.0f, shift);
    glVertex3f(-0.9f + shift, -0.8f, 0.5f);
    glColor3f(0.0f, 1.0f, shift);
    glVertex3f(0.7f + shift, -0.6f, -0.5f + shift);
    glColor3f(0.3f, shift, 1.0f);
    glVertex3f(0.1f, 0.9f - shift, 0.5f - shift);
    glEnd();
  }
  return ReadBack(0, 0, window.GetWidth(), window.GetHeight());
}

TEST_F(X11Window_, ShowsTheSamePixelsAsAnOffscreenWindow) {
  auto const window = Open(301, 203);
  Bytes const seen = DrawScene(*window);
  OffscreenWindow offscreen(301, 203);
  Bytes const expected = DrawScene(offscreen);
  if (!offscreen.IsOk()) GTEST_SKIP() << offscreen.GetError();
  EXPECT_TRUE(seen == expected);
  EXPECT_NE(std::count(seen.begin(), seen.end(), 0), 0);
}

TEST_F(X11Window_, ShowsWhatIsDrawnWhereTheUserSeesIt) {
  auto const window = Open();
  Drawing const drawing(*window);
  drawing.Fill(1.0f, 0.0f, 0.0f);
  drawing.Show();
  EXPECT_EQ(AwaitScreen(100, 75, RED), RED);
  drawing.Fill(0.0f, 1.0f, 0.0f);
  EXPECT_EQ(ReadScreen(m_Server.Display(), 100, 75, 1, 1), RED);
  drawing.Show();
  EXPECT_EQ(AwaitScreen(100, 75, GREEN), GREEN);
}

TEST_F(X11Window_, FillsANewSize) {
  auto const window = Open(200, 150);
  Drawing const drawing(*window);
  drawing.Show();
  window->Resize(320, 240);
  std::optional<WindowEvent> const event = Await(*window, Kind::RESIZE);
  ASSERT_TRUE(event);
  EXPECT_EQ(event->width, 320);
  EXPECT_EQ(event->height, 240);
  EXPECT_EQ(window->GetWidth(), 320);
  EXPECT_EQ(window->GetHeight(), 240);
  drawing.Show();
  drawing.Fill(1.0f, 0.0f, 0.0f);
  drawing.Show();
  EXPECT_EQ(AwaitScreen(319, 239, RED), RED);
}

TEST_F(X11Window_, TellsThatItWantsDrawingOnceItIsShown) {
  auto const window = Open();
  EXPECT_TRUE(Await(*window, Kind::EXPOSE));
}

TEST_F(X11Window_WithUser, HasATitleInAnyScript) {
  auto const window = Open();
  window->SetTitle(L"H\u00f6he 12.5 \u2013 \u6d77");
  WindowEvent event;
  window->NextEvent(event, 0ms);
  std::string const id = m_Server.Xdotool("search --name 12.5");
  EXPECT_EQ(m_Server.Xdotool("getwindowname " + id), "H\u00f6he 12.5 \u2013 \u6d77\n");
}

TEST_F(X11Window_WithUser, TellsKeysAsTheCharactersTheyType) {
  auto const window = Open();
  Await(*window, Kind::EXPOSE);
  m_Server.Xdotool("mousemove 20 30 key plus c shift+c Escape KP_Subtract");
  for (char32_t const key : {U'+', U'c', U'C', U'\x1b', U'-'}) {
    std::optional<WindowEvent> const event = Await(*window, Kind::KEY);
    ASSERT_TRUE(event);
    EXPECT_EQ(event->key, key);
    EXPECT_EQ(event->x, 20);
    EXPECT_EQ(event->y, 30);
    EXPECT_EQ(event->shift, key == U'+' || key == U'C');
  }
}

TEST_F(X11Window_WithUser, AKeyThatTypesNothingIsNoEvent) {
  auto const window = Open();
  Await(*window, Kind::EXPOSE);
  m_Server.Xdotool("mousemove 20 30 key F5 Left q");
  EXPECT_EQ(Await(*window, Kind::KEY)->key, U'q');
}

TEST_F(X11Window_WithUser, TellsButtonsMotionAndWheel) {
  auto const window = Open();
  Await(*window, Kind::EXPOSE);
  WindowEvent::Button const buttons[] = {WindowEvent::LEFT, WindowEvent::MIDDLE,
                                         WindowEvent::RIGHT};
  for (int i = 0; i < 3; ++i) {
    std::string const number = std::to_string(i + 1);
    m_Server.Xdotool("mousemove 20 30 mousedown " + number + " mousemove 25 33 mouseup " + number);
    WindowEvent const press = *Await(*window, Kind::PRESS);
    EXPECT_EQ(press.button, buttons[i]);
    EXPECT_EQ(press.x, 20);
    EXPECT_EQ(press.y, 30);
    WindowEvent const motion = *Await(*window, Kind::MOTION);
    EXPECT_EQ(motion.x, 25);
    EXPECT_EQ(motion.y, 33);
    EXPECT_EQ(Await(*window, Kind::RELEASE)->button, buttons[i]);
  }
  m_Server.Xdotool("keydown Control_L click 4 keyup Control_L click 5");
  WindowEvent const away = *Await(*window, Kind::WHEEL);
  EXPECT_EQ(away.steps, 1);
  EXPECT_EQ(away.x, 25);
  EXPECT_TRUE(away.control);
  WindowEvent const towards = *Await(*window, Kind::WHEEL);
  EXPECT_EQ(towards.steps, -1);
  EXPECT_FALSE(towards.control);
}

TEST_F(X11Window_, WaitsNoLongerThanItIsTold) {
  auto const window = Open();
  WindowEvent event;
  while (window->NextEvent(event, 300ms)) {
  }
  auto const start = std::chrono::steady_clock::now();
  EXPECT_FALSE(window->NextEvent(event, 5ms));
  EXPECT_GE(std::chrono::steady_clock::now() - start, 5ms);
}

TEST_F(X11Window_WithUser, TellsThatTheUserClosesIt) {
  auto const window = Open();
  Await(*window, Kind::EXPOSE);
  AskToClose(m_Server.Display(), std::stoul(m_Server.Xdotool("search --name 'test window'")));
  EXPECT_TRUE(Await(*window, Kind::CLOSE));
  EXPECT_TRUE(window->IsOk());
}

TEST_F(X11Window_WithUser, TellsThatItHasBeenDestroyed) {
  auto const window = Open();
  Await(*window, Kind::EXPOSE);
  m_Server.Xdotool("search --name 'test window' windowclose");
  EXPECT_TRUE(Await(*window, Kind::CLOSE));
}

TEST_F(X11Window_, OutlivesItsServer) {
  auto const window = Open();
  Drawing const drawing(*window);
  m_Server.Stop();
  EXPECT_TRUE(Await(*window, Kind::CLOSE));
  EXPECT_EQ(window->GetError(), "the X server " + m_Server.Display() + " has gone");
  drawing.Fill(1.0f, 0.0f, 0.0f);
  drawing.Show();
  window->SetTitle(L"gone");
}

TEST_F(X11Window_, OneMayGoBeforeAnother) {
  auto const first = Open();
  auto second = Open();
  second.reset();
  Drawing const drawing(*first);
  drawing.Fill(1.0f, 0.0f, 0.0f);
  drawing.Show();
  EXPECT_EQ(AwaitScreen(10, 10, RED), RED);
}

}  // namespace
