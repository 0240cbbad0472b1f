// Thins a surface to about a tenth of its points: one run, of one pass for each error.
#include "bench/BuildSurface.h"
#include "bench/Measurement.h"
#include "qeltin/decimate/Decimator.h"

using namespace qeltin::bench;

namespace {

constexpr unsigned int PROGRESS = 1;
constexpr float ERRORS[] = {0.02f, 0.05f, 0.1f, 0.2f, 0.4f, 0.8f, 1.6f, 3.2f};
constexpr double SHARE_LEFT = 0.1;

bool IsEnd(PlatformMessage const& message) {
  return static_cast<std::int64_t>(message.wParam) == -1;
}

// Returns the number of points in the map afterwards.
[[gnu::noinline]] int Thin(TIN& tin, float error) {
  MessageTarget window;
  Decimator decimator;
  decimator.SetSource(&tin);
  decimator.SetProgressHandler(&window, PROGRESS);
  decimator.MinimumError(error);
  decimator.MaximumError(error);
  decimator.Decimate();
  int ends = 0;
  for (PlatformMessage message; ends < 2;) {
    if (window.Wait(message, std::chrono::seconds(1)) && IsEnd(message)) ++ends;
  }
  return tin.GetMap().GetNumberOfPoints();
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"thin"});
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);
  Measurement measurement;
  TIN tin;
  BuildSurface(tin, points);

  int left = task.size;
  measurement.Start();
  for (float const error : ERRORS) {
    if (left <= SHARE_LEFT * task.size) break;
    left = Thin(tin, error);
    tin.Compact();
  }
  measurement.Stop();
  measurement.AddFact("left", left);
  measurement.Report(task);
}
