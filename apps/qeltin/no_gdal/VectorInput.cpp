#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Outline.h"

namespace qeltin::cli {

std::vector<Outline> ReadVectorFile(std::string const& file) {
  throw Failure(file, "is not a plain text of x y lines, and this command was built without GDAL");
}

}  // namespace qeltin::cli
