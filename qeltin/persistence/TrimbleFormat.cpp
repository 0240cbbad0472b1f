#include "qeltin/persistence/TrimbleFormat.h"

namespace qeltin::detail {

namespace {

constexpr std::size_t HEADER_SIZE = 149;
constexpr std::size_t MAGIC_AT = 2;
constexpr char MAGIC[] = {'T', 'N', 'L', ' ', 'T', 'I', 'N', ' ',
                          'D', 'T', 'M', ' ', 'F', 'I', 'L', 'E'};

template <typename T>
T At(char const* header, std::size_t offset) {
  T value;
  std::memcpy(&value, header + offset, sizeof value);
  return value;
}

// A pair of doubles, y first.
TPoint PlaceAt(char const* header, std::size_t offset) {
  return {At<double>(header, offset + sizeof(double)), At<double>(header, offset), 0.0};
}

TrimbleTable TableAt(char const* header, std::size_t offset) {
  return {At<std::int32_t>(header, offset), At<std::uint32_t>(header, offset + 4),
          At<std::int16_t>(header, offset + 8)};
}

}  // namespace

bool TrimbleHeader::Read(FileStream& in) {
  char header[HEADER_SIZE];
  if (!in.Read(header, sizeof header)) return false;
  if (std::memcmp(header + MAGIC_AT, MAGIC, sizeof MAGIC) != 0) return false;
  headerUnits = header[54] == 1;
  tableUnits = header[55] == 1;
  origin = PlaceAt(header, 57);
  min = PlaceAt(header, 73);
  max = PlaceAt(header, 89);
  planSize = At<std::uint8_t>(header, 105);
  heightSize = At<std::uint8_t>(header, 106);
  vertexNumberSize = At<std::uint8_t>(header, 107);
  triangleNumberSize = At<std::uint8_t>(header, 108);
  vertices = TableAt(header, 109);
  triangles = TableAt(header, 119);
  border = TableAt(header, 129);
  startPoints = TableAt(header, 139);
  return true;
}

}  // namespace qeltin::detail
