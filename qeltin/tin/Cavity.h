#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/RingTable.h"

class TIN;

namespace qeltin::detail {

// The hole that an insertion makes and fills: all triangles whose circumcircle holds the new point
// (Bowyer 1981, Watson 1981). Holds the working data between insertions, so that one of them
// allocates nothing.
//
// The order in which triangles are found, slots reused and rim edges taken is part of what hosts
// see, through the pools and the files. What linking costs is not: around a hole whose rim is one
// simple ring of distinct vertices, the fan is linked along the ring; any other hole, which only
// rounding or a broken structure can make, is linked by comparing all sides by value.
//
// Threads: belongs to one surface.
class Cavity {
 public:
  // Replaces the triangles around `p` by the fan about `p`. `start` joins the cavity whatever its
  // circle says. Keeps the surface's record of whether it tiles up to date. Returns false, with
  // nothing changed, where the triangle pool lacks room.
  bool Replace(TIN& tin, TPoint* p, TTriangle* start);

 private:
  // An edge of the rim, directed as in its cavity triangle: clockwise about the hole. Its fan
  // triangle has the corners (p, a, b), with a below b by address, or (a, p, b) where b lies to the
  // left of the edge from p to a.
  struct RimEdge {
    TPoint* from;
    TPoint* to;
    TTriangle* outer;   // null on the hull
    TTriangle* fan;     // the triangle made on this edge
    int outer_side;     // the side of `outer` that leads into the cavity
    int next;           // the rim edge that begins where this one ends
    bool ascending;     // `from` is a, `to` is b
    bool swapped;       // corners 0 and 1 of the fan triangle were swapped
    bool from_outside;  // `from` is outside the data bounds
  };

  void Grow(TPoint const& p, TTriangle* start);
  bool CollectRim(TIN const& tin, TPoint* p);
  bool CollectRimChecked(TPoint* p);
  bool LinkRing();
  bool RimIsSimple(TPoint const& p);
  bool ApexIsApart(RimEdge const& edge, TPoint const& p) const;
  bool InnerSidesAreApart() const;
  bool NewSlotsAreApart(TIN const& tin) const;

  // Return false, with nothing changed, where the triangle pool lacks room.
  bool FillRing(TIN& tin, TPoint* p);
  bool FillByValue(TIN& tin, TPoint* p);
  bool HasRoom(TIN const& tin, std::size_t edges) const;

  void Unmark();
  void LeaveOver(TIN& tin);

  TTriangle* TakeSlot(TIN& tin, TPoint* p, TPoint* a, TPoint* b);

  std::vector<TTriangle*> m_Triangles;                     // the cavity, in the order found
  std::vector<std::pair<TTriangle*, std::size_t>> m_Path;  // of the search: triangle, next side
  std::vector<RimEdge> m_Rim;
  RingTable m_Table;
};

}  // namespace qeltin::detail
