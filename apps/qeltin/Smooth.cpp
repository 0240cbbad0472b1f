#include <algorithm>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "apps/qeltin/Boundary.h"
#include "apps/qeltin/DraftFile.h"
#include "apps/qeltin/Failure.h"
#include "apps/qeltin/OutlineReader.h"
#include "apps/qeltin/SurfaceOutput.h"

namespace qeltin::cli {

namespace {

struct SmoothOptions : SurfaceOutputOptions {
  std::string surface;
  std::string inside;
};

IPoint CentroidOf(TTriangle const& triangle) {
  TPoint const& a = *triangle.m_pVertex[0];
  TPoint const& b = *triangle.m_pVertex[1];
  TPoint const& c = *triangle.m_pVertex[2];
  return {(a.x + b.x + c.x) / 3.0, (a.y + b.y + c.y) / 3.0, (a.z + b.z + c.z) / 3.0};
}

std::vector<IPoint> CentroidsOf(TIN const& tin) {
  std::vector<IPoint> centroids;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const triangle = tin.GetTriangle(i, false);
    if (triangle != nullptr) centroids.push_back(CentroidOf(*triangle));
  }
  return centroids;
}

void KeepInside(std::vector<TPolygon> const& polygons, std::vector<IPoint>& points) {
  std::list<Boundary> boundaries;
  for (TPolygon const& polygon : polygons) boundaries.emplace_back(polygon);
  std::erase_if(points, [&boundaries](IPoint const& p) {
    return std::none_of(boundaries.begin(), boundaries.end(),
                        [&p](Boundary const& boundary) { return boundary.Contains(p.x, p.y); });
  });
}

void Tell(SmoothOptions const& options, SurfaceFacts const& before, SurfaceFacts const& after) {
  if (options.json) {
    PrintResult(Dump({{"file", options.output},
                      {"before", Summary(before, options.style)},
                      {"after", Summary(after, options.style)},
                      {"bounds", ToJson(after.bounds, options.style)}}));
  } else if (!options.quiet) {
    Report report(options.style);
    AddChange(report, {before}, after, options.style);
    PrintResult(report.Text());
  }
}

void Run(SmoothOptions const& options) {
  options.CheckOutput();
  std::vector<TPolygon> polygons;
  if (!options.inside.empty()) polygons = ReadPolygons(options.inside);
  DraftFile draft(options.output, options.overwrite);
  HeldSurface tin = OpenSurface(options.surface, options);
  SurfaceFacts const before = FactsOf(*tin);
  std::vector<IPoint> points = CentroidsOf(*tin);
  tin.reset();
  if (points.empty()) throw Failure(options.surface, "has no visible triangle");

  if (!options.inside.empty()) KeepInside(polygons, points);
  if (points.empty()) {
    throw Failure(options.inside, "no triangle of " + options.surface + " has its centroid inside");
  }
  std::string const why = WhyNoSurface(points);
  if (!why.empty()) throw Failure(options.surface, "of the centroids of its triangles: " + why);
  tin = BuildSurface(std::move(points), false, {}, options.quiet);
  RequireVisible(*tin, options.surface);
  SaveSurface(*tin, draft.WorkingName(), options.output, options.quiet);
  draft.Commit();
  Tell(options, before, FactsOf(*tin));
}

}  // namespace

void AddSmooth(CLI::App& application) {
  auto const options = std::make_shared<SmoothOptions>();
  CLI::App* const command = application.add_subcommand(
      "smooth", "Make a surface through the centroids of the triangles of another");
  command->add_option("surface", options->surface, "A .tin or .ttm surface, or an XYZ text")
      ->required()
      ->type_name("FILE");
  command
      ->add_option("--inside", options->inside,
                   "Polygons, of a text or a vector file: take only the\n"
                   "centroids inside one of them")
      ->type_name("FILE");
  options->AddTo(*command);
  command->footer(
      "Each visible triangle becomes a point at its mean height, and these points make\n"
      "the new surface, with bounds of its own. The old points are not in it, so that it\n"
      "ends a part of a triangle short of the old edge; what a filter has hidden is\n"
      "spanned again.");
  command->callback([options] { Run(*options); });
}

}  // namespace qeltin::cli
