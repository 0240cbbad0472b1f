#pragma once

#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/Export.h"

// A list of points with a few plan-view operations: a closed figure or an open line. Nothing in the
// object says which, so each operation decides for itself whether the last vertex joins the first.
//
// Repeated vertices, a repeated first one and either turning direction are allowed. Coordinates are
// in the unit of the survey; z is carried, and only HasVertex and Triangulate look at it. Indices
// count from 0 and are not checked.
//
// Threads: a value like a vector. Concurrent reads are safe, a write needs a lock of the caller's.
class QELTIN_API TPolygon {
 public:
  TPolygon();
  TPolygon(TPolygon const& other);
  TPolygon(std::vector<TPoint> const& points);
  TPolygon& operator=(TPolygon const& other);
  TPolygon& operator=(std::vector<TPoint> const& points);
  virtual ~TPolygon();

  void Add(TPoint const& p);
  void Add(double x, double y, double z);

  // Removes the first vertex with exactly this x and y, whatever its z, if there is one.
  void Remove(double x, double y);
  void Remove(TPoint const& p);

  void Remove(int index);
  void RemoveAll();

  int GetSize() const { return static_cast<int>(m_pPoints->size()); }

  // Returns the address of a vertex, good until the list grows or shrinks.
  TPoint* Get(int index) { return m_pPoints->data() + index; }
  TPoint const* Get(int index) const { return m_pPoints->data() + index; }

  // Returns true iff a vertex equals `p` exactly on x, y and z.
  bool HasVertex(TPoint const& p) const;

  // Returns true iff the closed figure holds the place, by a ray to the right. One pass, and no
  // care at vertices: a ray that runs through a vertex counts both edges that meet there, so that a
  // place level with a vertex can be miscounted. False with fewer than three vertices.
  bool XY_Contains(TPoint const& p) const { return XY_Contains(p.x, p.y); }
  bool XY_Contains(double x, double y) const;

  // Returns true iff the closed figure holds the place, by a ray that is slanted so that it misses
  // every vertex. Three passes.
  bool PointInPolygon(TPoint const& p) const;

  // Fills `triangles` with the corners of triangles that make up the closed figure, three points
  // each, by clipping ears, the one with the smallest circumcircle first. Where no ear is left, as
  // in a figure that crosses itself, the first corner is clipped all the same. Returns false, with
  // `triangles` empty, below three vertices; otherwise true, with GetSize() - 2 triangles, some of
  // them without area where vertices repeat. Takes some n log n steps for ordinary figures, n * n
  // at worst.
  bool Triangulate(std::vector<TPoint>& triangles) const;

  // Returns the plan length of the open line. The last vertex is not joined to the first.
  double Length() const;

 private:
  std::vector<TPoint>* m_pPoints;  // owned, never null
};
