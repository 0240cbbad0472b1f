#include <algorithm>
#include <cmath>

#include "qeltin/kernel/SideTest.h"
#include "qeltin/tin/Cavity.h"
#include "qeltin/tin/TIN.h"

TPoint* TIN::AddPoint(double x, double y, double z) { return AddPoint(TPoint(x, y, z)); }

TPoint* TIN::AddPoint(TPoint const& p) {
  if (!InWorldBounds(p)) return nullptr;
  if (m_pPoints->m_iCount == 0 && !Seed()) return nullptr;
  TTriangle* const triangle = m_Triangulator.FindToInsert(p);
  if (triangle == nullptr || m_pPoints->IsFull()) return nullptr;
  if (m_pPointMap != nullptr) m_pPointMap->ForgetIndex();
  return AddPoint(m_pPoints->Add(p), triangle);
}

TPoint* TIN::AddPoint(TPoint* p, TTriangle* start) {
  if (m_pPointMap != nullptr) m_pPointMap->AddPoint(p);
  if (start == nullptr) start = m_Triangulator.Find(*p);
  if (start == nullptr) return nullptr;
  if (TPoint* const vertex = start->XY_FindVertex(*p)) return vertex;

  if (m_pCavity == nullptr) m_pCavity = std::make_unique<qeltin::detail::Cavity>();
  if (!m_pCavity->Replace(*this, p, start)) return nullptr;

  if (p->x < m_Min.x) m_Min.x = p->x;
  if (p->y < m_Min.y) m_Min.y = p->y;
  if (p->z < m_Min.z) m_Min.z = p->z;
  if (p->x > m_Max.x) m_Max.x = p->x;
  if (p->y > m_Max.y) m_Max.y = p->y;
  if (p->z > m_Max.z) m_Max.z = p->z;
  return p;
}

// Lays the seed rectangle over the world box:
//
//   4 ----- 3     first (1, 3, 2), second (1, 4, 3), both clockwise, sharing the diagonal.
//   |second/|
//   |    /  |
//   |  /    |
//   |/first |
//   1 ----- 2
//
// Returns false, with nothing changed, where a pool lacks room.
bool TIN::Seed() {
  if (m_pPoints->m_iCapacity - m_pPoints->m_iCount < 4) return false;
  if (m_pTriangles->m_iCapacity - m_pTriangles->m_iCount < 2) return false;
  if (m_pPointMap != nullptr) m_pPointMap->ForgetIndex();
  TPoint* const corner1 = m_pPoints->Add(TPoint(m_WorldMin.x, m_WorldMin.y, 0.0));
  TPoint* const corner2 = m_pPoints->Add(TPoint(m_WorldMax.x, m_WorldMin.y, 0.0));
  TPoint* const corner3 = m_pPoints->Add(TPoint(m_WorldMax.x, m_WorldMax.y, 0.0));
  TPoint* const corner4 = m_pPoints->Add(TPoint(m_WorldMin.x, m_WorldMax.y, 0.0));
  if (m_pPointMap != nullptr) {
    for (TPoint* corner : {corner1, corner2, corner3, corner4}) m_pPointMap->AddPoint(corner);
  }

  TTriangle* const first = AddTriangle(TTriangle(corner1, corner3, corner2));
  TTriangle* const second = AddTriangle(TTriangle(corner1, corner4, corner3));
  m_pLastTriangle = first;
  first->m_pAdjacent[0] = second;
  second->m_pAdjacent[2] = first;
  first->CalcTri();
  second->CalcTri();

  using qeltin::detail::CertainSide;
  using qeltin::detail::Side;
  m_dReach = std::max(std::fabs(m_WorldMin.x), std::fabs(m_WorldMax.x)) +
             std::max(std::fabs(m_WorldMin.y), std::fabs(m_WorldMax.y));
  m_bTiling = m_pTriangles->m_iCount == 2 &&
              CertainSide(*corner1, *corner3, *corner2) == Side::Right &&
              CertainSide(*corner1, *corner4, *corner3) == Side::Right;
  return true;
}
