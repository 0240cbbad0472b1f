#include <cmath>

#include "qeltin/decimate/Decimator.h"
#include "qeltin/decimate/FanWalk.h"

namespace {

constexpr int IRREGULAR_FROM = 3;

TTriangle* FirstTriangleOf(TIN& tin, TPoint const* point) {
  return tin.GetMap().FindPoint(point)[0];
}

double Dot(TPoint const& a, TPoint const& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

double Length(TPoint const& v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }

// The angle between the normals, in radians; not-a-number where rounding takes the cosine beyond 1.
float AngleBetween(TTriangle const& a, TTriangle const& b) {
  TPoint const n = a.GetNormal();
  TPoint const m = b.GetNormal();
  return static_cast<float>(std::acos(Dot(n, m) / (Length(n) * Length(m))));
}

}  // namespace

VERTEX_TYPE Decimator::GetPointOrientation(TPoint const* point) const {
  if (m_pSource->PointIsOnHull(point)) return VERTEX_ON_HULL;
  TTriangle* const first = FirstTriangleOf(*m_pSource, point);
  if (first == nullptr) return VERTEX_NO_SMOOTH;

  double const limit = std::cos(m_fCurrentFeatureAngle);
  int smooth = 0;
  qeltin::detail::FanWalk walk(*point, first);
  do {
    if (walk.Next() == nullptr) return VERTEX_UNRESOLVED;
    if (Dot(walk.Current()->GetNormal(), walk.Next()->GetNormal()) > limit) ++smooth;
    if (smooth >= IRREGULAR_FROM || walk.IsNextTheFirst()) {
      if (smooth == 0) return VERTEX_NO_SMOOTH;
      return smooth == 2 ? VERTEX_TWO_SMOOTH : VERTEX_IRREGULAR;
    }
  } while (walk.Step(smooth));
  return VERTEX_UNRESOLVED;
}

bool Decimator::FanCloses(TPoint const* point) const {
  TTriangle* const first = FirstTriangleOf(*m_pSource, point);
  if (first == nullptr) return false;
  qeltin::detail::FanWalk walk(*point, first);
  do {
    if (walk.Next() == nullptr) return false;
    if (walk.IsNextTheFirst()) return true;
  } while (walk.Step(0));
  return false;
}

bool Decimator::PassDistanceToPlane(int index) {
  TPoint const* const point = m_pSource->GetPoint(index);
  if (!m_pSource->GetNeighbours(point, m_Neighbours)) return false;
  TPlane plane;
  if (plane.Fit(m_Neighbours) == 0) return false;
  double const distance = std::fabs(plane.a * point->x + plane.b * point->y + plane.c - point->z) /
                          std::sqrt(plane.a * plane.a + plane.b * plane.b + 1.0);
  if (!(static_cast<double>(m_fCurrentError) >= distance)) return false;
  m_ErrorStat.Add(distance);
  return true;
}

// Unlike the test against the plane: strict, in single precision, and without the statistics.
bool Decimator::PassDistanceToLine(int index, VERTEX_TYPE type) const {
  TPoint* first = nullptr;
  TPoint* second = nullptr;
  if (type == VERTEX_ON_HULL) {
    GetBoundaryNeighbours(index, first, second);
  } else {
    GetInteriorNeighbours(index, first, second);
  }
  if (first == nullptr && second == nullptr) return false;
  double const distance = TEdge(first, second).XY_Distance(*m_pSource->GetPoint(index));
  return m_fCurrentError > static_cast<float>(distance);
}

void Decimator::GetBoundaryNeighbours(int index, TPoint*& first, TPoint*& second) const {
  first = second = nullptr;
  m_pSource->GetNeighbours(m_pSource->GetPoint(index), m_Neighbours);
  for (TPoint* neighbour : m_Neighbours) {
    if (!m_pSource->PointIsOnHull(neighbour)) continue;
    if (first == nullptr) {
      first = neighbour;
    } else if (neighbour != first) {
      second = neighbour;
    }
  }
  if (first == nullptr || second == nullptr) first = second = nullptr;
}

void Decimator::GetInteriorNeighbours(int index, TPoint*& first, TPoint*& second) const {
  first = second = nullptr;
  TPoint const* const point = m_pSource->GetPoint(index);
  TTriangle* const start = FirstTriangleOf(*m_pSource, point);
  if (start == nullptr) return;

  float const limit = std::cos(m_fCurrentFeatureAngle);
  qeltin::detail::FanWalk walk(*point, start);
  while (walk.Next() != nullptr) {
    // An angle against a cosine: hosts rest on the points that this chooses.
    if (AngleBetween(*walk.Current(), *walk.Next()) > limit) {
      TPoint* const end = GetSharedEdge(walk.Current(), walk.Next()).m_pEnd;
      (first == nullptr ? first : second) = end;
    }
    if (second != nullptr) return;
    if (walk.IsNextTheFirst() || !walk.Step(first == nullptr ? 0 : 1)) break;
  }
  first = nullptr;
}

TEdge Decimator::GetSharedEdge(TTriangle const* a, TTriangle const* b) const {
  TEdge edge;
  for (TPoint* corner : a->m_pVertex) {
    if (b->XY_FindVertex(*corner) == nullptr) continue;
    (edge.m_pStart == nullptr ? edge.m_pStart : edge.m_pEnd) = corner;
  }
  return edge;
}
