#pragma once

#include <optional>
#include <string>

#include "apps/qeltin/Bearing.h"
#include "apps/qeltin/SceneOptions.h"

namespace qeltin::cli {

struct PictureOptions : SceneOptions {
  std::string output;
  bool overwrite = false;
  std::optional<Bearing> view;  // none for straight from above, true to scale
  bool legend = false;

  // Below this size a legend would not be readable.
  static constexpr int LEGEND_WIDTH = 400;
  static constexpr int LEGEND_HEIGHT = 300;
};

// Draws the picture, writes it as PNG and tells about it. Throws Failure; always, in a command
// built without rendering.
void RenderPicture(PictureOptions const& options);

}  // namespace qeltin::cli
