#pragma once

#include <vector>

#include "qeltin/kernel/IPoint.h"
#include "qeltin/models/TriangleCorners.h"
#include "qeltin/platform/Export.h"

class TGrid;
class TIN;
class TPolygon;

// A surface as hosts see it: plain numbers over one TIN. x east, y north, z up, in the unit that
// the host supplied. Made by IModelManager::CreateTin; a host gives it back with ReleaseTin or
// DestroyTin and never deletes it.
//
// The DATA BOUNDS are the box of the data, the WORLD BOX is the domain in which points are
// accepted; see TIN. Seed corners and hidden triangles are counted, as TIN counts them. Strings are
// wide and null-terminated.
//
// Hosts are compiled against the order of the operations: it is never changed.
//
// Threads: those of TIN. There is no lock, location writes through const operations too, and
// GenerateIsoline writes marks: one thread at a time.
class QELTIN_API ITin {
 public:
  virtual ~ITin() = default;

  // Sets the corners of the world box. Note that the MAXIMUM comes first.
  virtual void GetWorldBounds(IPoint& max, IPoint& min) const = 0;

  // Sets the corners of the data bounds. Here the MINIMUM comes first.
  virtual void GetBounds(IPoint& min, IPoint& max) const = 0;

  // Return true iff all three corners, or the point, lie in the box in plan, its edge included; z
  // does not count, and a coordinate that is not a number counts as inside.
  virtual bool InWorldBounds(TriangleCorners const& triangle) const = 0;
  virtual bool InWorldBounds(IPoint const& point) const = 0;
  virtual bool InBounds(TriangleCorners const& triangle) const = 0;
  virtual bool InBounds(IPoint const& point) const = 0;

  // Returns the number of points in the pool: seed corners and duplicates too.
  virtual int GetNumPoints() const = 0;

  // Sets `point` to the one at `index` of the live order. Always true. REQUIRES: an index from 0 to
  // GetNumPoints() - 1.
  virtual bool GetPoint(int index, IPoint& point) const = 0;

  // Adds a point as TIN::AddPoint does. Returns true iff it now is, or within 0.001 already was, a
  // point of the surface: false outside the world box and where the surface is full.
  virtual bool AddPoint(double x, double y, double z) = 0;

  // Does nothing and returns false.
  virtual bool PointOperationStub() = 0;

  // Makes every point slot free. The triangles stay and go on pointing at the free slots: not a way
  // to clear a surface.
  virtual void ResetPoints() = 0;

  // Returns the number of triangles in the pool, hidden ones too.
  virtual int GetNumTriangles() const = 0;

  // Sets `corners` to the triangle at `index` of the live order and returns true. False, with
  // `corners` as they were, where it is hidden or filtered. REQUIRES: an index from 0 to
  // GetNumTriangles() - 1.
  virtual bool GetTriangle(int index, TriangleCorners& corners) const = 0;

  // Sets `corners` to the triangle under the point, a hidden one too, and returns true. False, with
  // `corners` as they were, where there is none.
  virtual bool FindTriangle(IPoint const& point, TriangleCorners& corners) const = 0;

  // Sets *z to the height at (x, y) and returns true. False, with *z as it was, where the surface
  // has no visible triangle. REQUIRES: `z` is not null.
  virtual bool GetZ(double x, double y, double* z) const = 0;

  // Replace the surface by that of a file, or write it to one, as the operations of TIN with these
  // names do. Return true iff that could be done; note that SaveTin answers true also where the
  // file could not be written. A grid, and the name under which the manager shares the model, stay.
  // Note that after LoadTin the surface cannot be located in: FindTriangle, GetZ, GenerateProfile
  // and AddPoint find nothing there, while points, triangles and isolines can be had.
  // IModelManager::CreateTin loads a native file for all uses.
  virtual bool LoadXYZ(wchar_t const* path) = 0;
  virtual bool SaveXYZ(wchar_t const* path) const = 0;
  virtual bool LoadTin(wchar_t const* path) = 0;
  virtual bool SaveTin(wchar_t const* path) const = 0;

  // Returns the surface itself. Owned by this object; stays valid until its end.
  virtual TIN* GetTIN() const = 0;

  // Returns the grid, null where there is none. Owned by this object; stays valid until DestroyGrid
  // or its end.
  virtual TGrid* GetGrid() const = 0;

  virtual void DestroyGrid() = 0;

  // Makes a grid over the data bounds with these spacings, see TGrid::Create. Where there is a grid
  // already, that one stays and the spacings are ignored: DestroyGrid comes first. The grid does
  // not follow later changes of the surface.
  virtual void CreateGrid(double dx, double dy) = 0;

  // Hides the triangles with a side longer in plan than `limit`; see TIN::FilterTriangles.
  virtual void FilterTriangles(double limit) = 0;

  // Appends the lines at height `level`, the caller's from then on, and returns their number; see
  // TIN::GenerateIsoline. Threads: a write, for the marks of triangles.
  virtual int GenerateIsoline(std::vector<TPolygon*>& lines, double level) const = 0;

  // Append the cross-section under an open line, or under the straight line between two points, and
  // return how many pieces were appended; see TIN::GenerateProfile.
  virtual int GenerateProfile(std::vector<TPolygon>& sections, TPolygon const& path) const = 0;
  virtual int GenerateProfile(std::vector<TPolygon>& sections, IPoint const& from,
                              IPoint const& to) const = 0;
};
