#include "qeltin/kernel/TTriangle.h"

#include <type_traits>

static_assert(sizeof(TPoint) == 24 && sizeof(TTriangle) == 80, "pool blocks rest on these sizes");
static_assert(std::is_trivially_copyable_v<TTriangle>, "pools copy triangles as bytes");

namespace {

constexpr double LARGEST_FLOAT = 3.4028234663852886e38;

TEdge FreeEdge(TTriangle const& t, int i) {
  switch (i) {
    case 0:
      return {t.m_pVertex[0], t.m_pVertex[1]};
    case 1:
      return {t.m_pVertex[0], t.m_pVertex[2]};
    default:
      return {t.m_pVertex[1], t.m_pVertex[2]};
  }
}

bool AllAtLeast(double limit, double a, double b, double c) {
  return a >= limit && b >= limit && c >= limit;
}

bool AllAtMost(double limit, double a, double b, double c) {
  return a <= limit && b <= limit && c <= limit;
}

// Where the side from `lone` to `other` meets the plane z = 0, in plan.
TPoint MeetsPlane(TPoint const& lone, TPoint const& other) {
  double const t = -lone.z / (other.z - lone.z);
  return {lone.x + (other.x - lone.x) * t, lone.y + (other.y - lone.y) * t};
}

// The volume of the pyramid that the plane z = 0 cuts off at `lone`, with a and b the corners that
// follow it.
double LoneCornerVolume(TPoint const& lone, TPoint const& a, TPoint const& b) {
  TPoint const P = MeetsPlane(lone, b);
  TPoint const Q = MeetsPlane(lone, a);
  return ((P.y + Q.y) * (P.x - Q.x) + (Q.y + lone.y) * (Q.x - lone.x) +
          (lone.x - P.x) * (P.y + lone.y)) *
         0.5 * lone.z / 3;
}

}  // namespace

TEdge TTriangle::GetEdge(int side) const {
  if (side < 0 || side > 2) return {};
  return {m_pVertex[side], m_pVertex[(side + 1) % 3]};
}

TEdge TTriangle::GetEdgeWithTri(int side) const {
  if (side >= 3) return {};

  if (TTriangle const* shared = m_pAdjacent[side]) {
    for (int i = 0; i < 2; ++i) {
      TEdge const edge = FreeEdge(*this, i);
      if (shared->HasEdge(edge)) return edge;
    }
    return FreeEdge(*this, 2);
  }

  TTriangle const* first = m_pAdjacent[(side + 1) % 3];
  TTriangle const* second = m_pAdjacent[(side + 2) % 3];
  if (first == nullptr || second == nullptr) return {};
  for (int i = 0; i < 2; ++i) {
    TEdge const edge = FreeEdge(*this, i);
    if (!first->HasEdge(edge) && !second->HasEdge(edge)) return edge;
  }
  return FreeEdge(*this, 2);
}

bool TTriangle::operator==(TTriangle const& other) const {
  for (TPoint const* corner : m_pVertex) {
    if (*corner != *other.m_pVertex[0] && *corner != *other.m_pVertex[1] &&
        *corner != *other.m_pVertex[2]) {
      return false;
    }
  }
  return true;
}

bool TTriangle::HasEdge(TEdge const& edge) const {
  return edge == GetEdge(0) || edge == GetEdge(1) || edge == GetEdge(2);
}

TPoint* TTriangle::GetOpposingVertex(TEdge const& edge) const {
  if (!HasEdge(edge)) return nullptr;
  for (TPoint* corner : m_pVertex) {
    if (!edge.HasVertex(*corner)) return corner;
  }
  return nullptr;
}

void TTriangle::CutFill(double* first, double* second) const {
  TPoint const& p1 = *m_pVertex[0];
  TPoint const& p2 = *m_pVertex[1];
  TPoint const& p3 = *m_pVertex[2];
  double const S =
      (p2.x - p1.x) * (p1.y + p2.y) + (p3.x - p2.x) * (p2.y + p3.y) + (p1.x - p3.x) * (p3.y + p1.y);
  double const V = (p1.z + p2.z + p3.z) * S / 6;
  if (AllAtLeast(0.0, p1.z, p2.z, p3.z)) {
    *first = V;
    *second = 0.0;
    return;
  }
  if (AllAtMost(0.0, p1.z, p2.z, p3.z)) {
    *first = 0.0;
    *second = V;
    return;
  }
  double W;
  if (p1.z * p2.z >= 0) {
    W = LoneCornerVolume(p3, p1, p2);
  } else if (p2.z * p3.z >= 0) {
    W = LoneCornerVolume(p1, p2, p3);
  } else {
    W = LoneCornerVolume(p2, p3, p1);
  }
  // W - V in both: the far part enters with the sign that it does not have.
  *first = W >= 0 ? W : W - V;
  *second = W >= 0 ? W - V : W;
}

