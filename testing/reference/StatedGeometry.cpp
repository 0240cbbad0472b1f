#include "testing/reference/StatedGeometry.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace qeltin::testing::stated {

namespace {

// Returns `value` without its fraction as a 32-bit integer, or the smallest one where it does not
// fit.
std::int32_t Truncated(double value) {
  if (!(value > -2147483649.0 && value < 2147483648.0)) {
    return std::numeric_limits<std::int32_t>::min();
  }
  return static_cast<std::int32_t>(value);
}

bool SamePair(TPoint const& a, TPoint const& b, TPoint const& c, TPoint const& d) {
  return (Same(a, c) || Same(a, d)) && (Same(b, d) || Same(b, c));
}

}  // namespace

bool Same(TPoint const& a, TPoint const& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

double WhatSide(TPoint const& a, TPoint const& b, TPoint const& p) {
  double const dx = b.x - a.x;
  double const dy = b.y - a.y;
  if (std::fabs(dx) >= std::fabs(dy)) {
    double const m = dy / dx;
    double const d = (a.y - a.x * m + m * p.x) - p.y;
    return dx > 0.0 ? d : -d;
  }
  double const m = dx / dy;
  double const d = (a.x - a.y * m + m * p.y) - p.x;
  return dy > 0.0 ? -d : d;
}

int WhereTri(TTriangle const& t, TPoint const& p) {
  int code = 0;
  for (int side = 0; side < 3; ++side) {
    if (WhatSide(*t.m_pVertex[side], *t.m_pVertex[(side + 1) % 3], p) >= -1e-09) code += 1 << side;
  }
  switch (code) {
    case 1:
    case 5:
      return 1;
    case 2:
    case 3:
      return 2;
    case 4:
    case 6:
      return 0;
    default:
      return 3;
  }
}

int TriSide(TTriangle const& t, int side) {
  TTriangle const* const n = t.m_pAdjacent[side];
  if (n == nullptr) return 3;
  for (int k = 0; k < 3; ++k) {
    if (n->m_pAdjacent[k] == &t) return k;
  }
  return 3;
}

void CalcTri(TTriangle& t) {
  TPoint const& A = *t.m_pVertex[0];
  TPoint const& B = *t.m_pVertex[1];
  TPoint const& C = *t.m_pVertex[2];
  double const a = B.y - A.y;
  double const b = C.x - A.x;
  double const c = C.y - A.y;
  double const d = B.x - A.x;
  double const e = (A.y + B.y) * a + (A.x + B.x) * d;
  double const f = (C.y + A.y) * c + (C.x + A.x) * b;
  double const g = (C.y - B.y) * d - (C.x - B.x) * a;
  t.m_CentreX = (e * c - f * a) / (2 * g);
  t.m_CentreY = (f * d - e * b) / (2 * g);
  t.m_RadiusSq =
      (t.m_CentreX - A.x) * (t.m_CentreX - A.x) + (t.m_CentreY - A.y) * (t.m_CentreY - A.y);
}

bool InCachedCircle(TTriangle const& t, TPoint const& p) {
  return t.m_RadiusSq >=
         (p.x - t.m_CentreX) * (p.x - t.m_CentreX) + (p.y - t.m_CentreY) * (p.y - t.m_CentreY);
}

bool XY_HasPoint(TTriangle const& t, TPoint const& p) {
  if (!InCachedCircle(t, p)) return false;
  bool answer = false;
  int const from[3] = {0, 1, 2};
  int const to[3] = {2, 0, 1};
  for (int k = 0; k < 3; ++k) {
    TPoint const& u = *t.m_pVertex[from[k]];
    TPoint const& v = *t.m_pVertex[to[k]];
    if ((p.y >= u.y && v.y > p.y) || (p.y >= v.y && u.y > p.y)) {
      if ((p.y - u.y) * (v.x - u.x) / (v.y - u.y) + u.x > p.x) answer = !answer;
    }
  }
  return answer;
}

TPoint* XY_FindVertex(TTriangle const& t, TPoint const& p) {
  for (TPoint* const corner : t.m_pVertex) {
    if (Truncated((corner->x - p.x) * 1000) == 0 && Truncated((corner->y - p.y) * 1000) == 0) {
      return corner;
    }
  }
  return nullptr;
}

int SetAdjacentPointer(TTriangle& t, TTriangle* other) {
  for (int k = 0; k < 3; ++k) {
    for (int j = 0; j < 3; ++j) {
      if (SamePair(*t.m_pVertex[k], *t.m_pVertex[(k + 1) % 3], *other->m_pVertex[j],
                   *other->m_pVertex[(j + 1) % 3])) {
        t.m_pAdjacent[k] = other;
        return k;
      }
    }
  }
  return -1;
}

void CutFill(TTriangle const& t, double& first, double& second) {
  double const x[3] = {t.m_pVertex[0]->x, t.m_pVertex[1]->x, t.m_pVertex[2]->x};
  double const y[3] = {t.m_pVertex[0]->y, t.m_pVertex[1]->y, t.m_pVertex[2]->y};
  double const z[3] = {t.m_pVertex[0]->z, t.m_pVertex[1]->z, t.m_pVertex[2]->z};
  double const s =
      (x[1] - x[0]) * (y[0] + y[1]) + (x[2] - x[1]) * (y[1] + y[2]) + (x[0] - x[2]) * (y[2] + y[0]);
  double const v = (z[0] + z[1] + z[2]) * s / 6;
  if (z[0] >= 0 && z[1] >= 0 && z[2] >= 0) {
    first = v;
    second = 0;
  } else if (z[0] <= 0 && z[1] <= 0 && z[2] <= 0) {
    first = 0;
    second = v;
  } else {
    int const lone = z[0] * z[1] >= 0 ? 2 : (z[1] * z[2] >= 0 ? 0 : 1);
    int const a = (lone + 1) % 3;
    int const b = (lone + 2) % 3;
    double const tb = -z[lone] / (z[b] - z[lone]);
    double const xp = x[lone] + (x[b] - x[lone]) * tb;
    double const yp = y[lone] + (y[b] - y[lone]) * tb;
    double const ta = -z[lone] / (z[a] - z[lone]);
    double const xq = x[lone] + (x[a] - x[lone]) * ta;
    double const yq = y[lone] + (y[a] - y[lone]) * ta;
    double const w = ((yp + yq) * (xp - xq) + (yq + y[lone]) * (xq - x[lone]) +
                      (x[lone] - xp) * (yp + y[lone])) *
                     0.5 * z[lone] / 3;
    first = w >= 0 ? w : w - v;
    second = w >= 0 ? w - v : w;
  }
}

}  // namespace qeltin::testing::stated
