#include "apps/qeltin/LasReader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "apps/qeltin/Failure.h"

namespace qeltin::cli {

namespace {

constexpr char SIGNATURE[] = "LASF";
constexpr std::size_t SIGNATURE_SIZE = 4;
constexpr int NEWEST_MINOR = 4;
constexpr std::size_t HEADER_SIZES[] = {227, 227, 227, 235, 375};  // by minor version
constexpr std::size_t RECORD_SIZES[] = {20, 28, 26, 34, 57, 63, 30, 36, 38, 59, 67};  // by format
constexpr int LAST_FORMAT = 10;
constexpr int FIRST_WIDE_FORMAT = 6;  // from here on the class has a byte of its own

// Offsets in the public header block.
enum Field : std::size_t {
  MAJOR_VERSION = 24,
  MINOR_VERSION = 25,
  HEADER_SIZE = 94,
  FIRST_POINT = 96,
  VARIABLE_RECORDS = 100,
  POINT_FORMAT = 104,
  RECORD_SIZE = 105,
  LEGACY_COUNT = 107,
  SCALES = 131,
  OFFSETS = 155,
  COUNT = 247,
};

// The head of a variable length record: 2 bytes, 16 for who defined it, its number and its size.
constexpr std::size_t VARIABLE_HEAD = 54;
constexpr std::size_t DEFINED_BY = 2;
constexpr std::size_t DEFINED_BY_SIZE = 16;
constexpr std::size_t CONTENT_SIZE = 20;

std::string Number(std::uint64_t n) { return std::to_string(n); }

bool IsDefinedBy(unsigned char const* record, char const* who) {
  return std::strncmp(reinterpret_cast<char const*>(record) + DEFINED_BY, who, DEFINED_BY_SIZE) ==
         0;
}

}  // namespace

LasReader::LasReader(std::string const& name) : m_Name(name), m_File(name) {
  ReadHeader();
  m_File.Seek(m_Header.first_point);
}

void LasReader::ReadHeader() {
  unsigned char const* block = m_File.Next(SIGNATURE_SIZE);
  if (block == nullptr || std::memcmp(block, SIGNATURE, SIGNATURE_SIZE) != 0) {
    throw Failure(m_Name, "is not a LAS file, although its name ends like one");
  }
  block = ReadBlock(HEADER_SIZES[0]);
  int const major = block[MAJOR_VERSION];
  m_Header.minor_version = block[MINOR_VERSION];
  if (major != 1 || m_Header.minor_version > NEWEST_MINOR) {
    throw Failure(m_Name, "is of LAS version " + std::to_string(major) + '.' +
                              std::to_string(m_Header.minor_version) +
                              ", and 1.0 to 1.4 are known");
  }
  std::size_t const size = HEADER_SIZES[m_Header.minor_version];
  block = ReadBlock(size);
  unsigned const told = LittleEndian<std::uint16_t>(block + HEADER_SIZE);
  if (told < size) {
    throw Failure(m_Name, "is damaged: a header of " + Number(told) + " bytes, where version 1." +
                              std::to_string(m_Header.minor_version) + " has " + Number(size));
  }
  std::vector<unsigned char> const header(block, block + size);
  RefuseCompressed(header.data());
  ReadLayout(header.data());
  ReadScales(header.data());
  ReadCount(header.data());
}

// Returns the first `size` bytes of the file.
unsigned char const* LasReader::ReadBlock(std::size_t size) {
  m_File.Seek(0);
  unsigned char const* const block = m_File.Next(size);
  if (block == nullptr) throw Failure(m_Name, "is cut short: its header is not whole");
  return block;
}

void LasReader::ReadLayout(unsigned char const* block) {
  unsigned char const format = block[POINT_FORMAT];
  m_Header.point_format = format;
  if (format > LAST_FORMAT) {
    throw Failure(m_Name, "has point format " + Number(format) + ", and 0 to 10 are known");
  }
  m_Header.record_size = LittleEndian<std::uint16_t>(block + RECORD_SIZE);
  if (m_Header.record_size < RECORD_SIZES[format]) {
    throw Failure(m_Name, "is damaged: points of " + Number(m_Header.record_size) +
                              " bytes, where point format " + Number(format) + " has " +
                              Number(RECORD_SIZES[format]));
  }
  m_Header.first_point = LittleEndian<std::uint32_t>(block + FIRST_POINT);
  if (m_Header.first_point < LittleEndian<std::uint16_t>(block + HEADER_SIZE)) {
    throw Failure(m_Name, "is damaged: its points begin inside its header");
  }
}

void LasReader::ReadScales(unsigned char const* block) {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    m_Header.scale[axis] = LittleEndian<double>(block + SCALES + 8 * axis);
    m_Header.offset[axis] = LittleEndian<double>(block + OFFSETS + 8 * axis);
    if (!std::isfinite(m_Header.offset[axis]) || !std::isfinite(m_Header.scale[axis]) ||
        m_Header.scale[axis] == 0.0) {
      throw Failure(m_Name, "is damaged: a scale or offset that cannot be");
    }
  }
}

