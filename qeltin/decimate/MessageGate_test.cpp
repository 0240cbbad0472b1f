#include "qeltin/decimate/MessageGate.h"

#include <gtest/gtest.h>

#include "qeltin/platform/Clock.h"

namespace {

// Posts through a gate, and tells when.
struct Attempt {
  explicit Attempt(MessageGate& gate)
      : before(timeGetTime()), passed(gate.PostMessageW(nullptr, 1, 0, 0)), after(timeGetTime()) {}

  bool IsWithinOneMillisecond() const { return before == after; }

  std::uint32_t before;
  bool passed;
  std::uint32_t after;
};

// Opens a gate at a moment that is known to the millisecond.
Attempt PassAtAKnownTime(MessageGate& gate) {
  while (true) {
    Attempt const attempt(gate);
    if (attempt.passed && attempt.IsWithinOneMillisecond()) return attempt;
  }
}

TEST(MessageGate, TheIntervalIsZeroByDefault) {
  EXPECT_EQ(MessageGate().GetInterval(), 0u);
  MessageGate gate(40);
  EXPECT_EQ(gate.GetInterval(), 40u);
  gate.SetInterval(50);
  EXPECT_EQ(gate.GetInterval(), 50u);
}

TEST(MessageGate, TheFirstMessagePassesAndTheNextOneDoesNot) {
  MessageTarget window;
  MessageGate gate(250);
  EXPECT_TRUE(gate.PostMessageW(&window, 5, static_cast<std::uint64_t>(-1), -2));
  EXPECT_FALSE(gate.PostMessageW(&window, 6, 0, 0));
  PlatformMessage message;
  ASSERT_TRUE(window.Take(message));
  EXPECT_EQ(message.message, 5u);
  EXPECT_EQ(message.wParam, 0xffffffffffffffffu);
  EXPECT_EQ(message.lParam, -2);
  EXPECT_FALSE(window.Take(message));
}

TEST(MessageGate, DoesNotPassBeforeTheClockReadsMoreThanTheInterval) {
  MessageGate gate(0xffffffffu);
  EXPECT_FALSE(gate.PostMessageW(nullptr, 1, 0, 0));
}

TEST(MessageGate, PassesWhateverBecomesOfTheMessage) {
  EXPECT_TRUE(MessageGate(10).PostMessageW(nullptr, 1, 0, 0));
}

TEST(MessageGate, WithIntervalZeroOnlyOneMessagePassesInAMillisecond) {
  MessageGate gate(0);
  while (true) {
    Attempt const first = PassAtAKnownTime(gate);
    Attempt const second(gate);
    if (second.before == first.after && second.IsWithinOneMillisecond()) {
      EXPECT_FALSE(second.passed);
      break;
    }
  }
  std::uint32_t const now = timeGetTime();
  while (timeGetTime() == now) {
  }
  EXPECT_TRUE(gate.PostMessageW(nullptr, 1, 0, 0));
}

TEST(MessageGate, AGapOfExactlyTheIntervalDoesNotPass) {
  constexpr std::uint32_t INTERVAL = 3;
  bool exactly = false;
  while (!exactly) {
    MessageGate gate(INTERVAL);
    std::uint32_t const opened = PassAtAKnownTime(gate).after;
    while (true) {
      Attempt const attempt(gate);
      if (!attempt.IsWithinOneMillisecond()) break;  // who knows when that was
      EXPECT_EQ(attempt.passed, attempt.before - opened > INTERVAL);
      exactly = exactly || attempt.before - opened == INTERVAL;
      if (attempt.passed) break;
    }
  }
}

TEST(MessageGate, ACopyPassesItsNextMessageAtOnce) {
  MessageGate gate(250);
  EXPECT_TRUE(gate.PostMessageW(nullptr, 1, 0, 0));
  MessageGate copy(gate);
  EXPECT_EQ(copy.GetInterval(), 250u);
  EXPECT_TRUE(copy.PostMessageW(nullptr, 1, 0, 0));
}

TEST(MessageGate, AssignmentTakesTheIntervalAndKeepsTheTime) {
  MessageGate gate(100);
  EXPECT_TRUE(gate.PostMessageW(nullptr, 1, 0, 0));
  gate = MessageGate(100000);
  EXPECT_EQ(gate.GetInterval(), 100000u);
  EXPECT_FALSE(gate.PostMessageW(nullptr, 1, 0, 0));
}

}  // namespace
