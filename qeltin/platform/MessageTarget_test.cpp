#include "qeltin/platform/MessageTarget.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;

constexpr auto LONG_ENOUGH = 30s;

TEST(MessageTarget, KeepsMessagesInTheOrderOfTheirArrival) {
  MessageTarget window;
  EXPECT_TRUE(PostMessageW(&window, 7, 1, -1));
  EXPECT_TRUE(PostMessageW(&window, 8, 2, -2));
  PlatformMessage message;
  ASSERT_TRUE(window.Take(message));
  EXPECT_EQ(message.message, 7u);
  EXPECT_EQ(message.wParam, 1u);
  EXPECT_EQ(message.lParam, -1);
  ASSERT_TRUE(window.Take(message));
  EXPECT_EQ(message.message, 8u);
  EXPECT_EQ(message.wParam, 2u);
  EXPECT_EQ(message.lParam, -2);
  EXPECT_FALSE(window.Take(message));
  EXPECT_EQ(message.message, 8u);
}

TEST(MessageTarget, ANullWindowSwallowsTheMessage) { EXPECT_FALSE(PostMessageW(nullptr, 7, 1, 1)); }

TEST(MessageTarget, AWaitEndsWithAMessageFromAnotherThread) {
  MessageTarget window;
  std::thread poster([&window] { window.Post({3, 4, 5}); });
  PlatformMessage message;
  EXPECT_TRUE(window.Wait(message, LONG_ENOUGH));
  EXPECT_EQ(message.message, 3u);
  poster.join();
}

TEST(MessageTarget, AWaitWithoutAMessageAnswersFalse) {
  MessageTarget window;
  PlatformMessage message;
  EXPECT_FALSE(window.Wait(message, 2ms));
}

TEST(MessageTarget, ACallbackTakesTheMessagesOnTheThreadThatPosts) {
  MessageTarget window;
  std::vector<unsigned int> heard;
  std::thread::id thread;
  window.SetCallback([&](PlatformMessage const& message) {
    heard.push_back(message.message);
    thread = std::this_thread::get_id();
    if (message.message == 1) window.Post({2, 0, 0});
  });
  std::thread poster([&window] { window.Post({1, 0, 0}); });
  std::thread::id const other = poster.get_id();
  poster.join();
  EXPECT_EQ(heard, (std::vector<unsigned int>{1, 2}));
  EXPECT_EQ(thread, other);
  PlatformMessage message;
  EXPECT_FALSE(window.Take(message));
}

TEST(MessageTarget, AnEmptyCallbackRestoresTheQueue) {
  MessageTarget window;
  window.SetCallback([](PlatformMessage const&) {});
  window.SetCallback(nullptr);
  window.Post({9, 0, 0});
  PlatformMessage message;
  EXPECT_TRUE(window.Take(message));
}

TEST(MessageTarget, MayGoAsSoonAsItsMessageIsTaken) {
  for (int i = 0; i < 100; ++i) {
    auto window = std::make_unique<MessageTarget>();
    std::thread poster([target = window.get()] { target->Post({1, 0, 0}); });
    PlatformMessage message;
    EXPECT_TRUE(window->Wait(message, LONG_ENOUGH));
    window.reset();
    poster.join();
  }
}

}  // namespace
