// Cuts a closed figure of SIZE vertices into triangles.
//   triangulate  star, comb, spiral, or line: all vertices on one oblique line
#include <map>

#include "bench/Measurement.h"
#include "qeltin/products/TPolygon.h"
#include "testing/MakeFigure.h"

using namespace qeltin::bench;
using qeltin::testing::Figure;

namespace {

std::map<std::string, Figure> const FIGURES = {{"star", Figure::Simple},
                                               {"comb", Figure::Comb},
                                               {"spiral", Figure::Spiral},
                                               {"line", Figure::Collinear}};

[[gnu::noinline]] void Cut(TPolygon const& figure, std::vector<TPoint>& triangles) {
  figure.Triangulate(triangles);
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"triangulate"});
  if (!FIGURES.contains(task.input)) Reject("input " + task.input);
  TPolygon figure;
  for (TPoint const& p : qeltin::testing::MakeFigure(FIGURES.at(task.input), task.size, 1)) {
    figure.Add(p);
  }

  Measurement measurement;
  std::vector<TPoint> triangles;
  measurement.Start();
  Cut(figure, triangles);
  measurement.Stop();
  measurement.AddFact("triangles", static_cast<double>(triangles.size() / 3));
  measurement.Report(task);
}
