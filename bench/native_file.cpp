// Writes and reads a surface with all its triangles.
//   save  SaveTin: the file is on the disk, whole, when the clock stops
//   load  LoadTin, of a file that the system still holds in memory
#include <memory>

#include "bench/BuildSurface.h"
#include "bench/Measurement.h"
#include "bench/ScratchFile.h"

using namespace qeltin::bench;

namespace {

[[gnu::noinline]] void SaveSurface(TIN const& tin, ScratchFile const& file) {
  tin.SaveTin(file.WideName());
}

[[gnu::noinline]] void LoadSurface(TIN& tin, ScratchFile const& file) {
  tin.LoadTin(file.WideName());
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"save", "load"});
  ScratchFile const file("tin");
  auto tin = std::make_unique<TIN>();
  BuildSurface(*tin, MakeSurveyInput(task.input, task.size));
  if (task.work == "load") {
    SaveSurface(*tin, file);
    tin = std::make_unique<TIN>();
  }

  Measurement measurement;
  measurement.Start();
  if (task.work == "save") {
    SaveSurface(*tin, file);
  } else {
    LoadSurface(*tin, file);
  }
  measurement.Stop();

  measurement.AddFact("points", tin->GetNumberOfPoints());
  measurement.AddFact("file_bytes", file.Size());
  measurement.Report(task);
}
