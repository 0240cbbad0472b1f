#include "apps/qeltin/gdal/GdalSession.h"

#include <cpl_error.h>
#include <gdal.h>

#include <cerrno>

#include "apps/qeltin/Failure.h"

namespace qeltin::cli {

namespace {

void Erase(std::string& text, std::string const& part) {
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
  int const system_error = errno;
  auto* const session = static_cast<GdalSession*>(CPLGetErrorHandlerUserData());
  if (kind < CE_Failure || session->HasFailed()) return;
  session->m_iSystemError = system_error;
  session->m_Reason = text;
  if (session->m_Reason.empty()) session->m_Reason = "GDAL tells no reason";
}

std::string GdalSession::Reason(std::string const& path) const {
  std::string reason = m_Reason;
  if (!path.empty()) {
    Erase(reason, '`' + path + "' ");  // as in "`x.gpkg' not recognized as ..."
    Erase(reason, path);
  }
  for (char& c : reason) {
    auto const code = static_cast<unsigned char>(c);
    if (code < 0x20 || code == 0x7f) c = ' ';
  }
  std::size_t const begin = reason.find_first_not_of(": ");
  std::size_t const end = reason.find_last_not_of(". ");
  return begin == std::string::npos ? m_Reason : reason.substr(begin, end + 1 - begin);
}

std::string GdalSession::WriteReason(std::string const& path) const {
  constexpr int REFUSALS[] = {ENOSPC, EFBIG, EDQUOT, EIO, EROFS, EACCES};
  for (int const refusal : REFUSALS) {
    if (m_iSystemError == refusal) return SystemReason(refusal);
  }
  return "cannot be written: " + Reason(path);
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
