#include "qeltin/platform/Event.h"

Event::Event() = default;

Event::~Event() = default;

void Event::Set() {
  std::lock_guard const lock(m_Mutex);
  m_bSignalled = true;
  m_Signalled.notify_all();
}

void Event::Reset() {
  std::lock_guard const lock(m_Mutex);
  m_bSignalled = false;
}

bool Event::Wait(std::chrono::milliseconds limit) const {
  if (m_bSignalled) return true;
  std::unique_lock lock(m_Mutex);
  return m_Signalled.wait_for(lock, limit, [this] { return m_bSignalled.load(); });
}
