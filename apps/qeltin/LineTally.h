#pragma once

#include <string>
#include <vector>

#include "apps/qeltin/LevelOptions.h"
#include "apps/qeltin/SurfaceInput.h"
#include "apps/qeltin/VectorOutput.h"

namespace qeltin::cli {

// What the commands that draw lines of equal height have in common.
struct LevelLineOptions : InputOptions {
  std::string surface;
  LevelOptions levels;
  VectorOptions vector;
};

// What was drawn.
struct LineTally {
  long long levels = 0;
  long long lines = 0;
  long long closed = 0;
  long long points = 0;
  long long left_out = 0;  // lines
  double length = 0.0;     // in plan

  void Add(std::vector<TPoint> const& points_of_line, bool is_closed, double length_of_line);
};

double PlanLength(std::vector<TPoint> const& points);

// Prints the tally as the options want it, with a note where lines were left out: `one` says it of
// one line, "line of one point is", `several` of more.
void Tell(LevelLineOptions const& options, LineTally const& tally, std::string const& one,
          std::string const& several);

}  // namespace qeltin::cli
