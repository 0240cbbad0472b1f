#pragma once

#include <cstdint>

#include "qeltin/decimate/TinTimer.h"
#include "qeltin/platform/Export.h"
#include "qeltin/platform/MessageTarget.h"

// Lets messages through at a limited rate: after each one, none until more than `interval`
// milliseconds have passed. What does not pass is dropped.
//
// A copy takes the interval and starts afresh: its next message passes. Assignment takes the
// interval and keeps the own time.
//
// Threads: no lock.
class QELTIN_API MessageGate {
 public:
  MessageGate() = default;
  explicit MessageGate(unsigned int interval) : m_iInterval(interval) {}
  MessageGate(MessageGate const& other) : m_iInterval(other.m_iInterval) {}
  MessageGate& operator=(MessageGate const& other);

  void SetInterval(unsigned int interval) { m_iInterval = interval; }
  unsigned int GetInterval() const { return m_iInterval; }

  // Returns true iff the message passed, whatever became of it then.
  bool PostMessageW(HWND window, unsigned int message, std::uint64_t wParam, std::int64_t lParam);

 private:
  TinTimer m_Timer;  // when the last message passed
  std::uint32_t m_iInterval = 0;
};
