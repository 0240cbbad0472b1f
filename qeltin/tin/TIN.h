#pragma once

#include <cmath>
#include <deque>
#include <memory>
#include <vector>

#include "qeltin/kernel/IPoint.h"
#include "qeltin/kernel/TEdge.h"
#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/platform/Export.h"
#include "qeltin/tin/PointMap.h"
#include "qeltin/tin/TArray.h"
#include "qeltin/tin/Triangulator.h"

class CQelUnitCnv;
class LocalFrame;
class TINFile;
class TPolygon;

namespace qeltin::detail {
class Cavity;
class Compaction;
class GridSampler;
class IsolineTracer;
class ProfileTracer;
class ProfileVanguard;
class Removal;
}  // namespace qeltin::detail
namespace qeltin::testing {
struct TINPeer;
}

// A surface: a Delaunay triangulation in plan whose points carry a height. x east, y north, z up,
// in the unit that the host supplies.
//
// Two boxes belong to it. The WORLD BOX is the domain of the structure: a point outside it is
// refused, and the four corners of the seed rectangle stand on it. The DATA BOUNDS are the box of
// the data proper: a triangle that had a corner outside them when it was made is marked TRI_OUTSIDE
// and hidden. Box tests look at x and y and take the edge as inside.
//
// The seed corners and the triangles that reach them stay in the pools for life, so
// GetNumberOfPoints and GetNumberOfTriangles count them, and each consumer tests the hidden bits.
//
// Points and triangles live in pools that are sized once: addresses handed out stay valid until the
// pools are replaced (Init, Create, Clear, a load) or the surface is destroyed. A host may change
// the z of a point; x and y of a point in use must stay.
//
// Failures are a null pointer, false or a count of 0. A default-constructed or cleared surface has
// no pools: counts are 0, queries answer null or false, and insertion needs Init or Create first.
//
// Threads: no lock. Location moves state even through const operations, so that parallel queries on
// one surface need a lock of the caller's. rand and srand are used, and they are process-wide.
class QELTIN_API TIN {
 public:
  // --- Lifecycle ------------------------------------------------------------------------------

  TIN();

  // As TIN(), then Init. With `points` 0 there is no pool, the world box is (min, max) and the data
  // bounds are empty.
  TIN(TPoint const& min, TPoint const& max, int points);

  // An empty surface, then Load(path), whose result is dropped.
  explicit TIN(wchar_t const* path);

  // Copies the pools. Corner and neighbour pointers inside the copied triangles still point into
  // `other`, and the Trimble arrays are shared and stay with `other`: the copy is valid only while
  // `other` lives unchanged. The copy has no map and no unit converter.
  TIN(TIN const& other);
  TIN& operator=(TIN const&) = delete;
  ~TIN();

  // Makes empty pools for `points` points, with a margin, and takes the data bounds as a promise:
  // the world box reaches 10 widths of the bounds beyond them on every side. A point outside the
  // bounds is still accepted within the world box, and widens them. Returns false and changes
  // nothing where `points` is 0.
  bool Init(int points, TPoint const& min, TPoint const& max);

  // Drops both pools and sets all four box corners to zero. A map stays, without entries.
  void Clear();

  // Stores the converter that LoadTrimbleTinModel applies. Not owned; null for none.
  void SetUnitConverter(CQelUnitCnv* converter) { m_pUnitConverter = converter; }

  // --- Boxes, counts, elements ----------------------------------------------------------------

  void GetWorldBounds(TPoint& min, TPoint& max) const;
  void GetBounds(TPoint& min, TPoint& max) const;
  bool InBounds(TPoint const& p) const {
    return p.x >= m_Min.x && p.x <= m_Max.x && p.y >= m_Min.y && p.y <= m_Max.y;
  }
  bool InWorldBounds(TPoint const& p) const;
  bool InBounds(TTriangle const& triangle) const;
  bool InWorldBounds(TTriangle const& triangle) const;

  int GetNumberOfPoints() const { return m_pPoints == nullptr ? 0 : m_pPoints->m_iCount; }
  int GetNumberOfTriangles() const { return m_pTriangles == nullptr ? 0 : m_pTriangles->m_iCount; }

  // Returns the point at `position` of the live order. REQUIRES: a position below the count.
  TPoint* GetPoint(int position) const { return m_pPoints->At(position); }

