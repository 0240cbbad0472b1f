#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/FileStream.h"

// The Trimble terrain model, see docs/file-formats.md.
namespace qeltin::detail {

// Where a table stands, and how its records are spaced.
struct TrimbleTable {
  std::int32_t offset = 0;  // from the start of the file
  std::uint32_t records = 0;
  std::int16_t recordSize = 0;  // in bytes
};

struct TrimbleHeader {
  bool headerUnits = false;  // origin and bounds are to be converted
  bool tableUnits = false;   // the coordinates of the tables are
  TPoint origin;             // these three in plan only: z is 0
  TPoint min;
  TPoint max;
  std::uint8_t planSize = 0;            // of a coordinate in plan: 4 or 8 bytes
  std::uint8_t heightSize = 0;          // likewise
  std::uint8_t vertexNumberSize = 0;    // 2 or 4 bytes
  std::uint8_t triangleNumberSize = 0;  // likewise
  TrimbleTable vertices;
  TrimbleTable triangles;
  TrimbleTable border;
  TrimbleTable startPoints;

  // Reads the head of the file. Returns false, with nothing changed, where it is not there whole
  // and where it is not one of a terrain model.
  bool Read(FileStream& in);
};

// Steps through the records of a table, and through the fields at the start of each.
class TrimbleRecords {
 public:
  // REQUIRES: a table with a positive record size. `in` outlives this.
  TrimbleRecords(FileStream& in, TrimbleTable const& table)
      : m_In(in), m_iSize(static_cast<std::size_t>(table.recordSize)) {
    in.Seek(table.offset, 0);
  }

  // Goes to the start of the next record and returns true. Where the file has run out, goes to the
  // start of the last one again, or of one of zeros, and returns false.
  bool Next() {
    m_pNext = m_Bytes;
    return m_In.Read(m_Bytes, m_iSize);
  }

  // Goes to the next record and returns it, or its first four bytes, as one unsigned number. 0
  // where the file has run out.
  std::uint32_t NextWhole() {
    std::uint32_t value = 0;
    if (Next()) std::memcpy(&value, m_Bytes, m_iSize < sizeof value ? m_iSize : sizeof value);
    return value;
  }

  // Returns the next field, a coordinate of 4 or 8 bytes, times `factor`: in single precision where
  // it is stored so.
  double Coordinate(int size, double factor) {
    if (size == sizeof(double)) return Take<double>() * factor;
    return Take<float>() * static_cast<float>(factor);
  }

  // Returns the next field, a signed number of 2 or 4 bytes.
  std::int32_t Number(int size) {
    return size == sizeof(std::int16_t) ? Take<std::int16_t>() : Take<std::int32_t>();
  }

 private:
  template <typename T>
  T Take() {
    T value;
    std::memcpy(&value, m_pNext, sizeof value);
    m_pNext += sizeof value;
    return value;
  }

  static constexpr std::size_t LARGEST_RECORD = 32767;

  FileStream& m_In;
  std::size_t m_iSize;
  char const* m_pNext = m_Bytes;
  char m_Bytes[LARGEST_RECORD] = {};
};

}  // namespace qeltin::detail
