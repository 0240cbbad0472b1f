#pragma once

#include <memory>
#include <string>
#include <vector>

namespace qeltin::cli {

// Where the cells of a raster lie. The centre of the lower left one is at (x, y).
struct RasterFrame {
  int columns = 0;
  int rows = 0;
  double x = 0.0;
  double y = 0.0;
  double dx = 0.0;
  double dy = 0.0;
  double no_data = 0.0;  // the value of a cell without a height

  double Left() const { return x - dx / 2; }
  double Bottom() const { return y - dy / 2; }
  double Top() const { return y + (rows - 0.5) * dy; }
};

// What is asked of a raster file.
struct RasterOptions {
  std::string output;
  bool overwrite = false;
  bool deflate = false;
  std::string crs;  // EPSG:nnnn, or empty
};

// A raster file on its way to the disk. It stands under its name only when End has been reached.
// All throw Failure with the reason why it cannot be written.
class Raster {
 public:
  virtual ~Raster() = default;
  virtual void Begin(RasterFrame const& frame) = 0;

  // The heights of the next row, from the north, a column each.
  virtual void Add(std::vector<double> const& row) = 0;

  virtual void End() = 0;
};

// Opens a file of the kind that its name says: .tif or .tiff is a GeoTIFF of 64-bit numbers, .asc a
// text in the form of ESRI. Throws UsageFailure on another name and on an unknown `crs`, and
// Failure where nothing can be written there.
std::unique_ptr<Raster> NewRaster(RasterOptions const& options);

// A GeoTIFF. Throws Failure in a command that was built without GDAL.
std::unique_ptr<Raster> NewGeoTiff(RasterOptions const& options);

// A text whose numbers read back to the same bits. The reference system goes into a .prj file
// beside it. Cells that are not square are told as dx and dy, which not every program reads.
std::unique_ptr<Raster> NewAsciiRaster(RasterOptions const& options);

}  // namespace qeltin::cli
