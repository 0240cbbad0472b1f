#pragma once

#include <cstdint>

#include "qeltin/platform/Export.h"

// A stopwatch in milliseconds on the clock of timeGetTime: two stamps, and no state of running or
// stopped. Differences are modulo 2 to the power 32, so that a wrap of the clock does no harm.
//
// Threads: a value.
class QELTIN_API TinTimer {
 public:
  // Stamp the clock and return it.
  unsigned long Start();
  unsigned long Stop();

  // Returns the time from the start to the stop.
  unsigned long GetElapsedTime() const;

  // Returns the time from the start to now.
  unsigned long GetSplitTime() const;

  unsigned long GetStartTime() const { return m_iStartTime; }
  unsigned long GetStopTime() const { return m_iStopTime; }
  void Reset();

 private:
  std::uint32_t m_iStartTime = 0;
  std::uint32_t m_iStopTime = 0;
};
