#include <memory>
#include <string>

#include "apps/qeltin/DraftFile.h"
#include "apps/qeltin/Failure.h"
#include "apps/qeltin/SurfaceOutput.h"

namespace qeltin::cli {

namespace {

struct FilterOptions : SurfaceOutputOptions {
  std::string surface;
  std::string max_edge;
};

double ParseLimit(std::string const& text) {
  double limit = 0.0;
  if (!ParseNumbers(text, &limit, 1) || limit <= 0.0) {
    throw UsageFailure("--max-edge " + Quoted(text) + ": the longest side allowed is above 0");
  }
  return limit;
}

void Tell(FilterOptions const& options, SurfaceFacts const& before, SurfaceFacts const& after) {
  if (options.json) {
    PrintResult(Dump({{"file", options.output},
                      {"before", Summary(before, options.style)},
                      {"after", Summary(after, options.style)}}));
  } else if (!options.quiet) {
    Report report(options.style);
    AddChange(report, {before}, after, options.style);
    PrintResult(report.Text());
  }
}

void Run(FilterOptions const& options) {
  double const limit = ParseLimit(options.max_edge);
  options.CheckOutput();
  DraftFile draft(options.output, options.overwrite);
  HeldSurface const tin = OpenSurface(options.surface, options);
  SurfaceFacts const before = FactsOf(*tin);
  if (before.triangles == 0) throw Failure(options.surface, "holds no triangles");

  tin->FilterTriangles(limit);
  SurfaceFacts const after = FactsOf(*tin);
  if (after.visible_triangles == 0) {
    throw Failure(options.surface, "no triangle would be visible: each has a side longer than " +
                                       options.max_edge + " or reaches beyond the data");
  }
  SaveSurface(*tin, draft.WorkingName(), options.output, options.quiet);
  draft.Commit();
  Tell(options, before, after);
}

}  // namespace

void AddFilter(CLI::App& application) {
  auto const options = std::make_shared<FilterOptions>();
  CLI::App* const command =
      application.add_subcommand("filter", "Hide the long triangles of a surface");
  command->add_option("surface", options->surface, "A .tin or .ttm surface, or an XYZ text")
      ->required()
      ->type_name("FILE");
  command
      ->add_option("--max-edge", options->max_edge,
                   "The longest side that a visible triangle may have, in\n"
                   "plan, in the unit of the surface")
      ->required()
      ->type_name("L");
  options->AddTo(*command);
  command->footer(
      "A triangle with a side longer than L is hidden: it stays in the file, and gives\n"
      "no height. An earlier filter is forgotten, so that a larger L shows triangles\n"
      "again.");
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
