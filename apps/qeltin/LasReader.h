#pragma once

#include <cstdint>
#include <string>

#include "apps/qeltin/BlockReader.h"
#include "qeltin/kernel/IPoint.h"

namespace qeltin::cli {

// What the public header block of a LAS file says of its points.
struct LasHeader {
  int minor_version = 0;  // of version 1
  int point_format = 0;
  std::size_t record_size = 0;  // bytes a point, extra bytes included
  std::uint64_t first_point = 0;
  std::uint64_t points = 0;
  bool counts_differ = false;  // version 1.4: the count for old readers, which holds, is another
  double scale[3] = {};
  double offset[3] = {};
};

struct LasPoint {
  IPoint place;
  int classification = 0;
  bool withheld = false;
};

// Reads the points of an uncompressed LAS file of version 1.0 to 1.4 and point format 0 to 10, in
// their order and in constant memory, after the LAS format of the ASPRS. A coordinate is
// stored * scale + offset, in double precision.
//
// The constructor throws Failure where the file is none, is compressed, is of a version or point
// format that is not known, has a header that makes no sense, or is shorter than its header says.
class LasReader {
 public:
  explicit LasReader(std::string const& name);

  LasHeader const& Header() const { return m_Header; }

  // Sets `point` to the next point. Returns false after the last.
  bool Next(LasPoint& point);

  // Bytes, of the file and read so far.
  double Size() const { return static_cast<double>(m_File.Size()); }
  double Position() const { return static_cast<double>(m_File.Position()); }

 private:
  void ReadHeader();
  unsigned char const* ReadBlock(std::size_t size);
  void ReadLayout(unsigned char const* block);
  void ReadCount(unsigned char const* block);
  void ReadScales(unsigned char const* block);
  void RefuseCompressed(unsigned char const* block);

  std::string m_Name;
  BlockReader m_File;
  LasHeader m_Header;
  std::uint64_t m_iRead = 0;
};

// Returns true iff `name` is an ordinary file that begins as a LAS file does.
bool HasLasSignature(std::string const& name);

}  // namespace qeltin::cli
