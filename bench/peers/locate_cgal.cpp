// The work of locate by CGAL: location, then the plane of the triangle.
//   random  through the hierarchy that CGAL offers for it
//   raster  each place from the face of the one before
#include <CGAL/Triangulation_hierarchy_2.h>

#include "bench/Measurement.h"
#include "bench/SurveyInput.h"
#include "bench/peers/SurfaceCgal.h"

using namespace qeltin::bench;

namespace {

using Hierarchy = CGAL::Triangulation_hierarchy_2<CGAL::Delaunay_triangulation_2<
    Kernel, CGAL::Triangulation_data_structure_2<
                CGAL::Triangulation_hierarchy_vertex_base_2<VertexWithHeight>>>>;

struct Heights {
  int found = 0;
  double sum = 0.0;
};

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
