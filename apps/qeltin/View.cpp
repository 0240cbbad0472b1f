#include "apps/qeltin/View.h"

#include <memory>

namespace qeltin::cli {

void AddView(CLI::App& application) {
  auto const options = std::make_shared<ViewOptions>();
  CLI::App* const command = application.add_subcommand("view", "Show a surface in a window");
  options->AddTo(*command);
  command
      ->add_option_function<std::string>(
          "--view",
          [options](std::string const& text) {
            options->view = text == "top" ? Bearing{180.0, 90.0} : ParseBearing("--view", text);
          },
          "top, or where the eye stands at first: degrees\n"
          "clockwise from north, and above the horizon (default\n"
          "180,40)")
      ->type_name("top|AZ,EL");
  command->footer(
      "Drag with the left button to turn, with another one or shift to move; the wheel\n"
      "zooms to the pointer. The title tells position and height under the pointer.\n"
      "  c  contours    m  mesh         p  points\n"
      "  +  steeper     -  flatter      r  as at first\n"
      "  t  from above  q  or Escape: end\n"
      "Needs an X server with GLX.");
  command->callback([options] { ViewSurface(*options); });
}

}  // namespace qeltin::cli
