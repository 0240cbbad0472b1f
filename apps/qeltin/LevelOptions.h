#pragma once

#include <optional>
#include <string>
#include <vector>

#include "apps/qeltin/Options.h"
#include "apps/qeltin/Surface.h"

namespace qeltin::cli {

// A height that lines are wanted at.
struct Level {
  double height = 0.0;
  long long number = 0;  // how many intervals above the base; among single levels, its place from 0
};

std::vector<double> HeightsOf(std::vector<Level> const& levels);

// Returns base + k * interval, rising, each once, for each whole k that gives a height of the
// surface. None where there are more than a million. REQUIRES: interval > 0.
std::optional<std::vector<Level>> LevelsInSteps(SurfaceFacts const& facts, double base,
                                                double interval);

// Which heights are wanted: single ones, or all in steps.
class LevelOptions {
 public:
  // Adds --level, --interval and --base.
  void AddTo(CLI::App& command);

  // Throws UsageFailure where the options do not go together.
  void Check() const;

  // Returns the levels, rising, each once. More than a million are a Failure in the name of
  // `surface`.
  std::vector<Level> LevelsOf(SurfaceFacts const& facts, std::string const& surface) const;

 private:
  std::vector<std::string> m_Levels;
  std::string m_Interval;
  std::string m_Base;
};

}  // namespace qeltin::cli
