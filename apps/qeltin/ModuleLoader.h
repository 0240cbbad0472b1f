#pragma once

#include <string>

namespace qeltin::cli {

// Loads the module `file`, one of those that stand beside the library, for good, and returns the
// address of what it shows under the name `entry`. Throws Failure. What such a module needs takes
// tens of milliseconds and of megabytes to load, which only those commands pay for that use it.
void* LoadModule(std::string const& file, char const* entry);

}  // namespace qeltin::cli
