#include "apps/qeltin/Thinning.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "apps/qeltin/Interrupt.h"
#include "apps/qeltin/PlaneDistances.h"
#include "apps/qeltin/Progress.h"
#include "qeltin/decimate/Decimator.h"

namespace qeltin::cli {

namespace {

using namespace std::chrono_literals;

constexpr unsigned int PROGRESS = 1;
constexpr int NEAR = 20000;  // points to go from which on every look counts

class WaitingDecimator : public Decimator {
 public:
  using Decimator::WaitForEnd;
};

bool IsEnd(PlatformMessage const& message) {
  return static_cast<std::int64_t>(message.wParam) == -1 && message.lParam == -1;
}

void Set(Decimator& decimator, ThinningOptions const& options) {
  int const steps = options.passes - 1;
  decimator.NumberOfPasses(options.passes);
  decimator.PreserveEdges(options.keep_edges);
  decimator.RemoveBoundaryPoints(options.boundary);
  decimator.MinimumError(steps == 0 ? options.max_error : options.min_error);
  decimator.MaximumError(options.max_error);
  decimator.ErrorIncrement(StepBetween(options.min_error, options.max_error, steps));
  decimator.MinimumFeatureAngle(steps == 0 ? options.max_angle : options.min_angle);
  decimator.MaximumFeatureAngle(options.max_angle);
  decimator.FeatureAngleIncrement(StepBetween(options.min_angle, options.max_angle, steps));
}

// Returns the share of a run that is done.
double ShareOf(DecimationInfo const& info) {
  double const phase = info.count > 0 ? static_cast<double>(info.index) / info.count : 1.0;
  double const phases = 2.0 * info.pass + (info.evaluating ? 0.0 : 1.0) + std::min(phase, 1.0);
  return phases / (2.0 * info.numberOfPasses);
}

// Counts what goes in a run, pass by pass, as far as its state tells.
class RemovalCount {
 public:
  int Count(DecimationInfo const& info) {
    if (info.evaluating) {
      m_iBefore += std::exchange(m_iNow, 0);
    } else {
      m_iNow = std::max(0, info.index - KEPT_AT_START);
    }
    return m_iBefore + m_iNow;
  }

 private:
  int m_iBefore = 0;
  int m_iNow = 0;
};

void Watch(Decimator& decimator, MessageTarget& window, Progress& progress,
           std::optional<int> surplus) {
  RemovalCount removed;
  DecimationInfo info;
  int left = surplus.value_or(0);
  int ends = 0;
  while (true) {
    bool const near = !info.evaluating && left < NEAR;
    PlatformMessage message;
    if (window.Wait(message, !surplus ? 50ms : near ? 0ms : 1ms) && IsEnd(message)) {
      // A pass may tell an end that is none, but only once.
      if (++ends == 2 && decimator.NumberOfPasses() == 1) return;
      continue;
    }
    if (!decimator.GetDecimationInfo(info)) return;
    progress.Done(ShareOf(info));
    if (!surplus) continue;
    left = *surplus - removed.Count(info);
    if (left <= 0) return decimator.Stop();
  }
}

}  // namespace

int Thinning::Run(ThinningOptions const& options, std::optional<int> surplus) {
  MessageTarget window;
  WaitingDecimator decimator;
  Set(decimator, options);
  decimator.SetSource(&m_Tin);
  decimator.SetProgressHandler(&window, PROGRESS);
  int const before = decimator.Decimate();
  {
    UndoOnInterrupt const stop([&decimator] { decimator.Stop(); });
    Progress progress("thin", 1.0, m_bQuiet);
    Watch(decimator, window, progress, surplus);
  }
  decimator.WaitForEnd();
  int const removed = before - m_Tin.GetMap().GetNumberOfPoints();
  Merge(decimator.GetErrorStat(), m_Distances);
  ++m_iRuns;
  Mend();
  return removed;
}

void Thinning::MakeRounds(int surplus, RoundThinning::Limits limits) {
  RoundThinning thinning(m_Tin);
  {
    Progress progress("thin", surplus, m_bQuiet);
    for (int removed = 0; removed < surplus; progress.Done(removed), ++m_iRuns) {
      int const now = thinning.Round(surplus - removed, limits);
      if (now == 0) break;
      removed += now;
    }
  }
  Merge(thinning.Distances(), m_Distances);
  Mend();
}

void Thinning::Mend() {
  if (!m_Tin.Compact())
    throw std::runtime_error(
        "its structure breaks; make a surface of its points by 'qeltin build' first");
}

float StepBetween(float from, float to, int steps) {
  if (steps < 1 || !(from < to)) return 0.0f;
  auto const end = [&](float step) {
    float value = from;
    for (int i = 0; i < steps; ++i) value += step;
    return value;
  };
  float step = (to - from) / static_cast<float>(steps);
  while (end(step) > to) step = std::nextafter(step, 0.0f);
  return step;
}

void Merge(CStatist const& other, CStatist& sum) {
  if (other.count == 0) return;
  sum.minimum = sum.count == 0 ? other.minimum : std::min(sum.minimum, other.minimum);
  sum.maximum = std::max(sum.maximum, other.maximum);
  double const n = sum.count;
  double const m = other.count;
  sum.mean = (n * sum.mean + m * other.mean) / (n + m);
  sum.sumSquares += other.sumSquares;
  sum.count += other.count;
}

}  // namespace qeltin::cli
