// Reads the input as XYZ text.
#include "fuzz/UseSurface.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::string const bytes(reinterpret_cast<char const*>(data), size);
  return qeltin::fuzz::LoadAndUse("points.xyz", bytes);
}
