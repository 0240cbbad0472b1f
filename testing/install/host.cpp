// A host as it stands outside: it knows nothing but the installed package.

#include <cstdio>
#include <vector>

#include "qeltin/tin/TIN.h"

int main() {
  // A square harbour basin that slopes from 10 down to 18 towards the far corner.
  std::vector<IPoint> soundings;
  for (int row = 0; row <= 8; ++row) {
    for (int column = 0; column <= 8; ++column) {
      soundings.push_back({10.0 * column, 10.0 * row, -10.0 - 0.5 * (column + row)});
    }
  }

  TIN tin;
  if (!tin.Create(&soundings)) return 1;

  for (TPoint const& place : {TPoint(40, 40), TPoint(12.5, 67.5), TPoint(200, 40)}) {
    double height = 0.0;
    if (tin.GetZ(place.x, place.y, height)) {
      std::printf("%g %g: %.3f\n", place.x, place.y, height);
    } else {
      std::printf("%g %g: no surface\n", place.x, place.y);
    }
  }
  return 0;
}