  // Returns the triangle at `position` of the live order; with `all` false, null for a hidden one.
  // REQUIRES: a position below the count.
  TTriangle* GetTriangle(int position, bool all) const {
    TTriangle* const triangle = m_pTriangles->At(position);
    return all || !triangle->IsHidden() ? triangle : nullptr;
  }

  // Returns the map. REQUIRES: BuildPointMap was called.
  PointMap& GetMap() { return *m_pPointMap; }

  // Makes every point slot free. Triangles and map stay, so that triangles point at free slots; the
  // next AddPoint seeds anew.
  void RemoveAllPoints();

  // --- Location and heights -------------------------------------------------------------------

  // Returns the triangle that holds `p` in plan, hidden ones included, or null. See
  // Triangulator::Find.
  TTriangle* GetTriangleWithPoint(TPoint const& p) const;

  // Walks the straight line from the centroid of `start` to (x, y) and returns the triangle there.
  // Null where `start` is null, where the target is that centroid exactly, and where the line
  // leaves the mesh. `start` itself is never the answer.
  TTriangle* FindTriangle(TTriangle* start, double x, double y) const;

  // Returns the first live point equal to `p` on x, y and z, or null. A linear search.
  TPoint* FindPoint(TPoint const& p) const;

  // Returns the side whose infinite line passes nearest to `p`, over all triangles, hidden ones
  // too; the earliest of equal ones; the null edge without triangles. A linear search.
  TEdge GetNearestEdge(TPoint const& p);

  // Sets `first` and `second` to the first two live triangles that have `edge` by value, null where
  // there is none, and returns their number. A linear search.
  int GetTrianglesWithEdge(TEdge const& edge, TTriangle*& first, TTriangle*& second) const;

  // Sets `z` to the height of the surface at `p` and returns true. False, with `z` as it was,
  // outside the data bounds, in a hidden triangle, and in one without plan area. A `triangle` that
  // is handed in saves the location and is not checked for holding `p`.
  bool GetZ(TPoint const& p, double& z, TTriangle* triangle) const;
  bool GetZ(double x, double y, double& z) const;

  // --- Insertion ------------------------------------------------------------------------------

  // Adds a point and restores the Delaunay property. Returns the point in the pool, or the vertex
  // that already stands within 0.001 in x and y, whose height stays; the slot taken for such a
  // duplicate stays live, without triangles. Null, with nothing changed, outside the world box,
  // where location fails, and on a full point pool. Null with the slot taken where the triangle
  // pool is full, which only a surface from a file can come to.
  //
  // New triangles are hidden by the data bounds as they were BEFORE this point widens them.
  // REQUIRES: the pools exist.
  TPoint* AddPoint(TPoint const& p);
  TPoint* AddPoint(double x, double y, double z);

  // Puts a point into the pool, to be triangulated later. Dropped where the pool is full.
  // REQUIRES: Init.
  void LoadPoint(double x, double y, double z);

  // Triangulates the loaded points in random order: the fast way to build. Afterwards the live
  // order of the points is random, with the four seed corners last. A duplicate stays in the pool
  // without triangles. Always returns false. REQUIRES: Init, and no triangles yet.
  bool Triangulate();

  // Builds a surface from `points` in the order given, with world and data boxes of its own: the
  // world box reaches 10 data widths below the data and 110 above. Always true.
  bool Create(std::vector<IPoint>* points);

  // --- Point map ------------------------------------------------------------------------------

  // Builds the map from points to triangles anew. Always true.
  bool BuildPointMap();

  // Fills `result` with the vertices that share a triangle with `point`, each once, by the map.
  // Returns true iff there are any. REQUIRES: BuildPointMap.
  bool GetNeighbours(TPoint const* point, std::vector<TPoint*>& result) const;

  // --- Removal --------------------------------------------------------------------------------

  // Takes the vertex at this address out of the surface and fills the hole as
  // Triangulator::FillHole does. Nothing is flipped afterwards, so that the surface need not be a
  // Delaunay triangulation any more. Returns false, with nothing changed, where the map does not
  // know the point, where its triangles do not join up around it, and without a map.
  //
  // The data bounds stay. The map is kept in step. Slots are given back in the way of
  // TArray::Remove, which takes a distance in bytes: the point and two triangles, which the
  // structure does not reach any more, in general stay in the live order, and now and then it loses
  // a slot that is in use. Compact puts both right, and must have done so before the next
  // insertion.
  //
  // A vertex on the edge of the structure is not refused, and leaves its hole partly open; see
  // PointIsOnHull. REQUIRES: an address in the pool, and BuildPointMap after the last insertion.
  bool RemovePoint(TPoint const* point);

