// Reads the input as a Trimble terrain model, whose magic is mended.
#include "fuzz/UseSurface.h"

using qeltin::fuzz::IsTooLarge;
using qeltin::fuzz::NumberAt;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::string bytes(reinterpret_cast<char const*>(data), size);
  if (size >= 18) bytes.replace(2, 16, "TNL TIN DTM FILE");
  constexpr int COUNTS[] = {113, 123, 133, 143};
  for (int offset : COUNTS) {
    if (IsTooLarge(bytes, NumberAt<std::uint32_t>(bytes, offset))) return 0;
  }
  return qeltin::fuzz::LoadAndUse("model.ttm", bytes);
}
