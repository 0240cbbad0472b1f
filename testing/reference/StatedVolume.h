#pragma once

#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::testing::stated {

// TIN::CalculateVolume step by step, with a search of all live points for each point considered and
// a test of every triangle against every edge. Profile, insertion and containment are those of the
// library.
bool CalculateVolume(TIN& tin, TPolygon const& boundary, double& below, double& above);

}  // namespace qeltin::testing::stated
