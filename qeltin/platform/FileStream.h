#pragma once

#include <cstddef>
#include <cstring>
#include <memory>

#include "qeltin/platform/DataStream.h"
#include "qeltin/platform/Export.h"

namespace qeltin::detail {
class OutputFile;
}

// A buffered file, open either for reading or for writing. Offsets are 64 bits wide.
//
// Nothing throws. A file that cannot be opened gives an object whose Read and Write deliver
// nothing. The first failure is remembered: see Error.
//
// READING. Read is all or nothing. Where fewer bytes are left than were asked for, the buffer keeps
// what it had, the position moves to the end, and later reads deliver nothing until a Seek.
//
// WRITING replaces the file as a whole. The bytes go to a temporary file beside it, and Commit puts
// that under the name; the destructor commits too, where everything written has been handed on by
// Sync. In all other cases (a failure, a stream that is deleted between a Write and the next Sync)
// the temporary file is removed and an older file stays as it was. What is no regular file is
// written directly. See OutputFile for links and permissions.
//
// Threads: no lock. One thread at a time.
class QELTIN_API FileStream final : public DataStream {
 public:
  // Opens `name`, for writing where `write` is true. The third argument has no meaning.
  FileStream(wchar_t const* name, bool write, bool);

  // Reads from a descriptor that is open already, from where it stands: standard input, say. Not
  // owned: it stays open.
  explicit FileStream(int descriptor);

  ~FileStream() override;

  bool Sync() override;
  bool Read(void* buffer, unsigned long long size) override;
  bool Write(void const* buffer, unsigned long long size) override;
  bool Seek(long long offset, int origin) override;
  long long Position() const override { return m_iBufferStart + (m_pNext - m_pBuffer.get()); }
  bool SetSize(unsigned long long size) override;

  // Reads at most `size` bytes, as soon as there are any, and returns their number; 0 at the end
  // and after a failure.
  std::size_t ReadSome(void* buffer, std::size_t size);

  // Makes what was written durable, puts it under the file's name and closes. Returns true iff
  // nothing has failed since the stream was opened. A stream for reading answers that alone.
  bool Commit();

  // Returns true iff the file could be opened and is not yet committed.
  bool IsOpen() const { return m_iDescriptor >= 0; }

  // Returns the errno of the first failure, 0 if there was none. Running out of file is no failure.
  int Error() const { return m_iError; }

  // Returns true iff a Read asked for more than there was.
  bool RanOut() const { return m_bRanOut; }

  // Returns true iff a regular file is being read.
  bool IsRegular() const { return m_iSize >= 0; }

  // Returns the size that a regular file had when it was opened for reading, or -1.
  long long Size() const { return m_iSize; }

 private:
  void Open(wchar_t const* name);
  void OpenForReading(int descriptor);
  bool Grow(std::size_t capacity);
  bool ReadBeyond(void* buffer, unsigned long long size);
  bool ReadLarge(char* to, unsigned long long size);
  bool Fill(unsigned long long size);
  std::size_t ReadOut(char* to, std::size_t size);
  void Drop();
  bool MoveToEnd();
  bool WriteBeyond(char const* bytes, unsigned long long size);
  void WriteOut(char const* bytes, unsigned long long size);
  void Flush();
  bool Fail(int error);

  int m_iDescriptor = -1;
  bool m_bWrite = false;
  bool m_bOwned = true;    // the descriptor, of a stream for reading
  bool m_bSynced = false;  // nothing was written since the last Sync
  bool m_bRanOut = false;
  bool m_bAtEnd = false;  // by a Read that ran out, and there was no Seek since
  int m_iError = 0;
  long long m_iSize = -1;
  long long m_iBufferStart = 0;  // where in the file the first byte of the buffer stands

  std::unique_ptr<char[]> m_pBuffer;
  std::size_t m_iCapacity = 0;
  char* m_pNext = nullptr;     // the next byte to be delivered, or where the next one is put
  std::size_t m_iWaiting = 0;  // reading: bytes from m_pNext on that wait to be delivered, else 0
  std::size_t m_iRoom = 0;     // writing: bytes from m_pNext on that are free, else 0

  std::unique_ptr<qeltin::detail::OutputFile> m_pOutput;  // of a stream for writing
};

// Inline, so that a record of a few bytes costs no more than its copy.
inline bool FileStream::Read(void* buffer, unsigned long long size) {
  if (size > m_iWaiting) return ReadBeyond(buffer, size);
  if (size == 0) return true;
  std::memcpy(buffer, m_pNext, static_cast<std::size_t>(size));
  m_pNext += size;
  m_iWaiting -= static_cast<std::size_t>(size);
  return true;
}

inline bool FileStream::Write(void const* buffer, unsigned long long size) {
  m_bSynced = false;
  if (size > m_iRoom) return WriteBeyond(static_cast<char const*>(buffer), size);
  if (size == 0) return m_iError == 0;
  std::memcpy(m_pNext, buffer, static_cast<std::size_t>(size));
  m_pNext += size;
  m_iRoom -= static_cast<std::size_t>(size);
  return true;
}
