#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "apps/qeltin/CrossSection.h"
#include "apps/qeltin/Failure.h"
#include "apps/qeltin/OutlineReader.h"
#include "apps/qeltin/Report.h"
#include "apps/qeltin/SegmentTree.h"
#include "apps/qeltin/Surface.h"
#include "apps/qeltin/SurfaceInput.h"
#include "apps/qeltin/VectorOutput.h"

namespace qeltin::cli {

namespace {

struct ProfileOptions : InputOptions {
  std::string surface;
  std::string from;
  std::string to;
  std::string along;
  bool raw = false;
  VectorOptions vector;
};

struct ProfileResult {
  std::size_t lines = 0;
  std::size_t pieces = 0;
  std::size_t points = 0;
  std::size_t left_out = 0;  // pieces of one point
  double length = 0.0;       // in plan, of the pieces
  double lowest = 0.0;       // of the points; 0 without any
  double highest = 0.0;
};

TPoint PlaceIn(std::string const& text) {
  double xy[2];
  ParseNumbers(text, xy, 2);
  return {xy[0], xy[1]};
}

void CheckUsage(ProfileOptions const& options) {
  if (options.from.empty() != options.to.empty()) {
    throw UsageFailure("--from X,Y and --to X,Y come together");
  }
  if (options.from.empty() == options.along.empty()) {
    throw UsageFailure("give either --from X,Y and --to X,Y or --along LINE_FILE");
  }
  if (options.surface == "-" && options.along == "-") {
    throw UsageFailure("standard input cannot be the surface and the line");
  }
  if (options.along.empty() && PlaceIn(options.from).XY_EqualsTo(PlaceIn(options.to))) {
    throw UsageFailure("--from and --to are one place");
  }
}

std::vector<TPolygon> LinesFor(ProfileOptions const& options) {
  if (!options.along.empty()) return ReadLines(options.along);
  return {TPolygon({PlaceIn(options.from), PlaceIn(options.to)})};
}

// Returns what the library cuts, as it cuts it. Distances are those of the places in plan.
std::vector<Piece> RawSections(TIN const& tin, std::vector<TPolygon> const& lines) {
  std::vector<Piece> pieces;
  for (Segment const& segment : SegmentsOf(lines)) {
    std::vector<TPolygon> cut;
    tin.GenerateProfile(cut, segment.from, segment.to);
    for (TPolygon const& polygon : cut) {
      Piece piece{segment.line, {polygon.Get(0), polygon.Get(0) + polygon.GetSize()}, {}};
      for (TPoint const& p : piece.points) {
        piece.distances.push_back(segment.offset + segment.from.XY_Distance(p));
      }
      pieces.push_back(std::move(piece));
    }
  }
  return pieces;
}

void Count(Piece const& piece, ProfileResult& result) {
  auto const lower = [](TPoint const& a, TPoint const& b) { return a.z < b.z; };
  auto const [low, high] = std::minmax_element(piece.points.begin(), piece.points.end(), lower);
  bool const first = result.pieces == 0;
  result.lowest = first ? low->z : std::min(result.lowest, low->z);
  result.highest = first ? high->z : std::max(result.highest, high->z);
  ++result.pieces;
  result.points += piece.points.size();
  result.length += piece.distances.back() - piece.distances.front();
}

void Tell(ProfileOptions const& options, ProfileResult const& result) {
  NumberStyle const style = options.vector.style;
  bool const empty = result.pieces == 0;
  if (result.left_out > 0) {
    options.Note(std::to_string(result.left_out) +
                 (result.left_out == 1 ? " piece of one point is" : " pieces of one point are") +
                 " left out");
  }
  if (empty) options.Note(options.surface + ": no line runs over the surface");
  nlohmann::ordered_json range;
  if (!empty) range = {style.Rounded(result.lowest), style.Rounded(result.highest)};
  if (options.json) {
    PrintResult(Dump({{"file", options.vector.output},
                      {"lines", result.lines},
                      {"pieces", result.pieces},
                      {"points", result.points},
                      {"left_out", result.left_out},
                      {"length", style.Rounded(result.length)},
                      {"height_range", range}}));
    return;
  }
  if (options.quiet) return;
  Report report(style);
  report.Add("lines", static_cast<long long>(result.lines));
  report.Add("pieces", static_cast<long long>(result.pieces));
  report.Add("points", static_cast<long long>(result.points));
  report.Add("length", style.Text(result.length));
  if (!empty) {
    report.Add("heights", style.Text(result.lowest) + " to " + style.Text(result.highest));
  }
  PrintResult(report.Text());
}

void Run(ProfileOptions const& options) {
  CheckUsage(options);
  Layer const layer{.name = "profile",
                    .counter = "piece",
                    .measured = true,
                    .fields = {{"line", FieldType::INTEGER}}};
  std::unique_ptr<VectorOutput> const output = CreateVectorOutput(options.vector, layer, options);
  std::vector<TPolygon> const lines = LinesFor(options);
  HeldSurface const tin = OpenSurface(options.surface, options);
  if (!HasVisibleTriangle(*tin)) {
    throw Failure(options.surface, "no triangle is visible: there is no surface");
  }
  ProfileResult result;
  result.lines = lines.size();
  auto const pieces =
      options.raw ? RawSections(*tin, lines) : CrossSections(*tin, lines, options.quiet);
  for (Piece const& piece : pieces) {
    if (piece.points.size() < 2) {
      ++result.left_out;
      continue;
    }
    Count(piece, result);
    output->Add({piece.points, piece.distances, {static_cast<long long>(piece.line) + 1}});
  }
  output->Close();
  Tell(options, result);
}

}  // namespace

void AddProfile(CLI::App& application) {
  auto const options = std::make_shared<ProfileOptions>();
  CLI::App* const command =
      application.add_subcommand("profile", "Cut a surface along lines in plan");
  command->add_option("surface", options->surface, "A .tin or .ttm surface, or an XYZ text")
      ->required()
      ->type_name("FILE");
  command->add_option("--from", options->from, "Where a straight line starts")
      ->check(NumberList(2, "X,Y"))
      ->type_name("X,Y");
  command->add_option("--to", options->to, "Where it ends")
      ->check(NumberList(2, "X,Y"))
      ->type_name("X,Y");
  command
      ->add_option("--along", options->along,
                   "A vector file with lines or polygons, or a text with\n"
                   "x and y on each line, where a blank line parts two\n"
                   "lines; - is standard input")
      ->type_name("LINE_FILE");
  command->add_flag("--raw", options->raw,
                    "Write the lines as TIN::GenerateProfile cuts them:\n"
                    "pieces before a gap twice, the height of the start at\n"
                    "the end of a line in one triangle, and no end at a\n"
                    "vertex; each turn begins a piece");
  options->vector.AddTo(*command);
  options->AddTo(*command);
  command->footer(
      "Writes lines with heights: a point where the line starts and ends, turns,\n"
      "crosses a side of a triangle, or runs through a vertex, which it does within\n"
      "rounding. Where it leaves the surface a piece ends, and where it comes back the\n"
      "next begins. The fields are piece, which counts them, start, the distance of\n"
      "the first point from the start of the line, in plan along all its turns, and\n"
      "line, its number in LINE_FILE. A .csv has a row for each point: piece,\n"
      "distance, x, y, z, line.");
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
