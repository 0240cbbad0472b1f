#include "qeltin/persistence/XyzWriter.h"

#include <charconv>

namespace {

constexpr int DECIMALS = 6;
constexpr std::size_t LONGEST_NUMBER = 1 + 309 + 1 + DECIMALS;  // the largest double, negative

char* Put(char* to, double value, char after) {
  to = std::to_chars(to, to + LONGEST_NUMBER, value, std::chars_format::fixed, DECIMALS).ptr;
  *to = after;
  return to + 1;
}

}  // namespace

XyzWriter::XyzWriter(wchar_t const* file) : m_Stream(file, true, true) {}

void XyzWriter::Write(TPoint const& p) {
  char line[3 * (LONGEST_NUMBER + 1)];
  char const* const end = Put(Put(Put(line, p.x, ','), p.y, ','), p.z, '\n');
  m_Stream.Write(line, static_cast<unsigned long long>(end - line));
}

bool XyzWriter::Close() { return m_Stream.Commit(); }
