#include "apps/qeltin/ModuleLoader.h"
#include "apps/qeltin/with_picture/PictureFunctions.h"

// The functions of the module under their own names: the first call of any loads it, for good.

namespace qeltin::cli {

namespace {

PictureFunctions const& Module() {
  static PictureFunctions const& functions =
      *reinterpret_cast<PictureEntry>(LoadModule("qeltin-picture.so", PICTURE_ENTRY))();
  return functions;
}

}  // namespace

void RenderPicture(PictureOptions const& options) { Module().render_picture(options); }

void ViewSurface(ViewOptions const& options) { Module().view_surface(options); }

}  // namespace qeltin::cli
