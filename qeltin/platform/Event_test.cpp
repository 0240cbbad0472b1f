#include "qeltin/platform/Event.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;

constexpr auto LONG_ENOUGH = 30s;

TEST(Event, StartsUnsignalled) { EXPECT_FALSE(Event().Wait(0ms)); }

TEST(Event, AWaitThatNobodyEndsTakesItsTime) {
  auto const start = std::chrono::steady_clock::now();
  EXPECT_FALSE(Event().Wait(5ms));
  EXPECT_GE(std::chrono::steady_clock::now() - start, 5ms);
}

TEST(Event, StaysSignalledUntilItIsReset) {
  Event event;
  event.Set();
  EXPECT_TRUE(event.Wait(0ms));
  EXPECT_TRUE(event.Wait(0ms));
  event.Reset();
  EXPECT_FALSE(event.Wait(0ms));
}

TEST(Event, LetsEveryWaitingThreadGo) {
  Event event;
  int woken[3] = {};
  std::vector<std::thread> threads;
  for (int& mine : woken) {
    threads.emplace_back([&event, &mine] { mine = event.Wait(LONG_ENOUGH) ? 1 : 0; });
  }
  event.Set();
  for (std::thread& thread : threads) thread.join();
  for (int const each : woken) EXPECT_EQ(each, 1);
}

}  // namespace
