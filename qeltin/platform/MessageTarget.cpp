#include "qeltin/platform/MessageTarget.h"

#include <utility>

MessageTarget::~MessageTarget() = default;

void MessageTarget::SetCallback(Callback callback) {
  std::lock_guard const lock(m_Mutex);
  m_Callback = std::move(callback);
}

void MessageTarget::Post(PlatformMessage const& message) {
  Callback callback;
  {
    std::lock_guard const lock(m_Mutex);
    callback = m_Callback;
    if (!callback) {
      m_Queue.push_back(message);
      m_Arrived.notify_one();  // under the lock: whoever takes the message may then destroy this
    }
  }
  if (callback) callback(message);
}

bool MessageTarget::Take(PlatformMessage& message) {
  std::lock_guard const lock(m_Mutex);
  return TakeFront(message);
}

bool MessageTarget::Wait(PlatformMessage& message, std::chrono::milliseconds limit) {
  std::unique_lock lock(m_Mutex);
  m_Arrived.wait_for(lock, limit, [this] { return !m_Queue.empty(); });
  return TakeFront(message);
}

bool MessageTarget::TakeFront(PlatformMessage& message) {
  if (m_Queue.empty()) return false;
  message = m_Queue.front();
  m_Queue.pop_front();
  return true;
}

bool PostMessageW(HWND window, unsigned int message, std::uint64_t wParam, std::int64_t lParam) {
  if (window == nullptr) return false;
  window->Post({message, wParam, lParam});
  return true;
}
