#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/OutlineReader.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/Report.h"
#include "apps/qeltin/Surface.h"
#include "apps/qeltin/SurfaceInput.h"
#include "apps/qeltin/VolumeMeter.h"

namespace qeltin::cli {

namespace {

using Json = nlohmann::ordered_json;

struct VolumeOptions : InputOptions {
  std::string surface;
  std::string polygons;
  std::string datum;
  std::string refine;
  bool raw = false;
  NumberStyle style;

  double Datum() const { return Number(datum).value_or(0.0); }

  std::optional<double> Step() const {
    std::optional<double> const step = Number(refine);
    if (step && *step <= 0.0) {
      throw Failure(polygons, "steps of " + refine + " lead nowhere: --refine is above 0");
    }
    return step;
  }

 private:
  static std::optional<double> Number(std::string const& text) {
    double value = 0.0;
    return ParseNumbers(text, &value, 1) ? std::optional(value) : std::nullopt;
  }
};

struct Measured {
  std::vector<Volume> each;
  Volume sum;
};

// Makes the datum the plane z = 0. The surface in memory is nobody else's.
void LowerBy(double datum, TIN& tin) {
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) tin.GetPoint(i)->z -= datum;
}

void CheckStep(double step, TPolygon const& polygon, VolumeOptions const& options) {
  constexpr double MOST_STEPS = 1e7;
  if (polygon.Length() / step <= MOST_STEPS) return;
  throw Failure(options.polygons,
                "--refine " + options.refine + " makes more than 10000000 steps along a boundary");
}

Measured MeasureAll(TIN const& tin, std::vector<TPolygon> const& polygons,
                    VolumeOptions const& options) {
  std::optional<double> const step = options.Step();
  Progress progress("volume", static_cast<double>(polygons.size()), options.quiet);
  Measured measured;
  for (TPolygon const& polygon : polygons) {
    if (step) CheckStep(*step, polygon, options);
    measured.each.push_back(MeasureVolume(tin, polygon, step));
    measured.sum.prisms.Add(measured.each.back().prisms);
    measured.sum.triangles += measured.each.back().triangles;
    progress.Done(static_cast<double>(measured.each.size()));
  }
  return measured;
}

// A polygon that lies beside the surface is told; if all do, there is nothing to measure.
void CheckForMisses(Measured const& measured, VolumeOptions const& options) {
  std::string const why = " holds no part of the surface" +
                          std::string(options.refine.empty() ? ", by centroids of triangles" : "");
  if (measured.sum.triangles == 0) {
    std::string const who = measured.each.size() == 1 ? "the polygon" : "each of the polygons";
    throw Failure(options.polygons, who + why);
  }
  for (std::size_t i = 0; i < measured.each.size(); ++i) {
    if (measured.each[i].triangles > 0) continue;
    options.Note(options.polygons + ": polygon " + std::to_string(i + 1) + why);
  }
}

Json ToJson(Volume const& volume, VolumeOptions const& options) {
  NumberStyle const& style = options.style;
  Prisms const& prisms = volume.prisms;
  Json json = {{"cut", style.Rounded(prisms.cut)},
               {"fill", style.Rounded(prisms.fill)},
               {"net", style.Rounded(prisms.cut - prisms.fill)},
               {"area", style.Rounded(prisms.area)},
               {"triangles", volume.triangles}};
  if (!options.refine.empty()) json["pieces"] = prisms.count;
  return json;
}

// What the library's own measurement says.
struct Raw {
  double below = 0.0;
  double above = 0.0;
};

// Measures one after another: each puts points of its boundary into the surface. What the library
// does not measure is 0.
std::vector<Raw> MeasureRaw(TIN& tin, std::vector<TPolygon> const& polygons) {
  std::vector<Raw> measured(polygons.size());
  for (std::size_t i = 0; i < polygons.size(); ++i) {
    tin.CalculateVolume(&polygons[i], &measured[i].below, &measured[i].above);
  }
  return measured;
}

Json ToJson(Raw const& raw, NumberStyle style) {
  return {{"below", style.Rounded(raw.below)}, {"above", style.Rounded(raw.above)}};
}

void TellJson(VolumeOptions const& options, Measured const& measured, std::vector<Raw> const& raw) {
  Json json = {{"file", options.surface}, {"inside", options.polygons}, {"datum", options.Datum()}};
  if (!options.refine.empty()) json["refine"] = *options.Step();
  json.update(ToJson(measured.sum, options));
  json["polygons"] = Json::array();
  for (std::size_t i = 0; i < measured.each.size(); ++i) {
    json["polygons"].push_back(ToJson(measured.each[i], options));
    if (options.raw) json["polygons"].back()["raw"] = ToJson(raw[i], options.style);
  }
  PrintResult(Dump(json));
}

void TellPeople(VolumeOptions const& options, Measured const& measured,
                std::vector<Raw> const& raw) {
  NumberStyle const& style = options.style;
  Prisms const& prisms = measured.sum.prisms;
  Report report(style);
  report.Add("cut", style.Text(prisms.cut));
  report.Add("fill", style.Text(prisms.fill));
  report.Add("net", style.Text(prisms.cut - prisms.fill));
  report.Add("plan area", style.Text(prisms.area));
  report.Add("triangles in", measured.sum.triangles);
  if (measured.each.size() > 1) {
    report.Add("polygons", static_cast<long long>(measured.each.size()));
  }
  if (options.raw) {
    Raw sum;
    for (Raw const& each : raw) sum = {sum.below + each.below, sum.above + each.above};
    report.Add("raw below", style.Text(sum.below));
    report.Add("raw above", style.Text(sum.above));
  }
  PrintResult(report.Text());
}

void Run(VolumeOptions const& options) {
  if (options.surface == "-" && options.polygons == "-") {
    throw UsageFailure("standard input cannot be the surface and the polygons");
  }
  options.Step();
  std::vector<TPolygon> const polygons = ReadPolygons(options.polygons);
  HeldSurface const tin = OpenSurface(options.surface, options);
  if (!HasVisibleTriangle(*tin)) {
    throw Failure(options.surface, "has no visible triangle");
  }
  LowerBy(options.Datum(), *tin);
  Measured const measured = MeasureAll(*tin, polygons, options);
  CheckForMisses(measured, options);
  std::vector<Raw> const raw = options.raw ? MeasureRaw(*tin, polygons) : std::vector<Raw>();
  if (options.json) {
    TellJson(options, measured, raw);
  } else {
    TellPeople(options, measured, raw);
  }
}

}  // namespace

