#pragma once

#include <string>

namespace qeltin::detail {

// A file that appears under its name whole or not at all. What is written goes to a temporary file
// in the folder of the target; Publish makes it durable and renames it over the target, so that
// until then, through a crash or a full disk, an older file of that name stays as it was.
//
// Symbolic links are followed first: the link stays and the file that it leads to is replaced. An
// existing target hands its permissions on, and its owner as far as this process may; a target that
// may not be written is refused, although a rename could replace it. Other hard links to the old
// file keep the old contents. A target that is no regular file (a device, a pipe), and one that is
// reached through /proc, such as /dev/stdout, is written directly.
//
// Temporary files are named ".qeltin-" and 16 hexadecimal digits; one can stay behind only where
// the process is killed.
//
// Results are errno values, 0 for success. Threads: one at a time.
class OutputFile {
 public:
  OutputFile() = default;
  OutputFile(OutputFile const&) = delete;
  OutputFile& operator=(OutputFile const&) = delete;
  ~OutputFile() { Abandon(); }

  // Opens `path` for writing, empty. REQUIRES: not open.
  int Open(std::string const& path);

  // Returns the descriptor to write to, or -1. Owned by this object.
  int Descriptor() const { return m_iDescriptor; }

  // Puts what was written under the target's name and closes; abandons it on a failure.
  int Publish();

  // Closes, and removes the temporary file.
  void Abandon();

 private:
  int OpenTemporary(std::string const& target);
  int OpenDirectly(std::string const& path);
  int TakeOver(std::string const& target, bool& exists);
  int MakeTemporary(unsigned mode);
  int Rename();

  int m_iDescriptor = -1;
  int m_iFolder = -1;          // the target's folder; -1 where the target is written directly
  std::string m_strTemporary;  // names within the folder
  std::string m_strTarget;
};

}  // namespace qeltin::detail
