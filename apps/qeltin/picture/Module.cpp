#include "apps/qeltin/with_picture/PictureFunctions.h"

extern "C" __attribute__((visibility("default"))) qeltin::cli::PictureFunctions const*
qeltin_picture_functions() {
  using namespace qeltin::cli;
  static constexpr PictureFunctions FUNCTIONS = {RenderPicture, ViewSurface};
  return &FUNCTIONS;
}
