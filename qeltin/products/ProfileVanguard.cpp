#include "qeltin/products/ProfileVanguard.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "qeltin/kernel/SideTest.h"

namespace qeltin::detail {

namespace {

constexpr int SCOUTS = 16;
constexpr int LONGEST_STRETCH = 100.0;  // steps
constexpr double STRETCH = 48.0;        // mean steps, to begin with
constexpr double SHORTEST_LED = 24.0;   // mean steps; a shorter line is walked alone
constexpr double LARGEST_ERROR = 1e-6;  // beyond it, walks often go back and forth
constexpr double NOWHERE = std::numeric_limits<double>::infinity();

[[gnu::always_inline]] inline void Fetch(TTriangle const* t) {
  __builtin_prefetch(t);
  __builtin_prefetch(&t->m_Flags);  // a record may lie across two lines
}

}  // namespace

ProfileVanguard::ProfileVanguard(TIN const& tin, PlanRay const& ray, double length)
    : m_Tin(tin),
      m_Location(tin.m_Triangulator),
      m_Ray(ray),
      m_dLength(length),
      m_dError(SideErrorWithin(tin.m_dReach)),
      m_dStretch(0.0),
      m_dKnown(NOWHERE) {
  if (!tin.m_bTiling || !m_Location.HasIndex() || !(m_dError < LARGEST_ERROR)) return;
  double const area = (tin.m_Max.x - tin.m_Min.x) * (tin.m_Max.y - tin.m_Min.y);
  double const step = std::sqrt(area / tin.GetNumberOfTriangles());
  if (!(step > 0.0) || !(length > SHORTEST_LED * step)) return;
  m_dStretch = STRETCH * step;
  m_dKnown = 0.0;
}

// From here, where the walk is, and from places ahead.
void ProfileVanguard::GoAhead(TTriangle const* t, int back, double along) {
  if (!(m_dStretch > 0.0)) {
    m_dKnown = NOWHERE;
    return;
  }
  double const rest = m_dLength - along;
  bool const all = !(SCOUTS * m_dStretch < rest);
  double const stretch = all ? rest / SCOUTS : m_dStretch;
  m_dKnown = all ? NOWHERE : along + SCOUTS * stretch;
  m_Scouts.clear();
  for (int i = 0; i < SCOUTS; ++i) {
    double const place = along + i * stretch;
    TPoint const p(m_Ray.x + place * m_Ray.ux, m_Ray.y + place * m_Ray.uy);
    if (!m_Tin.IsWithinReach(p)) break;
    TTriangle* const near = m_Location.Near(p.x, p.y);
    Fetch(near);
    m_Scouts.push_back({Walker(near, p, m_dError), nullptr, nullptr, 0, 0, place, place + stretch});
  }
  if (m_Scouts.empty()) return;
  m_Scouts[0].at = t;
  m_Scouts[0].back = back;
  while (!m_Scouts.empty()) {
    std::erase_if(m_Scouts, [this](Scout& scout) { return !Look(scout); });
    for (Scout& scout : m_Scouts) Enter(scout);
  }
}

// Finds where to go and asks for that triangle. Returns false where the scout has come to its end.
bool ProfileVanguard::Look(Scout& scout) {
  if (scout.at == nullptr) {
    Walker::State const state = scout.walker.Look();
    return state == Walker::State::There ? SetOut(scout) : state == Walker::State::Underway;
  }
  PlanRay::Sight const apex = m_Ray.See(*scout.at->m_pVertex[(scout.back + 2) % 3]);
  if (!(apex.along < scout.until)) return false;
  if (++scout.steps > LONGEST_STRETCH) {
    m_dKnown = std::min(m_dKnown, apex.along);
    m_dStretch = std::min(m_dStretch, apex.along - scout.begin);
    return false;
  }
  return Cross(scout, (scout.back + (apex.across > 0.0 ? 2 : 1)) % 3);
}

// Leaves the triangle of the place: corners run clockwise, so that a side that the ray goes out by
// begins to the left of it.
bool ProfileVanguard::SetOut(Scout& scout) const {
  TTriangle const& t = *scout.walker.Current();
  scout.at = &t;
  for (int side = 0; side < 3; ++side) {
    if (m_Ray.See(*t.m_pVertex[side]).across > 0.0 &&
        m_Ray.See(*t.m_pVertex[(side + 1) % 3]).across <= 0.0) {
      return Cross(scout, side);
    }
  }
  return false;
}

bool ProfileVanguard::Cross(Scout& scout, int side) {
  scout.previous = scout.at;
  scout.at = scout.at->m_pAdjacent[side];
  if (scout.at == nullptr) return false;
  Fetch(scout.at);
  return true;
}

// Asks for the corner that the scout has not seen.
void ProfileVanguard::Enter(Scout& scout) {
  if (scout.at == nullptr) {
    scout.walker.Enter();
    return;
  }
  TTriangle* const* const beside = scout.at->m_pAdjacent;
  scout.back = beside[0] == scout.previous ? 0 : beside[1] == scout.previous ? 1 : 2;
  __builtin_prefetch(scout.at->m_pVertex[(scout.back + 2) % 3]);
}

}  // namespace qeltin::detail
