// Contours of a surface.
//   levels  20 levels, joined and directed
//   stop    the same, stopped by another thread on the way: the time from there to the end
#include <atomic>
#include <thread>

#include "bench/BuildSurface.h"
#include "bench/HeightLevels.h"
#include "bench/Measurement.h"
#include "qeltin/contour/TINContourCreator.h"

using namespace qeltin::bench;

namespace {

[[gnu::noinline]] void AddContours(TIN const& tin, std::vector<double> const& levels,
                                   ContourList& list, std::atomic<bool> const& running) {
  TINContourCreator(&tin).AddLevels(levels, list, running);
}

// The last point of a loop stands twice.
int CountCrossings(Contour const& line) {
  int const count = line.NumPoints();
  bool const loop = count > 1 && line[count - 1].Dist2D(line[count - 2], false) < 1e-6;
  return loop ? count - 1 : count;
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"levels", "stop"});
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);
  std::vector<double> const levels = HeightLevels(points);

  Measurement measurement;
  TIN tin;
  BuildSurface(tin, points);
  std::atomic<bool> running{true};
  ContourList list;
  if (task.work == "levels") {
    measurement.Start();
    AddContours(tin, levels, list, running);
    measurement.Stop();
  } else {
    std::thread work([&] { AddContours(tin, levels, list, running); });
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    measurement.Start();
    running = false;
    work.join();
    measurement.Stop();
  }

  double crossings = 0.0;
  for (int i = 0; i < list.Size(); ++i) crossings += CountCrossings(list[i]);
  measurement.AddFact("crossings", crossings);
  measurement.Report(task);
}
