#include <cmath>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/Report.h"
#include "apps/qeltin/Surface.h"
#include "apps/qeltin/SurfaceInput.h"
#include "apps/qeltin/VectorOutput.h"
#include "apps/qeltin/WholeIsolines.h"
#include "qeltin/products/TPolygon.h"

namespace qeltin::cli {

namespace {

struct IsolineOptions : InputOptions {
  std::string surface;
  std::vector<std::string> levels;
  std::string interval;
  std::string base = "0";
  bool raw = false;
  VectorOptions vector;
};

struct IsolineResult {
  long long levels = 0;
  long long lines = 0;
  long long closed = 0;
  long long points = 0;
  long long summits = 0;  // lines of one point, which are left out
  double length = 0.0;    // in plan
};

double NumberIn(std::string const& text) {
  double number = 0.0;
  ParseNumbers(text, &number, 1);
  return number;
}

void CheckUsage(IsolineOptions const& options, bool has_base) {
  if (options.levels.empty() == options.interval.empty()) {
    throw UsageFailure("give either --level Z or --interval D");
  }
  if (has_base && options.interval.empty()) throw UsageFailure("--base needs --interval");
  if (!options.interval.empty() && NumberIn(options.interval) <= 0.0) {
    throw UsageFailure("--interval " + options.interval + ": must be above 0");
  }
}

// Returns base + k * interval for each whole k that gives a height of the surface.
std::vector<double> LevelsBetween(SurfaceFacts const& facts, IsolineOptions const& options) {
  constexpr double MOST = 1e6;
  double const base = NumberIn(options.base);
  double const interval = NumberIn(options.interval);
  double const first = std::floor((facts.lowest - base) / interval);
  double const last = std::ceil((facts.highest - base) / interval);
  if (!(last - first < MOST)) {
    throw Failure(options.surface,
                  "an interval of " + options.interval + " gives more than a million levels");
  }
  std::vector<double> levels;
  auto const count = static_cast<long long>(last - first) + 1;
  for (long long i = 0; i < count; ++i) {
    double const level = base + (first + static_cast<double>(i)) * interval;
    bool const fresh = levels.empty() || level > levels.back();
    if (fresh && level >= facts.lowest && level <= facts.highest) levels.push_back(level);
  }
  return levels;
}

std::vector<double> LevelsFor(SurfaceFacts const& facts, IsolineOptions const& options) {
  if (options.levels.empty()) return LevelsBetween(facts, options);
  std::set<double> levels;
  for (std::string const& text : options.levels) levels.insert(NumberIn(text));
  return {levels.begin(), levels.end()};
}

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

void WriteLine(Isoline const& line, double level, VectorOutput& output, IsolineResult& result) {
  if (line.points.size() < 2) {
    ++result.summits;
    return;
  }
  ++result.lines;
  if (line.closed) ++result.closed;
  result.points += static_cast<long long>(line.points.size());
  for (std::size_t i = 1; i < line.points.size(); ++i) {
    result.length += line.points[i - 1].XY_Distance(line.points[i]);
  }
  output.Add({line.points, {}, {level}});
}

void Tell(IsolineOptions const& options, IsolineResult const& result) {
  NumberStyle const style = options.vector.style;
  if (result.summits > 0) {
    options.Note(std::to_string(result.summits) +
                 (result.summits == 1 ? " line of one point is" : " lines of one point are") +
                 " left out");
  }
  if (result.lines == 0) options.Note(options.surface + ": no line at the levels asked for");
  if (options.json) {
    PrintResult(Dump({{"file", options.vector.output},
                      {"levels", result.levels},
                      {"lines", result.lines},
                      {"closed", result.closed},
                      {"points", result.points},
                      {"left_out", result.summits},
                      {"length", style.Rounded(result.length)}}));
    return;
  }
  if (options.quiet) return;
  Report report(style);
  report.Add("levels", result.levels);
  report.Add("lines", result.lines);
  report.Add("closed lines", result.closed);
  report.Add("points", result.points);
  report.Add("length", style.Text(result.length));
  PrintResult(report.Text());
}

void Run(IsolineOptions const& options) {
  Layer const layer{.name = "isolines", .counter = "line", .fields = {{"level", FieldType::REAL}}};
  std::unique_ptr<VectorOutput> const output = CreateVectorOutput(options.vector, layer, options);
  std::unique_ptr<TIN> const tin = OpenSurface(options.surface, options);
  SurfaceFacts const facts = FactsOf(*tin);
  if (facts.visible_triangles == 0) {
    throw Failure(options.surface, "no triangle is visible: there is no surface");
  }
  std::vector<double> const levels = LevelsFor(facts, options);
  IsolineResult result;
  {
    Progress progress("isolines", static_cast<double>(levels.size()), options.quiet);
    WholeIsolines whole(*tin);
    for (double const level : levels) {
      for (Isoline const& line : options.raw ? RawIsolines(*tin, level) : whole.At(level)) {
        WriteLine(line, level, *output, result);
      }
      progress.Done(static_cast<double>(++result.levels));
    }
  }
  output->Close();
  Tell(options, result);
}

}  // namespace

void AddIsolines(CLI::App& application) {
  auto const options = std::make_shared<IsolineOptions>();
  CLI::App* const command =
      application.add_subcommand("isolines", "Draw the lines of equal height of a surface");
  command->add_option("surface", options->surface, "A .tin or .ttm surface, or an XYZ text")
      ->required()
      ->type_name("FILE");
  command->add_option("--level", options->levels, "A height; may be given many times")
      ->expected(1)
      ->take_all()
      ->allow_extra_args(false)
      ->check(NumberList(1, "a number"))
      ->type_name("Z");
  command
      ->add_option("--interval", options->interval,
                   "The height from level to level, over the heights of\nthe surface")
      ->check(NumberList(1, "a number"))
      ->type_name("D");
  CLI::Option const* const base =
      command
          ->add_option("--base", options->base,
                       "The level that the interval is counted from; 0\nwithout it")
          ->check(NumberList(1, "a number"))
          ->type_name("B");
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
  command->callback([options, base] {
    CheckUsage(*options, base->count() > 0);
    Run(*options);
  });
}

}  // namespace qeltin::cli
