#pragma once

#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/TINPeer.h"

namespace qeltin::testing {

// A surface whose triangles are laid by hand, for structures that no insertion makes. The data
// bounds are the square from -1000 to 1000.
class HandMadeMesh {
 public:
  TIN tin;

  HandMadeMesh() { tin.Init(2000, TPoint(-1000, -1000), TPoint(1000, 1000)); }

  TPoint* Point(double x, double y, double z = 0.0) {
    return TINPeer::Points(tin)->Add(TPoint(x, y, z));
  }

  // Lays a triangle with its corners as they are and its circle calculated, without neighbours.
  TTriangle* Lay(TPoint* a, TPoint* b, TPoint* c) {
    TTriangle* const t = TINPeer::AddTriangle(tin, TTriangle(a, b, c));
    t->CalcTri();
    return t;
  }

  // As Lay, but with the corners in clockwise order.
  TTriangle* LayClockwise(TPoint* a, TPoint* b, TPoint* c) {
    TTriangle* const t = Lay(a, b, c);
    t->SortVertices();
    t->CalcTri();
    return t;
  }

  // Makes the two neighbours of each other across the side that they share.
  static void Link(TTriangle* a, TTriangle* b) {
    a->SetAdjacentPointer(b);
    b->SetAdjacentPointer(a);
  }

  // Lays a strip of linked triangles to the east. Triangle i has its corners at x = i, i + 1, i +
  // 2, the even ones on y = 0, the odd ones on y = 1.
  std::vector<TTriangle*> LayStrip(int triangles) {
    std::vector<TPoint*> points;
    for (int i = 0; i < triangles + 2; ++i) points.push_back(Point(i, i % 2, 10.0 * i));
    std::vector<TTriangle*> strip;
    for (std::size_t i = 0; i + 2 < points.size(); ++i) {
      strip.push_back(LayClockwise(points[i], points[i + 1], points[i + 2]));
      if (i > 0) Link(strip[i - 1], strip[i]);
    }
    return strip;
  }
};

// Returns the centroid in plan.
inline TPoint CentroidOf(TTriangle const& t) {
  return {(t.m_pVertex[0]->x + t.m_pVertex[1]->x + t.m_pVertex[2]->x) / 3.0,
          (t.m_pVertex[0]->y + t.m_pVertex[1]->y + t.m_pVertex[2]->y) / 3.0};
}

}  // namespace qeltin::testing
