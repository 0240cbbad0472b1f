#pragma once

#include <optional>
#include <string>
#include <vector>

#include "apps/qeltin/Bearing.h"
#include "apps/qeltin/SurfaceInput.h"

namespace qeltin::cli {

// What is drawn of a surface, and how.
struct SceneOptions : InputOptions {
  std::string surface;

  int width = 1600;  // of the picture, in pixels
  int height = 1200;

  double exaggeration = 1.0;       // of heights
  std::string colours;             // "bathymetry", "terrain", "grey" or a file; may be empty
  std::optional<Bearing> light;    // none for even light
  double contours = 0.0;           // the height from one to the next; 0 for none
  double grid = 0.0;               // its spacing, drawn in place of the triangles; 0 for none
  bool mesh = false;               // the sides of the triangles, or of the grid
  std::string mesh_of;             // another surface whose sides are drawn; may be empty
  std::vector<std::string> lines;  // files

  static constexpr int LARGEST_SIDE = 8192;

  // Adds all of these, the surface as what comes without a name, and the options above. What is
  // wrong with a value throws UsageFailure while the command line is read.
  void AddTo(CLI::App& command);
};

// Reads "AZIMUTH,ELEVATION" with the elevation from 0 to 90. Throws UsageFailure, in the name of
// `option`.
Bearing ParseBearing(char const* option, std::string const& text);

}  // namespace qeltin::cli
