#include "apps/qeltin/View.h"

#include "apps/qeltin/Report.h"
#include "apps/qeltin/picture/SurfaceWindow.h"

namespace qeltin::cli {

void ViewSurface(ViewOptions const& options) {
  HeldSurface const tin = OpenSurface(options.surface, options);
  Scene scene(*tin, options);
  SurfaceWindow window(*tin, scene, options);
  window.Run();
  if (!options.json) return;
  PrintResult(Dump({{"file", options.surface},
                    {"colours", scene.ColoursName()},
                    {"heights", {scene.Bounds().min.z, scene.Bounds().max.z}},
                    {"frames", window.Frames()},
                    {"seconds_drawing", window.Drawing().count()}}));
}

}  // namespace qeltin::cli