void LasReader::ReadCount(unsigned char const* block) {
  m_Header.points = LittleEndian<std::uint32_t>(block + LEGACY_COUNT);
  if (m_Header.minor_version == NEWEST_MINOR) {
    auto const count = LittleEndian<std::uint64_t>(block + COUNT);
    m_Header.counts_differ = m_Header.points != 0 && count != m_Header.points;
    if (m_Header.points == 0) m_Header.points = count;
  }
  std::uint64_t const size = m_File.Size();
  std::uint64_t const room =
      size < m_Header.first_point ? 0 : (size - m_Header.first_point) / m_Header.record_size;
  if (room < m_Header.points) {
    throw Failure(m_Name, "is cut short: its header tells of " + Number(m_Header.points) +
                              " points, and it has room for " + Number(room));
  }
}

void LasReader::RefuseCompressed(unsigned char const* block) {
  constexpr unsigned char COMPRESSED = 0x80;
  constexpr std::uint32_t MOST_RECORDS = 1000;
  bool compressed = (block[POINT_FORMAT] & COMPRESSED) != 0;
  bool cloud_optimized = false;
  auto const records = LittleEndian<std::uint32_t>(block + VARIABLE_RECORDS);
  std::uint64_t place = LittleEndian<std::uint16_t>(block + HEADER_SIZE);
  for (std::uint32_t i = 0; i < std::min(records, MOST_RECORDS); ++i) {
    m_File.Seek(place);
    unsigned char const* const record = m_File.Next(VARIABLE_HEAD);
    if (record == nullptr) break;
    compressed = compressed || IsDefinedBy(record, "laszip encoded");
    cloud_optimized = cloud_optimized || IsDefinedBy(record, "copc");
    place += VARIABLE_HEAD + LittleEndian<std::uint16_t>(record + CONTENT_SIZE);
  }
  if (!compressed) return;
  throw Failure(m_Name, std::string("is a compressed ") + (cloud_optimized ? "COPC" : "LAZ") +
                            " file, which is not read: decompress it to a .las file first, with "
                            "laszip or PDAL say");
}

bool LasReader::Next(LasPoint& point) {
  if (m_iRead == m_Header.points) return false;
  unsigned char const* const record = m_File.Next(m_Header.record_size);
  if (record == nullptr) {
    throw Failure(m_Name, "became shorter while it was read: it ends after " + Number(m_iRead) +
                              " of " + Number(m_Header.points) + " points");
  }
  double stored[3];
  for (std::size_t axis = 0; axis < 3; ++axis) {
    stored[axis] = LittleEndian<std::int32_t>(record + 4 * axis);
  }
  point.place = {stored[0] * m_Header.scale[0] + m_Header.offset[0],
                 stored[1] * m_Header.scale[1] + m_Header.offset[1],
                 stored[2] * m_Header.scale[2] + m_Header.offset[2]};
  if (!std::isfinite(point.place.x + point.place.y + point.place.z)) {
    throw Failure(m_Name, "is damaged: point " + Number(m_iRead) + " is no ordinary number");
  }
  ++m_iRead;
  if (m_Header.point_format >= FIRST_WIDE_FORMAT) {
    point.withheld = (record[15] & 0x04) != 0;
    point.classification = record[16];
  } else {
    point.withheld = (record[15] & 0x80) != 0;
    point.classification = record[15] & 0x1F;
  }
  return true;
}

bool HasLasSignature(std::string const& name) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(name, error)) return false;
  char found[SIGNATURE_SIZE];
  std::ifstream file(name, std::ios::binary);
  return file.read(found, sizeof found) && std::memcmp(found, SIGNATURE, sizeof found) == 0;
}

}  // namespace qeltin::cli
