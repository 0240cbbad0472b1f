#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apps/qeltin/DraftFile.h"
#include "apps/qeltin/Failure.h"
#include "apps/qeltin/SurfaceOutput.h"

namespace qeltin::cli {

namespace {

struct BuildOptions : SurfaceOutputOptions {
  std::vector<std::string> inputs;
  bool keep_order = false;
  std::string bounds;
};

class Stopwatch {
 public:
  // Returns the seconds since the last call.
  double Lap() {
    auto const now = std::chrono::steady_clock::now();
    std::chrono::duration<double> const lap = now - std::exchange(m_Last, now);
    return lap.count();
  }

 private:
  std::chrono::steady_clock::time_point m_Last = std::chrono::steady_clock::now();
};

struct BuildResult {
  long long read = 0;
  long long outside = 0;  // of --bounds
  SurfaceCounts counts;
  double seconds_read = 0.0;
  double seconds_build = 0.0;
  double seconds_write = 0.0;

  long long Duplicates() const { return read - outside - counts.vertices; }
};

std::optional<Box> ParseBounds(BuildOptions const& options) {
  if (options.bounds.empty()) return {};
  double n[4];
  ParseNumbers(options.bounds, n, 4);
  if (n[0] >= n[2] || n[1] >= n[3]) {
    throw UsageFailure("--bounds: X1 must be below X2, and Y1 below Y2");
  }
  return Box{{n[0], n[1]}, {n[2], n[3]}};
}

std::vector<IPoint> ReadInputs(BuildOptions const& options, std::optional<Box> const& bounds,
                               BuildResult& result) {
  std::function<bool(IPoint const&)> keep;
  if (bounds) {
    keep = [&](IPoint const& p) {
      bool const inside = bounds->Has(p);
      if (!inside) ++result.outside;
      return inside;
    };
  }
  std::vector<IPoint> points;
  for (std::string const& name : options.inputs) AppendPoints(name, options, points, keep);
  result.read = static_cast<long long>(points.size()) + result.outside;
  return points;
}

HeldSurface Build(std::vector<IPoint> points, std::optional<Box> const& bounds,
                  BuildOptions const& options, BuildResult& result) {
  std::string const name = options.inputs.size() == 1 ? options.inputs[0] : options.output;
  std::string const why = WhyNoSurface(points);
  if (!why.empty() && result.outside > 0) {
    throw Failure(name, std::to_string(result.outside) + " of " + std::to_string(result.read) +
                            " points lie outside the bounds: " + why);
  }
  if (!why.empty()) throw Failure(name, why);

  HeldSurface tin = BuildSurface(std::move(points), options.keep_order, bounds, options.quiet);
  result.counts = CountsOf(*tin);
  // In the order of the files every triangle may be hidden, however sound the surface is.
  if (!options.keep_order) RequireVisible(*tin, name);
  return tin;
}

void Tell(BuildOptions const& options, BuildResult const& result) {
  SurfaceCounts const& counts = result.counts;
  if (options.json) {
    PrintResult(Dump({{"file", options.output},
                      {"points_read", result.read},
                      {"points_in_surface", counts.vertices},
                      {"duplicates", result.Duplicates()},
                      {"refused", result.outside},
                      {"triangles", counts.triangles},
                      {"visible_triangles", counts.visible_triangles},
                      {"bounds", ToJson(counts.bounds, options.style)},
                      {"world_bounds", ToJson(counts.world_bounds, options.style)},
                      {"seconds",
                       {{"read", result.seconds_read},
                        {"build", result.seconds_build},
                        {"write", result.seconds_write}}}}));
    return;
  }
  if (options.quiet) return;
  Report report(options.style);
  report.Add("points read", result.read);
  report.Add("points in surface", counts.vertices);
  report.Add("duplicates", result.Duplicates());
  if (result.outside > 0) report.Add("outside the bounds", result.outside);
  report.Add("triangles", counts.triangles);
  report.Add("visible triangles", counts.visible_triangles);
  report.Add("bounds", counts.bounds);
  PrintResult(report.Text());
}

void Run(BuildOptions const& options) {
  std::optional<Box> const bounds = ParseBounds(options);
  options.CheckOutput();
  DraftFile draft(options.output, options.overwrite);

  BuildResult result;
  Stopwatch watch;
  std::vector<IPoint> points = ReadInputs(options, bounds, result);
  result.seconds_read = watch.Lap();
  HeldSurface const tin = Build(std::move(points), bounds, options, result);
  result.seconds_build = watch.Lap();
  SaveSurface(*tin, draft.WorkingName(), options.output, options.quiet);
  draft.Commit();
  result.seconds_write = watch.Lap();
  Tell(options, result);
}

}  // namespace

void AddBuild(CLI::App& application) {
  auto const options = std::make_shared<BuildOptions>();
  CLI::App* const command = application.add_subcommand("build", "Build a surface from points");
  command
      ->add_option("inputs", options->inputs,
                   "XYZ texts (- is standard input), LAS files, vector data\n"
                   "and stored surfaces, whose points are taken")
      ->required()
      ->type_name("FILE");
  command->add_flag("--keep-order", options->keep_order,
                    "Insert the points in the order of the files: the\n"
                    "same bytes on every run; what widens the surface as it\n"
                    "grows may stay hidden");
  command
      ->add_option("--bounds", options->bounds,
                   "Leave out the points outside this box and, unless the\n"
                   "order is kept, give it to the surface as its bounds")
      ->check(NumberList(4, "X1,Y1,X2,Y2"))
      ->type_name("X1,Y1,X2,Y2");
  options->AddTo(*command);
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
