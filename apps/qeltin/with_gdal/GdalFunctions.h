#pragma once

#include "apps/qeltin/Crs.h"
#include "apps/qeltin/Outline.h"
#include "apps/qeltin/PointLayer.h"
#include "apps/qeltin/Raster.h"
#include "apps/qeltin/VectorWriters.h"

namespace qeltin::cli {

// What the module qeltin-gdal.so does for the command.
struct GdalFunctions {
  decltype(&CreateVectorFile) create_vector_file;
  decltype(&CheckCrs) check_crs;
  decltype(&ProjectionText) projection_text;
  decltype(&NewGeoTiff) new_geo_tiff;
  decltype(&IsVectorExtension) is_vector_extension;
  decltype(&ReadPointLayer) read_point_layer;
  decltype(&ReadVectorFile) read_vector_file;
};

// The one name that the module shows.
inline constexpr char GDAL_ENTRY[] = "qeltin_gdal_functions";
using GdalEntry = GdalFunctions const* (*)();

}  // namespace qeltin::cli
