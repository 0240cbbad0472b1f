#include "qeltin/platform/CriticalSection.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

namespace {

TEST(CriticalSection, KeepsOtherThreadsOutUntilItIsReleasedAsOftenAsTaken) {
  CriticalSection section;
  section.lock();
  section.lock();
  std::atomic<bool> isIn = false;
  std::thread other([&] {
    std::lock_guard const lock(section);
    isIn = true;
  });
  section.unlock();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(isIn);
  section.unlock();
  other.join();
  EXPECT_TRUE(isIn);
}

TEST(CriticalSection, GuardsWhatThreadsShare) {
  CriticalSection section;
  int count = 0;
  auto const work = [&] {
    for (int i = 0; i < 10000; ++i) {
      std::lock_guard const outer(section);
      std::lock_guard const inner(section);
      ++count;
    }
  };
  std::thread other(work);
  work();
  other.join();
  EXPECT_EQ(count, 20000);
}

TEST(CriticalSection, MayBeDestroyedWhileItIsHeld) {
  CriticalSection section;
  section.lock();
  section.lock();
}

}  // namespace
