#include "qeltin/contour/TINContourCreator.h"

#include <cmath>
#include <typeinfo>

#include "qeltin/contour/LevelPlan.h"
#include "qeltin/tin/TIN.h"

namespace {

// Heights closer than this to a level, or to each other, count as equal; also the step of a lift.
constexpr double SAME_HEIGHT = 1e-8;

constexpr unsigned char CLOSED_TO_WALKS = TRI_VISITED | TRI_FILTERED | TRI_OUTSIDE;

int Next(int side) { return side == 2 ? 0 : side + 1; }

int LowestSide(int mask) { return (mask & 1) != 0 ? 0 : (mask & 2) != 0 ? 1 : 2; }
int HighestSide(int mask) { return (mask & 4) != 0 ? 2 : (mask & 2) != 0 ? 1 : 0; }

bool IsFlat(TTriangle const& t) {
  double const z1 = t.m_pVertex[1]->z;
  return std::fabs(t.m_pVertex[0]->z - z1) < SAME_HEIGHT &&
         std::fabs(z1 - t.m_pVertex[2]->z) < SAME_HEIGHT;
}

void SetFlat(TTriangle& t) {
  t.m_Flags = static_cast<unsigned char>(t.m_Flags & ~TRI_VISITED);
  if (IsFlat(t)) t.m_Flags |= TRI_VISITED;
}

// The mark comes before the lifts.
void Ready(TTriangle& t, double level) {
  SetFlat(t);
  for (TPoint* vertex : t.m_pVertex) {
    if (std::fabs(vertex->z - level) < SAME_HEIGHT) vertex->z += SAME_HEIGHT;
  }
}

// Corners lie anywhere in memory: asked for this many triangles ahead, they are there in time.
constexpr int AHEAD = 12;

void Prefetch(TTriangle const& t) {
  for (TPoint const* vertex : t.m_pVertex) __builtin_prefetch(vertex, 1);
}

// Keeps a plan in `place` for as long as this object lives.
class PlanInUse {
 public:
  PlanInUse(qeltin::detail::LevelPlan*& place, qeltin::detail::LevelPlan& plan) : m_Place(place) {
    m_Place = &plan;
  }
  ~PlanInUse() { m_Place = nullptr; }
  PlanInUse(PlanInUse const&) = delete;
  PlanInUse& operator=(PlanInUse const&) = delete;

 private:
  qeltin::detail::LevelPlan*& m_Place;
};

}  // namespace

int TINContourCreator::AddLevel(double level, ContourList& list, std::atomic<bool> const& running) {
  m_pRunning = &running;
  if (m_pTin == nullptr) return 0;
  m_Contours.clear();
  m_dLevel = level;
  m_iNextTriangle = 0;
  if (m_pPlan != nullptr) m_pPlan->GoTo(level);
  ClearFlags();
  int mask = 0;
  while (TTriangle* const start = FindStartTriangle(mask)) GenerateContour(start, mask);
  if (m_Contours.empty()) return 0;
  ConnectContours();
  DirectContours();
  list.Add(m_Contours);
  return static_cast<int>(m_Contours.size());
}

int TINContourCreator::AddLevels(std::vector<double> const& levels, ContourList& list,
                                 std::atomic<bool> const& running) {
  if (m_pTin == nullptr) return 0;
  int const before = list.Size();
  // A class that overrides AddLevel may move heights between the levels: nothing is planned then.
  if (levels.size() > 1 && typeid(*this) == typeid(TINContourCreator)) {
    qeltin::detail::LevelPlan plan(levels);
    PlanInUse const use(m_pPlan, plan);
    AddEach(levels, list, running);
  } else {
    AddEach(levels, list, running);
  }
  return list.Size() - before;
}

void TINContourCreator::AddEach(std::vector<double> const& levels, ContourList& list,
                                std::atomic<bool> const& running) {
  for (double const level : levels) {
    if (!running.load(std::memory_order_relaxed)) return;
    AddLevel(level, list, running);
  }
}

void TINContourCreator::ClearFlags() {
  if (m_pPlan != nullptr && !m_pPlan->NeedsAll()) {
    ClearPlannedFlags();
    return;
  }
  for (int i = 0, count = m_pTin->GetNumberOfTriangles(); i < count; ++i) {
    if (!IsRunning()) return;
    if (i + AHEAD < count) Prefetch(*m_pTin->GetTriangle(i + AHEAD, true));
    TTriangle& triangle = *m_pTin->GetTriangle(i, true);
    Ready(triangle, m_dLevel);
    if (m_pPlan != nullptr) m_pPlan->Note(i, triangle);
  }
  if (m_pPlan != nullptr) m_pPlan->Readied();
}

