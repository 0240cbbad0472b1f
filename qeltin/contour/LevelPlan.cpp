#include "qeltin/contour/LevelPlan.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace qeltin::detail {

namespace {

// A vertex may rise by less than 4e-8 a level, whatever its height.
constexpr double RISE_A_LEVEL = 4e-8;

}  // namespace

LevelPlan::LevelPlan(std::vector<double> const& levels)
    : m_dSlack(RISE_A_LEVEL * (static_cast<double>(levels.size()) + 1.0)) {
  std::copy_if(levels.begin(), levels.end(), std::back_inserter(m_Levels),
               [](double level) { return !std::isnan(level); });
  std::sort(m_Levels.begin(), m_Levels.end());
  m_Levels.erase(std::unique(m_Levels.begin(), m_Levels.end()), m_Levels.end());
  m_Lists.resize(m_Levels.size());
}

void LevelPlan::Note(int position, TTriangle const& triangle) {
  double const a = triangle.m_pVertex[0]->z;
  double const b = triangle.m_pVertex[1]->z;
  double const c = triangle.m_pVertex[2]->z;
  auto level = m_Levels.begin();
  auto end = m_Levels.end();
  if (!std::isnan(a + b + c)) {  // otherwise the span says nothing, and it is near to every level
    level += CountBelow(std::min(std::min(a, b), c) - m_dSlack);
    double const highest = std::max(std::max(a, b), c) + m_dSlack;
    for (end = level; end != m_Levels.end() && *end <= highest;) ++end;
  }
  for (; level != end; ++level) {
    m_Lists[static_cast<std::size_t>(level - m_Levels.begin())].push_back(position);
  }
}

// A search by halves that does not branch on what it finds: hardly a triangle's answer foretells
// the next one's.
std::ptrdiff_t LevelPlan::CountBelow(double height) const {
  double const* first = m_Levels.data();
  for (std::size_t count = m_Levels.size(); count > 0;) {
    std::size_t const half = (count + 1) / 2;
    first += first[half - 1] < height ? half : 0;
    count -= half;
  }
  return first - m_Levels.data();
}

void LevelPlan::GoTo(double level) {
  std::vector<int> const* const before = m_pNear;
  auto const found = std::lower_bound(m_Levels.begin(), m_Levels.end(), level);
  bool const known = found != m_Levels.end() && *found == level;
  m_pNear = known ? &m_Lists[static_cast<std::size_t>(found - m_Levels.begin())] : &m_None;
  m_bNeedsAll = !m_bReadied;
  m_bReadied = false;
  m_ToReady.clear();
  if (m_bNeedsAll) {
    for (std::vector<int>& list : m_Lists) list.clear();
  } else {
    std::set_union(before->begin(), before->end(), m_pNear->begin(), m_pNear->end(),
                   std::back_inserter(m_ToReady));
  }
}

}  // namespace qeltin::detail
