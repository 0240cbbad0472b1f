#pragma once

#include <ostream>
#include <sstream>
#include <utility>
#include <vector>

#include "testing/VerifySurface.h"

namespace qeltin::testing {

// The work of VerifySurface: one object a surface, run once.
class SurfaceVerifier {
 public:
  SurfaceVerifier(SurfaceView const& view, SurfaceRules const& rules)
      : m_View(view), m_Rules(rules) {}

  SurfaceReport Run();

 private:
  static constexpr int NONE = -1;
  static constexpr int FAULTS_SHOWN = 8;

  // Elements with their positions, sorted by address.
  template <typename T>
  using Places = std::vector<std::pair<T const*, int>>;

  // Starts the line of a fault, of the triangle at `position` or of none.
  std::ostream& Fault(int position);

  TPoint const& Corner(int position, int corner) const {
    return *m_Triangles[position]->m_pVertex[corner % 3];
  }
  int VertexAt(int position, int corner) const { return m_Corners[3 * position + corner % 3]; }
  int Count() const { return static_cast<int>(m_Triangles.size()); }

  void FindStructure();
  void CheckCorners();
  void CheckCorner(int position, int corner, Places<TPoint> const& live);
  void NumberVertices();
  void CheckShape(int position);
  void CheckFlags(int position);
  void CheckNeighbour(int position, int side);
  void CheckDelaunay(int position, int side, TPoint const& opposite);
  void CheckHull();
  void CheckCounts();
  void CheckStars();
  void CheckCover();

  SurfaceView const& m_View;
  SurfaceRules const& m_Rules;
  SurfaceReport m_Report;
  std::vector<std::ostringstream> m_Lines;  // of the first faults
  std::ostream m_Unseen{nullptr};           // takes those of the others

  std::vector<TTriangle const*> m_Triangles;  // of the structure
  Places<TTriangle> m_Places;                 // theirs
  std::vector<int> m_Parts;                   // union-find over them: joined by neighbours
  std::vector<TPoint const*> m_Vertices;      // distinct corners, by address
  std::vector<int> m_Corners;                 // three a triangle: positions in m_Vertices
  std::vector<std::pair<int, int>> m_Hull;    // directed edges, as positions in m_Vertices
  bool m_bPlanar = true;                      // no corner is missing or not finite
};

}  // namespace qeltin::testing
