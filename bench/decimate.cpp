// Thins a surface to a tenth of its points: `thin` in rounds of a host's own, as the command does
// by default, `runs` in runs of one pass each of a Decimator, near to the origin.
#include <limits>
#include <unordered_map>

#include "apps/qeltin/PlaneDistances.h"
#include "apps/qeltin/RoundThinning.h"
#include "bench/BuildSurface.h"
#include "bench/HeightError.h"
#include "bench/Measurement.h"
#include "qeltin/decimate/Decimator.h"
#include "qeltin/decimate/LocalFrame.h"

using namespace qeltin::bench;

namespace {

constexpr unsigned int PROGRESS = 1;
constexpr double SHARE_LEFT = 0.1;
constexpr int SEED_CORNERS = 4;

bool IsEnd(PlatformMessage const& message) {
  return static_cast<std::int64_t>(message.wParam) == -1;
}

// Returns the number of points in the map afterwards.
int Run(TIN& tin, float error) {
  MessageTarget window;
  Decimator decimator;
  decimator.SetSource(&tin);
  decimator.SetProgressHandler(&window, PROGRESS);
  decimator.MinimumError(error);
  decimator.MaximumError(error);
  decimator.Decimate();
  int ends = 0;
  for (PlatformMessage message; ends < 2;) {
    if (window.Wait(message, std::chrono::seconds(1)) && IsEnd(message)) ++ends;
  }
  return tin.GetMap().GetNumberOfPoints();
}

void ThinInRounds(TIN& tin, int target) {
  int left = tin.GetNumberOfPoints() - SEED_CORNERS;
  tin.Compact();
  qeltin::cli::RoundThinning thinning(tin);
  while (left > target) {
    int const removed = thinning.Round(left - target, {0.0f, std::numeric_limits<float>::max()});
    if (removed == 0) break;
    left -= removed;
  }
  tin.Compact();
}

void ThinInRuns(TIN& tin, int target) {
  LocalFrame const frame(tin);
  for (int left = tin.GetNumberOfPoints() - SEED_CORNERS; left > target;) {
    left = Run(tin, qeltin::cli::ErrorFor(left - target, left, tin)) - SEED_CORNERS;
    tin.Compact();
  }
}

[[gnu::noinline]] void Thin(TIN& tin, Task const& task) {
  (task.work == "runs" ? ThinInRuns : ThinInRounds)(tin, static_cast<int>(SHARE_LEFT * task.size));
}

FlatMesh CopyOf(TIN const& tin) {
  FlatMesh copy;
  std::unordered_map<TPoint const*, std::uint32_t> places;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const t = tin.GetTriangle(i, false);
    if (t == nullptr) continue;
    for (TPoint const* corner : t->m_pVertex) {
      auto const place = static_cast<std::uint32_t>(copy.points.size());
      auto const [found, is_new] = places.try_emplace(corner, place);
      if (is_new) copy.points.push_back({corner->x, corner->y, corner->z});
      copy.corners.push_back(found->second);
    }
  }
  return copy;
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"thin", "runs"});
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);
  Measurement measurement;
  TIN tin;
  BuildSurface(tin, points);
  measurement.Start();
  Thin(tin, task);
  measurement.Stop();
  FlatMesh const mesh = CopyOf(tin);
  AddFacts(MeasureHeightError(points, mesh), mesh, measurement);
  measurement.Report(task);
}
