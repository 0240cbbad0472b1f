#include "bench/FrameTask.h"

#include "bench/BuildSurface.h"
#include "bench/Measurement.h"
#include "bench/SurfacePicture.h"

namespace qeltin::bench {

namespace {

constexpr int FRAMES = 10;

[[gnu::noinline]] void DrawFrames(SurfacePicture& picture) {
  for (int i = 0; i < FRAMES; ++i) picture.DrawFrame();
}

}  // namespace

int MeasureFrames(int argc, char** argv, bool isCompiled) {
  Task const task = ParseTask(argc, argv, {"draw"});
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);
  TIN tin;
  BuildSurface(tin, points);

  Measurement measurement;
  SurfacePicture picture(tin, BoxOf(points));
  if (isCompiled) picture.Compile();
  picture.DrawFrame();

  measurement.Start();
  DrawFrames(picture);
  measurement.Stop();

  measurement.AddFact("frames", FRAMES);
  measurement.AddFact("covered", picture.CountCovered());
  measurement.Report(task);
  return 0;
}

}  // namespace qeltin::bench
