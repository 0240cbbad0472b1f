#include <memory>
#include <utility>

#include "qeltin/tin/TIN.h"

namespace {

bool IsOnABoxLine(TPoint const& p, TPoint const& min, TPoint const& max) {
  return p.x == min.x || p.x == max.x || p.y == min.y || p.y == max.y;
}

}  // namespace

void TIN::AddPointsOffTheBox(TArray<TPoint> const& points, TPoint const& min, TPoint const& max) {
  for (int i = 0; i < points.m_iCount; ++i) {
    TPoint const& p = *points.At(i);
    // Seed corners, and whatever else stands on a line of the world box.
    if (!IsOnABoxLine(p, min, max)) AddPoint(p);
  }
}

TIN& TIN::operator+=(TIN const& other) {
  if (m_pPoints == nullptr || other.m_pPoints == nullptr) return *this;
  // What this surface and `other` were, which may be the same one.
  std::unique_ptr<TArray<TPoint> const> const mine(m_pPoints);
  TArray<TPoint> const& theirs = *other.m_pPoints;
  TPoint const myMin = m_WorldMin;
  TPoint const myMax = m_WorldMax;
  TPoint const theirMin = other.m_WorldMin;
  TPoint const theirMax = other.m_WorldMax;

  m_WorldMin = TPoint::Min(myMin, theirMin);
  m_WorldMax = TPoint::Max(myMax, theirMax);
  EmptyDataBounds();
  m_pPoints = nullptr;
  long long const capacity = 0LL + mine->m_iCapacity + theirs.m_iCapacity;
  MakePools(capacity, capacity * 2 + 1000);
  SeatTriangulator();

  AddPointsOffTheBox(*mine, myMin, myMax);
  AddPointsOffTheBox(theirs, theirMin, theirMax);
  return *this;
}
