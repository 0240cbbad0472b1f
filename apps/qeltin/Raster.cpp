#include "apps/qeltin/Raster.h"

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/FileName.h"

namespace qeltin::cli {

std::unique_ptr<Raster> NewRaster(RasterOptions const& options) {
  std::string const ending = EndingOf(options.output);
  if (ending == ".tif" || ending == ".tiff") return NewGeoTiff(options);
  if (ending != ".asc") {
    throw UsageFailure("-o " + Quoted(options.output) +
                       ": the name of a grid ends in .tif, .tiff or .asc");
  }
  if (options.deflate) throw UsageFailure("--deflate is for GeoTIFF");
  return NewAsciiRaster(options);
}

}  // namespace qeltin::cli
