#include "bench/XyzTextTask.h"
#include "qeltin/persistence/XyzReader.h"
#include "qeltin/persistence/XyzWriter.h"

using namespace qeltin::bench;

namespace {

[[gnu::noinline]] void ReadByLibrary(ScratchFile const& file, TextForm,
                                     std::vector<IPoint>& points) {
  XyzReader reader(file.WideName());
  for (TPoint p; reader.Next(p);) points.push_back({p.x, p.y, p.z});
}

[[gnu::noinline]] void WriteByLibrary(ScratchFile const& file, std::vector<IPoint> const& points) {
  XyzWriter writer(file.WideName());
  for (IPoint const& p : points) writer.Write(p);
  writer.Close();
}

}  // namespace

int main(int argc, char** argv) { return RunXyzText(argc, argv, ReadByLibrary, WriteByLibrary); }
