#include "apps/qeltin/gdal/GdalSession.h"

#include <cpl_error.h>
#include <gdal.h>

#include <string_view>

#include "apps/qeltin/Failure.h"

namespace qeltin::cli {

namespace {

void Erase(std::string& text, std::string const& part) {
  if (part.empty()) return;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part)) {
    text.erase(at, part.size());
  }
}

}  // namespace

GdalSession::GdalSession() {
  GDALAllRegister();
  CPLPushErrorHandlerEx(Hear, this);
}

GdalSession::~GdalSession() { CPLPopErrorHandler(); }

void GdalSession::Hear(CPLErr kind, CPLErrorNum, char const* text) {
  auto* const session = static_cast<GdalSession*>(CPLGetErrorHandlerUserData());
  if (kind < CE_Failure || session->HasFailed()) return;
  session->m_Reason = text;
  if (session->m_Reason.empty()) session->m_Reason = "GDAL tells no reason";
}

std::string GdalSession::Reason(std::string const& path) const {
  std::string reason = m_Reason;
  Erase(reason, path);
  for (char& c : reason) {
    auto const code = static_cast<unsigned char>(c);
    if (code < 0x20 || code == 0x7f) c = ' ';
  }
  std::size_t const begin = reason.find_first_not_of(": ");
  std::size_t const end = reason.find_last_not_of(". ");
  return begin == std::string::npos ? m_Reason : reason.substr(begin, end + 1 - begin);
}

OGRSpatialReference FindCrs(std::string const& code) {
  OGRSpatialReference crs;
  if (crs.SetFromUserInput(code.c_str()) != OGRERR_NONE) {
    throw UsageFailure("--crs " + code + ": no such coordinate reference system is known");
  }
  crs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  return crs;
}

}  // namespace qeltin::cli
