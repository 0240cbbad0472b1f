#pragma once

#include <cstddef>
#include <vector>

#include "bench/SurveyInput.h"
#include "qeltin/kernel/IPoint.h"

namespace qeltin::bench {

struct ProfileLine {
  IPoint from;
  IPoint to;
};

// Returns a thousand lines between random places within the box of `points`.
inline std::vector<ProfileLine> MakeProfileLines(std::vector<IPoint> const& points) {
  std::vector<IPoint> const places = MakePlaces(points, false);
  std::vector<ProfileLine> lines;
  for (std::size_t i = 0; i < 1000; ++i) lines.push_back({places[2 * i], places[2 * i + 1]});
  return lines;
}

}  // namespace qeltin::bench
