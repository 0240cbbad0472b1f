// The work of grid by CGAL: each node from the face of the one before, then the plane of the face.
#include "bench/FinestLattice.h"
#include "bench/Measurement.h"
#include "bench/SurveyInput.h"
#include "bench/peers/SurfaceCgal.h"

using namespace qeltin::bench;

namespace {

struct Node {
  bool valid = false;
  IPoint point{};
};

[[gnu::noinline]] void SampleSurface(std::vector<Node>& nodes, Flat const& flat,
                                     Lattice const& lattice, Box const& box) {
  nodes.resize(static_cast<std::size_t>(lattice.columns) * static_cast<std::size_t>(lattice.rows));
  Flat::Face_handle near;
  Node* node = nodes.data();
  double y = box.min.y;
  for (int j = 0; j < lattice.rows; ++j, y += lattice.dy) {
    double x = box.min.x;
    for (int i = 0; i < lattice.columns; ++i, x += lattice.dx, ++node) {
      if (x > box.max.x || y > box.max.y) continue;
      Point const p(x, y);
      near = flat.locate(p, near);
      if (flat.is_infinite(near)) continue;
      *node = {true, {x, y, HeightOn(*near, p)}};
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"grid"});
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);
  Box const box = BoxOf(points);
  Lattice const lattice = FinestLattice(box);

  Measurement measurement;
  Flat flat;
  Build(flat, points);
  std::vector<Node> nodes;

  measurement.Start();
  SampleSurface(nodes, flat, lattice, box);
  measurement.Stop();

  int found = 0;
  double sum = 0.0;
  for (Node const& node : nodes) {
    if (!node.valid) continue;
    ++found;
    sum += node.point.z;
  }
  measurement.AddFact("nodes", lattice.columns * lattice.rows);
  measurement.AddFact("found", found);
  measurement.AddFact("mean_height", sum / found);
  measurement.Report(task);
}
