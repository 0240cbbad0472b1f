#pragma once

#include "qeltin/kernel/IPoint.h"

// A triangle as it crosses the library boundary: its three corners by value, clockwise in plan, in
// the order that the surface keeps. A plain value of nine doubles; hosts compile against its
// layout.
struct TriangleCorners {
  IPoint vertex[3];
};
