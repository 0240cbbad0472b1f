#pragma once

#include <string>
#include <string_view>

#include "apps/qeltin/LineReader.h"

namespace qeltin::cli {

// A position in plan, in the unit of the survey.
struct Place {
  double x = 0.0;
  double y = 0.0;
};

// Reads x and y, separated by a comma, blanks or tabs, at the start of `text`. What follows them
// after another separator is ignored. Returns false where they do not stand there.
bool ParsePlace(std::string_view text, Place& place);

// Sets `line` to the next line without the blanks, and the byte order mark, before its first
// character. Returns false at the end.
bool NextTrimmed(LineReader& lines, std::string_view& line);

// Reads places from a text, one a line, in constant memory: x and y, separated by a comma, blanks
// or tabs. Further columns are ignored, so that an XYZ text serves too, and empty lines are passed
// over. Any other line is a Failure with its number.
class PlaceReader {
 public:
  // "-" is standard input.
  explicit PlaceReader(std::string const& name) : m_Lines(name) {}

  // Returns false at the end.
  bool Next(Place& place);

  LineReader& Lines() { return m_Lines; }

 private:
  LineReader m_Lines;
};

}  // namespace qeltin::cli
