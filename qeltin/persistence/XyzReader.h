#pragma once

#include <memory>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/Export.h"
#include "qeltin/platform/FileStream.h"

// Reads a text of X, Y, Z triples as a stream: "1.5,2.25,-3" or "1.5 2.25 -3", the whole text in
// the form of its first triple. White space, line ends included, may stand before any number and
// has no other meaning. There is no header and no comment.
//
// What counts as a number is what "%lf" of the C runtime's formatted scanning takes in the C
// locale, whatever the locale of the host; so "1.2.3.4" holds 1.2, 0.3 and 0.4, and "1e" is 1. In
// the comma form a comma follows its number at once.
//
// The first text that is no triple ends the reading. Nothing throws.
//
// Threads: no lock. One thread at a time.
class QELTIN_API XyzReader {
 public:
  enum class Form { UNKNOWN, COMMA, BLANK };
  enum class End { NOT_YET, END_OF_FILE, NO_TRIPLE, READ_ERROR };

  explicit XyzReader(wchar_t const* file);

  // Reads from a descriptor that is open already: standard input, say. Not owned.
  explicit XyzReader(int descriptor);

  XyzReader(XyzReader const&) = delete;
  XyzReader& operator=(XyzReader const&) = delete;
  ~XyzReader();

  // Sets `p` to the next triple and returns true; or returns false with `p` as it was, for good.
  bool Next(TPoint& p);

  // Returns true iff the file could be opened.
  bool IsOpen() const { return m_Stream.IsOpen(); }

  // Returns the errno of the first failure to open or read, 0 if there was none.
  int Error() const { return m_Stream.Error(); }

  // Returns the form of the text. Known once its first number is read.
  Form GetForm() const { return m_Form; }

  // Returns what ended the reading: the end of the text between two triples, or anything else,
  // such as a triple that is cut off.
  End GetEnd() const { return m_End; }

  // Returns the number of triples read.
  long long GetCount() const { return m_iCount; }

  // Return lines, counted from 1: where the latest triple, read or failed, begins, and where the
  // reading stands. After a failed triple that is the line of the first character that does not
  // fit.
  long long GetTripleLine() const;
  long long GetLine() const;

  // Return how far the reading is, and the size of the file or -1 where it is not known, in bytes.
  long long GetPosition() const;
  long long GetSize() const { return m_Stream.Size(); }

 private:
  enum class Fast { DONE, ODD, CUT };

  bool ScanPlainTriple(TPoint& p);
  bool ScanTriple(TPoint& p);
  bool ScanSeparator();
  bool ScanNumber(double& value);
  Fast ScanShortNumber(double& value);
  bool ScanAnyNumber(double& value);
  bool SkipSpace();
  int Peek();
  void MakeBuffer();
  bool Refill();
  long long LineAt(char const* place) const;

  FileStream m_Stream;
  std::unique_ptr<char[]> m_pBuffer;
  char* m_pNext = nullptr;  // the next character to be scanned
  char* m_pEnd = nullptr;   // a NUL stands here, so that scans stop
  bool m_bEnded = false;    // nothing comes after m_pEnd

  Form m_Form = Form::UNKNOWN;
  End m_End = End::NOT_YET;
  long long m_iCount = 0;
  char* m_pTriple = nullptr;    // where the latest triple begins; null once that left the buffer
  long long m_iTripleLine = 1;  // the line of that place, once it left the buffer

  // Lines are counted only where somebody asks, or a part of the text leaves the buffer.
  mutable char const* m_pCounted = nullptr;
  mutable long long m_iCountedLine = 1;  // the line of m_pCounted
};
