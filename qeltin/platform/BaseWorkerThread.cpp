#include "qeltin/platform/BaseWorkerThread.h"

#include <system_error>

BaseWorkerThread::BaseWorkerThread() = default;

BaseWorkerThread::~BaseWorkerThread() {
  if (m_Thread.joinable()) m_Thread.join();
}

bool BaseWorkerThread::StartBaseWorkerThread(int, wchar_t const*) {
  std::lock_guard const lock(m_Mutex);
  if (m_bRunning) {
    m_bAgain = true;
    return true;
  }
  if (m_Thread.joinable()) m_Thread.join();  // it has let go of the mutex for the last time
  m_bRunning = true;
  try {
    m_Thread = std::thread([this] { Run(); });
  } catch (std::system_error const&) {
    m_bRunning = false;
  }
  return m_bRunning;
}

void BaseWorkerThread::WaitForEnd() {
  std::unique_lock lock(m_Mutex);
  if (m_Thread.get_id() == std::this_thread::get_id()) return;
  m_Ended.wait(lock, [this] { return !m_bRunning; });
}

void BaseWorkerThread::Run() {
  while (true) {
    while (ThreadFunction() != 0) {
    }
    std::lock_guard const lock(m_Mutex);
    if (!m_bAgain) {
      m_bRunning = false;
      m_Ended.notify_all();
      return;
    }
    m_bAgain = false;
  }
}
