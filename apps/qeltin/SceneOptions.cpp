#include "apps/qeltin/SceneOptions.h"

#include <charconv>
#include <functional>

#include "apps/qeltin/Failure.h"

namespace qeltin::cli {

namespace {

[[noreturn]] void Refuse(std::string const& option, std::string const& text,
                         std::string const& why) {
  throw UsageFailure(option + ' ' + Quoted(text) + ": " + why);
}

double ParsePositive(char const* option, std::string const& text) {
  double value = 0.0;
  if (!ParseNumbers(text, &value, 1) || value <= 0.0) Refuse(option, text, "a number above 0");
  return value;
}

bool TakeSide(std::string_view& text, int& side) {
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), side);
  if (error != std::errc{}) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return side >= 1 && side <= SceneOptions::LARGEST_SIDE;
}

void ParseSize(std::string const& text, SceneOptions& options) {
  std::string_view rest = text;
  bool good = TakeSide(rest, options.width) && rest.starts_with('x');
  if (good) rest.remove_prefix(1);
  good = good && TakeSide(rest, options.height) && rest.empty();
  if (good) return;
  Refuse("--size", text,
         "WIDTHxHEIGHT, each from 1 to " + std::to_string(SceneOptions::LARGEST_SIDE));
}

std::optional<Bearing> ParseLight(std::string const& text) {
  if (text == "none") return {};
  return ParseBearing("--light", text);
}

// Adds an option whose text `take` reads at once.
CLI::Option* AddParsed(CLI::App& command, char const* name, char const* type,
                       std::string const& help,
                       std::function<void(std::string const&)> const& take) {
  return command.add_option_function<std::string>(name, take, help)->type_name(type);
}

}  // namespace

Bearing ParseBearing(char const* option, std::string const& text) {
  double values[2];
  if (!ParseNumbers(text, values, 2) || values[1] < 0.0 || values[1] > 90.0) {
    Refuse(option, text, "AZIMUTH,ELEVATION in degrees, the elevation from 0 to 90");
  }
  return {values[0], values[1]};
}

void SceneOptions::AddTo(CLI::App& command) {
  constexpr Bearing NORTH_WEST{315.0, 45.0};
  light = NORTH_WEST;
  command.add_option("surface", surface, "A .tin or .ttm surface, or an XYZ text")
      ->required()
      ->type_name("FILE");
  AddParsed(command, "--size", "WxH",
            "Size in pixels (default " + std::to_string(width) + "x" + std::to_string(height) + ")",
            [this](std::string const& text) { ParseSize(text, *this); });
  AddParsed(
      command, "--exaggerate", "S", "Stretch heights by this factor",
      [this](std::string const& text) { exaggeration = ParsePositive("--exaggerate", text); });
  command
      .add_option("--colours", colours,
                  "bathymetry, terrain or grey, or a text with height\n"
                  "red green blue on each line, 0 to 255 (default\n"
                  "bathymetry if all heights are below 0, else terrain)")
      ->type_name("RAMP|FILE");
  AddParsed(command, "--light", "AZ,EL|none",
            "Where the light comes from: degrees clockwise from\n"
            "north, and above the horizon (default 315,45)",
            [this](std::string const& text) { light = ParseLight(text); });
  AddParsed(command, "--contours", "D", "Contours so far apart, every fifth of them strong",
            [this](std::string const& text) { contours = ParsePositive("--contours", text); });
  command.add_flag("--mesh", mesh, "The sides of the triangles, or of the grid");
  command.add_option("--mesh-of", mesh_of, "The sides of another surface, such as a thinned one")
      ->type_name("FILE");
  AddParsed(command, "--grid", "DX", "A grid with this spacing in place of the triangles",
            [this](std::string const& text) { grid = ParsePositive("--grid", text); });
  command
      .add_option("--lines", lines,
                  "Lines on the surface: any vector file, or a text of\n"
                  "x y with a blank line between two lines")
      ->expected(1)
      ->take_all()
      ->allow_extra_args(false)
      ->type_name("FILE");
  InputOptions::AddTo(command);
}

}  // namespace qeltin::cli