void TINContourCreator::ClearPlannedFlags() {
  if (!IsRunning()) return;
  for (TTriangle* triangle : m_pPlan->Beside()) SetFlat(*triangle);
  for (int const position : m_pPlan->ToReady()) {
    if (!IsRunning()) return;
    Ready(*m_pTin->GetTriangle(position, true), m_dLevel);
  }
  m_pPlan->Readied();
}

TTriangle* TINContourCreator::FindStartTriangle(int& mask) {
  int const count = m_pPlan == nullptr ? m_pTin->GetNumberOfTriangles()
                                       : static_cast<int>(m_pPlan->Near().size());
  while (m_iNextTriangle < count) {
    if (!IsRunning()) return nullptr;
    int const i = m_iNextTriangle++;
    TTriangle* const triangle = m_pTin->GetTriangle(
        m_pPlan == nullptr ? i : m_pPlan->Near()[static_cast<std::size_t>(i)], true);
    if ((triangle->m_Flags & CLOSED_TO_WALKS) != 0) continue;
    int const crossed = ClassifyTriangle(triangle);
    if (crossed == 0) continue;
    mask = crossed;
    return triangle;
  }
  return nullptr;
}

int TINContourCreator::ClassifyTriangle(TTriangle const* triangle) const {
  int mask = 0;
  for (int side = 0; side < 3; ++side) {
    double const a = triangle->m_pVertex[side]->z;
    double const b = triangle->m_pVertex[Next(side)]->z;
    if ((m_dLevel >= a && b > m_dLevel) || (a >= m_dLevel && m_dLevel > b)) mask |= 1 << side;
  }
  return mask;
}

void TINContourCreator::GenerateContour(TTriangle* start, int start_mask) {
  Contour contour(m_dLevel);
  Walk(contour, start, nullptr, start_mask);

  TTriangle* const across = start->m_pAdjacent[LowestSide(start_mask)];
  if (across != nullptr && !across->IsHidden()) {
    Walk(contour, start, across, ClassifyTriangle(start));
  } else {
    int const side = HighestSide(start_mask);
    contour.Line().AddBack(start->m_pAdjacent[side] == nullptr ? Point() : CrossingOn(start, side));
  }
  m_Contours.push_back(contour);
}

void TINContourCreator::Walk(Contour& contour, TTriangle* triangle, TTriangle* previous, int mask) {
  while (true) {
    contour.Line().AddBack(GetNextPoint(previous, triangle, mask));
    triangle->m_Flags |= TRI_VISITED;
    if (mask == 0 && m_pPlan != nullptr) m_pPlan->MarkedBeside(triangle);
    TTriangle* next = nullptr;
    for (int side = 0; side < 3 && next == nullptr; ++side) {
      if ((mask & 1 << side) == 0) continue;
      if (triangle->m_pAdjacent[side] != previous) next = triangle->m_pAdjacent[side];
    }
    if (next == nullptr || (next->m_Flags & CLOSED_TO_WALKS) != 0) return;
    previous = triangle;
    triangle = next;
    mask = ClassifyTriangle(triangle);
  }
}

TINContourCreator::Point TINContourCreator::CrossingOn(TTriangle const* triangle, int side) const {
  TPoint const& base = *triangle->m_pVertex[side];
  TPoint const& far = *triangle->m_pVertex[Next(side)];
  double const t = CompCutDist(base.z, far.z);
  return {(far.x - base.x) * t + base.x, (far.y - base.y) * t + base.y};
}

TINContourCreator::Point TINContourCreator::GetNextPoint(TTriangle const* previous,
                                                         TTriangle const* triangle,
                                                         int mask) const {
  for (int side = 0; side < 3; ++side) {
    if ((mask & 1 << side) != 0 && triangle->m_pAdjacent[side] != previous) {
      return CrossingOn(triangle, side);
    }
  }
  return {};
}

void TINContourCreator::DirectContours() {
  for (Contour& contour : m_Contours) {
    if (!IsRunning()) return;
    GTL::Line<Point> const segment = contour.Line().GetSegment(0);
    Point const from = segment.GetBegin();
    Point const along = segment.GetEnd() - from;
    Point const middle = from + along * 0.5;
    TTriangle const* const triangle = m_pTin->GetTriangleWithPoint(TPoint(middle.x, middle.y, 0.0));
    if (triangle == nullptr) continue;
    for (TPoint const* vertex : triangle->m_pVertex) {
      double const cross = along.x * (vertex->y - from.y) - along.y * (vertex->x - from.x);
      bool const left = cross > 0.0;
      bool const right = cross < 0.0;
      if (!left && !right) continue;
      if ((left && vertex->z > m_dLevel) || (right && m_dLevel > vertex->z)) contour.Reverse();
      if (vertex->z != m_dLevel) break;
    }
  }
}
