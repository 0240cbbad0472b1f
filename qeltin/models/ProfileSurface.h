#pragma once

#include <memory>
#include <string>

class IProfileList;
class TIN;

namespace qeltin::detail {

// Returns the line name and the second name of each profile, one behind the other.
// REQUIRES: a list of CProfile objects.
std::wstring NamesOf(IProfileList const& profiles);

// Returns the surface of the soundings of all profiles, within their stored extents; null where
// there are none. The soundings are inserted in random order, and that is also their live order,
// behind the seed corners.
std::unique_ptr<TIN> MakeSurface(IProfileList const& profiles);

}  // namespace qeltin::detail
