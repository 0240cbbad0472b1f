#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>

#include "qeltin/platform/Export.h"

// What somebody tells a window: a number and two values whose meaning goes with it.
struct PlatformMessage {
  unsigned int message = 0;
  std::uint64_t wParam = 0;
  std::int64_t lParam = 0;
};

// Takes messages from any thread and keeps them in order of arrival until the host fetches them, or
// hands each to a callback on the thread that posts it.
//
// Threads: all operations from any thread. The callback runs without a lock of this object, maybe
// on several threads at once.
class QELTIN_API MessageTarget {
 public:
  using Callback = std::function<void(PlatformMessage const&)>;

  MessageTarget() = default;
  MessageTarget(MessageTarget const&) = delete;
  MessageTarget& operator=(MessageTarget const&) = delete;
  virtual ~MessageTarget();

  // Sends later messages to `callback` instead of the queue; an empty one restores the queue.
  void SetCallback(Callback callback);

  void Post(PlatformMessage const& message);

  // Takes the oldest message off the queue. Returns false where there is none.
  bool Take(PlatformMessage& message);

  // The same, and waits up to `limit` for one to come.
  bool Wait(PlatformMessage& message, std::chrono::milliseconds limit);

 private:
  bool TakeFront(PlatformMessage& message);

  std::mutex m_Mutex;  // guards all below
  std::condition_variable m_Arrived;
  std::deque<PlatformMessage> m_Queue;
  Callback m_Callback;
};

using HWND = MessageTarget*;

// Posts a message to `window`, not owned; a null one swallows it. Returns true iff there was a
// window.
QELTIN_API bool PostMessageW(HWND window, unsigned int message, std::uint64_t wParam,
                             std::int64_t lParam);
