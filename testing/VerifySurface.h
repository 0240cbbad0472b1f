#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/tin/TIN.h"

// A check of a whole surface that knows nothing of how the library builds one: it reads corners,
// neighbours, flags and circles, and decides with exact arithmetic.
//
// Threads: reads the surface, so nobody may write it meanwhile.
namespace qeltin::testing {

// What a sound surface must satisfy. The defaults suit every surface that grew by insertion.
struct SurfaceRules {
  // The hull is the rectangle of the world box. Not so for a surface from a Trimble model.
  bool seeded = true;

  // No vertex lies inside the circle of the triangle across the edge, up to rounding. Not so after
  // a removal of points.
  bool delaunay = true;

  // A removal leaves triangles in the live order that are cut off from the structure, and may drop
  // others from it that are in use. With this rule the structure is what the neighbour pointers
  // join, and the live order of triangles and points does not matter.
  bool byNeighbours = false;
};

// What there is to verify; made from a surface, or by hand.
struct SurfaceView {
  std::vector<TTriangle const*> triangles;
  std::vector<TPoint const*> points;
  TPoint boundsMin;
  TPoint boundsMax;
  TPoint worldMin;
  TPoint worldMax;

  SurfaceView() = default;
  explicit SurfaceView(TIN const& tin);
};

// A surface decides by rounded numbers: points in line give triangles without area, whose circles
// may not be numbers, and a point closer to a circle than the rounding of that circle may count as
// inside or outside. Such places are counted apart. Everything else that is wrong is a fault.
struct SurfaceReport {
  int triangles = 0;        // that were examined
  int vertices = 0;         // distinct corners
  int loosePoints = 0;      // live points that are no corner: duplicates
  int cutOffTriangles = 0;  // live, but outside the structure; SurfaceRules::byNeighbours only
  int hullEdges = 0;
  int hullLoops = 0;

  int flat = 0;               // corners in line exactly, or turned within the rounding of WhatSide
  int notANumberCircles = 0;  // circles with a centre or radius that is not a finite number
  double overlap = 0.0;       // area that is covered more than once because of the flat ones

  int nearViolations = 0;   // of the Delaunay property, within the rounding bound
  double worstNear = 0.0;   // the worst of them as a share of its bound
  int violations = 0;       // beyond the bound; each is a fault
  double worstDepth = 0.0;  // of those: the power of the point in the circle, unit squared

  int faults = 0;
  std::vector<std::string> firstFaults;  // a readable line for each of the first few

  bool Ok() const { return faults == 0; }
};

std::ostream& operator<<(std::ostream& out, SurfaceReport const& report);

SurfaceReport VerifySurface(SurfaceView const& view, SurfaceRules const& rules = {});
SurfaceReport VerifySurface(TIN const& tin, SurfaceRules const& rules = {});

// Returns the rounding bound that separates near violations from violations: where InCircle of
// these four points (testing/ExactPlane.h) is at most this in size, the cached circle of some three
// of them may have put the fourth on the wrong side.
double InCircleRounding(TPoint const& a, TPoint const& b, TPoint const& c, TPoint const& p);

}  // namespace qeltin::testing
