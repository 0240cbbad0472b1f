#include <algorithm>
#include <memory>
#include <string>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Report.h"
#include "apps/qeltin/StoredFile.h"
#include "apps/qeltin/SurfaceInput.h"
#include "apps/qeltin/XyzText.h"

namespace qeltin::cli {

namespace {

using Json = nlohmann::ordered_json;

struct InfoOptions : InputOptions {
  std::string file;
  NumberStyle style;
};

char const* const FORMATS[] = {"native surface", "Trimble terrain model", "XYZ text"};

void TellSurface(InfoOptions const& options, FileKind kind, StoredFile const& file) {
  std::unique_ptr<TIN> const tin = OpenSurface(options.file, options);
  SurfaceFacts const facts = FactsOf(*tin);
  NumberStyle const& style = options.style;
  bool const visible = facts.visible_triangles > 0;
  if (options.json) {
    Json heights = nullptr;
    if (visible) heights = {style.Rounded(facts.lowest), style.Rounded(facts.highest)};
    PrintResult(Dump({{"format", KindWord(kind)},
                      {"version", file.version < 0 ? Json(nullptr) : Json(file.version)},
                      {"points", facts.points},
                      {"data_points", facts.data_points},
                      {"triangles", facts.triangles},
                      {"visible_triangles", facts.visible_triangles},
                      {"bounds", ToJson(facts.bounds, style)},
                      {"world_bounds", ToJson(facts.world_bounds, style)},
                      {"height_range", heights},
                      {"area", style.Rounded(facts.area)},
                      {"bytes", static_cast<long long>(file.bytes)}}));
    return;
  }
  std::string const version = file.version < 0 ? "" : ", version " + std::to_string(file.version);
  Report report(style);
  report.Add("format", FORMATS[static_cast<int>(kind)] + version);
  report.Add("points", facts.points);
  report.Add("data points", facts.data_points);
  report.Add("triangles", facts.triangles);
  report.Add("visible triangles", facts.visible_triangles);
  report.Add("bounds", facts.bounds);
  report.Add("world bounds", facts.world_bounds);
  report.Add("heights", visible ? style.Text(facts.lowest) + " to " + style.Text(facts.highest)
                                : std::string("none"));
  report.Add("area", style.Text(facts.area));
  report.Add("bytes", static_cast<long long>(file.bytes));
  PrintResult(report.Text());
}

void TellText(InfoOptions const& options, StoredFile const& file) {
  Box bounds;
  bool first = true;
  XyzSummary const text = ReadXyz(options.file, options, [&](IPoint const& p) {
    if (first) bounds = {p, p};
    first = false;
    bounds.min = {std::min(bounds.min.x, p.x), std::min(bounds.min.y, p.y),
                  std::min(bounds.min.z, p.z)};
    bounds.max = {std::max(bounds.max.x, p.x), std::max(bounds.max.y, p.y),
                  std::max(bounds.max.z, p.z)};
  });
  NumberStyle const& style = options.style;
  std::string const form = text.comma ? "comma" : "blank";
  if (options.json) {
    PrintResult(Dump({{"format", KindWord(FileKind::TEXT)},
                      {"form", form},
                      {"points", text.points},
                      {"bounds", ToJson(bounds, style)},
                      {"height_range", {style.Rounded(bounds.min.z), style.Rounded(bounds.max.z)}},
                      {"bytes", static_cast<long long>(file.bytes)}}));
    return;
  }
  Report report(style);
  report.Add("format", "XYZ text, separated by " + form + 's');
  report.Add("points", text.points);
  report.Add("bounds", bounds);
  report.Add("heights", style.Text(bounds.min.z) + " to " + style.Text(bounds.max.z));
  report.Add("bytes", static_cast<long long>(file.bytes));
  PrintResult(report.Text());
}

void Run(InfoOptions const& options) {
  // Before the surface is loaded: loading writes a native file of an older version anew.
  StoredFile const file = LookAt(options.file);
  FileKind const kind = KindByName(options.file);
  if (kind == FileKind::TEXT) {
    TellText(options, file);
  } else {
    TellSurface(options, kind, file);
  }
}

}  // namespace

void AddInfo(CLI::App& application) {
  auto const options = std::make_shared<InfoOptions>();
  CLI::App* const command =
      application.add_subcommand("info", "Tell what a surface or a text holds");
  command->add_option("file", options->file, "A .tin or .ttm surface, or an XYZ text")
      ->required()
      ->type_name("FILE");
  AddPrecision(*command, options->style);
  options->AddTo(*command);
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
