#pragma once

#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/Export.h"
#include "qeltin/platform/FileStream.h"

// Writes points as lines "x,y,z" with six decimals and a point as the decimal sign, whatever the
// locale of the host; all digits of a number, however large. What is not a number reads "nan",
// "-nan", "inf" or "-inf".
//
// Replaces the file as a whole: see FileStream. Nothing throws.
//
// Threads: no lock. One thread at a time.
class QELTIN_API XyzWriter {
 public:
  // Opens `file`, empty. Nothing stands under that name until Close.
  explicit XyzWriter(wchar_t const* file);

  // Returns true iff the file could be created and is not yet closed.
  bool IsOpen() const { return m_Stream.IsOpen(); }

  void Write(TPoint const& p);

  // Puts the file under its name. Returns true iff nothing has failed. Without a call, the file
  // stays as it was.
  bool Close();

  // Returns the errno of the first failure, 0 if there was none.
  int Error() const { return m_Stream.Error(); }

 private:
  FileStream m_Stream;
};
