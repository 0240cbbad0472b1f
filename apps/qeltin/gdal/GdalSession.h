#pragma once

#include <ogr_spatialref.h>

#include <string>

namespace qeltin::cli {

// While an object of this class lives, GDAL's drivers are registered and its complaints on this
// thread are kept here instead of being printed. Objects do not nest.
class GdalSession {
 public:
  GdalSession();
  ~GdalSession();
  GdalSession(GdalSession const&) = delete;
  GdalSession& operator=(GdalSession const&) = delete;

  // Returns true iff GDAL has complained of something worse than a warning. Its functions do not
  // all tell by their results; some failures to write show in the closing of a file alone.
  bool HasFailed() const { return !m_Reason.empty(); }

  // Returns the first complaint as one line that can stand in a message, with `path`, the working
  // name of a file, cut out of it.
  std::string Reason(std::string const& path = {}) const;

  // The same for a file that was to be written: where the system refused it, in the system's words.
  std::string WriteReason(std::string const& path) const;

 private:
  static void Hear(CPLErr kind, CPLErrorNum number, char const* text);

  std::string m_Reason;
  int m_iSystemError = 0;  // as it stood at the first complaint
};

// Returns the coordinate reference system of `code`, as "EPSG:32618", with x before y whatever the
// register says. Throws UsageFailure where it is not known.
// REQUIRES: a GdalSession.
OGRSpatialReference FindCrs(std::string const& code);

}  // namespace qeltin::cli
