#include <memory>
#include <string>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/FileName.h"
#include "apps/qeltin/Picture.h"

namespace qeltin::cli {

namespace {

std::optional<Bearing> ParseView(std::string const& text) {
  if (text == "top") return {};
  return ParseBearing("--view", text);
}

void Run(PictureOptions const& options) {
  if (EndingOf(options.output) != ".png") {
    throw UsageFailure(Quoted(options.output) + ": a picture is a .png");
  }
  if (options.legend && (options.width < PictureOptions::LEGEND_WIDTH ||
                         options.height < PictureOptions::LEGEND_HEIGHT)) {
    throw UsageFailure("--legend needs a picture of 400x300 or more");
  }
  RenderPicture(options);
}

}  // namespace

void AddRender(CLI::App& application) {
  auto const options = std::make_shared<PictureOptions>();
  CLI::App* const command = application.add_subcommand("render", "Draw a picture of a surface");
  options->AddTo(*command);
  command->add_option("-o,--output", options->output, "The picture to write, a .png")
      ->required()
      ->type_name("FILE");
  command->add_flag("--overwrite", options->overwrite, "Replace an output that exists");
  command
      ->add_option_function<std::string>(
          "--view", [options](std::string const& text) { options->view = ParseView(text); },
          "top, true to scale with north up, or where the eye\n"
          "stands: degrees clockwise from north, and above the\n"
          "horizon (default top)")
      ->type_name("top|AZ,EL");
  command->add_flag("--legend", options->legend,
                    "A bar of the colours, a north arrow and, seen from the\n"
                    "top, a scale bar, in a column on the right");
  command->footer(
      "Needs no screen. The picture is made by OpenGL off screen, in software where there\n"
      "is no graphics card. A view from the side takes in the whole surface. The light falls\n"
      "on the exaggerated form; level ground has the colours of the legend.");
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
