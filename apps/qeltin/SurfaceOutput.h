#pragma once

#include <string>
#include <vector>

#include "apps/qeltin/Report.h"
#include "apps/qeltin/Surface.h"
#include "apps/qeltin/SurfaceInput.h"

namespace qeltin::cli {

// The options of a command that reads files and writes a surface.
struct SurfaceOutputOptions : InputOptions {
  std::string output;
  bool overwrite = false;
  NumberStyle style;

  // Adds -o, --overwrite, --precision and the options above.
  void AddTo(CLI::App& command);

  // Throws UsageFailure unless the output's name is that of a native surface.
  void CheckOutput() const;
};

// What summaries tell of a surface: vertices, triangles, visible triangles and their area.
nlohmann::ordered_json Summary(SurfaceFacts const& facts, NumberStyle style);

// Adds the same for people, each as "before -> after", or as "first + second -> after" where there
// were several.
void AddChange(Report& report, std::vector<SurfaceFacts> const& before, SurfaceFacts const& after,
               NumberStyle style);

}  // namespace qeltin::cli
