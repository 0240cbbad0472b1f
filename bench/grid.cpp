// Samples a surface on a lattice of 1001 nodes a side.
//   grid    from the surface
//   points  from the points, with the surface yet to be built
#include "bench/BuildSurface.h"
#include "bench/Measurement.h"
#include "qeltin/products/TGrid.h"

using namespace qeltin::bench;

namespace {

[[gnu::noinline]] void SampleSurface(TGrid& grid, TIN const& tin) { grid.Create(tin, 0.0, 0.0); }

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"grid", "points"});
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);

  Measurement measurement;
  TIN tin;
  TGrid grid;

  if (task.work == "points") measurement.Start();
  BuildSurface(tin, points);
  if (task.work == "grid") measurement.Start();
  SampleSurface(grid, tin);
  measurement.Stop();

  int found = 0;
  double sum = 0.0;
  for (int j = 0; j < grid.GetNumberOfNodesY(); ++j) {
    for (int i = 0; i < grid.GetNumberOfNodesX(); ++i) {
      TPoint const* const node = grid.GetNode(i, j);
      if (node == nullptr) continue;
      ++found;
      sum += node->z;
    }
  }
  measurement.AddFact("nodes", grid.GetNumberOfNodesX() * grid.GetNumberOfNodesY());
  measurement.AddFact("found", found);
  measurement.AddFact("mean_height", sum / found);
  measurement.Report(task);
}
