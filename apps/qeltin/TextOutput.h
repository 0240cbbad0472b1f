#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "apps/qeltin/DraftFile.h"

namespace qeltin::cli {

// Buffered text that goes to standard output, straight into a device or a pipe, or into a file that
// appears under its name only when Close has been reached. Every failure to write is a Failure with
// the system's reason, except that a pipe without a reader is a ReaderGone.
class TextOutput {
 public:
  // An empty `name` and "-" are standard output. See DraftFile for `overwrite`.
  explicit TextOutput(std::string const& name = {}, bool overwrite = false);
  ~TextOutput();
  TextOutput(TextOutput const&) = delete;
  TextOutput& operator=(TextOutput const&) = delete;

  // The text not yet written. Append to it, and call Spill between records.
  std::string& Buffer() { return m_Buffer; }

  // Writes the buffer out if it has grown large.
  void Spill() {
    if (m_Buffer.size() >= LARGE) Flush();
  }

  void Flush();

  // Returns true iff somebody sees the text while it is written.
  bool IsTerminal() const;

  // Writes the rest, and makes the file stand under its name.
  void Close();

 private:
  static constexpr std::size_t LARGE = 1 << 16;

  std::string m_Name;  // what messages say
  std::optional<DraftFile> m_File;
  int m_iDescriptor = -1;
  std::string m_Buffer;
};

}  // namespace qeltin::cli
