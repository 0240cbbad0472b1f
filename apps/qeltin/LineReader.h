#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qeltin::cli {

// What some editors put before the first line of a text.
inline constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

// Reads a text line by line, of any length, in constant memory. Lines end in LF or CR LF; the last
// one need not. Throws Failure with the system's reason where the text cannot be opened or read,
// and with the line's number where a line is longer than 64 KiB.
class LineReader {
 public:
  // "-" is standard input.
  explicit LineReader(std::string const& name);
  ~LineReader();
  LineReader(LineReader const&) = delete;
  LineReader& operator=(LineReader const&) = delete;

  // Something to be done each time before the reader waits for more text.
  void BeforeWaiting(std::function<void()> action) { m_BeforeWaiting = std::move(action); }

  // Sets `line`, without its end. It stays valid until the next call. Returns false at the end.
  bool Next(std::string_view& line);

  std::string const& Name() const { return m_Name; }  // as messages say it
  long long Line() const { return m_iLine; }          // number of the latest line, from 1
  double Size() const { return m_dSize; }             // bytes; 0 where it is not known in advance
  double Position() const { return m_dRead; }         // bytes read so far

 private:
  bool Refill();

  std::string m_Name;
  int m_iDescriptor = -1;
  std::function<void()> m_BeforeWaiting;
  double m_dSize = 0.0;
  double m_dRead = 0.0;
  long long m_iLine = 0;
  std::vector<char> m_Buffer;
  std::size_t m_iBegin = 0;  // of the text not yet delivered
  std::size_t m_iEnd = 0;
  bool m_bAtEnd = false;
};

}  // namespace qeltin::cli
