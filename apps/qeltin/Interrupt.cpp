#include "apps/qeltin/Interrupt.h"

#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <map>
#include <mutex>
#include <thread>
#include <utility>

namespace qeltin::cli {

namespace {

struct Undos {
  std::recursive_mutex mutex;
  std::map<int, std::function<void()>> list;
  int next = 0;
};

// Never destroyed: the watching thread may need it to the very end.
Undos& TheUndos() {
  static Undos* const undos = new Undos;
  return *undos;
}

[[noreturn]] void EndBy(int signal) {
  Undos& undos = TheUndos();
  // Held until the process is gone: whoever wants to finish an output now waits for ever.
  undos.mutex.lock();
  for (auto last = undos.list.rbegin(); last != undos.list.rend(); ++last) last->second();
  _exit(128 + signal);
}

}  // namespace

void WatchForInterrupts() {
  TheUndos();
  sigset_t watched;
  sigemptyset(&watched);
  for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    sigaction(number, nullptr, &action);
    if (action.sa_handler != SIG_IGN) sigaddset(&watched, number);
  }
  pthread_sigmask(SIG_BLOCK, &watched, nullptr);
  std::thread([watched] {
    int number = 0;
    while (sigwait(&watched, &number) != 0) {
    }
    EndBy(number);
  }).detach();
}

HoldInterrupts::HoldInterrupts() { TheUndos().mutex.lock(); }

HoldInterrupts::~HoldInterrupts() { TheUndos().mutex.unlock(); }

UndoOnInterrupt::UndoOnInterrupt(std::function<void()> undo) {
  Undos& undos = TheUndos();
  std::lock_guard const lock(undos.mutex);
  m_iKey = undos.next++;
  undos.list.emplace(m_iKey, std::move(undo));
}

UndoOnInterrupt::~UndoOnInterrupt() {
  Undos& undos = TheUndos();
  std::lock_guard const lock(undos.mutex);
  undos.list.erase(m_iKey);
}

}  // namespace qeltin::cli
