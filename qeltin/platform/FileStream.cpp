#include "qeltin/platform/FileStream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>

#include "qeltin/platform/OutputFile.h"
#include "qeltin/platform/Utf8.h"

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{256} << 10;
constexpr unsigned long long LARGEST_TRANSFER = 1ULL << 30;  // the system takes no more than 2 GiB

}  // namespace

DataStream::~DataStream() = default;

FileStream::FileStream(wchar_t const* name, bool write, bool) : m_bWrite(write) {
  try {
    Open(name);
  } catch (std::bad_alloc const&) {
    Fail(ENOMEM);
  }
}

FileStream::FileStream(int descriptor) : m_bOwned(false) { OpenForReading(descriptor); }

FileStream::~FileStream() {
  if (m_bWrite) {
    if (m_bSynced) Commit();
  } else if (m_bOwned && m_iDescriptor >= 0) {
    close(m_iDescriptor);
  }
}

void FileStream::Open(wchar_t const* name) {
  std::string const path = name == nullptr ? "" : qeltin::ToUtf8(name);
  if (!m_bWrite) {
    OpenForReading(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return;
  }
  if (!Grow(BUFFER_SIZE)) return;
  m_pOutput = std::make_unique<qeltin::detail::OutputFile>();
  int const error = m_pOutput->Open(path);
  m_iDescriptor = m_pOutput->Descriptor();
  m_iRoom = m_iCapacity;
  if (error != 0) Fail(error);
}

void FileStream::OpenForReading(int descriptor) {
  m_iDescriptor = descriptor;
  struct stat status = {};
  if (descriptor < 0 || fstat(descriptor, &status) != 0) {
    Fail(errno);
    return;
  }
  if (S_ISREG(status.st_mode)) {
    m_iSize = status.st_size;
    m_iBufferStart = lseek(descriptor, 0, SEEK_CUR);
  }
  Grow(BUFFER_SIZE);
}

// Makes a buffer of `capacity` bytes that starts with what waits to be delivered.
bool FileStream::Grow(std::size_t capacity) {
  std::unique_ptr<char[]> buffer(new (std::nothrow) char[capacity]);
  if (buffer == nullptr) return Fail(ENOMEM);
  if (m_iWaiting > 0) std::memcpy(buffer.get(), m_pNext, m_iWaiting);
  m_iBufferStart = Position();
  m_pBuffer = std::move(buffer);
  m_pNext = m_pBuffer.get();
  m_iCapacity = capacity;
  return true;
}

bool FileStream::ReadBeyond(void* buffer, unsigned long long size) {
  if (m_bWrite || m_bAtEnd || m_iError != 0) return false;
  char* const to = static_cast<char*>(buffer);
  if (size > m_iCapacity && IsRegular()) return ReadLarge(to, size);
  return Fill(size) ? Read(buffer, size) : MoveToEnd();
}

// Reads past the buffer, once it is known that there is enough: `to` must keep what it has
// otherwise.
bool FileStream::ReadLarge(char* to, unsigned long long size) {
  struct stat status = {};
  if (fstat(m_iDescriptor, &status) != 0) return Fail(errno);
  long long const left = status.st_size - Position();
  if (left < 0 || size > static_cast<unsigned long long>(left)) return MoveToEnd();
  std::memcpy(to, m_pNext, m_iWaiting);
  for (std::size_t done = m_iWaiting; done < size;) {
    std::size_t const count = ReadOut(to + done, size - done);
    if (count == 0) return MoveToEnd();
    done += count;
  }
  m_iBufferStart = Position() + static_cast<long long>(size);
  Drop();
  return true;
}

// Has `size` bytes wait to be delivered. A buffer that is too small grows by what arrives, not by
// what is asked for.
bool FileStream::Fill(unsigned long long size) {
  while (m_iWaiting < size) {
    if (m_iWaiting == m_iCapacity) {
      if (!Grow(2 * m_iCapacity)) return false;
    } else if (m_pNext != m_pBuffer.get()) {
      m_iBufferStart = Position();
      std::memmove(m_pBuffer.get(), m_pNext, m_iWaiting);
      m_pNext = m_pBuffer.get();
    }
    std::size_t const count = ReadOut(m_pNext + m_iWaiting, m_iCapacity - m_iWaiting);
    if (count == 0) return false;
    m_iWaiting += count;
  }
  return true;
}

std::size_t FileStream::ReadOut(char* to, std::size_t size) {
  ssize_t count = 0;
  do {
    count = read(m_iDescriptor, to, std::min<unsigned long long>(size, LARGEST_TRANSFER));
  } while (count < 0 && errno == EINTR);
  if (count < 0) Fail(errno);
  return count < 0 ? 0 : static_cast<std::size_t>(count);
}

std::size_t FileStream::ReadSome(void* buffer, std::size_t size) {
  if (m_bWrite || m_iError != 0) return 0;
  char* const to = static_cast<char*>(buffer);
  if (m_iWaiting == 0) {
    std::size_t const count = ReadOut(to, size);
    m_iBufferStart = Position() + static_cast<long long>(count);
    Drop();
    return count;
  }
  std::size_t const count = std::min(size, m_iWaiting);
  Read(to, count);
  return count;
}

void FileStream::Drop() {
  m_pNext = m_pBuffer.get();
  m_iWaiting = 0;
}

bool FileStream::MoveToEnd() {
  m_bRanOut = m_bRanOut || m_iError == 0;
  m_bAtEnd = true;
  m_iBufferStart = Position() + static_cast<long long>(m_iWaiting);
  Drop();
  if (IsRegular()) m_iBufferStart = lseek(m_iDescriptor, 0, SEEK_END);
  return false;
}

bool FileStream::WriteBeyond(char const* bytes, unsigned long long size) {
  if (!m_bWrite) return false;
  if (m_iDescriptor < 0) return Fail(EBADF);
  Flush();
  if (m_iError != 0) return false;
  if (size <= m_iRoom) return Write(bytes, size);
  WriteOut(bytes, size);
  m_iBufferStart += static_cast<long long>(size);
  return m_iError == 0;
}

void FileStream::WriteOut(char const* bytes, unsigned long long size) {
  while (size > 0 && m_iError == 0) {
    ssize_t const count = write(m_iDescriptor, bytes, std::min(size, LARGEST_TRANSFER));
    if (count > 0) {
      bytes += count;
      size -= static_cast<unsigned long long>(count);
    } else if (count == 0 || errno != EINTR) {
      Fail(count == 0 ? EIO : errno);
    }
  }
}

void FileStream::Flush() {
  if (m_iError != 0) return;
  auto const size = static_cast<std::size_t>(m_pNext - m_pBuffer.get());
  WriteOut(m_pBuffer.get(), size);
  m_iBufferStart += static_cast<long long>(size);
  m_pNext = m_pBuffer.get();
  if (m_iError == 0) m_iRoom = m_iCapacity;
}

bool FileStream::Sync() {
  if (m_bWrite && m_iDescriptor >= 0) {
    Flush();
    m_bSynced = m_iError == 0;
  }
  return m_iError == 0;
}

bool FileStream::Seek(long long offset, int origin) {
  if (m_iDescriptor < 0 || m_iError != 0) return false;
  static_assert(SEEK_SET == 0 && SEEK_CUR == 1 && SEEK_END == 2);
  if (m_bWrite) Flush();
  if (origin == SEEK_CUR) {
    if (__builtin_add_overflow(offset, Position(), &offset)) offset = -1;
    origin = SEEK_SET;
  }
  long long const position = lseek(m_iDescriptor, offset, origin);
  if (position < 0) {
    // What would be written next would land in the wrong place; a reader just stays where it is.
    if (m_bWrite) Fail(errno);
    return false;
  }
  m_iBufferStart = position;
  m_bAtEnd = false;
  Drop();
  return true;
}

bool FileStream::SetSize(unsigned long long size) {
  if (!m_bWrite || m_iDescriptor < 0) return false;
  Flush();
  m_bSynced = false;
  if (m_iError == 0 && ftruncate(m_iDescriptor, static_cast<off_t>(size)) != 0) Fail(errno);
  return m_iError == 0;
}

bool FileStream::Commit() {
  if (m_bWrite && m_iDescriptor >= 0) {
    Flush();
    int const error = m_iError == 0 ? m_pOutput->Publish() : 0;
    m_pOutput->Abandon();
    m_iDescriptor = -1;
    m_iRoom = 0;
    if (error != 0) Fail(error);
  }
  return m_iError == 0;
}

bool FileStream::Fail(int error) {
  if (m_iError == 0) m_iError = error;
  m_iWaiting = 0;
  m_iRoom = 0;
  return false;
}
