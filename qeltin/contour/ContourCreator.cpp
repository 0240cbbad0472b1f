#include "qeltin/contour/ContourCreator.h"

#include <algorithm>
#include <utility>

#include "qeltin/contour/EndIndex.h"
#include "qeltin/platform/Math.h"

namespace {

using qeltin::detail::EndIndex;
using Line = GTL::Polyline<GTL::Point2D<double>>;

GTL::Point2D<double> const& First(Line const& line) { return line[0]; }
GTL::Point2D<double> const& Last(Line const& line) { return line[line.NumPoints() - 1]; }

bool Meet(GTL::Point2D<double> const& a, GTL::Point2D<double> const& b) {
  return a.Dist2D(b, false) < MATH::TOLERANCE;
}

// Puts `other` onto the end of `line` that it meets. REQUIRES: it meets one.
void Join(Line& line, Line& other) {
  if (Meet(Last(line), First(other))) {
    other.RemoveFront();
    line.Insert(line.NumPoints(), other);
  } else if (Meet(Last(line), Last(other))) {
    for (int k = other.NumPoints() - 2; k >= 0; --k) line.AddBack(other[k]);
  } else if (Meet(First(line), First(other))) {
    for (int k = 1; k < other.NumPoints(); ++k) line.AddFront(other[k]);
  } else {
    other.RemoveBack();
    line.Insert(0, other);
  }
  other.Clear();
}

// Joins the lines of one level, given in their order.
void JoinGroup(std::vector<Contour*> const& group) {
  int const count = static_cast<int>(group.size());
  if (count < 2) return;
  auto const line = [&](int i) -> Line& { return group[static_cast<std::size_t>(i)]->Line(); };
  EndIndex ends(count);
  for (int i = 1; i < count; ++i) {
    ends.Add(i, First(line(i)));
    ends.Add(i, Last(line(i)));
  }
  ends.Sort();
  for (int i = 0; i < count; ++i) {
    // The scan for a partner of line i starts anew after each one found. What lies before it need
    // not be looked at again: no line there met either end of the partner.
    while (line(i).NumPoints() > 0) {
      int const by_last = ends.FirstAbove(i, Last(line(i)));
      int const by_first = ends.FirstAbove(i, First(line(i)));
      int const found = by_last == EndIndex::NONE || by_first == EndIndex::NONE
                            ? std::max(by_last, by_first)
                            : std::min(by_last, by_first);
      if (found == EndIndex::NONE) break;
      Join(line(i), line(found));
      ends.CrossOut(found);
    }
  }
}

}  // namespace

void ContourCreator::ConnectContours() {
  std::vector<Contour*> group;
  for (Contour& contour : m_Contours) {
    if (contour.IsEmpty()) continue;
    if (!group.empty() && group.front()->Level() != contour.Level()) {
      JoinGroup(group);
      group.clear();
    }
    group.push_back(&contour);
  }
  JoinGroup(group);
  std::erase_if(m_Contours, [](Contour const& contour) { return contour.IsEmpty(); });
}
