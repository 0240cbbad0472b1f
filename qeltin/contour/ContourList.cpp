#include "qeltin/contour/ContourList.h"

#include <algorithm>
#include <utility>

namespace {

template <typename Iterator>
Iterator FirstNotBelow(Iterator begin, Iterator end, double level) {
  return std::lower_bound(begin, end, level,
                          [](Contour const& c, double value) { return c.Level() < value; });
}

}  // namespace

ContourList::ContourList(ContourList&& other) noexcept { m_Contours.swap(other.m_Contours); }

ContourList& ContourList::operator=(ContourList&& other) noexcept {
  if (this == &other) return *this;
  m_Contours.clear();
  m_Contours.swap(other.m_Contours);
  return *this;
}

void ContourList::Add(Contour const& contour) {
  m_Contours.insert(FirstNotBelow(m_Contours.begin(), m_Contours.end(), contour.Level()), contour);
}

void ContourList::Add(std::deque<Contour> const& contours) {
  if (contours.empty()) return;
  auto const place = FirstNotBelow(m_Contours.begin(), m_Contours.end(), contours.front().Level());
  m_Contours.insert(place, contours.begin(), contours.end());
}

int ContourList::Find(double level, int start) const {
  if (start < 0 || start >= Size()) return -1;
  auto const found = FirstNotBelow(m_Contours.begin() + start, m_Contours.end(), level);
  if (found == m_Contours.end() || found->Level() != level) return -1;
  return static_cast<int>(found - m_Contours.begin());
}

void ContourList::Remove(int index) { m_Contours.erase(m_Contours.begin() + index); }
