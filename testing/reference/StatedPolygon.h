#pragma once

#include <deque>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"

// The operations of polygons in their plain form, step by step. Points serve as records only: none
// of their operations is called.
namespace qeltin::testing::stated {

// By a ray to the right.
bool XY_Contains(std::vector<TPoint> const& figure, double x, double y);

// By a slanted ray.
bool PointInPolygon(std::vector<TPoint> const& figure, TPoint const& p);

// From the corners, by the folded angle at `c`.
double CircumcircleRadius(TPoint const& a, TPoint const& b, TPoint const& c);

// Whether these three, successive in what is left of the figure, may be clipped from it.
bool IsEar(std::vector<TPoint> const& figure, TPoint a, TPoint b, TPoint c);

// Ear clipping with a search through all corners for every ear: cubic in the number of vertices.
bool Triangulate(std::vector<TPoint> const& figure, std::vector<TPoint>& triangles);

// Ear clipping of a ring of pool points, every radius and every test of every round anew.
bool FillHole(std::vector<TTriangle>& result, std::deque<TPoint*>& ring);

}  // namespace qeltin::testing::stated
