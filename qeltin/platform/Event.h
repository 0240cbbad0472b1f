#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

#include "qeltin/platform/Export.h"

// A flag that threads can wait for. Once signalled it stays so, for any number of waits, until it
// is reset.
//
// Threads: all operations from any thread.
class QELTIN_API Event {
 public:
  Event();
  ~Event();
  Event(Event const&) = delete;
  Event& operator=(Event const&) = delete;

  void Set();
  void Reset();

  // Returns true as soon as the event is signalled, false where `limit` passes without that.
  bool Wait(std::chrono::milliseconds limit) const;

 private:
  mutable std::mutex m_Mutex;  // guards the writes of all below
  mutable std::condition_variable m_Signalled;
  std::atomic<bool> m_bSignalled = false;
};
