#include "apps/qeltin/Memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <limits>

namespace qeltin::cli {

double MemoryFor(double points) {
  constexpr double BYTES_A_POINT = 220.0;
  return BYTES_A_POINT * points;
}

double FreeMemory() {
  std::ifstream facts("/proc/meminfo");
  std::string label;
  double kib = 0.0;
  std::string rest;
  while (facts >> label >> kib && std::getline(facts, rest)) {
    if (label == "MemAvailable:") return 1024.0 * kib;
  }
  return std::numeric_limits<double>::infinity();
}

std::string SizeText(double bytes) {
  constexpr std::array UNITS = {"bytes", "kB", "MB", "GB", "TB"};
  std::size_t unit = 0;
  for (; bytes >= 999.5 && unit + 1 < UNITS.size(); ++unit) bytes /= 1000.0;
  char text[32];
  std::snprintf(text, sizeof text, bytes < 9.95 && unit > 0 ? "%.1f %s" : "%.0f %s", bytes,
                UNITS[unit]);
  return text;
}

void PreferHugePages(void* begin, std::size_t bytes) {
  constexpr std::size_t LARGE = std::size_t{4} << 20;
  if (bytes < LARGE) return;
  auto const page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  std::size_t const skip = (page - reinterpret_cast<std::uintptr_t>(begin) % page) % page;
  madvise(static_cast<char*>(begin) + skip, (bytes - skip) / page * page, MADV_HUGEPAGE);
}

OutOfMemory::OutOfMemory(double points)
    : std::runtime_error("not enough memory: a surface of " +
                         std::to_string(static_cast<long long>(points)) + " points takes about " +
                         SizeText(MemoryFor(points))) {}

}  // namespace qeltin::cli
