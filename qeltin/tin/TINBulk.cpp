#include <cassert>
#include <cstdlib>

#include "qeltin/tin/InsertionOrder.h"
#include "qeltin/tin/TIN.h"

using qeltin::detail::OrderInRounds;

namespace {

constexpr std::size_t LOOK_AHEAD = 8;  // points fetched before their turn

}  // namespace

void TIN::LoadPoint(double x, double y, double z) {
  if (m_pPointMap != nullptr) m_pPointMap->ForgetIndex();
  m_pPoints->Add(TPoint(x, y, z));
}

bool TIN::Triangulate() {
  m_pPoints->Shuffle();
  int const loaded = m_pPoints->m_iCount;
  if (!Seed()) return false;

  TPoint* const points = m_pPoints->m_pData;
  std::vector<int> const order = OrderInRounds(points, m_pPoints->m_pIndex, loaded);
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i + LOOK_AHEAD < order.size()) __builtin_prefetch(points + order[i + LOOK_AHEAD]);
    TPoint* const p = points + order[i];
    AddPoint(p, m_bTiling ? m_Triangulator.FindNext(*p) : nullptr);
  }
  for (int i = loaded; i < m_pPoints->m_iCount; ++i) AddPoint(m_pPoints->At(i), nullptr);
  return false;  // on success too
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
