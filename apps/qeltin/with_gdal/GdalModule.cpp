#include "apps/qeltin/ModuleLoader.h"
#include "apps/qeltin/with_gdal/GdalFunctions.h"

// The functions of the module under their own names: the first call of any loads it, for good.

namespace qeltin::cli {

namespace {

GdalFunctions const& Module() {
  static GdalFunctions const& functions =
      *reinterpret_cast<GdalEntry>(LoadModule("qeltin-gdal.so", GDAL_ENTRY))();
  return functions;
}

}  // namespace

std::unique_ptr<VectorOutput> CreateVectorFile(VectorOptions const& options, Layer const& layer) {
  return Module().create_vector_file(options, layer);
}

void CheckCrs(std::string const& crs) { Module().check_crs(crs); }

std::string ProjectionText(std::string const& crs) { return Module().projection_text(crs); }

std::unique_ptr<Raster> NewGeoTiff(RasterOptions const& options) {
  return Module().new_geo_tiff(options);
}

bool IsVectorExtension(std::string const& extension) {
  return Module().is_vector_extension(extension);
}

PointLayer ReadPointLayer(std::string const& name, InputOptions const& options,
                          std::function<void(IPoint const&)> const& take) {
  return Module().read_point_layer(name, options, take);
}

std::vector<Outline> ReadVectorFile(std::string const& file) {
  return Module().read_vector_file(file);
}

}  // namespace qeltin::cli
