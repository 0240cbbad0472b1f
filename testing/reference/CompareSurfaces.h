#pragma once

#include <string>

#include "qeltin/tin/TIN.h"
#include "testing/reference/ReferenceTin.h"

namespace qeltin::testing {

// Returns the first difference between the two surfaces as a readable line, or an empty string:
// boxes, counts, index tables, every live point and triangle with its flags and circle, the place
// of the location object, and, where there is a map, its entries. Coordinates, boxes and circles
// are compared by their bits, except that all not-a-numbers count as one; pointers by their slots.
std::string Difference(TIN const& tin, ReferenceTin const& reference);

// The same with every slot of the pools, live or not.
std::string DifferenceOfAllSlots(TIN const& tin, ReferenceTin const& reference);

}  // namespace qeltin::testing
