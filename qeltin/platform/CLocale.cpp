#include "qeltin/platform/CLocale.h"

#include <locale.h>

#include <cerrno>
#include <cstdlib>

namespace qeltin::detail {

double StrtodInCLocale(char const* text) {
  static locale_t const c = newlocale(LC_ALL_MASK, "C", nullptr);  // cannot fail; never freed
  int const before = errno;
  double const value = strtod_l(text, nullptr, c);
  errno = before;
  return value;
}

}  // namespace qeltin::detail
