#include "apps/qeltin/XyzText.h"

#include <unistd.h>

#include <cmath>
#include <filesystem>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/LineReader.h"
#include "apps/qeltin/Progress.h"
#include "qeltin/persistence/XyzReader.h"
#include "qeltin/platform/Utf8.h"

namespace qeltin::cli {

namespace {

constexpr long long SAMPLE = 10'000;  // lines that tell how long the others are

// Returns the line in quotes, or "the text" where it cannot be read again.
std::string QuotedLine(std::string const& name, long long number) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(name, error)) return "the text";
  LineReader lines(name);
  std::string_view line;
  while (lines.Next(line)) {
    if (lines.Line() != number) continue;
    bool const marked = number == 1 && line.starts_with(BYTE_ORDER_MARK);
    return marked ? "the byte order mark before " + Quoted(line.substr(BYTE_ORDER_MARK.size()))
                  : Quoted(line);
  }
  return "the text";
}

// One text, and what messages about it say.
class Text {
 public:
  Text(std::string const& name)
      : m_Name(name),
        m_Told(name == "-" ? "standard input" : name),
        m_Reader(name == "-" ? XyzReader(STDIN_FILENO) : XyzReader(FromUtf8(name).c_str())) {
    if (m_Reader.Error() != 0) throw Failure(m_Told, SystemReason(m_Reader.Error()));
  }

  XyzReader& Reader() { return m_Reader; }

  [[noreturn]] void Refuse(long long line, std::string const& what) const {
    throw Failure(m_Told, line, QuotedLine(m_Name, line) + what);
  }

  // Throws unless the triple just read stands on one line, later than `last_line`, and consists of
  // sensible numbers. Returns its line.
  long long CheckLine(TPoint const& p, long long last_line) const {
    long long const line = m_Reader.GetTripleLine();
    if (line == last_line) Refuse(line, " holds more than " + Form());
    if (line != m_Reader.GetLine()) Refuse(line, " holds less than " + Form());
    if (!std::isfinite(p.x + p.y + p.z)) Refuse(line, " holds what is no ordinary number");
    return line;
  }

  // Throws where the text ended in anything but its end; where that is allowed, returns a note.
  // `last_line` is where the latest triple stood.
  std::string CheckEnd(bool lenient, long long last_line) const {
    long long const line = m_Reader.GetTripleLine();
    if (m_Reader.GetEnd() == XyzReader::End::READ_ERROR) {
      throw Failure(m_Told, SystemReason(m_Reader.Error()));
    }
    bool const junk = m_Reader.GetEnd() == XyzReader::End::NO_TRIPLE;
    if (junk && (!lenient || m_Reader.GetCount() == 0)) {
      Refuse(line, (line == last_line ? " holds more than " : " is not ") + Form());
    }
    if (m_Reader.GetCount() == 0) throw Failure(m_Told, "holds no points");
    if (!junk) return {};
    return m_Told + ": line " + std::to_string(line) + " is not " + Form() + ": the " +
           std::to_string(m_Reader.GetCount()) + " points before it are kept";
  }

 private:
  std::string Form() const {
    switch (m_Reader.GetForm()) {
      case XyzReader::Form::COMMA:
        return "x,y,z";
      case XyzReader::Form::BLANK:
        return "x y z";
      case XyzReader::Form::UNKNOWN:
        break;
    }
    return "a point";
  }

  std::string m_Name;
  std::string m_Told;
  XyzReader m_Reader;
};

}  // namespace

XyzSummary ReadXyz(std::string const& name, InputOptions const& options, TakePoint const& take,
                   ExpectPoints const& expect) {
  Text text(name);
  XyzReader& reader = text.Reader();
  double const size = static_cast<double>(reader.GetSize());
  long long line = 0;
  {
    Progress progress("read", size, options.quiet);
    TPoint p;
    while (reader.Next(p)) {
      if (!options.lenient) line = text.CheckLine(p, line);
      take({p.x, p.y, p.z});
      auto const position = static_cast<double>(reader.GetPosition());
      if (reader.GetCount() == SAMPLE && expect && size > position) {
        expect(size / position * static_cast<double>(SAMPLE));
      }
      progress.Done(position);
    }
  }
  std::string const note = text.CheckEnd(options.lenient, line);
  if (!note.empty()) options.Note(note);
  return {reader.GetForm() == XyzReader::Form::COMMA, reader.GetCount()};
}

}  // namespace qeltin::cli
