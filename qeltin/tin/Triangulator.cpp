#include "qeltin/tin/Triangulator.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <map>

#include "qeltin/kernel/SideTest.h"
#include "qeltin/tin/LocationIndex.h"
#include "qeltin/tin/SureWalk.h"
#include "qeltin/tin/TIN.h"

using qeltin::detail::LocationIndex;
using qeltin::detail::SideErrorWithin;
using qeltin::detail::SureWalk;

namespace {

constexpr double NEAR_SIDES = 8.0;      // of the last triangle; beyond, an index is asked at once
constexpr int SMALLEST_INDEXED = 2000;  // triangles; walking fewer is cheaper than an index
constexpr int SHORT_WALK = 100;         // steps that the walk to a point to be inserted may take
constexpr int COARSE = 16;              // triangles for each that a first index knows
constexpr int TRIANGLES_A_STEP = 4;     // that an index takes in while a long walk takes a step
constexpr int TRIANGLES_A_QUERY = 64;   // that it takes in while a coarse one leads a query

double Longer(double width, double height) { return std::max(std::fabs(width), std::fabs(height)); }

// Returns true iff an index is asked before a walk from `t`, whose circle is at hand, to a point to
// be inserted: beyond 5 circumradii.
bool IsOffCircle(TTriangle const& t, TPoint const& p) {
  double const dx = p.x - t.m_CentreX;
  double const dy = p.y - t.m_CentreY;
  return dx * dx + dy * dy > 25.0 * t.m_RadiusSq;
}

// Returns true iff `p` is so near to a corner that the bands of a triangle behind it may meet
// there.
bool IsAtCorner(TTriangle const& t, TPoint const& p) { return t.XY_FindVertex(p) != nullptr; }

// Returns true only where `p` is inside by more than the band of the side test, so that no
// neighbour accepts it, and away from the corners, where the bands of a triangle behind meet.
bool IsWellInside(TTriangle const& t, TPoint const& p) {
  if (IsAtCorner(t, p)) return false;
  for (int side = 0; side < 3; ++side) {
    TPoint const& from = *t.m_pVertex[side];
    TPoint const& to = *t.m_pVertex[side == 2 ? 0 : side + 1];
    double const error = SideErrorWithin(std::max(
        std::fabs(p.x) + std::fabs(p.y),
        std::max(std::fabs(from.x) + std::fabs(from.y), std::fabs(to.x) + std::fabs(to.y))));
    if (!qeltin::detail::SideProduct(from, to, p, error).PassesBeyondBand()) return false;
  }
  return true;
}

[[gnu::always_inline]] inline void PrefetchAround(TTriangle const& t) {
  for (TTriangle const* const beside : t.m_pAdjacent) {
    if (beside == nullptr) continue;
    __builtin_prefetch(beside);
    __builtin_prefetch(&beside->m_Flags);  // a record may lie across two lines
  }
}

double SquaredDistanceToCorner(TTriangle const& t, TPoint const& p) {
  double nearest = std::numeric_limits<double>::infinity();
  for (TPoint const* corner : t.m_pVertex) {
    nearest = std::min(nearest, p.XY_Distance(*corner, true));
  }
  return nearest;
}

// Returns true iff the next step from `t` towards `p` leaves the mesh. No step is sure of a place
// at infinity.
bool LeadsOut(TTriangle const& t, TPoint const& p) {
  if (!std::isfinite(p.x) || !std::isfinite(p.y)) return false;
  int const side = t.WhereTri(p);
  return side != 3 && t.m_pAdjacent[side] == nullptr;
}

}  // namespace

Triangulator::Triangulator() = default;
Triangulator::~Triangulator() = default;

void Triangulator::Seat(TIN* tin, TArray<TTriangle>* triangles) {
  m_pTin = tin;
  m_pTriangles = triangles;
  m_pCurrent = nullptr;
  m_iBest = 0;
  ForgetIndex();
}

void Triangulator::ForgetIndex() {
  m_pIndex.reset();
  m_pFineIndex.reset();
  m_iIndexed = 0;
  m_iLongSteps = 0;
  m_iFarQueries = 0;
  m_iVainChecks = 0;
  m_Fan.Forget();
}

TTriangle* Triangulator::Find(TPoint const& p) { return Find(p.x, p.y); }

