#include "apps/qeltin/Crs.h"

#include "apps/qeltin/Failure.h"

namespace qeltin::cli {

std::string ProjectionText(std::string const& crs) {
  throw UsageFailure("--crs " + crs + ": this command was built without GDAL");
}

}  // namespace qeltin::cli
