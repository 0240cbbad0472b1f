#pragma once

#include <CGAL/Delaunay_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Spatial_sort_traits_adapter_2.h>
#include <CGAL/Triangulation_vertex_base_with_info_2.h>
#include <CGAL/property_map.h>
#include <CGAL/spatial_sort.h>

#include <utility>
#include <vector>

#include "qeltin/kernel/IPoint.h"

// A surface by CGAL: a triangulation in plan whose vertices carry the height.
namespace qeltin::bench {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Point = Kernel::Point_2;
using VertexWithHeight = CGAL::Triangulation_vertex_base_with_info_2<double, Kernel>;
using Flat =
    CGAL::Delaunay_triangulation_2<Kernel, CGAL::Triangulation_data_structure_2<VertexWithHeight>>;

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

}  // namespace qeltin::bench
