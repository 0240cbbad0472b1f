#include <cmath>

#include "qeltin/decimate/matrix.h"
#include "testing/reference/ReferenceDecimator.h"
#include "testing/reference/StatedGeometry.h"

namespace qeltin::testing {

namespace {

// More steps than any walk that ends takes in a test.
constexpr int ENDLESS = 100000;

TPoint UnitNormal(TTriangle const& t) {
  TPoint const& a = *t.m_pVertex[0];
  TPoint const& b = *t.m_pVertex[1];
  TPoint const& c = *t.m_pVertex[2];
  double const ux = b.x - a.x, uy = b.y - a.y, uz = b.z - a.z;
  double const wx = c.x - a.x, wy = c.y - a.y, wz = c.z - a.z;
  double const x = uy * wz - uz * wy;
  double const y = uz * wx - ux * wz;
  double const z = ux * wy - uy * wx;
  double const length = std::sqrt(x * x + y * y + z * z);
  return {x / length, y / length, z / length};
}

double Dot(TPoint const& n, TPoint const& m) { return n.x * m.x + n.y * m.y + n.z * m.z; }

double LengthOf(TPoint const& n) { return std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z); }

TTriangle* NextAround(TPoint const& point, TTriangle const* current, TTriangle const* previous) {
  for (int k = 0; k < 3; ++k) {
    TTriangle* const neighbour = current->m_pAdjacent[k];
    if (neighbour == nullptr || neighbour == previous) continue;
    if (stated::XY_FindVertex(*neighbour, point) != nullptr) return neighbour;
  }
  return nullptr;
}

TEdge SharedEdge(TTriangle const& t1, TTriangle const& t2) {
  TEdge edge;
  for (int i = 0; i < 3; ++i) {
    bool matches = false;
    for (int j = 0; j < 3; ++j) {
      TPoint const& a = *t1.m_pVertex[i];
      TPoint const& b = *t2.m_pVertex[j];
      double const dx = (a.x - b.x) * 1000.0;
      double const dy = (a.y - b.y) * 1000.0;
      matches = matches || (std::trunc(dx) == 0.0 && std::trunc(dy) == 0.0);
    }
    if (!matches) continue;
    if (edge.m_pStart == nullptr) {
      edge.m_pStart = t1.m_pVertex[i];
    } else {
      edge.m_pEnd = t1.m_pVertex[i];
    }
  }
  return edge;
}

}  // namespace

bool ReferenceDecimator::IsOnHull(TPoint const* point) const {
  for (TTriangle const* t : m_Tin.m_pPointMap->FindPoint(point).GetTriangles()) {
    for (int k = 0; k < 3; ++k) {
      if (t->m_pAdjacent[k] == nullptr || !m_Tin.InBounds(*t->m_pVertex[k])) return true;
    }
  }
  return false;
}

std::vector<TPoint*> ReferenceDecimator::NeighboursOf(TPoint const* point) const {
  std::vector<TPoint*> result;
  for (TTriangle const* t : m_Tin.m_pPointMap->FindPoint(point).GetTriangles()) {
    for (TPoint* corner : t->m_pVertex) {
      bool known = corner == point;
      for (TPoint const* other : result) known = known || other == corner;
      if (!known) result.push_back(corner);
    }
  }
  return result;
}

TTriangle* ReferenceDecimator::FirstTriangleOf(TPoint const* point) const {
  auto const& triangles = m_Tin.m_pPointMap->FindPoint(point).GetTriangles();
  return triangles.empty() ? nullptr : triangles[0];
}

