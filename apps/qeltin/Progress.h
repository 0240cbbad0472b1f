#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "apps/qeltin/Interrupt.h"

namespace qeltin::cli {

// A bar with an estimate on standard error, drawn by a thread of its own while this object lives,
// and wiped off afterwards. Nothing appears where standard error is no terminal, where `quiet` is
// set, and before a second is about to pass.
class Progress {
 public:
  // Work whose share is told by Done, out of `total`; with `total` 0 or less the end is not
  // known.
  Progress(std::string title, double total, bool quiet);

  // Work that cannot tell its share, and takes about so long. Once it has taken longer, the time so
  // far stands in place of the bar.
  Progress(std::string title, std::chrono::duration<double> guess, bool quiet);

  ~Progress();
  Progress(Progress const&) = delete;
  Progress& operator=(Progress const&) = delete;

  // Tells how much is done, in the unit of the total. Costs next to nothing.
  void Done(double amount) { m_dDone.store(amount, std::memory_order_relaxed); }

 private:
  void Start(bool quiet);
  void Run();
  std::string Line(double elapsed) const;

  std::string m_Title;
  double m_dTotal = 0.0;
  double m_dGuess = 0.0;  // seconds; 0 where the share is told
  std::atomic<double> m_dDone = 0.0;

  std::mutex m_Mutex;  // guards the three below
  std::condition_variable m_Wake;
  bool m_bEnd = false;
  bool m_bDrawn = false;

  std::thread m_Thread;
  std::optional<UndoOnInterrupt> m_Wipe;
};

}  // namespace qeltin::cli
