#include "apps/qeltin/Crs.h"

#include <cpl_conv.h>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/gdal/GdalSession.h"

namespace qeltin::cli {

std::string ProjectionText(std::string const& crs) {
  GdalSession const session;
  char* exported = nullptr;
  char const* const form[] = {"FORMAT=WKT1_ESRI", nullptr};
  OGRErr const error = FindCrs(crs).exportToWkt(&exported, form);
  std::string const text = exported == nullptr ? "" : exported;
  CPLFree(exported);
  if (error == OGRERR_NONE && !text.empty()) return text;
  throw UsageFailure("--crs " + crs + ": cannot be told in a .prj file: " + session.Reason());
}

}  // namespace qeltin::cli
