#pragma once

#include <cstddef>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/FanLinks.h"
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
  static constexpr int INNER = 0;  // the place of a side that is not on the rim

  // A triangle of the cavity. The search came to each but the first across a side of another one.
  struct Member {
    TTriangle* triangle;
    int parent;
    signed char parent_side;
    signed char entry;  // the side that leads back to the parent; 3 where none does
    int place[4];       // in the ring, of each side; INNER where it is not on the rim
  };

  // A side of a member that is on the rim.
  struct RimSide {
    TTriangle* triangle;
    int side;
    int place;
  };

  // An edge of the rim, directed as in its cavity triangle: clockwise about the hole. Its fan
  // triangle has the corners (p, a, b), with a below b by address, or (a, p, b) where b lies to the
  // left of the edge from p to a.
  struct RimEdge {
    TPoint* ends[2];    // a, b
    TTriangle* outer;   // null on the hull
    TTriangle* fan;     // the triangle made on this edge
    int outer_side;     // the side of `outer` that leads into the cavity
    int next;           // the rim edge that begins where this one ends
    bool ascending;     // it runs from a to b
    bool swapped;       // corners 0 and 1 of the fan triangle were swapped
    bool from_outside;  // it begins outside the data bounds

    TPoint* From() const { return ends[ascending ? 0 : 1]; }
    TPoint* To() const { return ends[ascending ? 1 : 0]; }
  };

  void Grow(TPoint const& p, TTriangle* start);
  void MakeRoom();
  bool ListRim();
  RimEdge& StartEdge(int i);
  bool CollectRim(TIN const& tin, TPoint* p);
  void CollectRimChecked(TPoint* p);
  bool IsMutual() const;
  bool RimIsSimple(TPoint* p);
  bool ApexIsApart(RimEdge const& edge, TPoint const& p) const;
  bool NewSlotsAreApart(TIN const& tin) const;
  bool NewSlotsAreUnmarked(TIN const& tin, int edges) const;

  // Return false, with nothing changed but the marks taken back, where the triangle pool lacks
  // room.
  bool FillRing(TIN& tin, TPoint* p);
  bool FillByValue(TIN& tin, TPoint* p);

  bool HasRoom(TIN const& tin, int edges) const;
  void GiveUp(TIN& tin);
  TTriangle* TakeSlot(TIN& tin, int edge, TPoint* p, TPoint* a, TPoint* b) const;
  void LeaveOver(TIN& tin, int edges);

  int m_iMembers = 0;
  int m_iEdges = 0;

  // Storage for the most that the members may need; what is in use stands at the front.
  std::vector<Member> m_Members;    // in the order found
  std::vector<int> m_After;         // the place in the ring after each place
  std::vector<int> m_EdgeAt;        // the rim edge at each place
  std::vector<RimSide> m_RimSides;  // in the order of the members
  std::vector<RimEdge> m_Rim;       // the same
  RingTable m_Table;                // the rim edges by where they begin
  FanLinks m_FanLinks;
};

}  // namespace qeltin::detail
