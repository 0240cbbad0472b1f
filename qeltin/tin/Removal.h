#pragma once

#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/HoleFiller.h"
#include "qeltin/tin/PointMap.h"

class TIN;

namespace qeltin::detail {

// Takes a vertex out of a surface. Holds the working data between removals, so that one of them
// allocates nothing.
//
// The order in which triangles are overwritten, entered into the map and linked is part of what
// hosts see. What it costs is not: each corner is looked up in the map once, and sides are compared
// by numbers that stand for the values of their ends.
//
// Threads: belongs to one surface.
class Removal {
 public:
  // As TIN::RemovePoint. REQUIRES: the surface has a map.
  bool Remove(TIN& tin, TPoint const* point);

 private:
  struct Edge {
    TPoint* start;
    TPoint* end;
  };

  // A point and its node in the map, null where it has none.
  struct Entry {
    TPoint const* point;
    PointMapNode* node;
  };

  // A point and the number of the first point seen that is equal by value.
  struct Corner {
    TPoint const* point;
    int number;
  };

  // A triangle and the numbers of its corners, the first one once more at the end.
  struct Numbered {
    TTriangle* triangle;
    int corner[4];
  };

  void CollectOuter(TPoint const* point);
  void CollectEdges(TPoint const* point);
  bool JoinRing();
  bool Join(Edge const& edge);
  void FillFan(TIN& tin);
  void ReleaseSurplus(TIN& tin);
  void Link();

  PointMapNode* NodeOf(TIN& tin, TPoint const* point);
  void EraseFromMap(TIN& tin, TTriangle const* triangle);
  void EnterIntoMap(TIN& tin, TTriangle* triangle);

  static constexpr int EQUALS_NOTHING = -1;
  int NumberOf(TPoint const* point);
  Numbered NumberCorners(TTriangle* triangle);
  static bool Adjoin(Numbered const& here, Numbered const& there);

  std::vector<TTriangle*> m_Fan;          // around the point, in the order of the map
  std::vector<TTriangle*> m_Outer;        // next to the fan, each once
  std::vector<Edge> m_Edges;              // the sides of the fan opposite the point
  std::vector<TPoint*> m_Front;           // what was joined at the front of the ring, back to front
  std::vector<TPoint*> m_Ring;            // the corners of the hole
  std::vector<TTriangle> m_NewTriangles;  // that fill the hole
  std::vector<Entry> m_Entries;
  std::vector<Corner> m_Corners;
  std::vector<Numbered> m_Created;
  std::vector<Numbered> m_NumberedOuter;
  HoleFiller m_Filler;
};

}  // namespace qeltin::detail
