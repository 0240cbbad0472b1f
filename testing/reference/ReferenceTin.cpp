#include "testing/reference/ReferenceTin.h"

#include <cstdlib>

#include "testing/reference/StatedGeometry.h"

namespace qeltin::testing {

namespace {

constexpr double LARGEST_FLOAT = 3.4028234663852886e38;

}  // namespace

ReferenceTin::ReferenceTin(ReferenceTin const& other)
    : m_WorldMin(other.m_WorldMin),
      m_WorldMax(other.m_WorldMax),
      m_Min(other.m_Min),
      m_Max(other.m_Max),
      m_pPoints(std::make_unique<TArray<TPoint>>(*other.m_pPoints)),
      m_pTriangles(std::make_unique<TArray<TTriangle>>(*other.m_pTriangles)),
      m_bExhausted(other.m_bExhausted) {
  auto const point = [&](TPoint* p) {
    return p == nullptr ? nullptr : m_pPoints->m_pData + other.Slot(p);
  };
  auto const triangle = [&](TTriangle* t) {
    return t == nullptr ? nullptr : m_pTriangles->m_pData + other.Slot(t);
  };
  for (int i = 0; i < m_pTriangles->m_iCapacity; ++i) {
    for (TPoint*& corner : m_pTriangles->m_pData[i].m_pVertex) corner = point(corner);
    for (TTriangle*& n : m_pTriangles->m_pData[i].m_pAdjacent) n = triangle(n);
  }
  m_pCurrent = triangle(other.m_pCurrent);
  m_pLastTriangle = triangle(other.m_pLastTriangle);
}

bool ReferenceTin::Init(int points, TPoint const& min, TPoint const& max) {
  if (points == 0) return false;
  m_pPoints = std::make_unique<TArray<TPoint>>(points + 1004);
  m_pTriangles = std::make_unique<TArray<TTriangle>>((points + 1004) * 2);
  m_pCurrent = nullptr;
  m_pLastTriangle = nullptr;
  m_WorldMin = TPoint(min.x - 10 * (max.x - min.x), min.y - 10 * (max.y - min.y),
                      min.z - 10 * (max.z - min.z));
  m_WorldMax = TPoint(max.x + 10 * (max.x - min.x), max.y + 10 * (max.y - min.y),
                      max.z + 10 * (max.z - min.z));
  m_Min = min;
  m_Max = max;
  return true;
}

void ReferenceTin::PrepareCreate(std::vector<IPoint> const& points) {
  TPoint const empty_min(LARGEST_FLOAT, LARGEST_FLOAT, LARGEST_FLOAT);
  TPoint const empty_max(-LARGEST_FLOAT, -LARGEST_FLOAT, -LARGEST_FLOAT);
  m_Min = empty_min;
  m_Max = empty_max;
  TPoint min = empty_min;
  TPoint max = empty_max;
  for (IPoint const& p : points) {
    if (p.x < min.x) min.x = p.x;
    if (p.y < min.y) min.y = p.y;
    if (p.z < min.z) min.z = p.z;
    if (p.x > max.x) max.x = p.x;
    if (p.y > max.y) max.y = p.y;
    if (p.z > max.z) max.z = p.z;
  }
  m_WorldMin = TPoint(min.x - (max.x - min.x) * 10, min.y - (max.y - min.y) * 10,
                      min.z - (max.z - min.z) * 10);
  m_WorldMax = TPoint(max.x + (max.x - m_WorldMin.x) * 10, max.y + (max.y - m_WorldMin.y) * 10,
                      max.z + (max.z - m_WorldMin.z) * 10);
  int const n = static_cast<int>(points.size());
  m_pPoints = std::make_unique<TArray<TPoint>>(n + 1004);
  m_pTriangles = std::make_unique<TArray<TTriangle>>(2 * n + 1000);
  m_pCurrent = nullptr;
  m_pLastTriangle = nullptr;
}

void ReferenceTin::RemoveAllPoints() {
  m_pPoints->m_iCount = 0;
  for (int i = 0; i < m_pPoints->m_iCapacity; ++i) m_pPoints->m_pIndex[i] = i;
}

void ReferenceTin::BuildPointMap() {
  m_pPointMap = std::make_unique<PointMap>();
  for (int i = 0; i < m_pPoints->m_iCount; ++i) m_pPointMap->AddPoint(m_pPoints->At(i));
  for (int i = 0; i < m_pTriangles->m_iCount; ++i) m_pPointMap->AddTriangle(m_pTriangles->At(i));
}

void ReferenceTin::Seed() {
  TPoint* const corner1 = m_pPoints->Add({m_WorldMin.x, m_WorldMin.y, 0.0});
  TPoint* const corner2 = m_pPoints->Add({m_WorldMax.x, m_WorldMin.y, 0.0});
  TPoint* const corner3 = m_pPoints->Add({m_WorldMax.x, m_WorldMax.y, 0.0});
  TPoint* const corner4 = m_pPoints->Add({m_WorldMin.x, m_WorldMax.y, 0.0});
  if (m_pPointMap != nullptr) {
    for (TPoint* corner : {corner1, corner2, corner3, corner4}) m_pPointMap->AddPoint(corner);
  }
  TTriangle* const first = AddTriangle({corner1, corner3, corner2});
  TTriangle* const second = AddTriangle({corner1, corner4, corner3});
  m_pLastTriangle = first;
  first->m_pAdjacent[0] = second;
  second->m_pAdjacent[2] = first;
  stated::CalcTri(*first);
  stated::CalcTri(*second);
}

bool ReferenceTin::InBounds(TPoint const& p) const {
  return p.x >= m_Min.x && p.x <= m_Max.x && p.y >= m_Min.y && p.y <= m_Max.y;
}

bool ReferenceTin::InWorldBounds(TPoint const& p) const {
  return p.x >= m_WorldMin.x && p.x <= m_WorldMax.x && p.y >= m_WorldMin.y && p.y <= m_WorldMax.y;
}

bool ReferenceTin::ReachesOut(TTriangle const& triangle) const {
  return !InBounds(*triangle.m_pVertex[0]) || !InBounds(*triangle.m_pVertex[1]) ||
         !InBounds(*triangle.m_pVertex[2]);
}

TTriangle* ReferenceTin::AddTriangle(TTriangle const& triangle) {
  TTriangle* const added = m_pTriangles->Add(triangle);
  if (ReachesOut(*added)) added->m_Flags |= TRI_OUTSIDE;
  if (m_pPointMap != nullptr) m_pPointMap->AddTriangle(added);
  return added;
}

void ReferenceTin::RemoveTriangle(TTriangle* triangle) {
  for (TTriangle* n : triangle->m_pAdjacent) {
    if (n == nullptr) continue;
    for (TTriangle*& back : n->m_pAdjacent) {
      if (back == triangle) {
        back = nullptr;
        break;
      }
    }
  }
  if (m_pPointMap != nullptr) m_pPointMap->RemoveTriangle(triangle);
}

// Walks from `kept`, and keeps there where it stops.
ReferenceTin::Location ReferenceTin::WalkFrom(TTriangle*& kept, TPoint const& p, int budget) {
  TTriangle* c = kept;
  TTriangle* q = nullptr;
  for (; budget >= 1; --budget) {
    int const s = stated::WhereTri(*c, p);
    if (s == 3) {
      kept = c;
      return {c, false};
    }
    TTriangle* const n = c->m_pAdjacent[s];
    if (n == nullptr) return {nullptr, false};
    if (n != q) {
      q = c;
      c = n;
      continue;
    }
    if (!stated::XY_HasPoint(*c, p) && !stated::XY_HasPoint(*q, p)) return {nullptr, true};
    ++m_iBounces;
    return {stated::XY_HasPoint(*c, p) ? c : q, false};
  }
  return {nullptr, false};
}

ReferenceTin::Location ReferenceTin::Find(TPoint const& p) {
  if (m_pTriangles == nullptr) return {};
  if (m_pCurrent == nullptr) {
    if (m_pTriangles->m_iCount == 0) return {};
    m_pCurrent = m_pTriangles->At(0);
  }
  Location const found = Walk(p, 20);
  if (found.chance || found.triangle == nullptr) return {nullptr, true};
  return {m_pCurrent, false};
}

TTriangle* ReferenceTin::FindBySample(TPoint const& p) {
  int const count = m_pTriangles->m_iCount;
  int const divisor = count > 1 ? count - 1 : 1;
  double const spacing =
      ((m_Min.x - m_Max.x) * (m_Min.x - m_Max.x) + (m_Min.y - m_Max.y) * (m_Min.y - m_Max.y)) /
      static_cast<double>(m_pPoints->m_iCount);
  int const samples = count < 50 ? count : count / 5;
  double least = 9e20;
  for (int i = 0; i < samples; ++i) {
    TTriangle const& t = *m_pTriangles->At(std::rand() % divisor);
    double const dx = (t.m_pVertex[0]->x + t.m_pVertex[1]->x + t.m_pVertex[2]->x) / 3.0 - p.x;
    double const dy = (t.m_pVertex[0]->y + t.m_pVertex[1]->y + t.m_pVertex[2]->y) / 3.0 - p.y;
    double const distance = dx * dx + dy * dy;
    if (least > distance) {
      least = distance;
      m_iBest = i;
    }
    if (spacing >= least) break;
  }
  m_pCurrent = m_pTriangles->At(m_iBest);

  // The walk of a whole triangle count, jumps and all.
  TTriangle* c = m_pCurrent;
  TTriangle* q = nullptr;
  for (int budget = count; budget >= 1; --budget) {
    int const s = stated::WhereTri(*c, p);
    if (s == 3) return m_pCurrent = c;
    TTriangle* const n = c->m_pAdjacent[s];
    if (n == nullptr) return nullptr;
    if (n != q) {
      q = c;
      c = n;
      continue;
    }
    if (stated::XY_HasPoint(*c, p)) return c;
    if (stated::XY_HasPoint(*q, p)) return q;
    c = m_pTriangles->At(std::rand() % divisor);
  }
  return nullptr;
}

}  // namespace qeltin::testing
