#include "apps/qeltin/BlockReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "apps/qeltin/Failure.h"

namespace qeltin::cli {

namespace {

constexpr std::size_t CHUNK = 1 << 20;
static_assert(CHUNK >= 2 * BlockReader::LARGEST);

}  // namespace

BlockReader::BlockReader(std::string const& name) : m_Name(name), m_Buffer(CHUNK) {
  m_iDescriptor = open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
  if (m_iDescriptor < 0) throw Failure(name, SystemReason(errno));
  struct stat status {};
  if (fstat(m_iDescriptor, &status) == 0 && status.st_size > 0) {
    m_iSize = static_cast<std::uint64_t>(status.st_size);
  }
}

BlockReader::~BlockReader() { close(m_iDescriptor); }

void BlockReader::Seek(std::uint64_t offset) {
  m_iBlock = std::min(offset, m_iSize);
  m_iNext = m_iEnd = 0;
}

unsigned char const* BlockReader::Next(std::size_t size) {
  if (m_iEnd - m_iNext < size) Refill();
  if (m_iEnd - m_iNext < size) {
    m_iNext = m_iEnd;
    return nullptr;
  }
  unsigned char const* const bytes = m_Buffer.data() + m_iNext;
  m_iNext += size;
  return bytes;
}

void BlockReader::Refill() {
  std::memmove(m_Buffer.data(), m_Buffer.data() + m_iNext, m_iEnd - m_iNext);
  m_iBlock += m_iNext;
  m_iEnd -= m_iNext;
  m_iNext = 0;
  while (m_iEnd < m_Buffer.size()) {
    ssize_t const got = pread(m_iDescriptor, m_Buffer.data() + m_iEnd, m_Buffer.size() - m_iEnd,
                              static_cast<off_t>(m_iBlock + m_iEnd));
    if (got == 0) return;
    if (got > 0) {
      m_iEnd += static_cast<std::size_t>(got);
    } else if (errno != EINTR) {
      throw Failure(m_Name, SystemReason(errno));
    }
  }
}

}  // namespace qeltin::cli