  // Do nothing and return false: a point is removed by its address.
  bool RemovePoint(TPoint const& point);
  bool RemovePoint(double x, double y, double z);

  // Returns true iff a triangle around the point lacks a neighbour or has a corner outside the data
  // bounds: then the point is on the edge of the visible surface, or one of the seed corners. False
  // for a point that the map does not know. REQUIRES: BuildPointMap.
  bool PointIsOnHull(TPoint const* point) const;

  // Rebuilds both pools from the structure, so that the surface can be used after removals as any
  // other. The structure is what is joined: of the triangles that can be come by from the live ones
  // across neighbours, those without TRI_CAVITY that a neighbour leads back to, and those that have
  // no neighbour at all. Triangles that were cut off and points that no triangle uses, duplicates
  // among them, are gone afterwards; slots that the live order had lost are back, at its end. The
  // order of the others, seed corners, boxes, flags, heights and capacities stay. The map goes, the
  // location starts anew, and addresses and positions handed out before are void; the Trimble lists
  // follow. Addresses follow a curve through the surface, so that work which goes by them instead
  // of the order finds what is near in plan near in memory.
  //
  // The structure is sound where every neighbour of a triangle is in it, leads back, and has the
  // same two corners in the opposite order, or either of the two is in line as far as rounding can
  // tell; where corners are three different slots of the point pool at finite places, clockwise or
  // in line as TEdge::WhatSide has it; where no point begins two sides without a neighbour; and
  // where the sides without a neighbour, if they join the corners of a seed rectangle, do nothing
  // else. A surface whose triangles all run counter-clockwise is turned over first. FillHole can
  // lay triangles over each other. Where the structure is not sound, the triangles that are in the
  // way are replaced by others over the same points, as few as it takes, and heights and marks
  // change there. Returns false, with nothing changed, where that cannot be done, in a copy, and
  // where there are no live points or no triangles. Time and memory grow with the size of the
  // pools.
  bool Compact();

  // --- Whole surfaces -------------------------------------------------------------------------

  // Builds this surface anew, in the order of the pools, from its own points and then those of
  // `other`. A point with an x or a y of its surface's world box, as the seed corners have, is left
  // out. A point of `other` within 0.001 of one of this surface's is dropped by the duplicate rule,
  // and its slot stays. The new world box is TPoint::Min and TPoint::Max of both, whose rule for z
  // can write a height into x; a point outside that box is lost. A map stays: its entries go with
  // the old pools, and it gets those that the insertions enter, as in AddPoint. A surface merged
  // with itself is merged with a copy of itself. Changes nothing where one of the two has no pools.
  TIN& operator+=(TIN const& other);

  // Returns a new surface through the centroids of the triangles whose corners are all within the
  // data bounds, hidden ones too; with `polygon`, only of those that its XY_Contains takes. The
  // points themselves are not carried over. The new data bounds are this surface's world box, and
  // the new world box reaches 10 times as far again. The result is the caller's; null where memory
  // is refused.
  TIN* CreateSmooth(TPolygon const* polygon) const;

  // Marks every triangle that has a side longer in plan than `limit` as TRI_FILTERED, and every
  // other as not. Not cumulative. The structure stays whole: location still passes through.
  void FilterTriangles(double limit);

  // --- Products -------------------------------------------------------------------------------

  // Appends the lines of height `level` to `lines`, the caller's from then on, and returns their
  // number. Every point of a line has z = level.
  //
  // A vertex at the level counts as above it. A line is followed forward only: one that does not
  // close is left in pieces, and a closed one stops at the last crossing before its first point.
  // Higher ground is to the right of the direction of travel, where a probe of one vertex can tell.
  // No line begins in a hidden or a flat triangle, and a filtered or a flat one ends it. A crossing
  // outside the data bounds is left out, so that a line can be without points. Moves the
  // TRI_VISITED marks, which stay.
  // 0 with fewer than three triangles. Threads: a write, for the marks.
  int GenerateIsoline(std::vector<TPolygon*>& lines, double level);

