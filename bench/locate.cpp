// Asks a million heights of a surface, one call each.
//   random  places in random order
//   raster  row by row
#include "bench/BuildSurface.h"
#include "bench/Measurement.h"

using namespace qeltin::bench;

namespace {

struct Heights {
  int found = 0;
  double sum = 0.0;
};

[[gnu::noinline]] Heights AskHeights(TIN const& tin, std::vector<IPoint> const& places) {
  Heights heights;
  for (IPoint const& place : places) {
    double z;
    if (!tin.GetZ(place.x, place.y, z)) continue;
    ++heights.found;
    heights.sum += z;
  }
  return heights;
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"random", "raster"});
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);
  std::vector<IPoint> const places = MakePlaces(points, task.work == "raster");

  Measurement measurement;
  TIN tin;
  BuildSurface(tin, points);

  measurement.Start();
  Heights const heights = AskHeights(tin, places);
  measurement.Stop();

  measurement.AddFact("found", heights.found);
  measurement.AddFact("mean_height", heights.sum / heights.found);
  measurement.Report(task);
}