TTriangle* Triangulator::Find(double x, double y) {
  if (m_pCurrent == nullptr || !IsSureGround(x, y)) return FindWithCare({x, y});
  if (m_pIndex != nullptr && IsFar(*m_pCurrent, x, y)) {
    if (TTriangle* const found = FindFar(x, y)) return found;
    return FindWithCare({x, y});
  }
  SureWalk walk(m_pCurrent, x, y, SideErrorWithin(m_pTin->m_dReach));
  if (walk.Run(CHEAP_WALK) != SureWalk::End::There) return FindWithCare({x, y});
  if (walk.Steps() > 0) walk.FetchCornersAround();
  m_pCurrent = walk.Current();
  return m_pCurrent;
}

bool Triangulator::IsSureGround(double x, double y) const {
  return m_pTin->m_bTiling && m_pTin->m_dReach <= SureWalk::LARGEST_REACH &&
         m_pTin->IsWithinReach({x, y});
}

// Returns true iff an index, where there is one, is asked before a walk from `t` to the place is
// tried.
bool Triangulator::IsFar(TTriangle const& t, double x, double y) {
  TPoint const& a = *t.m_pVertex[0];
  TPoint const& b = *t.m_pVertex[1];
  TPoint const& c = *t.m_pVertex[2];
  double const longest = std::max(Longer(b.x - a.x, b.y - a.y), Longer(c.x - a.x, c.y - a.y));
  return Longer(x - a.x, y - a.y) > NEAR_SIDES * longest;
}

TTriangle* Triangulator::FindWithCare(TPoint const& p) {
  if (m_pTriangles == nullptr) return nullptr;
  if (m_pCurrent == nullptr) {
    if (m_pTriangles->m_iCount <= 0) return nullptr;
    m_pCurrent = m_pTriangles->At(0);
  }
  if (Walk(p, CHEAP_WALK) != nullptr) return m_pCurrent;  // not what the walk returned
  if (m_pTin->m_pStartPoints != nullptr && m_pTin->m_pStartPoints->m_iCount > 0) {
    return FindByStartPoints(p);
  }
  if (m_pTriangles->m_iCount >= SMALLEST_INDEXED) {
    if (TTriangle* const found = FindByIndex(p)) return found;
    if (m_pTin->m_bTiling && LeadsOut(*m_pCurrent, p)) return nullptr;  // a sample would not help
  }
  return FindBySample(p);
}

TTriangle* Triangulator::Walk(TPoint const& p, int budget) {
  int steps = 0;
  return Walk(p, budget, steps);
}

TTriangle* Triangulator::Walk(TPoint const& p, int budget, int& steps) {
  TTriangle* current = m_pCurrent;
  TTriangle* previous = nullptr;
  steps = 0;
  if (IsSureGround(p.x, p.y)) {
    SureWalk walk(current, p.x, p.y, SideErrorWithin(m_pTin->m_dReach));
    walk.FetchAround();
    SureWalk::End const end = walk.Run(budget);
    steps = walk.Steps();
    current = walk.Current();
    previous = walk.Previous();
    if (end == SureWalk::End::There) {
      m_pCurrent = current;
      return current;
    }
    if (end == SureWalk::End::Out) return nullptr;
  }
  for (; steps < budget; ++steps) {
    int const side = current->WhereTri(p);
    if (side == 3) {
      m_pCurrent = current;
      return current;
    }
    TTriangle* const next = current->m_pAdjacent[side];
    if (next == nullptr) return nullptr;
    if (next != previous) {
      previous = current;
      current = next;
      continue;
    }
    // About to go straight back. m_pCurrent stays where the walk began.
    if (current->XY_HasPoint(p)) return current;
    if (previous->XY_HasPoint(p)) return previous;
    current = m_pTriangles->At(RandomPosition());
  }
  return nullptr;
}

// Not only one triangle may hold `p` where rounding decides or the surface does not tile: then the
// walk from m_pCurrent comes first, which finds the same one every time.
TTriangle* Triangulator::FindToInsert(TPoint const& p) {
  if (m_pCurrent == nullptr || m_pTin->m_pStartPoints != nullptr) return Find(p);
  if (m_pTin->m_bTiling) {
    TTriangle* const found = FindInside(p);
    return found != nullptr ? found : Find(p);
  }
  if (Walk(p, CHEAP_WALK) != nullptr) return m_pCurrent;
  if (m_pTriangles->m_iCount < SMALLEST_INDEXED) return Find(p);
  RenewIndexIfItPays();
  m_pCurrent = NearestStart(p);
  TTriangle* const found = LongWalk(p);
  return found != nullptr ? found : Find(p);
}

