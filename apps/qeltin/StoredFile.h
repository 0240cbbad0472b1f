#pragma once

#include <string>

namespace qeltin::cli {

// What a file is. The last three characters of its name decide first, in any case, as the library
// loads: "tin" is native, "ttm" Trimble. A name in .las or .laz is a LAS file, one with an
// extension of vector data is that, and anything else is an XYZ text.
enum class FileKind { NATIVE, TRIMBLE, TEXT, LAS, VECTOR };
FileKind KindByName(std::string const& name);

// The same for a file that is to be read: what begins like a LAS file is one, unless its name makes
// it a surface.
FileKind KindOf(std::string const& name);

// Returns true iff such files hold triangles, not just points.
bool IsStoredSurface(FileKind kind);

// Returns the word for it in results: "tin", "ttm", "xyz", "las" or "vector".
char const* KindWord(FileKind kind);

// A first look at a file that is about to be loaded.
struct StoredFile {
  double bytes = 0.0;
  int version = -1;  // of a native file, as it stands on disk; otherwise -1
};

// How much of a stored surface must be there.
enum class Wholeness { WHOLE, HEADER };

// Looks at the file without changing it. Throws Failure where it cannot be opened, is empty, is not
// of the kind that its name says, or is shorter than its own counts ask for: the library would load
// such a file as far as it goes without a word. With HEADER, counts that ask for more than there is
// are left to the caller. A text that is a pipe or a device is left alone; what is in a LAS file or
// in vector data shows when it is read.
StoredFile LookAt(std::string const& name, Wholeness wholeness = Wholeness::WHOLE);

}  // namespace qeltin::cli
