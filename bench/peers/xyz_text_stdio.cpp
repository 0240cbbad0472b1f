// The formatted input and output of the C runtime.
#include <cstdio>

#include "bench/XyzTextTask.h"

using namespace qeltin::bench;

namespace {

[[gnu::noinline]] void ReadByScanf(ScratchFile const& file, TextForm form,
                                   std::vector<IPoint>& points) {
  std::FILE* const stream = std::fopen(file.Name(), "r");
  if (stream == nullptr) return;
  char const* const format = form == TextForm::Commas ? "%lf,%lf,%lf" : "%lf %lf %lf";
  IPoint p;
  while (std::fscanf(stream, format, &p.x, &p.y, &p.z) == 3) points.push_back(p);
  std::fclose(stream);
}

[[gnu::noinline]] void WriteByPrintf(ScratchFile const& file, std::vector<IPoint> const& points) {
  PrintPoints(file, TextForm::Commas, points);
  file.Sync();
}

}  // namespace

int main(int argc, char** argv) { return RunXyzText(argc, argv, ReadByScanf, WriteByPrintf); }
