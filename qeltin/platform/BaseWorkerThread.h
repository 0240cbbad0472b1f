#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "qeltin/platform/Export.h"

// Calls an operation of a derived class on a thread of its own, again and again, until that returns
// 0. The thread may then be started anew.
//
// REQUIRES of a derived class: its destructor calls WaitForEnd, so that the thread finds the whole
// object as long as it runs.
//
// Threads: StartBaseWorkerThread and WaitForEnd from any thread, the worker included.
class QELTIN_API BaseWorkerThread {
 public:
  BaseWorkerThread();
  BaseWorkerThread(BaseWorkerThread const&) = delete;
  BaseWorkerThread& operator=(BaseWorkerThread const&) = delete;

  // Joins the thread.
  virtual ~BaseWorkerThread();

  // Starts the thread. While it runs, and on the thread itself, notes that another round is wanted:
  // after ThreadFunction has returned 0 it is then called again. Returns false iff the system
  // refuses a thread. `priority` and `name` have no effect here.
  bool StartBaseWorkerThread(int priority, wchar_t const* name);

  // One step of the work. Returns 0 to end.
  virtual int ThreadFunction() = 0;

 protected:
  // Waits until the thread has made its last call of ThreadFunction. Returns at once where none
  // runs, and on the thread itself.
  void WaitForEnd();

 private:
  void Run();

  std::mutex m_Mutex;  // guards all below
  std::condition_variable m_Ended;
  std::thread m_Thread;
  bool m_bRunning = false;
  bool m_bAgain = false;
};