// Returns the only triangle that holds `p`, up to rounding; or null, with m_pCurrent as it was,
// where only Find can tell or the walk is long.
TTriangle* Triangulator::FindInside(TPoint const& p) {
  bool const far = m_pIndex != nullptr && IsOffCircle(*m_pCurrent, p);
  if (far && IsSureGround(p.x, p.y)) {
    if (TTriangle* const found = FindFar(p.x, p.y)) return found;
  }
  TTriangle* const before = m_pCurrent;
  m_pCurrent = far ? NearestStart(p) : m_Fan.Toward(p, m_pCurrent);
  int steps = 0;
  TTriangle* const found = WalkInside(p, SHORT_WALK, steps);
  if (steps > CHEAP_WALK && m_pTriangles->m_iCount >= SMALLEST_INDEXED) {
    m_iLongSteps += steps;
    RenewIndexIfItPays();
  }
  if (found != nullptr && IsWellInside(*found, p)) return found;
  m_pCurrent = before;
  return nullptr;
}

TTriangle* Triangulator::FindNext(TPoint const& p) {
  int steps = 0;
  return m_pCurrent == nullptr ? nullptr : WalkInside(p, m_pTriangles->m_iCount, steps);
}

// Walks from m_pCurrent to the triangle that certainly holds `p`. Null where rounding decides or
// the budget runs out. m_pCurrent is where the walk ends in any case.
TTriangle* Triangulator::WalkInside(TPoint const& p, int budget, int& steps) {
  using qeltin::detail::SideFan;
  if (!m_pTin->IsWithinReach(p)) return nullptr;
  SideFan const seen(p, SideErrorWithin(m_pTin->m_dReach));
  TTriangle* current = m_pCurrent;
  int entry = 3;
  for (steps = 0; steps < budget; ++steps) {
    PrefetchAround(*current);
    int exit = 3;
    bool inside = true;
    for (int side = 0; side < 3; ++side) {
      if (side == entry) continue;
      TPoint const& from = *current->m_pVertex[side];
      TPoint const& to = *current->m_pVertex[side == 2 ? 0 : side + 1];
      if (seen.IsCertainlyClockwise(from, to)) continue;
      inside = false;
      if (!seen.IsCertainlyClockwise(to, from)) continue;
      exit = side;
      break;
    }
    if (exit == 3) {
      m_pCurrent = current;
      return inside ? current : nullptr;
    }
    TTriangle* const next = current->m_pAdjacent[exit];
    if (next == nullptr) break;
    entry = current->TriSide(exit);
    current = next;
  }
  m_pCurrent = current;
  return nullptr;
}

// A query far from the last one, on a sound structure: the walk from there would end in the
// triangle that has the place strictly inside, if it ended within its steps. Null, with m_pCurrent
// as it was, where another triangle may take the place too.
TTriangle* Triangulator::FindFar(double x, double y) {
  if (m_pFineIndex == nullptr && ++m_iFarQueries > m_pTriangles->m_iCount / TRIANGLES_A_QUERY) {
    m_pFineIndex = MakeIndex(1);
  }
  SureWalk walk(Near(x, y), x, y, SideErrorWithin(m_pTin->m_dReach));
  walk.FetchAround();
  if (walk.Run(CHEAP_WALK) != SureWalk::End::There) return nullptr;
  if (IsAtCorner(*walk.Current(), {x, y})) return nullptr;
  m_pCurrent = walk.Current();
  return m_pCurrent;
}

TTriangle* Triangulator::Near(double x, double y) const {
  return (m_pFineIndex != nullptr ? m_pFineIndex : m_pIndex)->Near(x, y);
}

// Walks as far as it takes from the indexed triangle nearest to `p`, or from the present one while
// there is no index. The fine index stays out: among triangles whose bands share a place, the way
// that the walk comes decides, and so it rests on fewer things.
TTriangle* Triangulator::FindByIndex(TPoint const& p) {
  RenewIndexIfItPays();
  if (m_pIndex != nullptr) m_pCurrent = m_pIndex->Near(p.x, p.y);
  return LongWalk(p);
}

// Walks from m_pCurrent as far as it takes.
TTriangle* Triangulator::LongWalk(TPoint const& p) {
  int steps = 0;
  TTriangle* const found = Walk(p, m_pTriangles->m_iCount, steps);
  m_iLongSteps += steps;
  if (m_pIndex != nullptr && !m_pTin->m_bTiling && CheckPays()) {
    m_pTin->FindWhetherItTiles();
    m_iLongSteps = 0;
    if (!m_pTin->m_bTiling) ++m_iVainChecks;
  }
  return found;
}

