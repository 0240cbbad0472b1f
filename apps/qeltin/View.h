#pragma once

#include <optional>

#include "apps/qeltin/SceneOptions.h"

namespace qeltin::cli {

struct ViewOptions : SceneOptions {
  Bearing view{180.0, 40.0};  // where the eye stands at first

  ViewOptions() {
    width = 1024;
    height = 768;
  }
};

// Shows the surface in a window until the user closes it, and tells about that with --json. Throws
// Failure, also where there is no screen; always, in a command built without rendering.
void ViewSurface(ViewOptions const& options);

}  // namespace qeltin::cli
