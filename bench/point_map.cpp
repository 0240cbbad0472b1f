// Builds the index from the points of a surface to the triangles around them.
#include "bench/BuildSurface.h"
#include "bench/Measurement.h"

using namespace qeltin::bench;

namespace {

[[gnu::noinline]] void BuildMap(TIN& tin) { tin.BuildPointMap(); }

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"fill"});
  TIN tin;
  BuildSurface(tin, MakeSurveyInput(task.input, task.size));

  Measurement measurement;
  measurement.Start();
  BuildMap(tin);
  measurement.Stop();

  measurement.AddFact("keys", tin.GetMap().GetNumberOfPoints());
  measurement.Report(task);
}
