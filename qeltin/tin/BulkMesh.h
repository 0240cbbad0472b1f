#pragma once

#include <array>
#include <cstddef>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/InsertionOrder.h"
#include "qeltin/tin/TArray.h"

namespace qeltin::detail {

// A surface under construction: insertion as Cavity does it, on small records that know each other
// by number. They stand in the memory of the triangle pool that they will fill, so that building
// takes no memory of its own to speak of.
//
// The surface tiles and goes on doing so: a point whose insertion is not beyond the doubt of
// rounding is refused, and so is one outside the data bounds or without a height. Both can be
// inserted into the finished surface. For the others the outcome is that of Cavity, slot by slot
// and bit by bit.
//
// Threads: one.
class BulkMesh {
 public:
  struct Box {
    TPoint min;
    TPoint max;
  };

  // Returns true iff `pool` holds the two seed triangles, in its first slots, and has the memory to
  // build a surface of `count` points more.
  static bool Fits(TArray<TTriangle> const& pool, int count);

  // Takes over a surface that is two seed triangles, and the first `count` points of a shuffled
  // live order, which it puts into the order of OrderInRounds. `bounds` are the data bounds,
  // `reach` is at least |x| + |y| of each seed corner. The triangle pool may not be touched until
  // Finish. REQUIRES: Fits; the seed triangles tile, and the bounds lie within their rectangle.
  BulkMesh(TArray<TPoint> const& points, TArray<TTriangle>* triangles, int count, Box const& bounds,
           double reach);

  // Inserts point `i` of its order, 0 <= i < count, each point at most once. Returns false, with
  // nothing changed, where the point is refused; true for a duplicate, too.
  bool Insert(int i);

  // Returns the slot of point `i` of its order in the point pool.
  int SlotOf(int i) const { return m_pVertices[SEED_CORNERS + i].slot; }

  // Returns the slot of the triangle in which the last point that was not refused was found.
  int FoundIn() const { return m_iCurrent; }

  // Makes triangles of the records. Nothing may be inserted afterwards.
  void Finish();

  // Returns the data bounds, which heights have widened.
  Box const& Bounds() const { return m_Bounds; }

 private:
  static constexpr int SEED_CORNERS = 4;
  static constexpr int NONE = -1;

  // Its scratch is the side of the fan cell on the rim edge that it begins.
  using Vertex = OrderedPoint;

  // A triangle. Neighbours are sides: 4 times the number of the cell, plus the side that leads
  // back.
  struct Cell {
    double centre_x;
    double centre_y;
    double radius_sq;
    int vertex[3];
    int beside[3];
  };

  struct Place {
    int cell;          // NONE where the walk failed
    bool near_vertex;  // whether one of its vertices may be in the same place
  };

  // The hole that an insertion makes, its rim, directed clockwise about the hole, and the fan on
  // it.
  struct Hole {
    static constexpr int MOST_CELLS = 256;
    static constexpr int MOST_EDGES = MOST_CELLS + 2 + 1;

    int edges = 0;
    int open[MOST_CELLS + 3];  // sides that lead to cells yet to be looked at
    int cell[MOST_CELLS + 3];  // in the order found from the end, then two new ones
    int const* fan;            // in `cell`: the one to be made on each edge
    int from[MOST_EDGES];      // vertices
    int to[MOST_EDGES];
    int outer[MOST_EDGES];  // the side across
    int first[MOST_EDGES];  // where the new vertex stands in the fan cell, `from` behind it
    double centre_x[MOST_EDGES];
    double centre_y[MOST_EDGES];
    double radius_sq[MOST_EDGES];
  };

  static std::size_t CellsFor(int count);

  int SideToward(TPoint const& p) const;
  Place Locate(TPoint const& p) const;
  Place LocateCarefully(TPoint const& p, int cell) const;
  bool HasVertexAt(TPoint const& p, int cell) const;
  bool CollectCavity(TPoint const& p, int start);
  bool CalculateFan(TPoint const& p);
  void Fill(TPoint const& p, int made);
  TTriangle TriangleOf(int cell, TPoint* corner) const;
  void AddSeed(TTriangle const& seed, std::array<int, 3> const& vertex,
               std::array<int, 3> const& beside);

  bool InBounds(TPoint const& p) const {
    return p.x >= m_Bounds.min.x && p.x <= m_Bounds.max.x && p.y >= m_Bounds.min.y &&
           p.y <= m_Bounds.max.y;
  }
  bool IsOutside(int vertex) const { return vertex < SEED_CORNERS && m_bSeedCornerOutside[vertex]; }

  TPoint* m_pPoints;                // not owned; the block of the pool
  TArray<TTriangle>* m_pTriangles;  // not owned
  Cell* m_pCells;                   // in the memory of the pool; the last one has nothing in it
  Vertex* m_pVertices;              // behind the cells: the seed corners, then the points
  int m_iVertices;
  int m_iHull;  // the side that stands for nothing: of the last cell
  int m_iCells = 0;
  int m_iCurrent = 0;  // where the last point was found, and the next walk begins
  Box m_Bounds;
  double m_dError;                          // SideErrorWithin the reach
  bool m_bSeedCornerOutside[SEED_CORNERS];  // of the data bounds
  Hole m_Hole;                              // of the insertion under way
};

}  // namespace qeltin::detail