int ReferenceDecimator::Classify(TPoint const* point) const {
  if (IsOnHull(point)) return 2;
  TTriangle* const first = FirstTriangleOf(point);
  if (first == nullptr) return 4;
  TTriangle* current = first;
  TTriangle* previous = nullptr;
  int smooth = 0;
  for (int step = 0; step < ENDLESS; ++step) {
    TTriangle* const next = NextAround(*point, current, previous);
    if (next == nullptr) return 0;
    double const cosine = static_cast<double>(std::cos(currentFeatureAngle));
    if (Dot(current->GetNormal(), next->GetNormal()) > cosine) smooth += 1;
    if (smooth > 2 || next == first) return smooth == 0 ? 4 : smooth == 2 ? 1 : 3;
    previous = current;
    current = next;
  }
  return 0;
}

bool ReferenceDecimator::PassPlane(TPoint const* point) {
  std::vector<TPoint*> const neighbours = NeighboursOf(point);
  if (neighbours.size() < 4) return false;
  matrix A(static_cast<unsigned int>(neighbours.size()), 3);
  matrix B(static_cast<unsigned int>(neighbours.size()), 1);
  for (int i = 0; i < A.size(0); ++i) {
    TPoint const& p = *neighbours[static_cast<std::size_t>(i)];
    A[i][0] = p.x;
    A[i][1] = p.y;
    A[i][2] = 1.0;
    B[i][0] = p.z;
  }
  matrix At = A.trn();
  matrix const X = (At * A).inv() * (At * B);
  if (X.size(0) == 0) return false;
  double const a = X[0][0];
  double const b = X[1][0];
  double const c = X[2][0];
  double const d =
      std::fabs(a * point->x + b * point->y + c - point->z) / std::sqrt(a * a + b * b + 1.0);
  if (!(static_cast<double>(currentError) >= d)) return false;

  if (samples == 0) {
    minimum = maximum = d;
  } else {
    minimum = d < minimum ? d : minimum;
    maximum = d > maximum ? d : maximum;
  }
  mean = (samples * mean + d) / (samples + 1.0);
  sumSquares += (d - 0.0) * (d - 0.0);
  samples += 1;
  return true;
}

bool ReferenceDecimator::PassLine(TPoint const* point, int type) {
  TPoint* first = nullptr;
  TPoint* second = nullptr;
  if (type == 2) {
    FindOnHull(point, first, second);
  } else {
    FindInside(point, first, second);
  }
  if (first == nullptr && second == nullptr) return false;
  bool const passes = currentError > static_cast<float>(TEdge(first, second).XY_Distance(*point));
  if (passes) ++(type == 2 ? linesOnHull : linesInside);
  return passes;
}

void ReferenceDecimator::FindOnHull(TPoint const* point, TPoint*& first, TPoint*& second) const {
  first = nullptr;
  second = nullptr;
  for (TPoint* neighbour : NeighboursOf(point)) {
    if (!IsOnHull(neighbour)) continue;
    if (first == nullptr) {
      first = neighbour;
    } else if (neighbour != first) {
      second = neighbour;
    }
  }
  if (first == nullptr || second == nullptr) first = second = nullptr;
}

void ReferenceDecimator::FindInside(TPoint const* point, TPoint*& first, TPoint*& second) const {
  first = nullptr;
  second = nullptr;
  TTriangle* const start = FirstTriangleOf(point);
  if (start == nullptr) return;
  TTriangle* current = start;
  TTriangle* previous = nullptr;
  for (int step = 0; step < ENDLESS; ++step) {
    TTriangle* const next = NextAround(*point, current, previous);
    if (next == nullptr) break;
    TPoint const n = UnitNormal(*current);
    TPoint const m = UnitNormal(*next);
    double const angle = std::acos(Dot(n, m) / (LengthOf(n) * LengthOf(m)));
    if (static_cast<float>(angle) > std::cos(currentFeatureAngle)) {
      TEdge const edge = SharedEdge(*current, *next);
      if (first == nullptr) {
        first = edge.m_pEnd;
      } else {
        second = edge.m_pEnd;
      }
    }
    if (second != nullptr || next == start) break;
    previous = current;
    current = next;
  }
  if (second == nullptr) first = nullptr;
}

}  // namespace qeltin::testing
