#include "apps/qeltin/VectorOutput.h"

#include <string_view>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/FileName.h"
#include "apps/qeltin/VectorWriters.h"

namespace qeltin::cli {

void VectorOptions::AddTo(CLI::App& command) {
  command
      .add_option("-o,--output", output,
                  "The file to write; its name ends in .gpkg\n"
                  "(GeoPackage), .geojson or .json, .shp (Shapefile),\n"
                  ".dxf or .csv")
      ->required()
      ->type_name("FILE");
  command.add_flag("--overwrite", overwrite, "Replace an output that exists");
  AddCrs(command, crs,
         "The coordinate reference system of the surface,\n"
         "which is told in the output; nothing is converted");
  AddPrecision(command, style);
}

std::unique_ptr<VectorOutput> CreateVectorOutput(VectorOptions const& options, Layer const& layer,
                                                 CommonOptions const& common) {
  std::string const ending = EndingOf(options.output);
  bool const by_gdal = ending == ".gpkg" || ending == ".shp" || ending == ".dxf";
  bool const json = ending == ".geojson" || ending == ".json";
  if (!by_gdal && !json && ending != ".csv") {
    throw Failure(options.output,
                  "the name of a vector file ends in .gpkg, .geojson, .json, .shp, "
                  ".dxf or .csv");
  }
  if (!options.crs.empty()) CheckCrs(options.crs);
  std::unique_ptr<VectorOutput> output = by_gdal ? CreateVectorFile(options, layer)
                                         : json  ? CreateGeoJson(options, layer)
                                                 : CreateCsv(options, layer);
  if (!options.crs.empty() && (ending == ".dxf" || ending == ".csv")) {
    common.Note(options.output + ": " + ending.substr(1) + " files do not tell their CRS");
  }
  if (options.crs.empty() && json) {
    common.Note(options.output + ": without --crs other programs take x and y for degrees");
  }
  return output;
}

}  // namespace qeltin::cli
