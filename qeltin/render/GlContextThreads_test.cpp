#include <GL/gl.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "qeltin/platform/gl/OffscreenWindow.h"
#include "qeltin/platform/gl/X11Window.h"
#include "qeltin/render/GlContext.h"
#include "qeltin/render/GlViewer.h"
#include "testing/gl/Xvfb.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

#ifdef __SANITIZE_THREAD__
constexpr auto DURATION = 10s;
#else
constexpr auto DURATION = 1s;
#endif

constexpr int SIZE = 64;  // that both windows have at least

// What one of several threads does to a context that it shares.
class Artist {
 public:
  Artist(GlContext& context, GlColor const& color) : m_Context(context), m_Color(color) {}

  void WorkUntil(Clock::time_point end) {
    while (Clock::now() < end) {
      GlViewer* const viewer = m_Context.CreateViewer();
      DrawFrame(viewer);
      m_Context.OnSize(SIZE + m_iFrames % 7, SIZE);
      m_Context.DestroyViewer(viewer);
    }
  }

  int Frames() const { return m_iFrames; }
  int Disturbed() const { return m_iDisturbed; }

 private:
  void DrawFrame(GlViewer* viewer) {
    m_Context.BeginDraw();
    m_Context.SetBackgroundColor(m_Color);  // for whoever draws next
    glClearColor(m_Color.GetRed(), m_Color.GetGreen(), m_Color.GetBlue(), 1.0f);
    m_Context.BeginDrawViewer(viewer);
    std::this_thread::yield();
    int const list = m_Context.BeginCompileList();
    m_Context.BeginDrawPoints();
    m_Context.EndDrawVertices();
    m_Context.EndCompileList();
    m_Context.DrawCompiledList(list);
    m_Context.DeleteCompiledList(list);
    m_Context.EndDrawViewer(viewer);
    if (PixelInside() != m_Color) ++m_iDisturbed;
    ++m_iFrames;
    m_Context.EndDraw();
  }

  static GlColor PixelInside() {
    std::array<float, 4> pixel{};
    glReadPixels(SIZE / 2, SIZE / 2, 1, 1, GL_RGBA, GL_FLOAT, pixel.data());
    return {pixel[0], pixel[1], pixel[2], 1.0f};
  }

  GlContext& m_Context;
  GlColor m_Color;
  int m_iFrames = 0;
  int m_iDisturbed = 0;  // frames that another thread has drawn into
};

// Two threads draw, resize, and create viewers, until `DURATION` has passed; meanwhile `attend` is
// called again and again.
template <typename Attend>
void ShareContext(GlContext& context, Attend attend) {
  Artist red(context, {1.0f, 0.0f, 0.0f, 1.0f});
  Artist blue(context, {0.0f, 0.0f, 1.0f, 1.0f});
  GlViewer* const kept = context.CreateViewer();
  Clock::time_point const end = Clock::now() + DURATION;
  std::thread one([&red, end] { red.WorkUntil(end); });
  std::thread other([&blue, end] { blue.WorkUntil(end); });
  while (Clock::now() < end) attend();
  one.join();
  other.join();
  for (Artist const& artist : {red, blue}) {
    EXPECT_GT(artist.Frames(), 0);
    EXPECT_EQ(artist.Disturbed(), 0);
  }
  EXPECT_EQ(context.GetNumberOfViewers(), 1);
  EXPECT_EQ(context.GetViewer(0), kept);
}

TEST(GlContextThreads, ShareAnOffscreenWindow) {
  OffscreenWindow window(SIZE + 10, SIZE + 10);
  GlContext context(&window, 24, 24);
  if (!window.IsOk()) GTEST_SKIP() << window.GetError();
  context.OnSize(SIZE, SIZE);
  ShareContext(context, [] { std::this_thread::sleep_for(10ms); });
}

TEST(GlContextThreads, ShareAWindowOnAnXServerThatAnotherThreadAttends) {
  qeltin::testing::Xvfb const server;
  if (server.Display().empty()) GTEST_SKIP() << "there is no Xvfb to show windows on";
  X11Window window(L"shared", SIZE + 10, SIZE + 10, server.Display());
  GlContext context(&window, 24, 24);
  ASSERT_TRUE(window.IsOk()) << window.GetError();
  context.OnSize(SIZE, SIZE);
  int rounds = 0;
  int sizes_told = 0;
  ShareContext(context, [&window, &rounds, &sizes_told] {
    WindowEvent event;
    bool const told = window.NextEvent(event, 5ms);
    if (told && event.kind == WindowEvent::Kind::RESIZE) ++sizes_told;
    window.Resize(SIZE + 10 + ++rounds % 5, SIZE + 10);
    window.SetTitle(L"round " + std::to_wstring(rounds));
  });
  EXPECT_GT(sizes_told, 0);
  EXPECT_TRUE(window.IsOk()) << window.GetError();
}

}  // namespace
