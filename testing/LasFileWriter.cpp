#include "testing/LasFileWriter.h"

#include "testing/NativeFileWriter.h"

namespace qeltin::testing {

namespace {

std::string Point(LasModel const& model, LasRecord const& record) {
  std::string bytes(LasRecordSize(model.point_format) + model.extra_bytes, '\xFF');
  for (std::size_t axis = 0; axis < 3; ++axis) Patch(bytes, 4 * axis, record.stored[axis]);
  auto const classification = static_cast<unsigned char>(record.classification);
  if (model.point_format < 6) {
    unsigned const others = 0x60;  // synthetic and key-point
    unsigned const withheld = record.withheld ? 0x80 : 0;
    Patch(bytes, 15, static_cast<unsigned char>((classification & 0x1Fu) | others | withheld));
  } else {
    Patch(bytes, 15, static_cast<unsigned char>(record.withheld ? 0xFF : 0xFB));
    Patch(bytes, 16, classification);
  }
  return bytes;
}

std::string VariableRecord(std::string const& who) {
  constexpr std::size_t HEAD = 54;
  constexpr std::uint16_t CONTENT = 10;
  std::string bytes(HEAD + CONTENT, '\0');
  bytes.replace(2, who.size(), who);
  Patch(bytes, 20, CONTENT);
  return bytes;
}

}  // namespace

std::size_t LasHeaderSize(int minor_version) {
  return minor_version < 3 ? 227 : minor_version == 3 ? 235 : 375;
}

std::size_t LasRecordSize(int point_format) {
  constexpr std::size_t SIZES[] = {20, 28, 26, 34, 57, 63, 30, 36, 38, 59, 67};
  return SIZES[point_format];
}

std::string LasFile(LasModel const& model) {
  std::string bytes(LasHeaderSize(model.minor_version) + model.extra_header, '\0');
  auto const header = static_cast<std::uint16_t>(bytes.size());
  for (std::string const& who : model.variable_records) bytes += VariableRecord(who);
  bytes.append(model.padding, '\xDD');

  bytes.replace(0, 4, "LASF");
  Patch(bytes, 24, static_cast<unsigned char>(1));
  Patch(bytes, 25, static_cast<unsigned char>(model.minor_version));
  Patch(bytes, 94, header);
  Patch(bytes, 96, static_cast<std::uint32_t>(bytes.size()));
  Patch(bytes, 100, static_cast<std::uint32_t>(model.variable_records.size()));
  Patch(bytes, 104, static_cast<unsigned char>(model.point_format));
  Patch(bytes, 105,
        static_cast<std::uint16_t>(LasRecordSize(model.point_format) + model.extra_bytes));
  bool const legacy = model.minor_version < 4 || model.legacy_count;
  if (legacy) Patch(bytes, 107, static_cast<std::uint32_t>(model.points.size()));
  for (std::size_t axis = 0; axis < 3; ++axis) {
    Patch(bytes, 131 + 8 * axis, model.scale[axis]);
    Patch(bytes, 155 + 8 * axis, model.offset[axis]);
  }
  if (model.minor_version == 4) {
    Patch(bytes, 247, static_cast<std::uint64_t>(model.points.size()));
  }
  for (LasRecord const& record : model.points) bytes += Point(model, record);
  return bytes;
}

}  // namespace qeltin::testing
