#include "apps/qeltin/CrossSection.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

#include "apps/qeltin/Progress.h"
#include "apps/qeltin/SegmentTree.h"
#include "apps/qeltin/Sweep.h"

namespace qeltin::cli {

namespace {

// A place on a segment, by its distance from the start of the segment.
struct Mark {
  double along;
  TPoint point;
};

// What one triangle has of a segment.
struct Stretch {
  Mark begin;
  Mark end;

  bool operator<(Stretch const& o) const {
    if (begin.along != o.begin.along) return begin.along < o.begin.along;
    return end.along < o.end.along;
  }
};

// A corner of a triangle as a segment sees it. A side between two triangles is seen alike by both.
struct Corner {
  TPoint const* point;
  double along;
  double across;  // to the left; 0 on the line
};

// One segment with the unit vector along it.
class Cutter {
 public:
  Cutter(Segment const& segment, double rounding)
      : m_Segment(segment),
        m_dX((segment.to.x - segment.from.x) / segment.length),
        m_dY((segment.to.y - segment.from.y) / segment.length),
        m_dRounding(std::min(rounding, segment.length / 1000)) {}

  // Returns what the triangle has of the segment, if that has a length.
  std::optional<Stretch> Cut(TIN const& tin, TTriangle& triangle) const {
    std::array<Corner, 3> const corners = {See(triangle, 0), See(triangle, 1), See(triangle, 2)};
    Mark marks[3];
    int count = 0;
    for (int i = 0; i < 3; ++i) {
      Corner const& a = corners[i];
      Corner const& b = corners[(i + 1) % 3];
      if (a.across == 0.0) {
        marks[count++] = {a.along, *a.point};
      } else if ((a.across < 0.0 && b.across > 0.0) || (a.across > 0.0 && b.across < 0.0)) {
        marks[count++] = Crossing(a, b);
      }
    }
    if (count != 2) return {};  // passed by, touched at a corner, or all in line
    Stretch stretch{marks[0], marks[1]};
    if (stretch.end.along < stretch.begin.along) std::swap(stretch.begin, stretch.end);
    return Clip(tin, triangle, stretch);
  }

 private:
  Corner See(TTriangle const& triangle, int corner) const {
    TPoint const& p = *triangle.m_pVertex[corner];
    double const x = p.x - m_Segment.from.x;
    double const y = p.y - m_Segment.from.y;
    double const across = y * m_dX - x * m_dY;
    return {&p, x * m_dX + y * m_dY, std::fabs(across) <= m_dRounding ? 0.0 : across};
  }

  TPoint At(double along, double z) const {
    return {m_Segment.from.x + along * m_dX, m_Segment.from.y + along * m_dY, z};
  }

  Mark Crossing(Corner const& one, Corner const& other) const {
    bool const in_order = *one.point < *other.point;
    Corner const& a = in_order ? one : other;
    Corner const& b = in_order ? other : one;
    double const f = a.across / (a.across - b.across);
    double const along = a.along + (b.along - a.along) * f;
    return {along, At(along, a.point->z + (b.point->z - a.point->z) * f)};
  }

  std::optional<Stretch> Clip(TIN const& tin, TTriangle& triangle, Stretch whole) const {
    double const length = m_Segment.length;
    if (whole.end.along <= m_dRounding || whole.begin.along >= length - m_dRounding) return {};
    Stretch part = whole;
    if (whole.begin.along < m_dRounding) {
      part.begin = EndMark(tin, triangle, whole, whole.begin, 0.0, m_Segment.from);
    }
    if (whole.end.along > length - m_dRounding) {
      part.end = EndMark(tin, triangle, whole, whole.end, length, m_Segment.to);
    }
    if (!(part.begin.along < part.end.along)) return {};
    return part;
  }

