// The work of locate by CGAL: location, then the plane of the triangle.
//   random  through the hierarchy that CGAL offers for it
//   raster  each place from the face of the one before
#include <CGAL/Delaunay_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Spatial_sort_traits_adapter_2.h>
#include <CGAL/Triangulation_hierarchy_2.h>
#include <CGAL/Triangulation_vertex_base_with_info_2.h>
#include <CGAL/property_map.h>
#include <CGAL/spatial_sort.h>

#include "bench/Measurement.h"
#include "bench/SurveyInput.h"

using namespace qeltin::bench;

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Point = Kernel::Point_2;
using VertexWithHeight = CGAL::Triangulation_vertex_base_with_info_2<double, Kernel>;
using Flat =
    CGAL::Delaunay_triangulation_2<Kernel, CGAL::Triangulation_data_structure_2<VertexWithHeight>>;
using Hierarchy = CGAL::Triangulation_hierarchy_2<CGAL::Delaunay_triangulation_2<
    Kernel, CGAL::Triangulation_data_structure_2<
                CGAL::Triangulation_hierarchy_vertex_base_2<VertexWithHeight>>>>;

struct Heights {
  int found = 0;
  double sum = 0.0;
};

template <typename Face>
double HeightOn(Face const& face, Point const& p) {
  Point const& a = face.vertex(0)->point();
  Point const& b = face.vertex(1)->point();
  Point const& c = face.vertex(2)->point();
  double const za = face.vertex(0)->info();
  double const zb = face.vertex(1)->info();
  double const zc = face.vertex(2)->info();
  double const d = (c.y() - a.y()) * (b.x() - a.x()) - (c.x() - a.x()) * (b.y() - a.y());
  double const s = (c.y() - a.y()) * (p.x() - a.x()) - (c.x() - a.x()) * (p.y() - a.y());
  double const t = (p.y() - a.y()) * (b.x() - a.x()) - (p.x() - a.x()) * (b.y() - a.y());
  return za + (s * (zb - za) + t * (zc - za)) / d;
}

[[gnu::noinline]] Heights AskHeights(Hierarchy const& hierarchy,
                                     std::vector<IPoint> const& places) {
  Heights heights;
  for (IPoint const& place : places) {
    Point const p(place.x, place.y);
    Hierarchy::Face_handle const face = hierarchy.locate(p);
    if (hierarchy.is_infinite(face)) continue;
    ++heights.found;
    heights.sum += HeightOn(*face, p);
  }
  return heights;
}

[[gnu::noinline]] Heights AskHeights(Flat const& flat, std::vector<IPoint> const& places) {
  Heights heights;
  Flat::Face_handle near;
  for (IPoint const& place : places) {
    Point const p(place.x, place.y);
    near = flat.locate(p, near);
    if (flat.is_infinite(near)) continue;
    ++heights.found;
    heights.sum += HeightOn(*near, p);
  }
  return heights;
}

// In the spatial order of a whole range's insertion, so that memory is laid out as well as CGAL
// can.
template <typename Triangulation>
void Build(Triangulation& triangulation, std::vector<IPoint> const& input) {
  std::vector<std::pair<Point, double>> points;
  points.reserve(input.size());
  for (IPoint const& p : input) points.emplace_back(Point(p.x, p.y), p.z);
  using ByPoint = CGAL::First_of_pair_property_map<std::pair<Point, double>>;
  CGAL::spatial_sort(points.begin(), points.end(),
                     CGAL::Spatial_sort_traits_adapter_2<Kernel, ByPoint>());
  typename Triangulation::Face_handle near;
  for (auto const& [p, z] : points) {
    typename Triangulation::Vertex_handle const vertex = triangulation.insert(p, near);
    vertex->info() = z;
    near = vertex->face();
  }
}

template <typename Triangulation>
void Run(Task const& task, std::vector<IPoint> const& points, std::vector<IPoint> const& places) {
  Measurement measurement;
  Triangulation triangulation;
  Build(triangulation, points);

  measurement.Start();
  Heights const heights = AskHeights(triangulation, places);
  measurement.Stop();

  measurement.AddFact("found", heights.found);
  measurement.AddFact("mean_height", heights.sum / heights.found);
  measurement.Report(task);
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"random", "raster"});
  bool const raster = task.work == "raster";
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);
  std::vector<IPoint> const places = MakePlaces(points, raster);
  raster ? Run<Flat>(task, points, places) : Run<Hierarchy>(task, points, places);
}
