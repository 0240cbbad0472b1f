// As many bytes as native_file writes for this input, out of memory to the disk and back in one
// call each: what the system alone takes.
#include <cstdio>
#include <vector>

#include "bench/Measurement.h"
#include "bench/ScratchFile.h"

using namespace qeltin::bench;

namespace {

// With its two triangles.
double BytesAPoint(bool trimble) { return 24.0 + 2 * (trimble ? 24.0 : 26.0); }

[[gnu::noinline]] void SaveBytes(std::vector<char> const& bytes, ScratchFile const& file) {
  std::FILE* const stream = std::fopen(file.Name(), "w");
  if (stream == nullptr) return;
  std::fwrite(bytes.data(), 1, bytes.size(), stream);
  std::fclose(stream);
  file.Sync();
}

[[gnu::noinline]] void LoadBytes(std::vector<char>& bytes, ScratchFile const& file) {
  std::FILE* const stream = std::fopen(file.Name(), "r");
  if (stream == nullptr) return;
  bytes.resize(static_cast<std::size_t>(file.Size()));
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), stream));
  std::fclose(stream);
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"save", "load", "load_trimble"});
  ScratchFile const file("bytes");
  bool const trimble = task.work == "load_trimble";
  std::vector<char> bytes(static_cast<std::size_t>(BytesAPoint(trimble) * task.size), 'x');
  if (task.work != "save") {
    SaveBytes(bytes, file);
    bytes = std::vector<char>();
  }

  Measurement measurement;
  measurement.Start();
  if (task.work == "save") {
    SaveBytes(bytes, file);
  } else {
    LoadBytes(bytes, file);
  }
  measurement.Stop();

  if (!trimble) measurement.AddFact("file_bytes", file.Size());
  measurement.Report(task);
}
