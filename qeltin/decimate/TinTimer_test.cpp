#include "qeltin/decimate/TinTimer.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>

#include "qeltin/platform/Clock.h"

namespace {

TinTimer Stamped(std::uint32_t start, std::uint32_t stop) {
  return std::bit_cast<TinTimer>(std::array<std::uint32_t, 2>{start, stop});
}

TEST(TinTimer, StartsWithBothStampsAtZero) {
  TinTimer const timer;
  EXPECT_EQ(timer.GetStartTime(), 0u);
  EXPECT_EQ(timer.GetStopTime(), 0u);
  EXPECT_EQ(timer.GetElapsedTime(), 0u);
}

TEST(TinTimer, StampsTheClockAndReturnsIt) {
  TinTimer timer;
  std::uint32_t const before = timeGetTime();
  unsigned long const start = timer.Start();
  unsigned long const stop = timer.Stop();
  std::uint32_t const after = timeGetTime();
  EXPECT_EQ(timer.GetStartTime(), start);
  EXPECT_EQ(timer.GetStopTime(), stop);
  EXPECT_LE(static_cast<std::uint32_t>(start - before), after - before);
  EXPECT_LE(static_cast<std::uint32_t>(stop - start), after - before);
}

TEST(TinTimer, AStopWithoutAStartGivesTheClock) {
  TinTimer timer;
  unsigned long const stop = timer.Stop();
  EXPECT_EQ(timer.GetElapsedTime(), stop);
}

TEST(TinTimer, AfterAResetTheElapsedTimeIsZero) {
  TinTimer timer = Stamped(5, 900);
  EXPECT_EQ(timer.GetElapsedTime(), 895u);
  timer.Reset();
  EXPECT_EQ(timer.GetElapsedTime(), 0u);
  EXPECT_EQ(timer.GetStartTime(), 0u);
  EXPECT_EQ(timer.GetStopTime(), 0u);
}

TEST(TinTimer, ADifferenceAcrossTheWrapOfTheClockIsRight) {
  EXPECT_EQ(Stamped(0xfffffff0u, 0x10u).GetElapsedTime(), 0x20u);
}

TEST(TinTimer, AStopBeforeTheStartWrapsModulo32Bits) {
  EXPECT_EQ(Stamped(10, 7).GetElapsedTime(), 0xfffffffdu);
}

TEST(TinTimer, TheSplitTimeRunsOnAndTouchesNothing) {
  std::uint32_t const before = timeGetTime();
  TinTimer const timer = Stamped(before - 100u, 3);
  unsigned long const split = timer.GetSplitTime();
  EXPECT_GE(split, 100u);
  EXPECT_LE(split, 100u + (timeGetTime() - before));
  EXPECT_EQ(timer.GetStartTime(), before - 100u);
  EXPECT_EQ(timer.GetStopTime(), 3u);
}

TEST(TinTimer, AssignmentCopiesBothStamps) {
  TinTimer timer;
  timer = Stamped(1, 2);
  EXPECT_EQ(timer.GetStartTime(), 1u);
  EXPECT_EQ(timer.GetStopTime(), 2u);
}

}  // namespace
