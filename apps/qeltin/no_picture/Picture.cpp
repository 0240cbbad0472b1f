#include "apps/qeltin/Picture.h"

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/View.h"

namespace qeltin::cli {

void RenderPicture(PictureOptions const& options) {
  throw Failure(options.output, "this command was built without rendering: it draws no pictures");
}

void ViewSurface(ViewOptions const& options) {
  throw Failure(options.surface, "this command was built without rendering: it shows no surface");
}

}  // namespace qeltin::cli
