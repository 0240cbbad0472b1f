#include "qeltin/decimate/MessageGate.h"

MessageGate& MessageGate::operator=(MessageGate const& other) {
  m_iInterval = other.m_iInterval;
  return *this;
}

bool MessageGate::PostMessageW(HWND window, unsigned int message, std::uint64_t wParam,
                               std::int64_t lParam) {
  if (m_Timer.GetSplitTime() <= m_iInterval) return false;
  ::PostMessageW(window, message, wParam, lParam);
  m_Timer.Reset();
  m_Timer.Start();
  return true;
}
