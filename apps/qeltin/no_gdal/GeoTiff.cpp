#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Raster.h"

namespace qeltin::cli {

std::unique_ptr<Raster> NewGeoTiff(RasterOptions const& options) {
  throw Failure(options.output, "this command was built without GDAL: it writes .asc alone");
}

}  // namespace qeltin::cli
