#include "qeltin/tin/TArray.h"

#include <algorithm>
#include <random>

namespace qeltin::detail {

void ShuffleIndex(int* index, int count) {
  std::mt19937 generator(std::random_device{}());
  std::shuffle(index, index + count, generator);
}

}  // namespace qeltin::detail
