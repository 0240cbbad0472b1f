#pragma once

#include <string>

namespace qeltin::cli {

// What a file is by the last three characters of its name, in any case: the rule by which the
// library loads. "tin" is native, "ttm" Trimble, anything else XYZ text.
enum class FileKind { NATIVE, TRIMBLE, TEXT };
FileKind KindByName(std::string const& name);

// Returns the word for it in results: "tin", "ttm" or "xyz".
char const* KindWord(FileKind kind);

// A first look at a file that is about to be loaded.
struct StoredFile {
  double bytes = 0.0;
  int version = -1;  // of a native file, as it stands on disk; otherwise -1
};

// Looks at the file without changing it. Throws Failure where it cannot be opened, is empty, is not
// of the kind that its name says, or is shorter than its own counts ask for: the library would load
// such a file as far as it goes without a word. A text that is a pipe or a device is left alone.
StoredFile LookAt(std::string const& name);

}  // namespace qeltin::cli
