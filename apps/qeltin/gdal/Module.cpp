#include "apps/qeltin/with_gdal/GdalFunctions.h"

extern "C" __attribute__((visibility("default"))) qeltin::cli::GdalFunctions const*
qeltin_gdal_functions() {
  using namespace qeltin::cli;
  static constexpr GdalFunctions FUNCTIONS = {
      CreateVectorFile,  CheckCrs,       ProjectionText, NewGeoTiff,
      IsVectorExtension, ReadPointLayer, ReadVectorFile,
  };
  return &FUNCTIONS;
}
