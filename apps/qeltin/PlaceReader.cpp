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

bool Parse(std::string_view text, Place& place) {
  if (!TakeNumber(text, place.x) || !TakeSeparator(text)) return false;
  return TakeNumber(text, place.y) && (text.empty() || TakeSeparator(text));
}

}  // namespace

bool PlaceReader::Next(Place& place) {
  std::string_view line;
  while (m_Lines.Next(line)) {
    std::string_view text = line;
    if (m_Lines.Line() == 1 && text.starts_with(BYTE_ORDER_MARK)) {
      text.remove_prefix(BYTE_ORDER_MARK.size());
    }
    SkipBlanks(text);
    if (text.empty()) continue;
    if (Parse(text, place)) return true;
    throw Failure(m_Lines.Name(), m_Lines.Line(), Quoted(text) + " does not start with x and y");
  }
  return false;
}

}  // namespace qeltin::cli
