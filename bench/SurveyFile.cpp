#include "bench/SurveyFile.h"

#include <cstdio>
#include <cstdlib>

#include "bench/Measurement.h"

namespace qeltin::bench {

std::vector<IPoint> ReadSurveyFile(std::string const& name, int count) {
  char const* const folder = std::getenv("QELTIN_SURVEYS");
  std::string const path = std::string(folder == nullptr ? "." : folder) + "/" + name;
  std::vector<IPoint> points;
  std::FILE* const file = std::fopen(path.c_str(), "r");
  if (file == nullptr) Reject("file " + path);
  IPoint p;
  for (int i = 0; i < count && std::fscanf(file, "%lf%*[, ]%lf%*[, ]%lf", &p.x, &p.y, &p.z) == 3;
       ++i) {
    points.push_back(p);
  }
  std::fclose(file);
  if (points.empty()) Reject("text of " + path);
  return points;
}

}  // namespace qeltin::bench
