#include "qeltin/decimate/TinTimer.h"

#include "qeltin/platform/Clock.h"

unsigned long TinTimer::Start() { return m_iStartTime = timeGetTime(); }

unsigned long TinTimer::Stop() { return m_iStopTime = timeGetTime(); }

unsigned long TinTimer::GetElapsedTime() const { return m_iStopTime - m_iStartTime; }

unsigned long TinTimer::GetSplitTime() const { return timeGetTime() - m_iStartTime; }

void TinTimer::Reset() {
  m_iStartTime = 0;
  m_iStopTime = 0;
}
