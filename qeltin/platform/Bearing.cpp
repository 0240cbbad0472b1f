#include "qeltin/platform/Bearing.h"

#include <cmath>

#include "qeltin/platform/Math.h"

namespace {

double Halved(double bearing) {
  if (bearing > 180.0) return bearing - 360.0;
  return bearing < -180.0 ? bearing + 360.0 : bearing;
}

}  // namespace

double Bearing(double dx, double dy) {
  if (dx == 0.0 && dy == 0.0) return 0.0;
  double const bearing = std::atan2(dx, dy) / D_TO_R;
  return bearing < 0.0 ? bearing + 360.0 : bearing;
}

int TurnDirection(double from, double to) {
  from = Halved(from);
  to = Halved(to);
  bool const right = (from >= 0.0 && to > 0.0 && to > from) ||
                     (from < 0.0 && to <= 0.0 && to > from) ||
                     (from <= 0.0 && to > 0.0 && to - from < 180.0) ||
                     (from > 0.0 && to < 0.0 && from - to > 180.0);
  return right ? -1 : 1;
}
