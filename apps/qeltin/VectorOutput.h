#pragma once

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "apps/qeltin/Options.h"
#include "qeltin/kernel/TPoint.h"

// Lines and points for other programs: GeoPackage, GeoJSON, Shapefile, DXF or CSV, by the ending of
// the file's name. What comes out follows from what goes in alone: no dates, no random numbers.
namespace qeltin::cli {

enum class FieldType { INTEGER, REAL, TEXT };

struct Field {
  std::string name;  // ten characters at most, the longest of a Shapefile
  FieldType type;
};

using FieldValue = std::variant<long long, double, std::string>;

// What all features of a file have in common.
struct Layer {
  enum class Shape { LINES, POINTS };

  std::string name;  // of the table or layer, where the format has such
  Shape shape = Shape::LINES;

  // The field that counts the features from 1, e.g. "line".
  std::string counter;

  // Each point of a line has a distance along something. CSV tells it for each point in a column
  // `distance`; elsewhere a field `start` tells it for the first point of a line.
  bool measured = false;

  std::vector<Field> fields;
};

// A line of two points or more, or a single point, with height.
struct Feature {
  std::vector<TPoint> points;
  std::vector<double> distances;   // one a point in a measured layer; otherwise empty
  std::vector<FieldValue> values;  // one a field of the layer, of its type
};

// How such a file is written.
struct VectorOptions {
  std::string output;
  bool overwrite = false;
  std::string crs;    // as EPSG:32618, or empty
  NumberStyle style;  // of the numbers in texts, CSV and GeoJSON

  // Adds -o, --overwrite, --crs and --precision.
  void AddTo(CLI::App& command);
};

// A vector file under way. It appears under its name, with all its parts, when Close is reached.
// All operations throw Failure.
class VectorOutput {
 public:
  VectorOutput() = default;
  VectorOutput(VectorOutput const&) = delete;
  VectorOutput& operator=(VectorOutput const&) = delete;
  virtual ~VectorOutput() = default;

  // REQUIRES: values and distances as the layer says.
  virtual void Add(Feature const& feature) = 0;

  virtual void Close() = 0;
};

// Checks the ending of the name, the place and the CRS before any work is done. Notes where the
// format cannot carry the CRS. Throws Failure, and UsageFailure on an unknown CRS.
std::unique_ptr<VectorOutput> CreateVectorOutput(VectorOptions const& options, Layer const& layer,
                                                 CommonOptions const& common);

}  // namespace qeltin::cli
