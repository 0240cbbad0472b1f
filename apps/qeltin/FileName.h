#pragma once

#include <string>

namespace qeltin::cli {

// Returns the ending of a file's name from its last dot on, in lower case; empty without one.
std::string EndingOf(std::string const& file);

}  // namespace qeltin::cli