void AddVolume(CLI::App& application) {
  auto const options = std::make_shared<VolumeOptions>();
  CLI::App* const command =
      application.add_subcommand("volume", "Measure cut and fill inside polygons");
  command->add_option("surface", options->surface, "A .tin or .ttm surface, or an XYZ text")
      ->required()
      ->type_name("FILE");
  command
      ->add_option("--inside", options->polygons,
                   "The polygons: a text of x y lines, in which a blank\n"
                   "line or one that starts with > parts two of them, or a\n"
                   "vector file with all its layers; - is standard input")
      ->required()
      ->type_name("FILE");
  command->add_option("--datum", options->datum, "The height to measure against (default 0)")
      ->check(NumberList(1, "a number"))
      ->type_name("Z");
  command
      ->add_option("--refine", options->refine,
                   "First part the triangles on the boundary until it is\n"
                   "followed in steps of D")
      ->check(NumberList(1, "a number"))
      ->type_name("D");
  command->add_flag("--raw", options->raw,
                    "Also tell what the library's own measurement says,\n"
                    "whose rules differ; see the manual");
  AddPrecision(*command, options->style);
  options->AddTo(*command);
  command->footer(
      "cut is the volume of the surface above the datum, fill what is missing below\n"
      "it, net is cut less fill; the unit is the cube of the input's. A triangle that\n"
      "the datum cuts counts on both sides. The files are only read.\n"
      "\n"
      "A triangle counts wholly or not at all: it is in if its centroid is inside the\n"
      "polygon. That is exact where the boundary runs along the sides of triangles.\n"
      "With --refine D the triangles that it passes through count in pieces of that\n"
      "size, which lie in the planes of their triangles, so that a smaller D comes\n"
      "closer to the exact volume; halve it until the result no longer moves.\n"
      "\n"
      "Several polygons are summed, and --json lists each of them.");
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
