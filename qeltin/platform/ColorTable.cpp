#include "qeltin/platform/ColorTable.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using Ramp = std::array<std::uint32_t, 9>;  // 0xRRGGBB, as colours are written elsewhere

constexpr Ramp BATHYMETRY{0x11214B, 0x013A68, 0x055479, 0x006F8C, 0x078B9C,
                          0x2BA8A6, 0x6AC3A0, 0xBCD59B, 0xF8E8B3};
constexpr Ramp TERRAIN{0x193B28, 0x2C5231, 0x4A6836, 0x727C38, 0x9E8E42,
                       0xC7A15A, 0xE4B87F, 0xF4D4B2, 0xFBF2E8};
constexpr Ramp GREY{0x1B1B1B, 0x323232, 0x4B4B4B, 0x666666, 0x818181,
                    0x9E9E9E, 0xBBBBBB, 0xDADADA, 0xF9F9F9};

std::uint32_t SwapRedAndBlue(std::uint32_t color) {
  return (color & 0xFF) << 16 | (color & 0xFF00) | color >> 16;
}

// The colours of a ramp stand at even distances.
ColorTable Spread(Ramp const& ramp, double low, double high) {
  ColorTable table;
  if (!std::isfinite(low) || !std::isfinite(high)) return table;
  bool const isUpright = low <= high;
  for (std::size_t i = 0; i < ramp.size(); ++i) {
    std::size_t const rank = isUpright ? i : ramp.size() - 1 - i;
    double const t = static_cast<double>(rank) / static_cast<double>(ramp.size() - 1);
    table.AddStop(low * (1 - t) + high * t, SwapRedAndBlue(ramp[rank]));
  }
  return table;
}

std::uint32_t Mix(std::uint32_t a, std::uint32_t b, double t) {
  std::uint32_t mixed = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    double const from = a >> shift & 0xFF;
    double const to = b >> shift & 0xFF;
    mixed |= static_cast<std::uint32_t>(from + (to - from) * t + 0.5) << shift;
  }
  return mixed;
}

bool IsLower(double height, ColorTable::Stop const& stop) { return height < stop.height; }

}  // namespace

ColorTable ColorTable::Bathymetry(double low, double high) { return Spread(BATHYMETRY, low, high); }

ColorTable ColorTable::Terrain(double low, double high) { return Spread(TERRAIN, low, high); }

ColorTable ColorTable::Grey(double low, double high) { return Spread(GREY, low, high); }

std::uint32_t ColorTable::MakeColor(unsigned char red, unsigned char green, unsigned char blue) {
  return red | std::uint32_t{green} << 8 | std::uint32_t{blue} << 16;
}

bool ColorTable::AddStop(double height, std::uint32_t color) {
  if (!std::isfinite(height)) return false;
  auto const above = std::upper_bound(m_Stops.begin(), m_Stops.end(), height, IsLower);
  m_Stops.insert(above, {height, color & 0xFFFFFF});
  return true;
}

std::uint32_t ColorTable::GetColor(double height) const {
  if (m_Stops.empty() || std::isnan(height)) return NO_COLOR;
  auto const above = std::upper_bound(m_Stops.begin(), m_Stops.end(), height, IsLower);
  if (above == m_Stops.begin()) return m_Stops.front().color;
  if (above == m_Stops.end()) return m_Stops.back().color;
  auto const below = above - 1;
  double const t = (height - below->height) / (above->height - below->height);
  return Mix(below->color, above->color, t <= 1 ? t : 1);  // a vast range overflows to NaN
}
