#include "bench/XyzTextTask.h"

#include <cstdio>

#include "bench/Measurement.h"
#include "bench/SurveyInput.h"

namespace qeltin::bench {

namespace {

double MeanCoordinate(std::vector<IPoint> const& points) {
  double sum = 0.0;
  for (IPoint const& p : points) sum += p.x + p.y + p.z;
  return sum / (3.0 * static_cast<double>(points.size()));
}

}  // namespace

int RunXyzText(int argc, char** argv, ReadText read, WriteText write) {
  Task const task = ParseTask(argc, argv, {"read", "write"});
  bool const reads = task.work == "read";
  if (reads ? read == nullptr : write == nullptr) Reject("work " + task.work);
  TextForm const form = task.input == "single_beam" ? TextForm::Blanks : TextForm::Commas;
  ScratchFile const file("xyz");
  std::vector<IPoint> points = MakeSurveyInput(task.input, task.size);
  if (reads) {
    PrintPoints(file, form, points);
    points = std::vector<IPoint>();
  }

  Measurement measurement;
  measurement.Start();
  if (reads) {
    read(file, form, points);
  } else {
    write(file, points);
  }
  measurement.Stop();

  measurement.AddFact("points", static_cast<double>(points.size()));
  measurement.AddFact("mean_coordinate", MeanCoordinate(points));
  measurement.AddFact("file_bytes", file.Size());
  measurement.Report(task);
  return 0;
}

void PrintPoints(ScratchFile const& file, TextForm form, std::vector<IPoint> const& points) {
  std::FILE* const stream = std::fopen(file.Name(), "w");
  if (stream == nullptr) return;
  if (form == TextForm::Commas) {
    for (IPoint const& p : points) std::fprintf(stream, "%f,%f,%f\n", p.x, p.y, p.z);
  } else {
    for (IPoint const& p : points) std::fprintf(stream, "%.2f %.2f %.2f\n", p.x, p.y, p.z);
  }
  std::fclose(stream);
}

}  // namespace qeltin::bench
