#pragma once

#include <array>
#include <utility>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/RingTable.h"

namespace qeltin::detail {

// Links the fan that fills a hole to itself and to the triangles around, by the values of corners:
// what comparing every side with every other would link, as far as no two different vertices have
// one value and no vertex begins or ends more than two edges of the hole.
//
// Threads: one at a time. Keeps its storage.
class FanLinks {
 public:
  using Triangles = std::vector<TTriangle*>;
  using Edges = std::vector<std::pair<TPoint*, TPoint*>>;

  // `fan` has a triangle about `p` for each of `edges`, without neighbours; `around` are the
  // triangles to link it to, some of them twice. Returns false, with nothing changed, where only
  // comparing every side can tell. REQUIRES: no triangle twice in `fan`.
  bool Link(TPoint* p, Edges const& edges, Triangles const& fan, Triangles const& around);

 private:
  static constexpr int NONE = RingTable::NONE;
  static constexpr int APEX = 0;  // the number of `p`

  struct Vertex {
    TPoint* point;
    int fans[2];  // that have it as a corner, the lower one first; NONE where there are fewer
  };

  bool EnterEdges(TPoint* p, Edges const& edges);
  int Enter(TPoint* point, int fan);
  bool FindCorners(Triangles const& around);
  int FanOn(int a, int b) const;
  int OtherEnd(int fan, int end) const;

  RingTable m_Table;
  std::vector<Vertex> m_Vertices;
  std::vector<std::array<int, 2>> m_Ends;     // of each edge, by number
  std::vector<std::array<int, 3>> m_Corners;  // of each triangle around; NONE for other points
};

}  // namespace qeltin::detail
