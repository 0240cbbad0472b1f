#include "qeltin/products/ProfileWalk.h"

#include <cmath>

#include "qeltin/products/ProfileScout.h"
#include "qeltin/products/ProfileVanguard.h"

namespace qeltin::detail {

namespace {

constexpr double SAME_PLACE = 1e-9;

bool IsOutside(TTriangle const& t) { return (t.m_Flags & TRI_OUTSIDE) != 0; }

}  // namespace

bool IsSamePlace(TPoint const& a, TPoint const& b) {
  return std::fabs(a.x - b.x) < SAME_PLACE && std::fabs(a.y - b.y) < SAME_PLACE;
}

ProfileWalk::ProfileWalk(std::vector<TPoint>& points, TPoint const& from, TPoint const& to,
                         bool gaps, long long& steps)
    : m_Points(points),
      m_To(to),
      m_bGaps(gaps),
      m_iSteps(steps),
      m_dLength(from.XY_Distance(to)),
      m_Ray{from.x, from.y, (to.x - from.x) / m_dLength, (to.y - from.y) / m_dLength} {}

void ProfileWalk::AddCrossing(PlanRay::Sight const& a, PlanRay::Sight const& b) {
  if (m_Ray.Meets(a, b, m_Crossing)) m_Points.push_back(m_Crossing);
}

// Returns the side over which the line leaves the first triangle, or 3.
int ProfileWalk::FindExit(TTriangle const& first) {
  PlanRay::Sight const corners[3] = {m_Ray.See(*first.m_pVertex[0]), m_Ray.See(*first.m_pVertex[1]),
                                     m_Ray.See(*first.m_pVertex[2])};
  for (int side = 0; side < 3; ++side) {
    if (!m_bGaps && first.m_pAdjacent[side] == nullptr) continue;
    if (m_Ray.Meets(corners[side], corners[(side + 1) % 3], m_Crossing)) return side;
  }
  return 3;
}

// Takes up the corners of `t`. Returns true iff the line ends at one of them.
bool ProfileWalk::Enter(TTriangle const* t, int back) {
  TPoint const& right = *t->m_pVertex[back];
  TPoint const& left = *t->m_pVertex[(back + 1) % 3];
  TPoint const& ahead = *t->m_pVertex[(back + 2) % 3];
  // The side just crossed was looked at from the other triangle, unless the two disagree on it.
  bool ends = false;
  if (m_Right.point != &right) {
    m_Right = m_Ray.See(right);
    ends = IsEndAt(right);
  }
  if (m_Left.point != &left) {
    m_Left = m_Ray.See(left);
    ends = ends || IsEndAt(left);
  }
  m_Ahead = m_Ray.See(ahead);
  return ends || IsEndAt(ahead);
}

void ProfileWalk::EndIn(TTriangle const& last) {
  if (last.XY_HasPoint(m_To)) {
    m_Points.emplace_back(m_To.x, m_To.y, last.GetZ(m_To.x, m_To.y));
    return;
  }
  AddCrossing(m_Left, m_Ahead);
  AddCrossing(m_Ahead, m_Right);
}

bool ProfileWalk::Run(TIN const& tin, TTriangle const* first, TTriangle const* last) {
  if (m_dLength == 0.0) return true;
  int const exit = FindExit(*first);
  if (exit == 3) return true;
  TTriangle const* t = first->m_pAdjacent[exit];
  if (t == nullptr) {
    m_Points.push_back(m_Crossing);
    return false;
  }

  int back = first->TriSide(exit);
  ProfileVanguard vanguard(tin, m_Ray, m_dLength);
  ProfileScout scout(m_Ray, vanguard.IsIdle() ? last : nullptr);
  while (back < 3 && m_iSteps-- > 0) {
    if (vanguard.IsIdle()) FetchNext(*t, back);
    vanguard.Lead(t, back, m_Ahead.along);
    scout.Step(m_Ahead.along);
    if (Enter(t, back)) return true;  // the end itself is left out
    if (!m_bMet) m_Ray.Meets(m_Right, m_Left, m_Crossing);
    if (!IsOutside(*t) || !IsOutside(*t->m_pAdjacent[back])) m_Points.push_back(m_Crossing);
    if (t == last) {
      EndIn(*t);
      return true;
    }

    m_bMet = m_Ray.Meets(m_Left, m_Ahead, m_Crossing);
    int const side = (back + (m_bMet ? 1 : 2)) % 3;
    back = t->TriSide(side);
    if (back == 3) {
      AddCrossing(m_Left, m_Ahead);
      AddCrossing(m_Ahead, m_Right);
      return false;
    }
    t = t->m_pAdjacent[side];
    (m_bMet ? m_Right : m_Left) = m_Ahead;
  }
  return false;
}

}  // namespace qeltin::detail
