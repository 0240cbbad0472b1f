#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "qeltin/platform/Utf8.h"

namespace qeltin::testing {

// A folder of its own for one test, removed with everything in it at the end. It is in memory where
// the system offers that, so that thousands of small files cost little.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::filesystem::path const memory = "/dev/shm";
    bool const inMemory = access(memory.c_str(), W_OK | X_OK) == 0;
    std::filesystem::path const root = inMemory ? memory : std::filesystem::temp_directory_path();
    std::string name = (root / "qeltin-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    m_Path = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_Path, ignored);
  }
  TemporaryFolder(TemporaryFolder const&) = delete;
  TemporaryFolder& operator=(TemporaryFolder const&) = delete;

  std::filesystem::path Path(std::string const& name = "") const { return m_Path / name; }

  // The path of a file in the folder, as the library takes it.
  std::wstring Wide(std::string const& name) const { return FromUtf8(Path(name).native()); }

  void Put(std::string const& name, std::string const& bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
  }

  std::string Get(std::string const& name) const {
    std::ifstream in(Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  bool Has(std::string const& name) const { return std::filesystem::exists(Path(name)); }

  // The number of entries, hidden ones too.
  int Entries() const {
    auto const entries = std::filesystem::directory_iterator(m_Path);
    return static_cast<int>(std::distance(begin(entries), end(entries)));
  }

 private:
  std::filesystem::path m_Path;
};

}  // namespace qeltin::testing
