#pragma once

#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::testing {

// TIN::GenerateIsoline in its plain form, marks and all, up to the direction of the lines: triangle
// after triangle, step after step.
std::vector<std::vector<TPoint>> TraceReferenceIsolines(TIN& tin, double level);

// Returns true iff the line is to be turned round where `found` is the triangle at its first point.
bool IsToBeReversed(std::vector<TPoint>& line, TTriangle const* found, double level);

}  // namespace qeltin::testing
