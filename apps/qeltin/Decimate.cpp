#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/qeltin/DraftFile.h"
#include "apps/qeltin/Failure.h"
#include "apps/qeltin/HeightDifference.h"
#include "apps/qeltin/PlaneDistances.h"
#include "apps/qeltin/SurfaceOutput.h"
#include "apps/qeltin/Thinning.h"
#include "qeltin/decimate/LocalFrame.h"

namespace qeltin::cli {

namespace {

using Json = nlohmann::ordered_json;

struct DecimateOptions : SurfaceOutputOptions {
  std::string surface;
  int passes = 1;
  std::string max_error;
  std::string min_error;
  std::string feature_angle;
  bool keep_edges = true;
  bool boundary = false;
  int target = 0;  // 0 for none
};

struct Result {
  SurfaceFacts before;
  SurfaceFacts after;
  HeightDifference difference;
  CStatist distances;
  int runs = 0;
};

float ParseError(char const* option, std::string const& text) {
  double value = 0.0;
  if (text.empty()) return 0.0f;
  bool const good = ParseNumbers(text, &value, 1) && value >= 0.0;
  auto const error = static_cast<float>(value);
  if (!good || !std::isfinite(error)) {
    throw UsageFailure(std::string(option) + ' ' + Quoted(text) + ": a distance is 0 or above");
  }
  return error;
}

void ParseAngles(std::string const& text, ThinningOptions& thinning) {
  if (text.empty()) return;
  double angles[2];
  ParseNumbers(text, angles, 2);
  if (!(angles[0] >= 0.0 && angles[0] <= angles[1] && angles[1] < 360.0)) {
    throw UsageFailure("--feature-angle " + Quoted(text) +
                       ": from 0 up to below 360 degrees, the smaller one first");
  }
  thinning.min_angle = static_cast<float>(angles[0]);
  thinning.max_angle = static_cast<float>(angles[1]);
}

ThinningOptions ParseOptions(DecimateOptions const& options) {
  if (options.max_error.empty() && options.target == 0) {
    throw UsageFailure("how far? --max-error or --target-points is needed");
  }
  ThinningOptions thinning;
  thinning.passes = options.passes;
  thinning.keep_edges = options.keep_edges;
  thinning.boundary = options.boundary;
  thinning.min_error = ParseError("--min-error", options.min_error);
  thinning.max_error = ParseError("--max-error", options.max_error);
  if (!options.max_error.empty() && thinning.min_error > thinning.max_error) {
    throw UsageFailure("--min-error is above --max-error");
  }
  ParseAngles(options.feature_angle, thinning);
  return thinning;
}

// Makes runs, each with the error that it takes, up to the largest of `thinning`, until `target` of
// `vertices` points are left or nothing more may go.
void ThinTo(int target, int vertices, ThinningOptions const& thinning, TIN const& tin,
            Thinning& runs) {
  constexpr float LEAST_GROWTH = 1.5f;  // after a run in which little has gone
  constexpr float SMALLEST_SHARE = 1e-4f;
  constexpr int LITTLE = 20;  // a share of 1 to so many
  float const ceiling = thinning.max_error;
  ThinningOptions run = thinning;
  float least = thinning.min_error;
  for (int left = vertices; left > target;) {
    run.max_error = std::min(ceiling, std::max(least, ErrorFor(left - target, left, tin)));
    run.min_error = run.max_error;
    int const removed = runs.Run(run, left - target);
    bool const few = removed < (left - target) / LITTLE || removed == 0;
    if (removed == 0 && run.max_error == ceiling) return;
    left -= removed;
    least =
        few ? std::max(run.max_error, ceiling * SMALLEST_SHARE) * LEAST_GROWTH : thinning.min_error;
  }
}

// Rounds ask what a run asks by default.
bool TakesRounds(ThinningOptions const& thinning) {
  return thinning.keep_edges && !thinning.boundary && thinning.passes == 1;
}

void ThinToTarget(int target, int vertices, ThinningOptions const& thinning, TIN& tin,
                  Thinning& runs) {
  if (TakesRounds(thinning)) {
    runs.MakeRounds(vertices - target, {thinning.min_error, thinning.max_error});
  } else {
    LocalFrame const frame(tin);
    ThinTo(target, vertices, thinning, tin, runs);
  }
}

void ThinOnce(ThinningOptions const& thinning, TIN& tin, Thinning& runs) {
  LocalFrame const frame(tin);
  runs.Run(thinning, {});
}

Result Thin(TIN& tin, DecimateOptions const& options, ThinningOptions thinning) {
  Result result;
  result.before = FactsOf(tin);
  if (result.before.visible_triangles == 0) {
    throw Failure(options.surface, "has no visible triangle");
  }
  if (options.max_error.empty()) {
    thinning.max_error = static_cast<float>(result.before.highest - result.before.lowest);
  }
  std::vector<TPoint> const vertices = VerticesOf(tin);
  Thinning runs(tin, options.quiet);
  try {
    runs.Prepare();
    if (options.target == 0) {
      ThinOnce(thinning, tin, runs);
    } else if (options.target < result.before.vertices) {
      ThinToTarget(options.target, result.before.vertices, thinning, tin, runs);
    }
  } catch (std::runtime_error const& e) {
    throw Failure(options.surface, std::string("cannot be thinned: ") + e.what());
  }
  result.after = FactsOf(tin);
  result.difference = CompareHeights(vertices, tin);
  result.distances = runs.Distances();
  result.runs = runs.Runs();
  return result;
}

double RootMeanSquare(CStatist const& distances) {
  return distances.count == 0 ? 0.0 : std::sqrt(distances.sumSquares / distances.count);
}

void TellJson(DecimateOptions const& options, Result const& result) {
  NumberStyle const& style = options.style;
  CStatist const& distances = result.distances;
  HeightDifference const& difference = result.difference;
  PrintResult(Dump({{"file", options.output},
                    {"before", Summary(result.before, style)},
                    {"after", Summary(result.after, style)},
                    {"runs", result.runs},
                    {"error",
                     {{"samples", distances.count},
                      {"min", style.Rounded(distances.minimum)},
                      {"max", style.Rounded(distances.maximum)},
                      {"mean", style.Rounded(distances.mean)},
                      {"rms", style.Rounded(RootMeanSquare(distances))}}},
                    {"difference",
                     {{"removed", difference.removed},
                      {"beside", difference.beside},
                      {"largest", style.Rounded(difference.largest)},
                      {"mean", style.Rounded(difference.mean)},
                      {"at", style.Array(difference.place)}}}}));
}

void TellPeople(DecimateOptions const& options, Result const& result) {
  NumberStyle const& style = options.style;
  CStatist const& distances = result.distances;
  HeightDifference const& difference = result.difference;
  Report report(style);
  AddChange(report, {result.before}, result.after, style);
  report.Add("runs", result.runs);
  report.Add("points tested off", static_cast<long long>(distances.count));
  report.Add("distance to plane",
             style.Text(distances.minimum) + " to " + style.Text(distances.maximum) + ", mean " +
                 style.Text(distances.mean) + ", rms " + style.Text(RootMeanSquare(distances)));
  report.Add("height difference",
             "largest " + style.Text(difference.largest) + ", mean " + style.Text(difference.mean));
  if (difference.beside > 0) report.Add("removed, now beside", difference.beside);
  PrintResult(report.Text());
}

void Run(DecimateOptions const& options) {
  ThinningOptions const thinning = ParseOptions(options);
  options.CheckOutput();
  DraftFile draft(options.output, options.overwrite);
  HeldSurface const tin = OpenSurface(options.surface, options);
  Result const result = Thin(*tin, options, thinning);
  if (options.target > 0 && result.after.vertices > options.target) {
    options.Note("nothing more may go: " + std::to_string(result.after.vertices) +
                 " points are left");
  }
  SaveSurface(*tin, draft.WorkingName(), options.output, options.quiet);
  draft.Commit();
  if (options.json) {
    TellJson(options, result);
  } else if (!options.quiet) {
    TellPeople(options, result);
  }
}

}  // namespace

void AddDecimate(CLI::App& application) {
  auto const options = std::make_shared<DecimateOptions>();
  CLI::App* const command = application.add_subcommand("decimate", "Thin a surface");
  command->add_option("surface", options->surface, "A .tin or .ttm surface, or an XYZ text")
      ->required()
      ->type_name("FILE");
  command
      ->add_option("--max-error", options->max_error,
                   "How far a point may be from the plane through its\n"
                   "neighbours to go")
      ->check(NumberList(1, "a number"))
      ->type_name("E");
  command
      ->add_option("--min-error", options->min_error,
                   "The same in the first of several passes (default 0)")
      ->check(NumberList(1, "a number"))
      ->type_name("E");
  command->add_option("--passes", options->passes, "How many passes to make (default 1)")
      ->check(CLI::Range(1, 10000).description(""))
      ->type_name("N");
  command
      ->add_option("--feature-angle", options->feature_angle,
                   "With --no-keep-edges: where the sides around a point\n"
                   "turn by less than so many degrees, in the first and in\n"
                   "the last pass, they are smooth (default 0,0)")
      ->check(NumberList(2, "A1,A2"))
      ->type_name("A1,A2");
  command->add_flag("--keep-edges,!--no-keep-edges", options->keep_edges,
                    "Test every point inside against the plane; without,\n"
                    "one on a line between two smooth sides against that\n"
                    "line, while others with smooth sides stay");
  command->add_flag("--boundary", options->boundary,
                    "Points on the edge may go too, where they are near to\n"
                    "the line through two neighbours on it");
  command
      ->add_option("--target-points", options->target,
                   "Go on until no more than N points are left, or none is as\n"
                   "near as --max-error: in rounds of the nearest points, none\n"
                   "of them beside another, or, where another option here\n"
                   "chooses the test, in runs with errors that fit")
      ->check(CLI::Range(1, 2000000000).description(""))
      ->type_name("N");
  options->AddTo(*command);
  command->footer(
      "Points are chosen all at once in each pass and then removed one by one, so that\n"
      "the surface can end up farther from a removed point than the error allows: the\n"
      "height difference that is told is measured at every one of them.\n"
      "\n"
      "The result need not be a Delaunay triangulation, as 'qeltin info --check' tells.");
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
