#pragma once

#include <memory>
#include <string>

#include "apps/qeltin/VectorOutput.h"

// The writers behind CreateVectorOutput, one a family of formats. REQUIRES: the ending fits.
namespace qeltin::cli {

// CSV with a header: the counter, the distance of a measured layer, x, y, z, then the fields. One
// row a point, so that the rows of a line have the same counter and fields.
std::unique_ptr<VectorOutput> CreateCsv(VectorOptions const& options, Layer const& layer);

// One FeatureCollection, a feature a line of text. Numbers read back to the same bits.
std::unique_ptr<VectorOutput> CreateGeoJson(VectorOptions const& options, Layer const& layer);

// What GDAL writes for us: .gpkg, .shp with its side files, .dxf. Throws Failure in a build without
// GDAL.
std::unique_ptr<VectorOutput> CreateVectorFile(VectorOptions const& options, Layer const& layer);

// Throws UsageFailure where the register of coordinate reference systems has no such `crs`. In a
// build without GDAL there is no register, and any is taken.
void CheckCrs(std::string const& crs);

// Returns the field that stands for the distances where there is room for one a line.
inline Field StartField() { return {"start", FieldType::REAL}; }

}  // namespace qeltin::cli
