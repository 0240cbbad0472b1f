#pragma once

#include <cstddef>
#include <cstring>

namespace qeltin::testing {

// Returns the place of a virtual operation in the table of its class, where the two entries of the
// destructor come first if it is declared first.
template <typename Operation>
int PlaceInTable(Operation operation) {
  std::ptrdiff_t words[2] = {};  // the place in bytes plus 1, and an adjustment
  static_assert(sizeof operation == sizeof words);
  std::memcpy(words, &operation, sizeof words);
  return static_cast<int>((words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*)));
}

}  // namespace qeltin::testing
