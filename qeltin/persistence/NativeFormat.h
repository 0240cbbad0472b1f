#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"

// The native file, see docs/file-formats.md. Everything here breaks files in the field when it
// changes.
namespace qeltin::detail {

static_assert(std::endian::native == std::endian::little, "records are copied as they are");
static_assert(sizeof(TPoint) == 24 && sizeof(TTriangle) == 80, "these sizes stand in files");

constexpr char NATIVE_MAGIC[12] = {'Q', 'E', 'L', '2', '0', '0', '0', ' ', 'T', 'I', 'N', '\0'};

// The end of a triangle record of versions 2 and 3.
struct TriangleTail {
  std::uint8_t flags = 0;
  std::uint8_t reserved = 0;  // carries no information
};
static_assert(sizeof(TriangleTail) == 2);

// A triangle of version 3, by ordinals.
struct [[gnu::packed]] TriangleRecord {
  std::int32_t corners[3];
  std::int32_t adjacent[3];
  std::uint8_t flags;
  std::uint8_t reserved;
};
static_assert(sizeof(TriangleRecord) == 26);

constexpr std::int32_t NO_ORDINAL = -1;

}  // namespace qeltin::detail
