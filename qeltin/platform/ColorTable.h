#pragma once

#include <cstdint>
#include <vector>

#include "qeltin/platform/Export.h"

// A colour for each height: a host gives stops, and between two of them the colour goes over in a
// straight line, channel by channel. Below the lowest and above the highest stop it stays.
//
// A colour is 0x00BBGGRR: red in the low byte, then green, then blue.
//
// Threads: a value like a double. Concurrent reads are safe, a write needs a lock of the caller's.
class QELTIN_API ColorTable {
 public:
  struct Stop {
    double height = 0;
    std::uint32_t color = 0;
  };

  // The colour of a height that is not a number, and of all heights in a table without stops.
  static constexpr std::uint32_t NO_COLOR = 0x808080;

  // Ramps from `low` to `high`, in the units of the heights. Their lightness (L* of CIE 1976) rises
  // with the height in even steps, so that a reader who cannot tell the hues apart, or has a grey
  // print, still reads the order of the heights; hues go together with it for all others. Where
  // `low` is above `high` the ramp stands on its head. A range that is not finite gives no stops.
  //
  // For water: from a deep blue by teal to a pale sand, like a chart from the deep to the shoal.
  static ColorTable Bathymetry(double low, double high);
  // For land: from a dark green by olive and ochre to near white. Green and red never meet at the
  // same lightness, which is where the most frequent colour blindness mixes them up.
  static ColorTable Terrain(double low, double high);
  // For print, and below coloured lines: from a near black to white.
  static ColorTable Grey(double low, double high);

  static std::uint32_t MakeColor(unsigned char red, unsigned char green, unsigned char blue);

  // Adds a stop; the order does not matter. Of two stops at one height the one added later holds
  // there and above, the other below. Returns false, with nothing changed, where `height` is not
  // finite.
  bool AddStop(double height, std::uint32_t color);

  void RemoveAllStops() { m_Stops.clear(); }

  // The stops by rising height. Stays valid until the stops change.
  std::vector<Stop> const& GetStops() const { return m_Stops; }

  // Each channel is rounded to the nearest of its 256 values.
  std::uint32_t GetColor(double height) const;

 private:
  std::vector<Stop> m_Stops;  // by rising height
};
