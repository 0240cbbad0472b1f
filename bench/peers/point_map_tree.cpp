// A std::map with the points of the same surface for keys, filled one by one in pool order. Its
// lists of triangles stay empty.
#include <map>

#include "bench/BuildSurface.h"
#include "bench/Measurement.h"

using namespace qeltin::bench;

namespace {

using Tree = std::map<TPoint, std::vector<TTriangle*>>;

[[gnu::noinline]] void FillKeys(Tree& tree, TIN const& tin) {
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) tree[*tin.GetPoint(i)];
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"fill"});
  TIN tin;
  BuildSurface(tin, MakeSurveyInput(task.input, task.size));

  Measurement measurement;
  Tree tree;
  measurement.Start();
  FillKeys(tree, tin);
  measurement.Stop();

  measurement.AddFact("keys", static_cast<double>(tree.size()));
  measurement.Report(task);
}
