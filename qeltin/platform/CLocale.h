#pragma once

namespace qeltin::detail {

// Returns what the C runtime's strtod makes of `text` in the C locale, whatever the locale of the
// host. `errno` stays. Safe from any thread.
double StrtodInCLocale(char const* text);

}  // namespace qeltin::detail
