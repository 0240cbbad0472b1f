#pragma once

#include "apps/qeltin/Picture.h"
#include "apps/qeltin/View.h"

namespace qeltin::cli {

// What the module qeltin-picture.so does for the command.
struct PictureFunctions {
  decltype(&RenderPicture) render_picture;
  decltype(&ViewSurface) view_surface;
};

// The one name that the module shows.
inline constexpr char PICTURE_ENTRY[] = "qeltin_picture_functions";
using PictureEntry = PictureFunctions const* (*)();

}  // namespace qeltin::cli
