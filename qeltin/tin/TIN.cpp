#include "qeltin/tin/TIN.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <limits>

#include "qeltin/platform/Clock.h"
#include "qeltin/tin/Cavity.h"
#include "qeltin/tin/Removal.h"

namespace {

constexpr double LARGEST_FLOAT = 3.4028234663852886e38;

int Capacity(long long slots) {
  return static_cast<int>(std::min<long long>(slots, std::numeric_limits<int>::max()));
}

}  // namespace

TIN::TIN() = default;

TIN::TIN(TPoint const& min, TPoint const& max, int points) {
  if (!Init(points, min, max)) {
    ResetToEmptyBoxes();
    m_WorldMin = min;
    m_WorldMax = max;
  }
  std::srand(timeGetTime());
}

TIN::TIN(TIN const& other)
    : m_WorldMin(other.m_WorldMin),
      m_WorldMax(other.m_WorldMax),
      m_Min(other.m_Min),
      m_Max(other.m_Max),
      m_pLastTriangle(other.m_pLastTriangle),
      m_pBorder(other.m_pBorder),
      m_pStartPoints(other.m_pStartPoints),
      m_bOwnsTrimbleArrays(false) {
  if (other.m_pPoints != nullptr) m_pPoints = new TArray<TPoint>(*other.m_pPoints);
  if (other.m_pTriangles != nullptr) m_pTriangles = new TArray<TTriangle>(*other.m_pTriangles);
  SeatTriangulator();
  std::srand(timeGetTime());
}

TIN::~TIN() {
  delete m_pTriangles;
  delete m_pPoints;
  delete m_pPointMap;
  if (!m_bOwnsTrimbleArrays) return;
  delete m_pBorder;
  delete m_pStartPoints;
}

bool TIN::Init(int points, TPoint const& min, TPoint const& max) {
  if (points == 0) return false;
  TPoint const low = min;  // the arguments may be this surface's own corners, which Clear zeroes
  TPoint const high = max;
  Clear();
  constexpr int SEED_AND_MARGIN = 4 + 1000;
  long long const capacity = 0LL + points + SEED_AND_MARGIN;
  MakePools(capacity, capacity * 2);
  SeatTriangulator();
  m_WorldMin = TPoint(low.x - 10 * (high.x - low.x), low.y - 10 * (high.y - low.y),
                      low.z - 10 * (high.z - low.z));
  m_WorldMax = TPoint(high.x + 10 * (high.x - low.x), high.y + 10 * (high.y - low.y),
                      high.z + 10 * (high.z - low.z));
  m_Min = low;
  m_Max = high;
  return true;
}

void TIN::Clear() {
  DropPools();
  m_WorldMin = m_WorldMax = m_Min = m_Max = TPoint();
}

void TIN::GetWorldBounds(TPoint& min, TPoint& max) const {
  min = m_WorldMin;
  max = m_WorldMax;
}

void TIN::GetBounds(TPoint& min, TPoint& max) const {
  min = m_Min;
  max = m_Max;
}

bool TIN::InWorldBounds(TPoint const& p) const {
  return p.x >= m_WorldMin.x && p.x <= m_WorldMax.x && p.y >= m_WorldMin.y && p.y <= m_WorldMax.y;
}

bool TIN::InBounds(TTriangle const& t) const {
  return InBounds(*t.m_pVertex[0]) && InBounds(*t.m_pVertex[1]) && InBounds(*t.m_pVertex[2]);
}

bool TIN::InWorldBounds(TTriangle const& t) const {
  return InWorldBounds(*t.m_pVertex[0]) && InWorldBounds(*t.m_pVertex[1]) &&
         InWorldBounds(*t.m_pVertex[2]);
}

void TIN::RemoveAllPoints() {
  m_pPoints->Reset();
  m_bTiling = false;
}

TTriangle* TIN::AddTriangle(TTriangle const& triangle) {
  m_bTiling = false;
  TTriangle* const slot = m_pTriangles->Add(triangle);
  bool const complete = slot->m_pVertex[0] && slot->m_pVertex[1] && slot->m_pVertex[2];
  if (!complete) return slot;
  if (!InBounds(*slot)) slot->m_Flags |= TRI_OUTSIDE;
  if (m_pPointMap != nullptr) m_pPointMap->AddTriangle(slot);
  return slot;
}

void TIN::RemoveTriangle(TTriangle* triangle, bool release) {
  CutOff(triangle);
  if (m_pPointMap != nullptr) m_pPointMap->RemoveTriangle(triangle);
  if (release) m_pTriangles->Remove(triangle);
}

void TIN::CutOff(TTriangle* triangle) {
  m_bTiling = false;
  m_Triangulator.ForgetIndex();
  for (TTriangle* neighbour : triangle->m_pAdjacent) {
    if (neighbour == nullptr) continue;
    for (TTriangle*& back : neighbour->m_pAdjacent) {
      if (back == triangle) {
        back = nullptr;
        break;
      }
    }
  }
}

bool TIN::BuildPointMap() {
  delete m_pPointMap;
  m_pPointMap = new PointMap;
  m_pPointMap->Build(*this);
  return true;
}

bool TIN::GetNeighbours(TPoint const* point, std::vector<TPoint*>& result) const {
  result.clear();
  for (TTriangle const* triangle : m_pPointMap->FindPoint(point).GetTriangles()) {
    for (TPoint* corner : triangle->m_pVertex) {
      if (corner != point && std::find(result.begin(), result.end(), corner) == result.end()) {
        result.push_back(corner);
      }
    }
  }
  return !result.empty();
}

void TIN::ResetToEmptyBoxes() {
  EmptyDataBounds();
  m_WorldMin = m_Min;
  m_WorldMax = m_Max;
}

void TIN::EmptyDataBounds() {
  m_Min = TPoint(LARGEST_FLOAT, LARGEST_FLOAT, LARGEST_FLOAT);
  m_Max = TPoint(-LARGEST_FLOAT, -LARGEST_FLOAT, -LARGEST_FLOAT);
}

void TIN::MakePools(long long points, long long triangles) {
  DropPools();
  m_pPoints = new TArray<TPoint>(Capacity(points));
  m_pTriangles = new TArray<TTriangle>(Capacity(triangles));
}

void TIN::DropPools() {
  delete m_pPoints;
  delete m_pTriangles;
  m_pPoints = nullptr;
  m_pTriangles = nullptr;
  m_pLastTriangle = nullptr;
  m_bTiling = false;
  m_Triangulator.Seat(this, nullptr);
  if (m_pPointMap != nullptr) m_pPointMap->Clear();
}

void TIN::ReplacePools(TArray<TPoint>* points, TArray<TTriangle>* triangles) {
  DropPools();
  m_pPoints = points;
  m_pTriangles = triangles;
  delete m_pPointMap;
  m_pPointMap = nullptr;
  m_Triangulator.Seat(this, m_pTriangles);
}

void TIN::SeatTriangulator() {
  m_Triangulator.Seat(this, m_pTriangles);
  std::srand(static_cast<unsigned>(std::clock()));
}
