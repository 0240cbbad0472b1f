#include "qeltin/persistence/XyzReader.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <new>

#include "qeltin/persistence/NumberScanner.h"
#include "qeltin/persistence/PlainNumber.h"

using qeltin::detail::NumberScanner;
using qeltin::detail::ScanPlainNumber;

namespace {

constexpr std::ptrdiff_t BUFFER_SIZE = std::ptrdiff_t{256} << 10;
constexpr std::ptrdiff_t BEYOND = 8;  // bytes behind it that a scan may look at

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

XyzReader::XyzReader(wchar_t const* file) : m_Stream(file, false, true) { MakeBuffer(); }

XyzReader::XyzReader(int descriptor) : m_Stream(descriptor) { MakeBuffer(); }

XyzReader::~XyzReader() = default;

void XyzReader::MakeBuffer() {
  m_pBuffer.reset(new (std::nothrow) char[BUFFER_SIZE + BEYOND]());
  if (m_pBuffer == nullptr) {
    m_End = End::READ_ERROR;
    return;
  }
  m_pNext = m_pEnd = m_pBuffer.get();
  *m_pEnd = '\0';
  m_pCounted = m_pNext;
}

long long XyzReader::GetTripleLine() const {
  return m_pTriple == nullptr ? m_iTripleLine : LineAt(m_pTriple);
}

long long XyzReader::GetLine() const { return LineAt(m_pNext); }

long long XyzReader::GetPosition() const { return m_Stream.Position() - (m_pEnd - m_pNext); }

// Counts on, or back, from where the lines were counted last.
long long XyzReader::LineAt(char const* place) const {
  m_iCountedLine += place >= m_pCounted ? std::count(m_pCounted, place, '\n')
                                        : -std::count(place, m_pCounted, '\n');
  m_pCounted = place;
  return m_iCountedLine;
}

bool XyzReader::Next(TPoint& p) {
  if (m_End != End::NOT_YET) return false;
  bool const more = SkipSpace();
  m_pTriple = m_pNext;
  TPoint scanned;
  if (more && (ScanPlainTriple(scanned) || ScanTriple(scanned))) {
    p = scanned;
    ++m_iCount;
    return true;
  }
  bool const failed = m_Stream.Error() != 0;
  m_End = failed ? End::READ_ERROR : more ? End::NO_TRIPLE : End::END_OF_FILE;
  return false;
}

// Scans a triple that lies within the buffer and holds plain numbers only. Returns false, with the
// place where it was, for any other: that is left to ScanTriple.
bool XyzReader::ScanPlainTriple(TPoint& p) {
  if (m_Form == Form::UNKNOWN) return false;
  char const* at = ScanPlainNumber(m_pNext, p.x);
  for (double* value : {&p.y, &p.z}) {
    if (at == nullptr) return false;
    if (m_Form == Form::COMMA && *at++ != ',') return false;
    while (IsSpace(*at)) ++at;
    at = ScanPlainNumber(at, *value);
  }
  if (at == nullptr || at == m_pEnd) return false;
  m_pNext += at - m_pNext;
  return true;
}

bool XyzReader::ScanTriple(TPoint& p) {
  return ScanNumber(p.x) && ScanSeparator() && ScanNumber(p.y) && ScanSeparator() &&
         ScanNumber(p.z);
}

bool XyzReader::ScanSeparator() {
  // What follows the very first number tells the form: a comma there rules the blank form out, and
  // anything else the comma form.
  if (m_Form == Form::UNKNOWN) m_Form = Peek() == ',' ? Form::COMMA : Form::BLANK;
  if (m_Form == Form::BLANK) return true;
  if (Peek() != ',') return false;
  ++m_pNext;
  return true;
}

bool XyzReader::ScanNumber(double& value) {
  SkipSpace();
  for (;;) {
    switch (ScanShortNumber(value)) {
      case Fast::DONE:
        return true;
      case Fast::ODD:
        return ScanAnyNumber(value);
      case Fast::CUT:
        if (m_pEnd - m_pNext == BUFFER_SIZE) return ScanAnyNumber(value);
        Refill();
    }
  }
}

// Scans a number of ordinary form within the buffer: a sign, digits, a point, an exponent. ODD
// for all others, and CUT where the number may go on beyond the buffer; the place stays then.
XyzReader::Fast XyzReader::ScanShortNumber(double& value) {
  char* first = m_pNext;
  bool const plus = *first == '+';
  if (plus) ++first;
  char const lead = !plus && *first == '-' ? first[1] : *first;
  if (!IsDigit(lead) && lead != '.') return Fast::ODD;

  double scanned = 0.0;
  auto const [last, error] = std::from_chars(first, m_pEnd, scanned);
  if (last == m_pEnd && !m_bEnded) return Fast::CUT;
  // An exponent without digits is taken by "%lf" and left by from_chars; "0x" starts a hexadecimal
  // number for the one only; and where the exponent is too large the two give different values.
  char const after = *last | 0x20;
  if (error != std::errc() || after == 'e' || after == 'x') return Fast::ODD;
  value = scanned;
  m_pNext += last - m_pNext;
  return Fast::DONE;
}

bool XyzReader::ScanAnyNumber(double& value) {
  try {
    NumberScanner scanner;
    while (scanner.Take(Peek())) ++m_pNext;
    return scanner.GetValue(value);
  } catch (std::bad_alloc const&) {
    return false;
  }
}

// Returns false at the end of the text.
bool XyzReader::SkipSpace() {
  do {
    while (IsSpace(*m_pNext)) ++m_pNext;
    if (m_pNext != m_pEnd) return true;
  } while (Refill());
  return false;
}

int XyzReader::Peek() {
  if (m_pNext == m_pEnd && !Refill()) return NumberScanner::END_OF_TEXT;
  return static_cast<unsigned char>(*m_pNext);
}

// Moves what is not yet scanned to the start of the buffer and reads more after it. Returns false
// where there is no more.
bool XyzReader::Refill() {
  if (m_bEnded) return false;
  if (m_pTriple != nullptr) {
    m_iTripleLine = LineAt(m_pTriple);
    m_pTriple = nullptr;
  }
  LineAt(m_pNext);

  char* const buffer = m_pBuffer.get();
  auto const kept = m_pEnd - m_pNext;
  std::memmove(buffer, m_pNext, static_cast<std::size_t>(kept));
  std::size_t const count =
      m_Stream.ReadSome(buffer + kept, static_cast<std::size_t>(BUFFER_SIZE - kept));
  m_pNext = buffer;
  m_pCounted = buffer;
  m_pEnd = buffer + kept + count;
  *m_pEnd = '\0';
  m_bEnded = count == 0;
  return !m_bEnded;
}
