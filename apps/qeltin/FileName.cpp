#include "apps/qeltin/FileName.h"

#include <filesystem>

namespace qeltin::cli {

std::string EndingOf(std::string const& file) {
  std::string ending = std::filesystem::path(file).extension().string();
  for (char& c : ending) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return ending;
}

}  // namespace qeltin::cli
