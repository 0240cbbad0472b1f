#include "qeltin/platform/Clock.h"

#include <chrono>

std::uint32_t timeGetTime() {
  using namespace std::chrono;
  auto const now = duration_cast<milliseconds>(steady_clock::now().time_since_epoch());
  return static_cast<std::uint32_t>(now.count());
}
