// The work of profiles by CGAL: its line walk from the face of the start, which the hierarchy
// finds, and the height of every edge crossed at the crossing.
#include <CGAL/Triangulation_hierarchy_2.h>

#include <cmath>

#include "bench/Measurement.h"
#include "bench/ProfileLines.h"
#include "bench/peers/SurfaceCgal.h"

using namespace qeltin::bench;

namespace {

using Hierarchy = CGAL::Triangulation_hierarchy_2<CGAL::Delaunay_triangulation_2<
    Kernel, CGAL::Triangulation_data_structure_2<
                CGAL::Triangulation_hierarchy_vertex_base_2<VertexWithHeight>>>>;
using Profile = std::vector<IPoint>;

// A line, and where an edge crosses it.
class Ray {
 public:
  explicit Ray(ProfileLine const& line)
      : m_From(line.from),
        m_dLength(std::hypot(line.to.x - line.from.x, line.to.y - line.from.y)),
        m_dUx((line.to.x - line.from.x) / m_dLength),
        m_dUy((line.to.y - line.from.y) / m_dLength) {}

  // Appends the crossing. Returns false where it lies beyond the end of the line.
  bool Add(Hierarchy::Vertex_handle a, Hierarchy::Vertex_handle b, Profile& profile) const {
    double const across_a = Across(a->point());
    double const f = across_a / (across_a - Across(b->point()));
    double const along_a = Along(a->point());
    double const t = along_a + (Along(b->point()) - along_a) * f;
    if (!(t < m_dLength)) return false;
    profile.push_back(
        {m_From.x + t * m_dUx, m_From.y + t * m_dUy, a->info() + (b->info() - a->info()) * f});
    return true;
  }

 private:
  double Along(Point const& p) const {
    return (p.x() - m_From.x) * m_dUx + (p.y() - m_From.y) * m_dUy;
  }
  double Across(Point const& p) const {
    return (p.y() - m_From.y) * m_dUx - (p.x() - m_From.x) * m_dUy;
  }

  IPoint m_From;
  double m_dLength;
  double m_dUx;
  double m_dUy;
};

Profile TraceOne(Hierarchy const& hierarchy, ProfileLine const& line) {
  Profile profile;
  Point const from(line.from.x, line.from.y);
  Point const to(line.to.x, line.to.y);
  Hierarchy::Face_handle face = hierarchy.locate(from);
  if (hierarchy.is_infinite(face)) return profile;
  Ray const ray(line);
  Hierarchy::Line_face_circulator walk = hierarchy.line_walk(from, to, face);
  for (++walk; !hierarchy.is_infinite(walk); ++walk) {
    int const side = face->index(Hierarchy::Face_handle(walk));
    if (!ray.Add(face->vertex(Hierarchy::ccw(side)), face->vertex(Hierarchy::cw(side)), profile)) {
      break;
    }
    face = walk;
  }
  return profile;
}

[[gnu::noinline]] void Trace(Hierarchy const& hierarchy, std::vector<ProfileLine> const& lines,
                             std::vector<Profile>& profiles) {
  for (ProfileLine const& line : lines) profiles.push_back(TraceOne(hierarchy, line));
}

}  // namespace

int main(int argc, char** argv) {
  Task const task = ParseTask(argc, argv, {"trace"});
  std::vector<IPoint> const points = MakeSurveyInput(task.input, task.size);
  std::vector<ProfileLine> const lines = MakeProfileLines(points);

  Measurement measurement;
  Hierarchy hierarchy;
  Build(hierarchy, points);

  std::vector<Profile> profiles;
  measurement.Start();
  Trace(hierarchy, lines, profiles);
  measurement.Stop();

  double crossings = 0;
  double sum = 0.0;
  for (Profile const& profile : profiles) {
    crossings += static_cast<double>(profile.size());
    for (IPoint const& p : profile) sum += p.z;
  }
  measurement.AddFact("sides_crossed", crossings);
  measurement.AddFact("mean_height", sum / crossings);
  measurement.Report(task);
}
