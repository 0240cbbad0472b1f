// What isolines does, without joining: a plain scan over the corners of all triangles, level by
// level, that writes down a segment for each triangle crossed. Not a rival: it finds no line.
#include <unordered_map>

#include "bench/BuildSurface.h"
#include "bench/HeightLevels.h"
#include "bench/Measurement.h"

using namespace qeltin::bench;

namespace {

struct Mesh {
  std::vector<TPoint> points;
  std::vector<int> corners;  // three a triangle
};

struct Segment {
  TPoint from;
  TPoint to;
};

Mesh VisibleTriangles(TIN const& tin) {
  Mesh mesh;
  std::unordered_map<TPoint const*, int> numbers;
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
    numbers.emplace(tin.GetPoint(i), i);
    mesh.points.push_back(*tin.GetPoint(i));
  }
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const t = tin.GetTriangle(i, false);
    if (t == nullptr) continue;
    for (TPoint const* corner : t->m_pVertex) mesh.corners.push_back(numbers.at(corner));
  }
  return mesh;
}

TPoint Crossing(TPoint const& a, TPoint const& b, double level) {
  double const f = (level - a.z) / (b.z - a.z);
  return {a.x + (b.x - a.x) * f, a.y + (b.y - a.y) * f, level};
}

[[gnu::noinline]] void ScanLevels(Mesh const& mesh, std::vector<double> const& levels,
                                  std::vector<Segment>& segments) {
  for (double level : levels) {
    for (std::size_t i = 0; i < mesh.corners.size(); i += 3) {
      TPoint const* corner[3];
      bool above[3];
      for (std::size_t k = 0; k < 3; ++k) {
        corner[k] = &mesh.points[static_cast<std::size_t>(mesh.corners[i + k])];
        above[k] = corner[k]->z >= level;
      }
      if (above[0] == above[1] && above[1] == above[2]) continue;
      int const lone = above[0] == above[1] ? 2 : (above[1] == above[2] ? 0 : 1);
      segments.push_back({Crossing(*corner[lone], *corner[(lone + 1) % 3], level),
                          Crossing(*corner[lone], *corner[(lone + 2) % 3], level)});
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"levels"});
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);
  std::vector<double> const levels = HeightLevels(points);
  Mesh mesh;
  {
    TIN tin;
    BuildSurface(tin, points);
    mesh = VisibleTriangles(tin);
  }

  Measurement measurement;
  std::vector<Segment> segments;

  measurement.Start();
  ScanLevels(mesh, levels, segments);
  measurement.Stop();

  double length = 0.0;
  for (Segment const& s : segments) length += s.from.XY_Distance(s.to);
  measurement.AddFact("segments", static_cast<double>(segments.size()));
  measurement.AddFact("length", length);
  measurement.Report(task);
}
