// Writes and reads a surface with all its triangles.
//   save  SaveTin: the file is on the disk, whole, when the clock stops
//   load  LoadTin, of a file that the system still holds in memory
//   load_trimble  LoadTrimbleTinModel, of the same surface as a Trimble terrain model, likewise
#include <fstream>
#include <memory>

#include "bench/BuildSurface.h"
#include "bench/Measurement.h"
#include "bench/ScratchFile.h"
#include "testing/TrimbleFileWriter.h"

using namespace qeltin::bench;

namespace {

[[gnu::noinline]] void SaveSurface(TIN const& tin, ScratchFile const& file) {
  tin.SaveTin(file.WideName());
}

[[gnu::noinline]] void LoadSurface(TIN& tin, ScratchFile const& file) {
  tin.LoadTin(file.WideName());
}

void SaveTrimble(TIN const& tin, ScratchFile const& file) {
  constexpr int STARTS_EVERY = 10'000;
  std::ofstream(file.Name(), std::ios::binary)
      << qeltin::testing::TrimbleFile(qeltin::testing::TrimbleModelOf(tin, STARTS_EVERY));
}

[[gnu::noinline]] void LoadTrimble(TIN& tin, ScratchFile const& file) {
  tin.LoadTrimbleTinModel(file.WideName());
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"save", "load", "load_trimble"});
  ScratchFile const file("tin");
  auto tin = std::make_unique<TIN>();
  BuildSurface(*tin, MakeSurveyInput(task.input, task.size));
  if (task.work == "load") {
    SaveSurface(*tin, file);
    tin = std::make_unique<TIN>();
  } else if (task.work == "load_trimble") {
    SaveTrimble(*tin, file);
    tin = std::make_unique<TIN>();
  }

  Measurement measurement;
  measurement.Start();
  if (task.work == "save") {
    SaveSurface(*tin, file);
  } else if (task.work == "load") {
    LoadSurface(*tin, file);
  } else {
    LoadTrimble(*tin, file);
  }
  measurement.Stop();

  measurement.AddFact("points", tin->GetNumberOfPoints());
  // A Trimble model has the visible triangles only.
  if (task.work != "load_trimble") measurement.AddFact("file_bytes", file.Size());
  measurement.Report(task);
}
