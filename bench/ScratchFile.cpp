#include "bench/ScratchFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace qeltin::bench {

ScratchFile::ScratchFile(std::string const& extension) {
  char const* const folder = std::getenv("TMPDIR");
  m_strName = std::string(folder == nullptr ? "/tmp" : folder) + "/qeltin-bench-" +
              std::to_string(getpid()) + "." + extension;
  m_strWideName.assign(m_strName.begin(), m_strName.end());
}

ScratchFile::~ScratchFile() { unlink(Name()); }

double ScratchFile::Size() const {
  struct stat status {};
  return stat(Name(), &status) == 0 ? static_cast<double>(status.st_size) : -1.0;
}

void ScratchFile::Sync() const {
  int const descriptor = open(Name(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);
  close(descriptor);
}

}  // namespace qeltin::bench