TPoint TTriangle::GetNormal() const {
  TPoint const u = *m_pVertex[1] - *m_pVertex[0];
  TPoint const w = *m_pVertex[2] - *m_pVertex[0];
  TPoint const n(u.z * w.y - u.y * w.z, u.x * w.z - u.z * w.x, u.y * w.x - u.x * w.y);
  double const length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
  return {n.x / length, n.y / length, n.z / length};  // no guard: 0 / 0 without area
}

double TTriangle::Area() const {
  TPoint const& p0 = *m_pVertex[0];
  TPoint const& p1 = *m_pVertex[1];
  TPoint const& p2 = *m_pVertex[2];
  return (p0.x * p1.y - p0.y * p1.x + p1.x * p2.y - p2.x * p1.y + p0.y * p2.x - p0.x * p2.y) / 2;
}

double TTriangle::XY_CircumcircleRadius() const {
  TPoint const a = *m_pVertex[0] - *m_pVertex[2];
  TPoint const b = *m_pVertex[1] - *m_pVertex[2];
  double const s = std::sin(a.XY_Angle(b));
  if (s == 0.0) return LARGEST_FLOAT;
  return std::fabs(m_pVertex[0]->XY_Distance(*m_pVertex[1]) / (2 * s));
}

double TTriangle::XY_IncircleRadius() const {
  double const a = m_pVertex[0]->XY_Distance(*m_pVertex[1]);
  double const b = m_pVertex[1]->XY_Distance(*m_pVertex[2]);
  double const c = m_pVertex[2]->XY_Distance(*m_pVertex[0]);
  double const s = (a + b + c) / 2;
  return std::sqrt((s - a) * (s - b) * (s - c) / s);
}

bool TTriangle::XY_HasPoint(TPoint const& p) const {
  if (!CircleHas(p)) return false;
  static constexpr int SIDES[3][2] = {{0, 2}, {1, 0}, {2, 1}};
  bool inside = false;
  for (auto const& side : SIDES) {
    TPoint const& u = *m_pVertex[side[0]];
    TPoint const& v = *m_pVertex[side[1]];
    bool const counts = (p.y >= u.y && v.y > p.y) || (p.y >= v.y && u.y > p.y);
    if (counts && (p.y - u.y) * (v.x - u.x) / (v.y - u.y) + u.x > p.x) inside = !inside;
  }
  return inside;
}

bool TTriangle::XY_EdgeHasPoint(TPoint const& p, TEdge& edge) const {
  for (int side = 0; side < 3; ++side) {
    edge = GetEdge(side);
    int const where = edge.XY_ClassifyOrientationOf(p);
    if (where == ORIENT_ORIGIN || where == ORIENT_DESTINATION || where == ORIENT_BETWEEN) {
      return true;
    }
  }
  return false;
}

double TTriangle::XY_Distance(TPoint const& p, TEdge& edge) const {
  edge = GetEdge(0);
  double nearest = edge.XY_Distance(p);
  for (int side = 1; side < 3; ++side) {
    TEdge const candidate = GetEdge(side);
    double const distance = candidate.XY_Distance(p);
    if (distance < nearest) {
      nearest = distance;
      edge = candidate;
    }
  }
  return nearest;
}

int TTriangle::TriSide(int side) const {
  TTriangle const* n = m_pAdjacent[side];
  if (n == nullptr) return 3;
  int k = 0;
  while (k < 3 && n->m_pAdjacent[k] != this) ++k;
  return k;
}

void TTriangle::SortVertices() {
  if (TEdge(m_pVertex[0], m_pVertex[1]).WhatSide(*m_pVertex[2]) < 0.0) {
    TPoint* const first = m_pVertex[0];
    m_pVertex[0] = m_pVertex[1];
    m_pVertex[1] = first;
  }
}

void TTriangle::SortPointers() {
  TTriangle* sorted[3] = {};
  for (TTriangle* neighbour : m_pAdjacent) {
    if (neighbour == nullptr) continue;
    for (int side = 0; side < 3; ++side) {
      if (neighbour->HasEdge(GetEdge(side))) sorted[side] = neighbour;
    }
  }
  for (int side = 0; side < 3; ++side) m_pAdjacent[side] = sorted[side];
}

int TTriangle::SetAdjacentPointer(TTriangle* other) {
  for (int side = 0; side < 3; ++side) {
    TEdge const mine = GetEdge(side);
    for (int theirs = 0; theirs < 3; ++theirs) {
      if (mine == other->GetEdge(theirs)) {
        m_pAdjacent[side] = other;
        return side;
      }
    }
  }
  return -1;
}
