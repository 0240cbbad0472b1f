#include "apps/qeltin/PointLayer.h"

#include <algorithm>
#include <array>

#include "apps/qeltin/Failure.h"

namespace qeltin::cli {

bool IsVectorExtension(std::string const& extension) {
  constexpr std::array KNOWN = {"gpkg", "shp", "geojson", "json", "gml",    "kml",
                                "fgb",  "dxf", "gpx",     "tab",  "sqlite", "gdb"};
  return std::find(KNOWN.begin(), KNOWN.end(), extension) != KNOWN.end();
}

PointLayer ReadPointLayer(std::string const& name, InputOptions const&,
                          std::function<void(IPoint const&)> const&) {
  throw Failure(name, "this command is built without GDAL, which reads such files");
}

}  // namespace qeltin::cli
