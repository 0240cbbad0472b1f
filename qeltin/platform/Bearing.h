#pragma once

#include "qeltin/platform/Export.h"

// Returns the direction of the vector (dx, dy) in degrees, from 0 to below 360: north is 0,
// east 90. Note that so little west of north that the sum is rounded gives 360. 0 for no vector at
// all.
QELTIN_API double Bearing(double dx, double dy);

// Returns -1 where the way from bearing `from` to bearing `to`, both in degrees, turns to the
// right, and +1 where it turns to the left, or not at all, or exactly about.
QELTIN_API int TurnDirection(double from, double to);
