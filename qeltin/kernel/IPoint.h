#pragma once

// The point record that crosses the library boundary: three coordinates in the host's own plane
// system and unit, z up. A plain value; hosts compile against its layout.
struct IPoint {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};