  // As GenerateIsoline for one level after the other, and much faster: the surface is searched once
  // for all of them.
  int GenerateIsolines(std::vector<TPolygon*>& lines, std::vector<double> const& levels);

  // Appends the cross-section of the surface under a straight line in plan, as open lines with a
  // point wherever the line crosses the side of a triangle, and returns how many were appended. The
  // line is clipped to the world box. 0 for a line without plan length, outside the world box, or
  // with an end at no finite place.
  //
  // A line inside one triangle has the height of its start at both ends. A line that ends exactly
  // at a vertex does not get its end point, and one that runs along a single side keeps only its
  // start. Crossings between two TRI_OUTSIDE triangles are left out. On a surface with a border
  // list, a line that leaves the surface and comes back goes on as a new piece, and each piece
  // before such a gap is appended twice.
  int GenerateProfile(std::vector<TPolygon>& profiles, TPoint const& from, TPoint const& to) const;

  // The same for each pair of consecutive vertices of `line`, each in entries of its own. The last
  // vertex is not joined to the first. REQUIRES: `line` is no entry of `profiles`.
  int GenerateProfile(std::vector<TPolygon>& profiles, TPolygon const& line) const;

  // Measures the surface inside `boundary` against the plane z = 0: `above` and `below` get the
  // volumes, in the cube of the unit, and the result is true. Returns false, with both as they
  // were, where GenerateProfile finds nothing along the boundary: so also for a boundary that runs
  // all around the surface and crosses hidden triangles only.
  //
  // A triangle, hidden or not, counts wholly or not at all, by its centroid. To follow the boundary
  // better, some points of the profile along it are inserted first, and they stay: of the first
  // piece its first point, of the second its second, and so on, unless its height is 0, it lies
  // outside the data bounds, or an equal point stands in the pool. Values follow
  // TTriangle::CutFill, its rule for triangles that the plane cuts included. REQUIRES: no argument
  // is null.
  bool CalculateVolume(TPolygon const* boundary, double* below, double* above);

  // --- Files ----------------------------------------------------------------------------------

  // Empties the surface and loads `path`. Always true, whatever the load did.
  bool Create(wchar_t const* path);

  // Loads by the last three characters of the name, in any case: "tin" native, "ttm" Trimble,
  // anything else XYZ text. Returns true iff the file was loaded.
  bool Load(wchar_t const* file);

  // Saves by the last three characters of the name, in lower case only: "tin" native, anything else
  // XYZ text. Note that a name in "TIN" loads as native and saves as text.
  bool Save(wchar_t const* file) const;

  // Loads a text of X,Y,Z or X Y Z triples in random order of insertion. True iff at least three
  // triples were read. The first text that is no triple ends the reading. A failure leaves the
  // pools as they were; one or two points overwrite the world box.
  bool LoadXYZ(wchar_t const* file);

  // Writes every live point as "x,y,z" with six decimals, except those that stand exactly where the
  // seed corners do. True iff the file could be created.
  bool SaveXYZ(wchar_t const* file) const;

  // Loads a native file. Returns the number of live points; 0, with the surface empty, on failure.
  // Queries need Load, which also seats the location.
  int LoadTin(wchar_t const* file);

  // Loads a Trimble terrain model, whose triangulation is kept as it is: the surface has no seed
  // rectangle. Otherwise as LoadTin.
  int LoadTrimbleTinModel(wchar_t const* file);

  // Writes a native file of the current version.
  bool SaveTin(wchar_t const* file) const;

 protected:
  // Copies `triangle` into a slot, marks it TRI_OUTSIDE where a corner is outside the data bounds,
  // and enters it into a map. Neighbours are left to the caller. REQUIRES: the pool is not full.
  TTriangle* AddTriangle(TTriangle const& triangle);

  // Cuts `triangle` off from its neighbours and takes it out of a map; with `release`, gives its
  // slot back in the way of TArray::Remove. Its own fields stay.
  void RemoveTriangle(TTriangle* triangle, bool release);

  // Sets `out` to where the ray from (x, y) along the unit vector (ux, uy) meets the segment from
  // `a` to `b`, with the height between theirs. Returns false where it does not, or only at or
  // behind the start. A segment on the ray's line answers true at the start.
  static bool Intersect(double x, double y, double ux, double uy, TPoint* a, TPoint* b,
                        TPoint& out);

