#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/tin/TIN.h"

// Composes native files of every version byte by byte, as docs/file-formats.md tells them, with no
// help from the library. Nothing is checked, so that unsound files can be composed too: a corner or
// neighbour that is in no list becomes a reference to nothing.
namespace qeltin::testing {

struct NativeTriangle {
  std::int32_t corners[3] = {};
  std::int32_t adjacent[3] = {-1, -1, -1};  // -1 for none
  unsigned char flags = 0;
  unsigned char reserved = 0;  // the byte after the flags: all versions but 1
  double circle[3] = {};       // centre x, centre y, squared radius: version 0 only
};

// What a file is to hold; corners and neighbours are positions in these lists.
struct NativeModel {
  TPoint min;
  TPoint max;
  TPoint worldMin;
  TPoint worldMax;
  std::vector<TPoint> points;
  std::vector<NativeTriangle> triangles;
};

// Returns the live points and triangles of a surface, in order. A corner or neighbour that is not
// live is -1.
NativeModel ModelOf(TIN const& tin);

// The unit square in two triangles, the first with a neighbour across its side 2, each with flags
// and a circle of its own, and eight different box corners.
NativeModel SquareModel();

// The keys that versions 1 and 2 give to points and triangles. An element beyond these lists gets
// its position times 7 plus 3 or 5.
struct NativeKeys {
  std::vector<std::uint32_t> points;
  std::vector<std::uint32_t> triangles;
  std::uint32_t Point(std::size_t i) const;
  std::uint32_t Triangle(std::size_t i) const;
};

// How version 0 lays out its pools. Live element i stands in slot index[i]; the whole table is
// written. Addresses are those of slot 0.
struct NativePools {
  std::vector<std::int32_t> pointIndex;
  std::vector<std::int32_t> triangleIndex;
  std::uint64_t pointAddress = 0x00007F12'FFFF'FFA0;  // slots on both sides of a 4 GiB limit
  std::uint64_t triangleAddress = 0x00000000'1234'5670;
};

// Pools with as many free slots as live ones, filled from the last slot down.
NativePools ReversedPools(NativeModel const& model);

std::string NativeVersion0(NativeModel const& model, NativePools const& pools);
std::string NativeVersion1(NativeModel const& model, NativeKeys const& keys = {});
std::string NativeVersion2(NativeModel const& model, NativeKeys const& keys = {});
std::string NativeVersion3(NativeModel const& model);

// Returns the file of that version with keys or pools as above.
std::string NativeFile(int version, NativeModel const& model);

// Overwrites the bytes from `offset` on with those of `value`.
template <typename T>
void Patch(std::string& bytes, std::size_t offset, T value) {
  bytes.replace(offset, sizeof value, reinterpret_cast<char const*>(&value), sizeof value);
}

}  // namespace qeltin::testing
