#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/tin/TIN.h"

// Composes Trimble terrain models of every layout byte by byte, as docs/file-formats.md tells them,
// with no help from the library. Nothing is checked, so that unsound files can be composed too.
namespace qeltin::testing {

// Numbers of vertices and triangles count from 1.
struct TrimbleTriangle {
  std::int32_t corners[3] = {};
  std::int32_t adjacent[3] = {};  // 0 for none
};

struct TrimbleStart {
  double x = 0.0;
  double y = 0.0;
  std::int32_t triangle = 0;
};

// The sizes of fields in bytes, and by how much each record is larger than its fields.
struct TrimbleLayout {
  int plan = 8;            // 4 or 8
  int height = 8;          // 4 or 8
  int vertexNumber = 4;    // 2 or 4
  int triangleNumber = 4;  // 2 or 4
  int padding = 0;
};

// The 16 layouts, each with records as large as their fields and with larger ones.
std::vector<TrimbleLayout> AllTrimbleLayouts();

struct TrimbleModel {
  unsigned char headerUnits = 0;
  unsigned char tableUnits = 0;
  TPoint origin;  // these three in plan only
  TPoint min;
  TPoint max;
  std::vector<TPoint> points;  // as the table has them: less the origin
  std::vector<TrimbleTriangle> triangles;
  std::vector<std::int32_t> border;
  std::vector<TrimbleStart> starts;  // less the origin, too
};

// Where fields stand in the header.
enum TrimbleOffset : std::size_t {
  TRIMBLE_MAGIC_AT = 2,
  TRIMBLE_HEADER_UNITS_AT = 54,
  TRIMBLE_TABLE_UNITS_AT = 55,
  TRIMBLE_PLAN_SIZE_AT = 105,
  TRIMBLE_HEIGHT_SIZE_AT = 106,
  TRIMBLE_VERTEX_NUMBER_SIZE_AT = 107,
  TRIMBLE_TRIANGLE_NUMBER_SIZE_AT = 108,
  TRIMBLE_VERTICES_AT = 109,  // a table: its offset, its number of records, the size of one
  TRIMBLE_TRIANGLES_AT = 119,
  TRIMBLE_BORDER_AT = 129,
  TRIMBLE_STARTS_AT = 139,
  TRIMBLE_HEADER_END = 149,
};
constexpr std::size_t TRIMBLE_RECORDS_IN_TABLE = 4;
constexpr std::size_t TRIMBLE_RECORD_SIZE_IN_TABLE = 8;

// The tables follow the header without gaps, in the order of the header. The border table has
// numbers of the size of the other triangle numbers.
std::string TrimbleFile(TrimbleModel const& model, TrimbleLayout const& layout = {});

// Returns what is visible of a surface: the border table has every triangle with a free side once,
// and every `startsEvery`th triangle has a start point, a little off its centroid. The bounds are
// those of the surface.
TrimbleModel TrimbleModelOf(TIN const& tin, int startsEvery);

// A square of two triangles, with a border, two start points, an origin and header bounds that are
// not those of the points. Coordinates are whole numbers and halves, so that 4 bytes hold them.
TrimbleModel TrimbleSquare();

}  // namespace qeltin::testing
