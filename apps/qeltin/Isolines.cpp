#include <memory>
#include <string>
#include <vector>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/LineTally.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/Surface.h"
#include "apps/qeltin/WholeIsolines.h"
#include "qeltin/products/TPolygon.h"

namespace qeltin::cli {

namespace {

struct IsolineOptions : LevelLineOptions {
  bool raw = false;
};

// Returns what the library traces, as it traces it.
std::vector<Isoline> RawIsolines(TIN& tin, double level) {
  std::vector<TPolygon*> traced;
  tin.GenerateIsoline(traced, level);
  std::vector<Isoline> lines;
  for (TPolygon* const polygon : traced) {
    std::unique_ptr<TPolygon> const owner(polygon);
    lines.push_back({{polygon->Get(0), polygon->Get(0) + polygon->GetSize()}});
  }
  return lines;
}

void WriteLine(Isoline const& line, double level, VectorOutput& output, LineTally& tally) {
  if (line.points.size() < 2) {
    ++tally.left_out;
    return;
  }
  tally.Add(line.points, line.closed, PlanLength(line.points));
  output.Add({line.points, {}, {level}});
}

void Run(IsolineOptions const& options) {
  options.levels.Check();
  Layer const layer{.name = "isolines", .counter = "line", .fields = {{"level", FieldType::REAL}}};
  std::unique_ptr<VectorOutput> const output = CreateVectorOutput(options.vector, layer, options);
  HeldSurface const tin = OpenSurface(options.surface, options);
  SurfaceFacts const facts = FactsOf(*tin);
  if (facts.visible_triangles == 0) {
    throw Failure(options.surface, "no triangle is visible: there is no surface");
  }
  std::vector<Level> const levels = options.levels.LevelsOf(facts, options.surface);
  LineTally tally;
  {
    Progress progress("isolines", static_cast<double>(levels.size()), options.quiet);
    WholeIsolines whole(*tin, HeightsOf(levels));
    for (std::size_t i = 0; i < levels.size(); ++i) {
      double const height = levels[i].height;
      for (Isoline const& line : options.raw ? RawIsolines(*tin, height) : whole.At(i)) {
        WriteLine(line, height, *output, tally);
      }
      progress.Done(static_cast<double>(++tally.levels));
    }
  }
  output->Close();
  Tell(options, tally, "line of one point is", "lines of one point are");
}

}  // namespace

void AddIsolines(CLI::App& application) {
  auto const options = std::make_shared<IsolineOptions>();
  CLI::App* const command =
      application.add_subcommand("isolines", "Draw the lines of equal height of a surface");
  command->add_option("surface", options->surface, "A .tin or .ttm surface, or an XYZ text")
      ->required()
      ->type_name("FILE");
  options->levels.AddTo(*command);
  command->add_flag("--raw", options->raw,
                    "Write the lines as TIN::GenerateIsoline traces them: in\n"
                    "pieces that stop a crossing short, of the next or of\n"
                    "their own start");
  options->vector.AddTo(*command);
  options->AddTo(*command);
  command->footer(
      "Writes lines with heights, and the fields line, which counts them, and level.\n"
      "A line is followed over the visible triangles to both ends. Where it comes back\n"
      "to its start it is closed, and ends with the point that it starts with; any\n"
      "other runs from brim to brim of the surface. Higher ground is to the right. A\n"
      "vertex at a level counts as above it; a summit there, which is a line of one\n"
      "point, is left out.");
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
