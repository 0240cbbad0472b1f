#pragma once

#include <bitset>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "apps/qeltin/HeldSurface.h"
#include "apps/qeltin/Options.h"

namespace qeltin::cli {

inline constexpr std::size_t CLASS_COUNT = 256;  // of the classes that a LAS point can have

// How input files are read.
struct InputOptions : CommonOptions {
  bool lenient = false;
  std::optional<std::bitset<CLASS_COUNT>> classes;  // those wanted of a LAS file; without, all
  std::string layer;                                // of vector data; may be empty
  std::string z_field;                              // likewise

  // Adds the common options and those above.
  void AddTo(CLI::App& command);
};

// Loads the surface in a stored file, or builds that of a file of points. Throws Failure where
// there is none.
HeldSurface OpenSurface(std::string const& name, InputOptions const& options);

// Takes points one by one.
using TakePoint = std::function<void(IPoint const&)>;

// Is told, once and early, about how many points a file will give. Never told where nobody knows.
using ExpectPoints = std::function<void(double)>;

// Hands every point of a file to `take`, in their order: of a stored surface, the data points.
// Throws Failure.
void ReadPoints(std::string const& name, InputOptions const& options, TakePoint const& take,
                ExpectPoints const& expect = {});

// Appends the points that ReadPoints gives, or of them those that `keep` says yes to. Throws
// Failure; OutOfMemory.
void AppendPoints(std::string const& name, InputOptions const& options, std::vector<IPoint>& points,
                  std::function<bool(IPoint const&)> const& keep = {});

// Writes a native file. Throws Failure, in the name of `told`, where it does not get to the disk
// whole.
void SaveSurface(TIN const& tin, std::string const& file, std::string const& told, bool quiet);

}  // namespace qeltin::cli
