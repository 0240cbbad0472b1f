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
// hosts see. What it costs is not. Around most vertices the corners of the hole are told apart by
// their places, and each side of it belongs to one triangle of the fan and one outside: there it is
// known in advance which sides are joined. Elsewhere they are compared, by numbers that stand for
// the values of their ends.
//
// Threads: belongs to one surface.
class Removal {
 public:
  // As TIN::RemovePoint. REQUIRES: the surface has a map.
  bool Remove(TIN& tin, TPoint const* point);

 private:
  // The side of a triangle of the fan opposite the point.
  struct Edge {
    TPoint* start;
    TPoint* end;
    TTriangle* triangle;
  };

  // An end of what is joined, and the triangle along the edge that led there.
  struct End {
    TPoint* point;
    TTriangle* triangle;
  };

  // A corner of the hole and the triangles along the side to the next one.
  struct Corner {
    TPoint* point;
    PointMapNode* node;
    TTriangle* fan;
    TTriangle* outer;  // null where there is none
    int outerSide;
  };

  // A side of what is left of the hole: one of the hole itself or of an ear that is cut.
  struct Side {
    std::size_t corner;  // where it begins
    TTriangle* across;   // null where there is none
    int back;            // the side of `across`
  };

  // A point and its node in the map, null where it has none.
  struct Entry {
    TPoint const* point;
    PointMapNode* node;
  };

  // A point and the number of the first point seen that is equal by value.
  struct Value {
    TPoint const* point;
    int number;
  };

  // A triangle and the numbers of its corners, the first one once more at the end.
  struct Numbered {
    TTriangle* triangle;
    int corner[4];
  };

  void CollectEdges(TPoint const* point);
  bool JoinRing();
  bool Join(Edge const& edge);
  static TTriangle* OuterOf(TTriangle const& t, TPoint const* point);
  void ReleaseSurplus(TIN& tin);

  bool CollectCorners(TIN& tin, TPoint const* point, PointMapNode const* node);
  bool AreApart() const;
  static void EraseBoth(PointMapNode& node, TTriangle const* first, TTriangle const* second);
  void FillPlainly(TIN& tin);
  void CutEar(std::size_t position, TTriangle* ear);
  static void JoinSide(TTriangle* t, int side, Side const& along);

  void CollectOuter(TPoint const* point);
  void FillByValue(TIN& tin, TPoint const* point);
  void Link();
  PointMapNode* NodeOf(TIN& tin, TPoint const* point);
  void EraseFromMap(TIN& tin, TTriangle const* triangle);
  void EnterIntoMap(TIN& tin, TTriangle* triangle);

  static constexpr int EQUALS_NOTHING = -1;
  int NumberOf(TPoint const* point);
  Numbered NumberCorners(TTriangle* triangle);
  static bool Adjoin(Numbered const& here, Numbered const& there);

  std::vector<TTriangle*> m_Fan;  // around the point, in the order of the map
  std::vector<Edge> m_Edges;
  std::vector<End> m_Front;         // of the ring, back to front
  std::vector<End> m_Back;          // of the ring, from its first edge on
  std::vector<TPoint*> m_Ring;      // the corners of the hole
  std::vector<TTriangle*> m_Along;  // by side of the hole: the triangle of the fan
  bool m_bClosed = false;
  HoleFiller m_Filler;
  std::vector<TTriangle> m_NewTriangles;  // that fill the hole

  // Where the hole is filled plainly.
  std::vector<Corner> m_Corners;
  std::vector<TTriangle*> m_Fillings;
  std::vector<Side> m_Sides;

  // Where it is filled by value.
  std::vector<TTriangle*> m_Outer;  // next to the fan, each once
  std::vector<Entry> m_Entries;
  std::vector<Value> m_Values;
  std::vector<Numbered> m_Created;
  std::vector<Numbered> m_NumberedOuter;
};

}  // namespace qeltin::detail
