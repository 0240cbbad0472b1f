#pragma once

#include <string>

#include "apps/qeltin/SurfaceInput.h"

// The sources are two: with GDAL in gdal/, and without in no_gdal/.
namespace qeltin::cli {

// What was found in a file of vector data.
struct PointLayer {
  std::string driver;  // GDAL's word for the format
  std::string layer;
  long long points = 0;
};

// Returns true iff files whose names end in this extension, in lower case and without the point,
// hold vector data.
bool IsVectorExtension(std::string const& extension);

// Hands the points of a point layer to `take`, every point of a multipoint too. The height is z, or
// with --z-field the number in that field. Throws Failure: where the file has no layer of points,
// or several and --layer chooses none, where there are no heights, where a feature has none or one
// that is no number, and in a command that is built without GDAL.
PointLayer ReadPointLayer(std::string const& name, InputOptions const& options,
                          TakePoint const& take);

}  // namespace qeltin::cli
