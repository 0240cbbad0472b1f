#pragma once

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"

// The predicates of points and triangles in their plain form, operation by operation. Points and
// triangles serve as records only: none of their operations is called.
namespace qeltin::testing::stated {

bool Same(TPoint const& a, TPoint const& b);  // by value on x, y and z

// Offset of `p` to the right of the line from `a` to `b` along an axis; not-a-number without
// length.
double WhatSide(TPoint const& a, TPoint const& b, TPoint const& p);

// 3 to stop here, else the side to cross.
int WhereTri(TTriangle const& t, TPoint const& p);

// Which side of neighbour `side` leads back; 3 for none.
int TriSide(TTriangle const& t, int side);

void CalcTri(TTriangle& t);
bool InCachedCircle(TTriangle const& t, TPoint const& p);
bool XY_HasPoint(TTriangle const& t, TPoint const& p);
TPoint* XY_FindVertex(TTriangle const& t, TPoint const& p);
int SetAdjacentPointer(TTriangle& t, TTriangle* other);

// The volume between the triangle and the plane z = 0, its two parts with their signs.
void CutFill(TTriangle const& t, double& first, double& second);

}  // namespace qeltin::testing::stated
