// The work of build_surface by CGAL, in plan only: its points carry no height.
//   triangulate  insertion of the whole range, which CGAL puts into a spatial order first
//   create       one point after another, each located from the one before
#include <CGAL/Delaunay_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>

#include "bench/Measurement.h"
#include "bench/SurveyInput.h"

using namespace qeltin::bench;

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Delaunay = CGAL::Delaunay_triangulation_2<Kernel>;
using Point = Kernel::Point_2;

[[gnu::noinline]] void BuildSurface(Delaunay& delaunay, std::vector<Point> const& points) {
  delaunay.insert(points.begin(), points.end());
}

[[gnu::noinline]] void CreateSurface(Delaunay& delaunay, std::vector<Point> const& points) {
  Delaunay::Face_handle near;
  for (Point const& p : points) near = delaunay.insert(p, near)->face();
}

std::vector<Point> MakeInput(Task const& task) {
  std::vector<Point> points;
  for (IPoint const& p : MakeSurveyInput(task.input, task.size)) points.emplace_back(p.x, p.y);
  return points;
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"triangulate", "create"});
  std::vector<Point> const points = MakeInput(task);

  Measurement measurement;
  Delaunay delaunay;
  measurement.Start();
  if (task.work == "triangulate") {
    BuildSurface(delaunay, points);
  } else {
    CreateSurface(delaunay, points);
  }
  measurement.Stop();

  measurement.AddFact("triangles", static_cast<double>(delaunay.number_of_faces()));
  measurement.Report(task);
}
