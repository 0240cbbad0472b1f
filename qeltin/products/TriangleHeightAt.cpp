#include "qeltin/kernel/TTriangle.h"
#include "qeltin/products/TPolygon.h"

namespace {

float Single(double value) { return static_cast<float>(value); }

int NearestCorner(TTriangle const& t, TPoint const& p) {
  int nearest = 0;
  for (int k = 1; k < 3; ++k) {
    if (p.XY_Distance(*t.m_pVertex[k]) < p.XY_Distance(*t.m_pVertex[nearest])) nearest = k;
  }
  return nearest;
}

}  // namespace

// Single and double precision alternate on purpose: each rounding is part of the result.
bool TTriangle::XY_HeightAt(TPoint const& p, double& z) const {
  TPolygon const corners({*m_pVertex[0], *m_pVertex[1], *m_pVertex[2]});
  if (!corners.XY_Contains(p.x, p.y)) return false;

  int const nearest = NearestCorner(*this, p);
  TPoint const& N = *m_pVertex[nearest];
  TPoint const& A = *m_pVertex[(nearest + 1) % 3];
  TPoint const& B = *m_pVertex[(nearest + 2) % 3];

  float const m1 = Single((B.y - A.y) / (B.x - A.x));
  float const m2 = Single((p.y - N.y) / (p.x - N.x));
  float const c1 = Single(A.y - A.x * double{m1});
  float const c2 = Single(N.y - N.x * double{m2});
  float const xi = (c2 - c1) / (m1 - m2);
  double const yi = double{m1} * double{xi} + double{c1};
  TPoint const I(double{xi}, yi);

  float const h = Single(B.z - A.z) / Single(A.XY_Distance(B)) * Single(A.XY_Distance(I));
  float const height =
      Single(double{h} - N.z) / Single(N.XY_Distance(I)) * Single(N.XY_Distance(p));
  z = double{height};
  return true;
}
