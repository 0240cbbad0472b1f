// The work of volumes by a plain scan over all triangles of the same surface, in flat arrays: the
// figure's edges one by one for each centroid, then the volume. Nothing is inserted.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>

#include "bench/BuildSurface.h"
#include "bench/Figure.h"
#include "bench/Measurement.h"

using namespace qeltin::bench;

namespace {

constexpr int CORNERS = 100;

struct Mesh {
  std::vector<IPoint> points;
  std::vector<std::uint32_t> corners;  // three a triangle
};

Mesh CopyOf(TIN const& tin) {
  Mesh mesh;
  std::unordered_map<TPoint const*, std::uint32_t> places;
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
    TPoint const* const p = tin.GetPoint(i);
    places.emplace(p, static_cast<std::uint32_t>(i));
    mesh.points.push_back({p->x, p->y, p->z});
  }
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    for (TPoint const* corner : tin.GetTriangle(i, true)->m_pVertex) {
      mesh.corners.push_back(places.at(corner));
    }
  }
  return mesh;
}

bool Contains(std::vector<IPoint> const& figure, double x, double y) {
  bool inside = false;
  for (std::size_t i = 0, j = figure.size() - 1; i < figure.size(); j = i++) {
    IPoint const& p = figure[i];
    IPoint const& q = figure[j];
    if ((p.y > y) != (q.y > y) && x < (q.x - p.x) * (y - p.y) / (q.y - p.y) + p.x) {
      inside = !inside;
    }
  }
  return inside;
}

struct Volumes {
  double above = 0.0;
  double below = 0.0;
};

// What is cut off at `lone`, the only corner on its side, by size.
double Pyramid(IPoint const& lone, IPoint const& a, IPoint const& b, double area) {
  return area * std::fabs(lone.z) / 3 * (lone.z / (lone.z - a.z)) * (lone.z / (lone.z - b.z));
}

void Add(IPoint const& a, IPoint const& b, IPoint const& c, Volumes& sum) {
  double const area = std::fabs((b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y)) / 2;
  double const whole = area * (a.z + b.z + c.z) / 3;
  if (std::min({a.z, b.z, c.z}) >= 0) {
    sum.above += whole;
  } else if (std::max({a.z, b.z, c.z}) <= 0) {
    sum.below -= whole;
  } else {
    IPoint const* lone = &b;
    IPoint const* others[2] = {&c, &a};
    if (a.z * b.z >= 0) {
      lone = &c;
      others[0] = &a;
      others[1] = &b;
    } else if (b.z * c.z >= 0) {
      lone = &a;
      others[0] = &b;
      others[1] = &c;
    }
    double const corner = Pyramid(*lone, *others[0], *others[1], area);
    if (lone->z >= 0) {
      sum.above += corner;
      sum.below += whole - corner;  // with the sign of TTriangle::CutFill
    } else {
      sum.above -= corner + whole;
      sum.below += corner;
    }
  }
}

[[gnu::noinline]] Volumes MeasureVolume(Mesh const& mesh, std::vector<IPoint> const& figure) {
  Volumes sum;
  for (std::size_t i = 0; i < mesh.corners.size(); i += 3) {
    IPoint const& a = mesh.points[mesh.corners[i]];
    IPoint const& b = mesh.points[mesh.corners[i + 1]];
    IPoint const& c = mesh.points[mesh.corners[i + 2]];
    if (Contains(figure, (a.x + b.x + c.x) / 3, (a.y + b.y + c.y) / 3)) Add(a, b, c, sum);
  }
  return sum;
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"volume"});
  std::vector<IPoint> points = MakeSurveyInput(task.input, task.size);
  CentreHeights(points);
  std::vector<IPoint> const figure = MakeFigure(points, CORNERS);

  TIN tin;
  BuildSurface(tin, points);
  Measurement measurement;
  Mesh const mesh = CopyOf(tin);

  measurement.Start();
  Volumes const volumes = MeasureVolume(mesh, figure);
  measurement.Stop();

  measurement.AddFact("above", volumes.above);
  measurement.AddFact("below", volumes.below);
  measurement.Report(task);
}
