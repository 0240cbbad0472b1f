#include "testing/reference/ScanXyz.h"

#include <locale.h>

#include <cstdio>
#include <cwchar>

namespace qeltin::testing {

namespace {

constexpr wchar_t const* COMMA_FORM = L"%lf,%lf,%lf";
constexpr wchar_t const* BLANK_FORM = L"%lf %lf %lf";

// The locale of this thread is C while this stands.
class CLocale {
 public:
  CLocale() : m_C(newlocale(LC_ALL_MASK, "C", nullptr)), m_Before(uselocale(m_C)) {}
  ~CLocale() {
    uselocale(m_Before);
    freelocale(m_C);
  }
  CLocale(CLocale const&) = delete;
  CLocale& operator=(CLocale const&) = delete;

 private:
  locale_t m_C;
  locale_t m_Before;
};

bool Scan(std::FILE* file, wchar_t const* form, TPoint& p) {
  return std::fwscanf(file, form, &p.x, &p.y, &p.z) == 3;
}

}  // namespace

ScannedXyz ScanXyz(std::string const& path) {
  CLocale const locale;
  ScannedXyz result;
  std::FILE* const file = std::fopen(path.c_str(), "r");
  if (file == nullptr) return result;
  result.opened = true;

  TPoint p;
  result.comma = Scan(file, COMMA_FORM, p);
  bool found = result.comma;
  if (!found) {
    std::fseek(file, 0, SEEK_SET);
    found = Scan(file, BLANK_FORM, p);
  }
  wchar_t const* const form = result.comma ? COMMA_FORM : BLANK_FORM;
  for (; found; found = Scan(file, form, p)) result.points.push_back(p);
  std::fclose(file);
  return result;
}

}  // namespace qeltin::testing