  // Returns the mark at an end of the segment, which is `nearby` or lies between both marks.
  Mark EndMark(TIN const& tin, TTriangle& triangle, Stretch const& whole, Mark const& nearby,
               double along, TPoint const& end) const {
    double z = nearby.point.z;
    if (std::fabs(nearby.along - along) > m_dRounding && !tin.GetZ(end, z, &triangle)) {
      double const f = (along - whole.begin.along) / (whole.end.along - whole.begin.along);
      z = whole.begin.point.z + (whole.end.point.z - whole.begin.point.z) * f;
    }
    return {along, {end.x, end.y, z}};
  }

  Segment const& m_Segment;
  double m_dX;
  double m_dY;
  double m_dRounding;
};

// Puts the stretches of the segments together, in the order of the segments.
class Assembly {
 public:
  void Add(Segment const& segment, std::vector<Stretch>& stretches) {
    std::sort(stretches.begin(), stretches.end());
    bool const goes_on = !m_Pieces.empty() && m_Pieces.back().line == segment.line && m_bAtEnd &&
                         !stretches.empty() && stretches.front().begin.along == 0.0;
    double reached = goes_on ? 0.0 : -1.0;
    for (Stretch const& stretch : stretches) {
      if (stretch.end.along <= reached) continue;  // the other side of a side that it runs along
      if (stretch.begin.along > reached) {
        m_Pieces.push_back({segment.line, {}, {}});
        Append(segment, stretch.begin);
      }
      Append(segment, stretch.end);
      reached = stretch.end.along;
    }
    m_bAtEnd = reached == segment.length;
  }

  std::vector<Piece> Take() { return std::move(m_Pieces); }

 private:
  void Append(Segment const& segment, Mark const& mark) {
    m_Pieces.back().points.push_back(mark.point);
    m_Pieces.back().distances.push_back(segment.offset + mark.along);
  }

  std::vector<Piece> m_Pieces;
  bool m_bAtEnd = false;  // the last piece reaches the end of the segment before
};

bool IsFinite(TPoint const& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

// Returns how far rounding may put a place of the survey aside.
double RoundingOf(TIN const& tin) {
  TPoint min;
  TPoint max;
  tin.GetBounds(min, max);
  double const reach =
      std::max({std::fabs(min.x), std::fabs(min.y), std::fabs(max.x), std::fabs(max.y)});
  return std::max(TPoint::TOLERANCE, 8 * std::numeric_limits<double>::epsilon() * reach);
}

Box BoxOf(TTriangle const& triangle, double margin) {
  auto const& [a, b, c] = triangle.m_pVertex;
  return {{std::min({a->x, b->x, c->x}) - margin, std::min({a->y, b->y, c->y}) - margin},
          {std::max({a->x, b->x, c->x}) + margin, std::max({a->y, b->y, c->y}) + margin}};
}

}  // namespace

std::vector<Piece> CrossSections(TIN const& tin, std::vector<TPolygon> const& lines, bool quiet) {
  std::vector<Segment> const segments = SegmentsOf(lines);
  SegmentTree const tree(segments);
  double const rounding = RoundingOf(tin);
  std::vector<Cutter> cutters;
  cutters.reserve(segments.size());
  for (Segment const& segment : segments) cutters.emplace_back(segment, rounding);

  std::vector<std::vector<Stretch>> stretches(segments.size());
  Progress progress("profile", tin.GetNumberOfTriangles(), quiet);
  double done = 0.0;
  ForEachTriangle(tin, [&](TTriangle& triangle) {
    progress.Done(done += 1.0);
    if (triangle.IsHidden()) return;
    TPoint const* const* const corners = triangle.m_pVertex;
    if (!std::all_of(corners, corners + 3, [](TPoint const* p) { return IsFinite(*p); })) return;
    tree.ForEach(BoxOf(triangle, rounding), [&](int segment) {
      auto const stretch = cutters[segment].Cut(tin, triangle);
      if (stretch) stretches[segment].push_back(*stretch);
    });
  });
  Assembly assembly;
  for (std::size_t i = 0; i < segments.size(); ++i) assembly.Add(segments[i], stretches[i]);
  return assembly.Take();
}

}  // namespace qeltin::cli
