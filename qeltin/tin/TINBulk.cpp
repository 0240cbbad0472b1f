#include <cassert>
#include <cstdlib>

#include "qeltin/tin/BulkMesh.h"
#include "qeltin/tin/InsertionOrder.h"
#include "qeltin/tin/TIN.h"

using qeltin::detail::BulkMesh;

void TIN::LoadPoint(double x, double y, double z) {
  if (m_pPointMap != nullptr) m_pPointMap->ForgetIndex();
  m_pPoints->Add(TPoint(x, y, z));
}

bool TIN::Triangulate() {
  m_pPoints->Shuffle();
  int const loaded = m_pPoints->m_iCount;
  if (!Seed()) return false;
  for (int slot : InsertInBulk(loaded)) {
    TPoint* const p = m_pPoints->m_pData + slot;
    AddPoint(p, m_bTiling ? m_Triangulator.FindNext(*p) : nullptr);
  }
  for (int i = loaded; i < m_pPoints->m_iCount; ++i) AddPoint(m_pPoints->At(i), nullptr);
  return false;  // on success too
}

std::vector<int> TIN::InsertInBulk(int count) {
  if (!m_bTiling || m_pPointMap != nullptr || !InWorldBounds(m_Min) || !InWorldBounds(m_Max) ||
      !BulkMesh::Fits(*m_pTriangles, count)) {
    return qeltin::detail::OrderInRounds(m_pPoints->m_pData, m_pPoints->m_pIndex, count);
  }
  BulkMesh mesh(*m_pPoints, m_pTriangles, count, {m_Min, m_Max}, m_dReach);
  std::vector<int> refused;
  for (int i = 0; i < count; ++i) {
    if (!mesh.Insert(i)) refused.push_back(mesh.SlotOf(i));
  }
  mesh.Finish();
  m_Triangulator.m_pCurrent = m_pTriangles->At(mesh.FoundIn());
  m_Min = mesh.Bounds().min;
  m_Max = mesh.Bounds().max;
  return refused;
}

bool TIN::Create(std::vector<IPoint>* points) {
  assert(points != nullptr);
  ResetToEmptyBoxes();
  for (IPoint const& p : *points) {
    if (p.x < m_WorldMin.x) m_WorldMin.x = p.x;
    if (p.y < m_WorldMin.y) m_WorldMin.y = p.y;
    if (p.z < m_WorldMin.z) m_WorldMin.z = p.z;
    if (p.x > m_WorldMax.x) m_WorldMax.x = p.x;
    if (p.y > m_WorldMax.y) m_WorldMax.y = p.y;
    if (p.z > m_WorldMax.z) m_WorldMax.z = p.z;
  }
  TPoint const min = m_WorldMin;
  TPoint const max = m_WorldMax;
  m_WorldMin = TPoint(min.x - (max.x - min.x) * 10, min.y - (max.y - min.y) * 10,
                      min.z - (max.z - min.z) * 10);
  // From the lower corner just moved, so that the box reaches 110 widths up and 10 down.
  m_WorldMax = TPoint(max.x + (max.x - m_WorldMin.x) * 10, max.y + (max.y - m_WorldMin.y) * 10,
                      max.z + (max.z - m_WorldMin.z) * 10);

  auto const count = static_cast<long long>(points->size());
  MakePools(count + 1004, count * 2 + 1000);
  SeatTriangulator();
  for (IPoint const& p : *points) AddPoint(TPoint(p));
  return true;
}

void TIN::InsertInRandomOrder(std::vector<TPoint> const& points) {
  for (int i : qeltin::detail::RandomOrder(points.data(), static_cast<int>(points.size()))) {
    AddPoint(points[static_cast<std::size_t>(i)]);
  }
}
