#pragma once

#include <string>

namespace qeltin::bench {

// A file name in the folder of the environment variable TMPDIR, or in /tmp. Whatever stands under
// the name at the end is removed.
class ScratchFile {
 public:
  explicit ScratchFile(std::string const& extension);
  ScratchFile(ScratchFile const&) = delete;
  ScratchFile& operator=(ScratchFile const&) = delete;
  ~ScratchFile();

  char const* Name() const { return m_strName.c_str(); }
  wchar_t const* WideName() const { return m_strWideName.c_str(); }

  // Returns the size of the file in bytes, -1 where there is none.
  double Size() const;

  // Waits until the file is on the disk, as the library does before it publishes one.
  void Sync() const;

 private:
  std::string m_strName;
  std::wstring m_strWideName;
};

}  // namespace qeltin::bench
