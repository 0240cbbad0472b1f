#pragma once

#include <mutex>

#include "qeltin/platform/Export.h"

// A lock that the thread which holds it may take again, and must release as often.
//
// Unlike a standard mutex it may be destroyed while the destroying thread holds it, to keep others
// out up to its end. REQUIRES: no other thread holds it or waits for it by then.
//
// Threads: all operations from any thread. The names are those that std::lock_guard wants.
class QELTIN_API CriticalSection {
 public:
  CriticalSection();
  ~CriticalSection();
  CriticalSection(CriticalSection const&) = delete;
  CriticalSection& operator=(CriticalSection const&) = delete;

  // Waits until no other thread holds the lock, and takes it.
  void lock();

  // Releases it once. REQUIRES: the calling thread holds it.
  void unlock();

 private:
  std::recursive_mutex m_Mutex;  // guards all below
  int m_iDepth = 0;              // how often the thread that holds m_Mutex has taken it
};
