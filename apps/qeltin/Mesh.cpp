#include "apps/qeltin/Mesh.h"

#include <algorithm>

namespace qeltin::cli {

SurfaceFacts FactsOf(Mesh const& mesh) {
  FactsGatherer gatherer(mesh.bounds, mesh.world_bounds);
  std::vector<bool> vertices(mesh.points.size());
  ForEachTriangle(mesh, [&](std::int32_t i) {
    MeshTriangle const& t = mesh.triangles[static_cast<std::size_t>(i)];
    bool whole = true;
    for (std::int32_t const corner : t.corners) {
      bool const there = corner >= 0 && static_cast<std::size_t>(corner) < mesh.points.size();
      if (there) vertices[static_cast<std::size_t>(corner)] = true;
      whole = whole && there;
    }
    if (!whole || (t.flags & (TRI_FILTERED | TRI_OUTSIDE)) != 0) {
      gatherer.CountTriangle(false);
    } else {
      auto const corner = [&](std::size_t k) {
        return mesh.points[static_cast<std::size_t>(t.corners[k])];
      };
      gatherer.AddVisibleTriangle(corner(0), corner(1), corner(2));
    }
  });
  for (std::size_t i = 0; i < mesh.points.size(); ++i) {
    gatherer.AddPoint(mesh.points[i], vertices[i]);
  }
  return gatherer.Facts();
}

}  // namespace qeltin::cli
