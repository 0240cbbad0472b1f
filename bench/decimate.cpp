// Thins a surface to about a tenth of its points: one run, of one pass for each error.
#include <cmath>
#include <cstdlib>
#include <unordered_map>

#include "bench/BuildSurface.h"
#include "bench/HeightError.h"
#include "bench/Measurement.h"
#include "qeltin/decimate/Decimator.h"
#include "qeltin/decimate/LocalFrame.h"

using namespace qeltin::bench;

namespace {

constexpr unsigned int PROGRESS = 1;
constexpr float ERRORS[] = {0.02f, 0.05f, 0.1f, 0.2f, 0.4f, 0.8f, 1.6f, 3.2f};
constexpr double SHARE_LEFT = 0.1;

bool IsEnd(PlatformMessage const& message) {
  return static_cast<std::int64_t>(message.wParam) == -1;
}

// Returns the number of points in the map afterwards.
[[gnu::noinline]] int Thin(TIN& tin, float error) {
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
  Task const task = ParseTask(argc, argv, {"thin"});
  std::vector<IPoint> points = MakeSurveyInput(task.input, task.size);
  Measurement measurement;
  TIN tin;
  BuildSurface(tin, points);

  int left = task.size;
  measurement.Start();
  auto frame = std::make_unique<LocalFrame>(tin);
  float const growth = static_cast<float>(std::getenv("GROWTH") ? atof(getenv("GROWTH")) : 2.0);
  float error = static_cast<float>(std::getenv("FIRST") ? atof(getenv("FIRST")) : 0.02);
  for (int k = 0; k < 400; ++k, error *= growth) {
    if (left <= SHARE_LEFT * task.size) break;
    int before = left;
    left = Thin(tin, error);
    if (std::getenv("SHOW"))
      fprintf(stderr, "%g: %d gone, %d left\n", static_cast<double>(error), before - left, left);
    tin.Compact();
  }
  frame.reset();
  measurement.Stop();
  FlatMesh const mesh = CopyOf(tin);
  HeightError const height = MeasureHeightError(points, mesh);
  measurement.AddFact("left", static_cast<double>(mesh.points.size()));
  measurement.AddFact("covered", height.covered);
  measurement.AddFact("rms_error", height.rms);
  measurement.AddFact("largest_error", height.largest);
  measurement.Report(task);
}
