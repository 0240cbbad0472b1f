#include "apps/qeltin/Failure.h"
#include "apps/qeltin/VectorWriters.h"

namespace qeltin::cli {

std::unique_ptr<VectorOutput> CreateVectorFile(VectorOptions const& options, Layer const&) {
  throw Failure(
      options.output,
      "this command was built without GDAL: it writes vector files as .geojson, .json and "
      ".csv");
}

void CheckCrs(std::string const&) {}

}  // namespace qeltin::cli
