// Reads the input as a native file. Its version is taken modulo 4, and its magic is mended, so that
// every input comes to one of the four readers.
#include "fuzz/UseSurface.h"

using qeltin::fuzz::IsTooLarge;
using qeltin::fuzz::NumberAt;

namespace {

// The slots or elements that a file states.
long long Points(std::string const& bytes) {
  return NumberAt<std::int32_t>(bytes, NumberAt<char>(bytes, 12) == 0 ? 116 : 112);
}

long long Triangles(std::string const& bytes) {
  switch (NumberAt<char>(bytes, 12)) {
    case 0:
      return NumberAt<std::int32_t>(bytes, 120 + 28 * Points(bytes) + 12);
    case 3:
      return NumberAt<std::int32_t>(bytes, 116 + 24 * Points(bytes));
    default:
      return NumberAt<std::int32_t>(bytes, 116 + 28 * Points(bytes));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::string bytes(reinterpret_cast<char const*>(data), size);
  if (size >= 16) {
    bytes.replace(0, 12, "QEL2000 TIN", 12);
    bytes[12] = static_cast<char>(bytes[12] & 3);
    bytes.replace(13, 3, 3, '\0');
  }
  if (IsTooLarge(bytes, Points(bytes)) || IsTooLarge(bytes, Triangles(bytes))) return 0;
  return qeltin::fuzz::LoadAndUse("surface.tin", bytes);
}
