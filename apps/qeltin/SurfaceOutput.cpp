#include "apps/qeltin/SurfaceOutput.h"

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/StoredFile.h"

namespace qeltin::cli {

void SurfaceOutputOptions::AddTo(CLI::App& command) {
  command.add_option("-o,--output", output, "The surface to write; its name ends in .tin")
      ->required()
      ->type_name("FILE");
  command.add_flag("--overwrite", overwrite, "Replace an output that exists");
  AddPrecision(command, style);
  InputOptions::AddTo(command);
}

void SurfaceOutputOptions::CheckOutput() const {
  if (KindByName(output) != FileKind::NATIVE) {
    throw UsageFailure("-o " + Quoted(output) + ": the name of a surface ends in .tin");
  }
}

nlohmann::ordered_json Summary(SurfaceFacts const& facts, NumberStyle style) {
  return {{"points_in_surface", facts.vertices},
          {"triangles", facts.triangles},
          {"visible_triangles", facts.visible_triangles},
          {"area", style.Rounded(facts.area)}};
}

void AddChange(Report& report, std::vector<SurfaceFacts> const& before, SurfaceFacts const& after,
               NumberStyle style) {
  auto const add = [&](char const* label, auto const& text) {
    std::string line;
    for (SurfaceFacts const& facts : before) line += (line.empty() ? "" : " + ") + text(facts);
    report.Add(label, line + " -> " + text(after));
  };
  using Facts = SurfaceFacts const&;
  add("points in surface", [](Facts facts) { return std::to_string(facts.vertices); });
  add("triangles", [](Facts facts) { return std::to_string(facts.triangles); });
  add("visible triangles", [](Facts facts) { return std::to_string(facts.visible_triangles); });
  add("area", [style](Facts facts) { return style.Text(facts.area); });
}

}  // namespace qeltin::cli