// An index goes out of date at the edge of a surface that grows there.
TTriangle* Triangulator::NearestStart(TPoint const& p) const {
  TTriangle* const start = m_Fan.Toward(p, m_pCurrent);
  if (m_pIndex == nullptr) return start;
  TTriangle* const indexed = m_pIndex->Near(p.x, p.y);
  return SquaredDistanceToCorner(*start, p) < SquaredDistanceToCorner(*indexed, p) ? start
                                                                                   : indexed;
}

// Returns true iff walks have cost as much, since the last check whether the surface tiles, as the
// next one costs, and twice as much after each that was in vain: most surfaces once broken stay so.
bool Triangulator::CheckPays() const {
  long long const patience = 1LL << std::min(m_iVainChecks, 20);
  return m_iLongSteps > m_pTriangles->m_iCount / TRIANGLES_A_STEP * patience;
}

// Returns true iff the pool has doubled since an index was built, if ever, and the walks since then
// have cost as much as building a coarse one.
bool Triangulator::IndexPays() const {
  int const count = m_pTriangles->m_iCount;
  return count / 2 >= m_iIndexed && m_iLongSteps > count / (COARSE * TRIANGLES_A_STEP);
}

void Triangulator::RenewIndexIfItPays() {
  if (!IndexPays()) return;
  m_pIndex = MakeIndex(COARSE);
  m_pFineIndex.reset();
  m_iFarQueries = 0;
  m_iIndexed = m_pTriangles->m_iCount;
  m_iLongSteps = 0;
}

std::unique_ptr<LocationIndex> Triangulator::MakeIndex(int stride) const {
  return std::make_unique<LocationIndex>(*m_pTriangles, m_pTin->m_Min, m_pTin->m_Max, stride);
}

TTriangle* Triangulator::FindBySample(TPoint const& p) {
  int const count = m_pTriangles->m_iCount;
  int const points = m_pTin->GetNumberOfPoints();
  TPoint const& min = m_pTin->m_Min;
  TPoint const& max = m_pTin->m_Max;
  double const spacing =
      ((min.x - max.x) * (min.x - max.x) + (min.y - max.y) * (min.y - max.y)) / points;
  m_iSamples = count < 50 ? count : count / 5;
  m_dBest = 9e20;
  for (int i = 0; i < m_iSamples; ++i) {
    TTriangle const& t = *m_pTriangles->At(RandomPosition());
    m_dDeltaX = (t.m_pVertex[0]->x + t.m_pVertex[1]->x + t.m_pVertex[2]->x) / 3.0 - p.x;
    m_dDeltaY = (t.m_pVertex[0]->y + t.m_pVertex[1]->y + t.m_pVertex[2]->y) / 3.0 - p.y;
    m_dDistSq = m_dDeltaX * m_dDeltaX + m_dDeltaY * m_dDeltaY;
    if (m_dBest > m_dDistSq) {
      m_dBest = m_dDistSq;
      m_iBest = i;  // the round, not the position that was sampled
    }
    if (spacing >= m_dBest) break;
  }
  m_pCurrent = m_pTriangles->At(m_iBest);
  return Walk(p, count);
}

TTriangle* Triangulator::FindByStartPoints(TPoint const& p) {
  TArray<TArrayStartPoint> const& starts = *m_pTin->m_pStartPoints;
  std::map<double, int> by_distance;
  for (int i = 0; i < starts.m_iCount; ++i) {
    TArrayStartPoint const& start = *starts.At(i);
    double const dx = start.x - p.x;
    double const dy = start.y - p.y;
    by_distance[dx * dx + dy * dy] = start.triangle;
  }
  for (auto const& [distance, position] : by_distance) {
    if (position < 0 || position >= m_pTriangles->m_iCount) continue;  // left from an earlier load
    m_pCurrent = m_pTriangles->At(position);
    if (TTriangle* const found = m_pTin->FindTriangle(m_pCurrent, p.x, p.y)) {
      m_pCurrent = found;
      return found;
    }
  }
  return nullptr;
}

int Triangulator::RandomPosition() const {
  int const last = m_pTriangles->m_iCount - 1;  // never drawn, unless it is the only one
  return last < 1 ? 0 : std::rand() % last;
}
