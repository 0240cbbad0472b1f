#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "qeltin/kernel/TPoint.h"

namespace qeltin::testing {

// Returns the .xyz files of the folder that the environment variable QELTIN_SURVEYS names, none
// where it names none.
inline std::vector<std::filesystem::path> RealSurveys() {
  std::vector<std::filesystem::path> surveys;
  char const* const folder = std::getenv("QELTIN_SURVEYS");
  if (folder == nullptr) return surveys;
  for (auto const& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".xyz") surveys.push_back(entry.path());
  }
  return surveys;
}

inline std::vector<TPoint> ReadPoints(std::filesystem::path const& path) {
  std::vector<TPoint> points;
  std::ifstream file(path);
  TPoint p;
  for (std::string line; std::getline(file, line);) {
    if (std::sscanf(line.c_str(), "%lf%*[ ,]%lf%*[ ,]%lf", &p.x, &p.y, &p.z) == 3) {
      points.push_back(p);
    }
  }
  return points;
}

}  // namespace qeltin::testing
