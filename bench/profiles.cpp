// Makes a thousand profiles of a surface, each between two random places.
#include "bench/BuildSurface.h"
#include "bench/Measurement.h"
#include "bench/ProfileLines.h"
#include "qeltin/products/TPolygon.h"

using namespace qeltin::bench;

namespace {

[[gnu::noinline]] void Trace(TIN const& tin, std::vector<ProfileLine> const& lines,
                             std::vector<TPolygon>& profiles) {
  for (ProfileLine const& line : lines) tin.GenerateProfile(profiles, line.from, line.to);
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"trace"});
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);
  std::vector<ProfileLine> const lines = MakeProfileLines(points);

  Measurement measurement;
  TIN tin;
  BuildSurface(tin, points);

  std::vector<TPolygon> profiles;
  measurement.Start();
  Trace(tin, lines, profiles);
  measurement.Stop();

  double crossings = 0;
  double sum = 0.0;
  for (TPolygon const& profile : profiles) {
    // The two ends of a profile are no crossings.
    for (int i = 1; i + 1 < profile.GetSize(); ++i) {
      ++crossings;
      sum += profile.Get(i)->z;
    }
  }
  measurement.AddFact("sides_crossed", crossings);
  measurement.AddFact("mean_height", sum / crossings);
  measurement.Report(task);
}
