#include "apps/qeltin/LineReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "apps/qeltin/Failure.h"

namespace qeltin::cli {

namespace {

constexpr std::size_t LONGEST_LINE = 1 << 16;
constexpr std::size_t CHUNK = 1 << 18;
static_assert(CHUNK > LONGEST_LINE);

}  // namespace

LineReader::LineReader(std::string const& name) : m_Name(name), m_Buffer(CHUNK) {
  if (name == "-") {
    m_Name = "standard input";
    m_iDescriptor = STDIN_FILENO;
  } else {
    m_iDescriptor = open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (m_iDescriptor < 0) throw Failure(m_Name, SystemReason(errno));
  }
  struct stat status {};
  if (fstat(m_iDescriptor, &status) == 0 && S_ISREG(status.st_mode)) {
    m_dSize = static_cast<double>(status.st_size);
  }
}

LineReader::~LineReader() {
  if (m_iDescriptor > STDIN_FILENO) close(m_iDescriptor);
}

bool LineReader::Next(std::string_view& line) {
  std::size_t searched = 0;
  for (;;) {
    char const* const begin = m_Buffer.data() + m_iBegin;
    std::size_t const size = m_iEnd - m_iBegin;
    void const* const found = std::memchr(begin + searched, '\n', size - searched);
    if (found == nullptr && !m_bAtEnd && size <= LONGEST_LINE) {
      searched = size;
      m_bAtEnd = !Refill();
      continue;
    }
    if (found == nullptr && size == 0) return false;
    std::size_t const length =
        found == nullptr ? size : static_cast<std::size_t>(static_cast<char const*>(found) - begin);
    ++m_iLine;
    if (length > LONGEST_LINE) throw Failure(m_Name, m_iLine, "is longer than 65536 characters");
    line = std::string_view(begin, length);
    m_iBegin += length + (found == nullptr ? 0 : 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return true;
  }
}

// Returns false at the end of the text.
bool LineReader::Refill() {
  std::memmove(m_Buffer.data(), m_Buffer.data() + m_iBegin, m_iEnd - m_iBegin);
  m_iEnd -= m_iBegin;
  m_iBegin = 0;
  if (m_BeforeWaiting) m_BeforeWaiting();
  for (;;) {
    ssize_t const got = read(m_iDescriptor, m_Buffer.data() + m_iEnd, m_Buffer.size() - m_iEnd);
    if (got >= 0) {
      m_iEnd += static_cast<std::size_t>(got);
      m_dRead += static_cast<double>(got);
      return got > 0;
    }
    if (errno != EINTR) throw Failure(m_Name, SystemReason(errno));
  }
}

}  // namespace qeltin::cli
