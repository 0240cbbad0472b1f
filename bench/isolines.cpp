// Traces the lines of 20 heights over a surface.
//   levels  one call for all of them
//   single  one call each
#include "bench/BuildSurface.h"
#include "bench/HeightLevels.h"
#include "bench/Measurement.h"
#include "qeltin/products/TPolygon.h"

using namespace qeltin::bench;

namespace {

[[gnu::noinline]] void TraceLevels(TIN& tin, std::vector<double> const& levels, bool together,
                                   std::vector<TPolygon*>& lines) {
  if (together) {
    tin.GenerateIsolines(lines, levels);
  } else {
    for (double level : levels) tin.GenerateIsoline(lines, level);
  }
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"levels", "single"});
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);
  std::vector<double> const levels = HeightLevels(points);

  Measurement measurement;
  TIN tin;
  BuildSurface(tin, points);
  std::vector<TPolygon*> lines;

  measurement.Start();
  TraceLevels(tin, levels, task.work == "levels", lines);
  measurement.Stop();

  double crossings = 0.0;
  double length = 0.0;
  for (TPolygon* line : lines) {
    crossings += line->GetSize();
    length += line->Length();
    delete line;
  }
  measurement.AddFact("lines", static_cast<double>(lines.size()));
  measurement.AddFact("crossings", crossings);
  measurement.AddFact("length", length);
  measurement.Report(task);
}
