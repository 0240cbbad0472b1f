// The work of grid by CGAL: each node from the face of the one before, then the plane of the face.
#include <cmath>

#include "bench/Measurement.h"
#include "bench/SurveyInput.h"
#include "bench/peers/SurfaceCgal.h"

using namespace qeltin::bench;

namespace {

struct Node {
  bool valid = false;
  IPoint point{};
};

struct Grid {
  int columns = 0;
  int rows = 0;
  std::vector<Node> nodes;
};

constexpr double FINEST_SHARE = 0.0010000000474974513;

[[gnu::noinline]] void SampleSurface(Grid& grid, Flat const& flat, Box const& box) {
  double const width = box.max.x - box.min.x;
  double const height = box.max.y - box.min.y;
  double const dx = width * FINEST_SHARE;
  double const dy = height * FINEST_SHARE;
  grid.columns = static_cast<int>(std::ceil(width / dx)) + 1;
  grid.rows = static_cast<int>(std::ceil(height / dy)) + 1;
  grid.nodes.resize(static_cast<std::size_t>(grid.columns) * static_cast<std::size_t>(grid.rows));
  Flat::Face_handle near;
  Node* node = grid.nodes.data();
  double y = box.min.y;
  for (int j = 0; j < grid.rows; ++j, y += dy) {
    double x = box.min.x;
    for (int i = 0; i < grid.columns; ++i, x += dx, ++node) {
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

  Measurement measurement;
  Flat flat;
  Build(flat, points);
  Grid grid;

  measurement.Start();
  SampleSurface(grid, flat, box);
  measurement.Stop();

  int found = 0;
  double sum = 0.0;
  for (Node const& node : grid.nodes) {
    if (!node.valid) continue;
    ++found;
    sum += node.point.z;
  }
  measurement.AddFact("nodes", grid.columns * grid.rows);
  measurement.AddFact("found", found);
  measurement.AddFact("mean_height", sum / found);
  measurement.Report(task);
}