  // Walks from `first` towards `last`, along the line in plan from (x1, y1) to (x2, y2), and
  // appends a point for every side crossed. Returns false where the walk came to the edge of the
  // surface.
  bool SegProfile(TPolygon& profile, TTriangle* first, TTriangle* last, double x1, double y1,
                  double x2, double y2) const;

  TPoint m_WorldMin;
  TPoint m_WorldMax;
  TPoint m_Min;
  TPoint m_Max;
  CQelUnitCnv* m_pUnitConverter = nullptr;             // not owned
  TArray<TPoint>* m_pPoints = nullptr;                 // owned
  TArray<TTriangle>* m_pTriangles = nullptr;           // owned
  mutable TTriangle* m_pLastTriangle = nullptr;        // in the pool; where TraverseFind starts
  TArray<int>* m_pBorder = nullptr;                    // owned; positions of triangles (Trimble)
  TArray<TArrayStartPoint>* m_pStartPoints = nullptr;  // owned (Trimble)
  PointMap* m_pPointMap = nullptr;                     // owned; null until BuildPointMap
  mutable Triangulator m_Triangulator;

 private:
  friend class LocalFrame;
  friend class PointMap;
  friend class TINFile;
  friend class Triangulator;
  friend class qeltin::detail::Cavity;
  friend class qeltin::detail::Compaction;
  friend class qeltin::detail::GridSampler;
  friend class qeltin::detail::IsolineTracer;
  friend class qeltin::detail::ProfileTracer;
  friend class qeltin::detail::ProfileVanguard;
  friend class qeltin::detail::Removal;
  friend struct qeltin::testing::TINPeer;

  // `p` stands in the pool; `start` is the triangle that holds it, or null to have it located.
  TPoint* AddPoint(TPoint* p, TTriangle* start);
  bool Seed();

  // Inserts the first `count` points of the shuffled live order, in rounds, into a surface that is
  // its seed alone. Returns the slots of those that take an AddPoint each, in the order for it: all
  // of them where the surface is of another kind.
  std::vector<int> InsertInBulk(int count);

  // Adds the points in random order through the public AddPoint.
  void InsertInRandomOrder(std::vector<TPoint> const& points);

  bool GetZ(double x, double y, double& z, TTriangle* triangle) const;
  TTriangle* TraverseFind(TPoint const& p, int budget) const;
  void GetTrianglesWithPoint(TPoint const* p, std::deque<TTriangle*>& result);

  // Looks at every triangle, and sets m_bTiling and m_dReach where they tile a convex
  // quadrilateral.
  void FindWhetherItTiles();

  bool IsWithinReach(TPoint const& p) const { return std::fabs(p.x) + std::fabs(p.y) <= m_dReach; }

  // Makes the neighbours of `triangle` point at it no more. Its own fields stay.
  void CutOff(TTriangle* triangle);

  void ResetToEmptyBoxes();
  void EmptyDataBounds();

  // Adds the live points of a pool, in their order, without those on a line of the box.
  void AddPointsOffTheBox(TArray<TPoint> const& points, TPoint const& min, TPoint const& max);

  // Replaces both pools by empty ones of these capacities. Map entries and m_pLastTriangle go with
  // the old ones, and the location holds no pool until it is seated.
  void MakePools(long long points, long long triangles);
  void DropPools();

  // Takes these pools, in the place of the old ones, seats the location and drops the map.
  void ReplacePools(TArray<TPoint>* points, TArray<TTriangle>* triangles);

  // Seats the location on the present triangle pool and reseeds the C random generator.
  void SeatTriangulator();

  bool m_bOwnsTrimbleArrays = true;  // false in a copy, which shares them

  // True while the triangles are known to tile the seed rectangle: every one strictly clockwise,
  // neighbours mutual, no two vertices in one place. Insertion then needs no comparison of points
  // by value, and a point strictly inside a triangle lies in no other.
  bool m_bTiling = false;

  // While m_bTiling: the largest |x| + |y| of the seed rectangle, and so of every vertex.
  double m_dReach = 0.0;

  std::unique_ptr<qeltin::detail::Cavity> m_pCavity;    // working data of an insertion, kept
  std::unique_ptr<qeltin::detail::Removal> m_pRemoval;  // working data of a removal, kept
};
