#include "apps/qeltin/Progress.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace qeltin::cli {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto FIRST_DRAWING = std::chrono::milliseconds(700);
constexpr auto BETWEEN_DRAWINGS = std::chrono::milliseconds(200);
constexpr char WIPE[] = "\r\033[K";

void WriteToTerminal(std::string const& text) {
  // A terminal that is gone is no reason to stop the work.
  [[maybe_unused]] auto const written = write(STDERR_FILENO, text.data(), text.size());
}

std::string Duration(double seconds) {
  long const whole = std::lround(std::ceil(std::min(seconds, 1e6)));
  if (whole < 100) return std::to_string(whole) + " s";
  return std::to_string((whole + 30) / 60) + " min";
}

std::string Bar(double share) {
  constexpr int WIDTH = 24;
  int const filled = static_cast<int>(share * WIDTH);
  return '[' + std::string(filled, '#') + std::string(WIDTH - filled, '-') + ']';
}

}  // namespace

Progress::Progress(std::string title, double total, bool quiet)
    : m_Title(std::move(title)), m_dTotal(total) {
  Start(quiet);
}

Progress::Progress(std::string title, std::chrono::duration<double> guess, bool quiet)
    : m_Title(std::move(title)), m_dGuess(std::max(guess.count(), 0.1)) {
  Start(quiet);
}

void Progress::Start(bool quiet) {
  if (quiet || isatty(STDERR_FILENO) == 0) return;
  m_Thread = std::thread([this] { Run(); });
  m_Wipe.emplace([this] {
    m_Mutex.lock();  // for good: nothing more is drawn
    if (m_bDrawn) WriteToTerminal(WIPE);
  });
}

Progress::~Progress() {
  if (!m_Thread.joinable()) return;
  m_Wipe.reset();
  {
    std::lock_guard const lock(m_Mutex);
    m_bEnd = true;
  }
  m_Wake.notify_one();
  m_Thread.join();
  if (m_bDrawn) WriteToTerminal(WIPE);
}

void Progress::Run() {
  auto const start = Clock::now();
  std::unique_lock lock(m_Mutex);
  auto pause = FIRST_DRAWING;
  while (!m_Wake.wait_for(lock, pause, [this] { return m_bEnd; })) {
    std::chrono::duration<double> const elapsed = Clock::now() - start;
    WriteToTerminal(Line(elapsed.count()));
    m_bDrawn = true;
    pause = BETWEEN_DRAWINGS;
  }
}

std::string Progress::Line(double elapsed) const {
  std::string const head = WIPE + m_Title + "  ";
  double const done = m_dDone.load(std::memory_order_relaxed);
  bool const unknown = m_dGuess > 0.0 ? elapsed > m_dGuess : m_dTotal <= 0.0;
  if (unknown) return head + Duration(elapsed) + " so far";

  double const share = std::clamp(m_dGuess > 0.0 ? elapsed / m_dGuess : done / m_dTotal, 0.0, 0.99);
  double const left = m_dGuess > 0.0 ? m_dGuess - elapsed : elapsed * (1.0 - share) / share;
  std::string line = head + Bar(share) + ' ' + std::to_string(std::lround(100.0 * share)) + " %";
  if (left >= 0.5 && std::isfinite(left)) line += "  about " + Duration(left) + " left";
  return line;
}

}  // namespace qeltin::cli
