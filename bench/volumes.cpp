// Measures what stands above and below the plane z = 0 inside a figure of a hundred corners.
#include "bench/BuildSurface.h"
#include "bench/Figure.h"
#include "bench/Measurement.h"
#include "qeltin/products/TPolygon.h"

using namespace qeltin::bench;

namespace {

constexpr int CORNERS = 100;

struct Volumes {
  double above = 0.0;
  double below = 0.0;
};

[[gnu::noinline]] Volumes MeasureVolume(TIN& tin, TPolygon const& figure) {
  Volumes volumes;
  tin.CalculateVolume(&figure, &volumes.below, &volumes.above);
  return volumes;
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"volume"});
  std::vector<IPoint> points = MakeSurveyInput(task.input, task.size);
  CentreHeights(points);
  TPolygon figure;
  for (IPoint const& p : MakeFigure(points, CORNERS)) figure.Add(TPoint(p));

  Measurement measurement;
  TIN tin;
  BuildSurface(tin, points);

  measurement.Start();
  Volumes const volumes = MeasureVolume(tin, figure);
  measurement.Stop();

  measurement.AddFact("above", volumes.above);
  measurement.AddFact("below", volumes.below);
  measurement.Report(task);
}
