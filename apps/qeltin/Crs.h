#pragma once

#include <string>

namespace qeltin::cli {

// Returns the definition of a coordinate reference system, "EPSG:32618", in the form of a .prj
// file. Throws UsageFailure where it is not known, and always in a command that was built without
// GDAL.
std::string ProjectionText(std::string const& crs);

}  // namespace qeltin::cli
