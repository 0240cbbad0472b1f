#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// Composes LAS files of every version and point format byte by byte, after the LAS format of the
// ASPRS. Nothing is checked, so that unsound files can be composed too.
namespace qeltin::testing {

struct LasRecord {
  std::array<std::int32_t, 3> stored = {};
  int classification = 0;  // formats 0 to 5 keep its low 5 bits
  bool withheld = false;
};

struct LasModel {
  int minor_version = 2;
  int point_format = 0;
  std::array<double, 3> scale = {0.01, 0.01, 0.01};
  std::array<double, 3> offset = {};
  std::vector<LasRecord> points;

  std::size_t extra_header = 0;               // bytes after the header that its version knows
  std::size_t extra_bytes = 0;                // of each point
  std::size_t padding = 0;                    // bytes before the first point
  std::vector<std::string> variable_records;  // who defines each; 10 bytes of content
  bool legacy_count = true;                   // version 1.4: as well as the 64-bit one
};

// The bytes that a header of version 1.`minor_version`, and a point, have at least.
std::size_t LasHeaderSize(int minor_version);
std::size_t LasRecordSize(int point_format);

// Every byte of a point that carries neither place, class nor withheld bit is 0xFF.
std::string LasFile(LasModel const& model);

}  // namespace qeltin::testing
