// Traces the lines of 20 heights over a surface, one call each.
#include <algorithm>

#include "bench/BuildSurface.h"
#include "bench/Levels.h"
#include "bench/Measurement.h"
#include "qeltin/products/TPolygon.h"

using namespace qeltin::bench;

namespace {

[[gnu::noinline]] void TraceLevels(TIN& tin, std::vector<double> const& levels,
                                   std::vector<TPolygon*>& lines) {
  for (double level : levels) tin.GenerateIsoline(lines, level);
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"isolines"});
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);
  std::vector<double> const levels = MakeLevels(points);

  Measurement measurement;
  TIN tin;
  BuildSurface(tin, points);
  std::vector<TPolygon*> lines;

  measurement.Start();
  TraceLevels(tin, levels, lines);
  measurement.Stop();

  double vertices = 0.0;
  double length = 0.0;
  for (TPolygon* line : lines) {
    vertices += line->GetSize();
    length += line->Length();
    delete line;
  }
  measurement.AddFact("lines", static_cast<double>(lines.size()));
  measurement.AddFact("vertices", vertices);
  measurement.AddFact("length", length);
  measurement.Report(task);
}
