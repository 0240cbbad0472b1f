// As many bytes as native_file writes for this input, out of memory to a file and back in one call
// each: what the system alone takes.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "bench/Measurement.h"
#include "bench/ScratchFile.h"

using namespace qeltin::bench;

namespace {

// With its two triangles.
double BytesAPoint(bool trimble) { return 24.0 + 2 * (trimble ? 24.0 : 26.0); }

using Bytes = std::unique_ptr<char[]>;

[[gnu::noinline]] void SaveBytes(Bytes const& bytes, std::size_t size, ScratchFile const& file) {
  int const descriptor = open(file.Name(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (descriptor < 0) return;
  for (std::size_t done = 0; done < size;) {
    ssize_t const count = write(descriptor, bytes.get() + done, size - done);
    if (count <= 0) break;
    done += static_cast<std::size_t>(count);
  }
  fsync(descriptor);
  close(descriptor);
}

[[gnu::noinline]] void LoadBytes(Bytes& bytes, std::size_t size, ScratchFile const& file) {
  int const descriptor = open(file.Name(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return;
  bytes.reset(new char[size]);
  for (std::size_t done = 0; done < size;) {
    ssize_t const count = read(descriptor, bytes.get() + done, size - done);
    if (count <= 0) break;
    done += static_cast<std::size_t>(count);
  }
  close(descriptor);
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"save", "load", "load_trimble"});
  ScratchFile const file("bytes");
  bool const trimble = task.work == "load_trimble";
  auto const size = static_cast<std::size_t>(BytesAPoint(trimble) * task.size);
  Bytes bytes(new char[size]);
  std::fill_n(bytes.get(), size, 'x');
  if (task.work != "save") {
    SaveBytes(bytes, size, file);
    bytes.reset();
  }

  Measurement measurement;
  measurement.Start();
  if (task.work == "save") {
    SaveBytes(bytes, size, file);
  } else {
    LoadBytes(bytes, size, file);
  }
  measurement.Stop();

  if (!trimble) measurement.AddFact("file_bytes", file.Size());
  measurement.Report(task);
}
