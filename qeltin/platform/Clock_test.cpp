#include "qeltin/platform/Clock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <thread>
#include <type_traits>

namespace {

TEST(Clock, IsA32BitValue) {
  EXPECT_TRUE((std::is_same_v<decltype(timeGetTime()), std::uint32_t>));
}

TEST(Clock, CountsMilliseconds) {
  auto const before = std::chrono::steady_clock::now();
  std::uint32_t const start = timeGetTime();
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  std::uint32_t const elapsed = timeGetTime() - start;  // right across the wrap as well
  auto const most = std::chrono::duration_cast<std::chrono::milliseconds>(
                        std::chrono::steady_clock::now() - before)
                        .count();
  EXPECT_GE(elapsed, 29u);
  EXPECT_LE(elapsed, most + 1);
}

TEST(Clock, NeverRunsBack) {
  std::uint32_t last = timeGetTime();
  for (int i = 0; i < 100000; ++i) {
    std::uint32_t const now = timeGetTime();
    EXPECT_LT(now - last, 0x80000000u);
    last = now;
  }
}

}  // namespace
