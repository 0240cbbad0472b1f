#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apps/qeltin/Options.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

// How input files are read.
struct InputOptions : CommonOptions {
  bool lenient = false;

  // Adds the common options and --lenient.
  void AddTo(CLI::App& command);
};

// Loads the surface in a stored file, or builds that of a text. Throws Failure where there is none.
std::unique_ptr<TIN> OpenSurface(std::string const& name, InputOptions const& options);

// Appends the points of a text, or the data points of a stored surface, in their order. Throws
// Failure.
void AppendPoints(std::string const& name, InputOptions const& options,
                  std::vector<IPoint>& points);

// Writes a native file. Throws Failure, in the name of `told`, where it does not get to the disk
// whole.
void SaveSurface(TIN const& tin, std::string const& file, std::string const& told, bool quiet);

}  // namespace qeltin::cli
