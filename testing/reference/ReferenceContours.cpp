#include "testing/reference/ReferenceContours.h"

#include <cmath>

#include "qeltin/platform/Math.h"

namespace qeltin::testing {

namespace {

using Line = GTL::Polyline<GTL::Point2D<double>>;

bool AreClose(GTL::Point2D<double> const& a, GTL::Point2D<double> const& b) {
  return a.Dist2D(b, false) < MATH::TOLERANCE;
}

// Joins where one of the four pairs of ends is close, in their order.
bool TryToJoin(Line& cur, Line& other) {
  int const n = cur.NumPoints();
  int const m = other.NumPoints();
  if (AreClose(cur[n - 1], other[0])) {
    other.RemoveFront();
    cur.Insert(cur.NumPoints(), other);
    return true;
  }
  if (AreClose(cur[n - 1], other[m - 1])) {
    for (int k = m - 2; k >= 0; --k) cur.AddBack(other[k]);
    return true;
  }
  if (AreClose(cur[0], other[0])) {
    for (int k = 1; k <= m - 1; ++k) cur.AddFront(other[k]);
    return true;
  }
  if (AreClose(cur[0], other[m - 1])) {
    other.RemoveBack();
    cur.Insert(0, other);
    return true;
  }
  return false;
}

struct Side {
  int bit;
  int base;
  int far;
};
constexpr Side SIDES[3] = {{1, 0, 1}, {2, 1, 2}, {4, 2, 0}};

bool IsHiddenOrVisited(TTriangle const& t) {
  return (t.m_Flags & (TRI_VISITED | TRI_FILTERED | TRI_OUTSIDE)) != 0;
}

GTL::Point2D<double> Cut(TTriangle const& t, int side, double level) {
  TPoint const& base = *t.m_pVertex[SIDES[side].base];
  TPoint const& far = *t.m_pVertex[SIDES[side].far];
  double const f = (level - base.z) / (far.z - base.z);
  return {(far.x - base.x) * f + base.x, (far.y - base.y) * f + base.y};
}

}  // namespace

void ReferenceConnect(std::deque<Contour>& contours) {
  int const count = static_cast<int>(contours.size());
  auto const at = [&](int i) -> Contour& { return contours[static_cast<std::size_t>(i)]; };
  int group = 0;
  for (int i = 0; i < count - 1; ++i) {
    if (at(i).IsEmpty()) continue;
    double const level = at(i).Level();
    for (int j = i + 1; j < count; ++j) {
      if (at(j).IsEmpty()) continue;
      if (at(j).Level() != level) break;
      if (TryToJoin(at(i).Line(), at(j).Line())) {
        at(j).Clear();
        i = group - 1;
        break;
      }
    }
    if (i >= 0 && at(i + 1).Level() != at(i).Level()) group = i + 1;
  }
  for (int i = count - 1; i >= 0; --i) {
    if (at(i).IsEmpty()) contours.erase(contours.begin() + i);
  }
}

int ReferenceContourCreator::AddLevel(double level, ContourList& list,
                                      std::atomic<bool> const& running) {
  m_Contours.clear();
  ClearFlags(level, running);
  for (int i = 0; i < m_Tin.GetNumberOfTriangles() && running; ++i) {
    TTriangle* const t = m_Tin.GetTriangle(i, true);
    if (IsHiddenOrVisited(*t)) continue;
    int const mask = MaskOf(*t, level);
    if (mask != 0) Generate(t, mask, level);
  }
  if (m_Contours.empty()) return 0;
  ReferenceConnect(m_Contours);
  Direct(level, running);
  list.Add(m_Contours);
  return static_cast<int>(m_Contours.size());
}

int ReferenceContourCreator::AddLevels(std::vector<double> const& levels, ContourList& list,
                                       std::atomic<bool> const& running) {
  int const before = list.Size();
  for (double const level : levels) {
    if (!running) break;
    AddLevel(level, list, running);
  }
  return list.Size() - before;
}

void ReferenceContourCreator::ClearFlags(double level, std::atomic<bool> const& running) {
  for (int i = 0; i < m_Tin.GetNumberOfTriangles(); ++i) {
    if (!running) return;
    TTriangle& t = *m_Tin.GetTriangle(i, true);
    t.m_Flags = static_cast<unsigned char>(t.m_Flags & ~TRI_VISITED);
    if (std::fabs(t.m_pVertex[0]->z - t.m_pVertex[1]->z) < 1e-8 &&
        std::fabs(t.m_pVertex[1]->z - t.m_pVertex[2]->z) < 1e-8) {
      t.m_Flags |= TRI_VISITED;
    }
    for (TPoint* vertex : t.m_pVertex) {
      if (std::fabs(vertex->z - level) < 1e-8) vertex->z += 1e-8;
    }
  }
}

int ReferenceContourCreator::MaskOf(TTriangle const& t, double level) const {
  int mask = 0;
  for (Side const& side : SIDES) {
    double const a = t.m_pVertex[side.base]->z;
    double const b = t.m_pVertex[side.far]->z;
    if (level >= a && b > level) mask |= side.bit;
    if (a >= level && level > b) mask |= side.bit;
  }
  return mask;
}

void ReferenceContourCreator::Generate(TTriangle* start, int start_mask, double level) {
  Contour contour(level);
  TTriangle* current = start;
  TTriangle* previous = nullptr;
  int mask = start_mask;
  bool first_walk = true;
  while (true) {
    Point exit;
    for (int side = 0; side < 3; ++side) {
      if ((mask & SIDES[side].bit) == 0 || current->m_pAdjacent[side] == previous) continue;
      exit = Cut(*current, side, level);
      break;
    }
    contour.Line().AddBack(exit);
    current->m_Flags |= TRI_VISITED;

    TTriangle* next = nullptr;
    for (int side = 0; side < 3; ++side) {
      if (next == nullptr && (mask & SIDES[side].bit) != 0 &&
          current->m_pAdjacent[side] != previous) {
        next = current->m_pAdjacent[side];
      }
    }
    if (next != nullptr && !IsHiddenOrVisited(*next)) {
      previous = current;
      current = next;
      mask = MaskOf(*current, level);
      continue;
    }
    if (!first_walk) break;
    first_walk = false;
    int lowest = 0;
    while ((start_mask & SIDES[lowest].bit) == 0) ++lowest;
    previous = start->m_pAdjacent[lowest];
    if (previous != nullptr && (previous->m_Flags & (TRI_FILTERED | TRI_OUTSIDE)) == 0) {
      current = start;
      mask = MaskOf(*current, level);
      continue;
    }
    int highest = 2;
    while ((start_mask & SIDES[highest].bit) == 0) --highest;
    Point closing;
    if (start->m_pAdjacent[highest] != nullptr) closing = Cut(*start, highest, level);
    contour.Line().AddBack(closing);
    break;
  }
  m_Contours.push_back(contour);
}

void ReferenceContourCreator::Direct(double level, std::atomic<bool> const& running) {
  for (Contour& contour : m_Contours) {
    if (!running) return;
    Point const p0 = contour[0];
    Point const p1 = contour[1];
    Point const a = p1 - p0;
    Point const middle = p0 + a * 0.5;
    TTriangle* const t = m_Tin.GetTriangleWithPoint(TPoint(middle.x, middle.y, 0.0));
    if (t == nullptr) continue;
    for (TPoint const* vertex : t->m_pVertex) {
      Point const b(vertex->x - p0.x, vertex->y - p0.y);
      double const cross = a.x * b.y - a.y * b.x;
      if (cross > 0.0) {
        if (vertex->z > level) contour.Reverse();
      } else if (cross < 0.0) {
        if (level > vertex->z) contour.Reverse();
      } else {
        continue;
      }
      if (vertex->z != level) break;
    }
  }
}

}  // namespace qeltin::testing
