#include "apps/qeltin/PlaceReader.h"

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Numbers.h"

namespace qeltin::cli {

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

void SkipBlanks(std::string_view& text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
}

// Takes blanks with at most one comma among them. Returns false where there is neither.
bool TakeSeparator(std::string_view& text) {
  std::size_t const before = text.size();
  SkipBlanks(text);
  if (text.starts_with(',')) text.remove_prefix(1);
  SkipBlanks(text);
  return text.size() < before;
}

}  // namespace

bool ParsePlace(std::string_view text, Place& place) {
  if (!TakeNumber(text, place.x) || !TakeSeparator(text)) return false;
  return TakeNumber(text, place.y) && (text.empty() || TakeSeparator(text));
}

bool NextTrimmed(LineReader& lines, std::string_view& line) {
  if (!lines.Next(line)) return false;
  if (lines.Line() == 1 && line.starts_with(BYTE_ORDER_MARK)) {
    line.remove_prefix(BYTE_ORDER_MARK.size());
  }
  SkipBlanks(line);
  return true;
}

bool PlaceReader::Next(Place& place) {
  std::string_view line;
  while (NextTrimmed(m_Lines, line)) {
    if (line.empty()) continue;
    if (ParsePlace(line, place)) return true;
    throw Failure(m_Lines.Name(), m_Lines.Line(), Quoted(line) + " does not start with x and y");
  }
  return false;
}

}  // namespace qeltin::cli
