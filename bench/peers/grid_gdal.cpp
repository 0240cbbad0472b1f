// The work of grid by GDAL, from the points to the lattice: linear interpolation in a Delaunay
// triangulation that GDAL has made by qhull.
#include <cpl_conv.h>
#include <gdal_alg.h>

#include <cmath>
#include <limits>

#include "bench/FinestLattice.h"
#include "bench/Measurement.h"

using namespace qeltin::bench;

namespace {

struct Columns {
  std::vector<double> x;
  std::vector<double> y;
  std::vector<double> z;
};

Columns ColumnsOf(std::vector<IPoint> const& points) {
  Columns columns;
  for (IPoint const& p : points) {
    columns.x.push_back(p.x);
    columns.y.push_back(p.y);
    columns.z.push_back(p.z);
  }
  return columns;
}

// GDAL's nodes are the centres of cells. Nothing is found outside the triangulation.
[[gnu::noinline]] bool SampleSurface(std::vector<double>& heights, Columns const& points,
                                     Lattice const& lattice, Box const& box) {
  GDALGridLinearOptions options{};
  options.nSizeOfStructure = sizeof options;
  options.dfRadius = 0.0;
  options.dfNoDataValue = std::numeric_limits<double>::quiet_NaN();
  double const west = box.min.x - lattice.dx / 2;
  double const south = box.min.y - lattice.dy / 2;
  auto const columns = static_cast<GUInt32>(lattice.columns);
  auto const rows = static_cast<GUInt32>(lattice.rows);
  heights.resize(std::size_t{columns} * rows);
  return GDALGridCreate(GGA_Linear, &options, static_cast<GUInt32>(points.x.size()),
                        points.x.data(), points.y.data(), points.z.data(), west,
                        west + columns * lattice.dx, south, south + rows * lattice.dy, columns,
                        rows, GDT_Float64, heights.data(), nullptr, nullptr) == CE_None;
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"points"});
  CPLSetConfigOption("GDAL_NUM_THREADS", "1");
  std::vector<IPoint> const input = MakeSurveyInput(task.input, task.size);
  Box const box = BoxOf(input);
  Columns const points = ColumnsOf(input);
  Lattice const lattice = FinestLattice(box);

  Measurement measurement;
  std::vector<double> heights;
  measurement.Start();
  if (!SampleSurface(heights, points, lattice, box)) Reject("qhull");
  measurement.Stop();

  int found = 0;
  double sum = 0.0;
  for (double z : heights) {
    if (std::isnan(z)) continue;
    ++found;
    sum += z;
  }
  measurement.AddFact("nodes", lattice.columns * lattice.rows);
  measurement.AddFact("found", found);
  measurement.AddFact("mean_height", sum / found);
  measurement.Report(task);
}
