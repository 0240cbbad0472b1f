#pragma once

#include "qeltin/platform/Export.h"

// A sequence of bytes with a position. Hosts are compiled against the order of the virtual
// operations: it stays.
//
// Threads: no lock. One thread at a time.
class QELTIN_API DataStream {
 public:
  DataStream() = default;
  DataStream(DataStream const&) = delete;
  DataStream& operator=(DataStream const&) = delete;
  virtual ~DataStream();

  // Hands on what is buffered. Returns true iff nothing has failed so far.
  virtual bool Sync() = 0;

  // Fills `buffer` with the next `size` bytes and returns true; or leaves it as it was and returns
  // false.
  virtual bool Read(void* buffer, unsigned long long size) = 0;

  // Puts `size` bytes at the position. Returns true iff nothing has failed so far.
  virtual bool Write(void const* buffer, unsigned long long size) = 0;

  // Moves the position to `offset` from the start (origin 0), from the position (1) or from the end
  // (2). Returns true iff it moved.
  virtual bool Seek(long long offset, int origin) = 0;

  // Returns the position in bytes from the start.
  virtual long long Position() const = 0;

  // Cuts or extends the sequence to `size` bytes; the position stays. Returns true iff it did.
  virtual bool SetSize(unsigned long long size) = 0;
};
