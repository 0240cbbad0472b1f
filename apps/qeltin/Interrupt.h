#pragma once

#include <functional>

namespace qeltin::cli {

// Starts the thread that ends the process on Ctrl-C, SIGTERM or a closed terminal, with status
// 128 + the signal's number, however deep in a library call the work is. A signal that the caller
// of the command had set to be ignored stays ignored.
// REQUIRES: called once, before any other thread is started.
void WatchForInterrupts();

// While an object of this class lives, such a signal waits. For work that is short, and that would
// leave something behind.
class HoldInterrupts {
 public:
  HoldInterrupts();
  ~HoldInterrupts();
  HoldInterrupts(HoldInterrupts const&) = delete;
  HoldInterrupts& operator=(HoldInterrupts const&) = delete;
};

// Something to be undone where the process is ended by such a signal while this object lives. The
// undoing runs on a thread of its own, beside the work.
class UndoOnInterrupt {
 public:
  explicit UndoOnInterrupt(std::function<void()> undo);
  ~UndoOnInterrupt();
  UndoOnInterrupt(UndoOnInterrupt const&) = delete;
  UndoOnInterrupt& operator=(UndoOnInterrupt const&) = delete;

 private:
  int m_iKey;
};

}  // namespace qeltin::cli
