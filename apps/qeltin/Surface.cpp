#include "apps/qeltin/Surface.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <limits>
#include <new>
#include <string>

#include "apps/qeltin/Progress.h"

namespace qeltin::cli {

namespace {

// Marks the points that are corners of a triangle. Points stand in one block.
class VertexMarks {
 public:
  explicit VertexMarks(TIN const& tin) {
    TPoint const* last = nullptr;
    for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
      TPoint const* const p = tin.GetPoint(i);
      m_pFirst = m_pFirst == nullptr ? p : std::min(m_pFirst, p, std::less<>());
      last = last == nullptr ? p : std::max(last, p, std::less<>());
    }
    if (last != nullptr) m_Marked.resize(static_cast<std::size_t>(last - m_pFirst) + 1);
  }

  void Mark(TPoint const* p) {
    // A damaged file can leave a corner on a slot that is not in use.
    if (Offset(p) < m_Marked.size()) m_Marked[Offset(p)] = true;
  }

  bool Has(TPoint const* p) const { return m_Marked[Offset(p)]; }

 private:
  std::size_t Offset(TPoint const* p) const { return static_cast<std::size_t>(p - m_pFirst); }

  TPoint const* m_pFirst = nullptr;
  std::vector<bool> m_Marked;
};

Box BoundsOf(std::vector<IPoint> const& points) {
  Box box{points.front(), points.front()};
  for (IPoint const& p : points) {
    box.min = {std::min(box.min.x, p.x), std::min(box.min.y, p.y), std::min(box.min.z, p.z)};
    box.max = {std::max(box.max.x, p.x), std::max(box.max.y, p.y), std::max(box.max.z, p.z)};
  }
  return box;
}

double PlanDistance(IPoint const& a, IPoint const& b) { return std::hypot(b.x - a.x, b.y - a.y); }

// Returns the largest distance of a point from the line through the first point and the one that is
// farthest from it; 0 where all are in one place.
double WidthOf(std::vector<IPoint> const& points) {
  IPoint const& a = points.front();
  IPoint const& b =
      *std::max_element(points.begin(), points.end(), [&a](IPoint const& one, IPoint const& other) {
        return PlanDistance(a, one) < PlanDistance(a, other);
      });
  double const length = PlanDistance(a, b);
  if (length == 0.0) return 0.0;
  double width = 0.0;
  for (IPoint const& p : points) {
    double const across = (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
    width = std::max(width, std::fabs(across) / length);
  }
  return width;
}

bool IsSensible(IPoint const& p) {
  constexpr double LARGEST = 1e100;  // its third power is still a number
  return std::fabs(p.x) < LARGEST && std::fabs(p.y) < LARGEST && std::isfinite(p.z);
}

// Shows how far `count` points have probably come: building is one call, which tells nothing.
Progress EstimatedProgress(std::size_t count, bool quiet) {
  constexpr double SECONDS_PER_POINT = 1e-6;
  std::chrono::duration<double> const guess(SECONDS_PER_POINT * static_cast<double>(count));
  return Progress("build", guess, quiet);
}

void InsertShuffled(TIN& tin, std::vector<IPoint> const& points, Box const& box) {
  tin.Init(static_cast<int>(points.size()), box.min, box.max);
  for (IPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
  tin.Triangulate();
}

// Unlike TTriangle::Area this multiplies differences, so that a small triangle far from the origin
// keeps its digits.
double PlanArea(TTriangle const& triangle) {
  TPoint const& a = *triangle.m_pVertex[0];
  TPoint const& b = *triangle.m_pVertex[1];
  TPoint const& c = *triangle.m_pVertex[2];
  return std::fabs((b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y)) / 2;
}

void Count(TTriangle const& triangle, SurfaceFacts& facts) {
  ++facts.visible_triangles;
  facts.area += PlanArea(triangle);
  for (TPoint const* corner : triangle.m_pVertex) {
    facts.lowest = std::min(facts.lowest, corner->z);
    facts.highest = std::max(facts.highest, corner->z);
  }
}

}  // namespace

std::string WhyNoSurface(std::vector<IPoint> const& points) {
  constexpr double SAME_PLACE = 0.001;  // the library's tolerance
  constexpr std::size_t MOST = 1'000'000'000;
  std::size_t const count = points.size();
  if (count == 0) return "there are no points";
  if (count > MOST) return "there are more than 1000000000 points";
  if (!std::all_of(points.begin(), points.end(), IsSensible)) {
    return "a coordinate is not a number, or beyond 1e100";
  }
  if (count < 3) return "a surface needs three points, and there are " + std::to_string(count);
  if (WidthOf(points) >= SAME_PLACE) return {};
  IPoint const& first = points.front();
  bool const one_place = std::all_of(points.begin(), points.end(), [&first](IPoint const& p) {
    return PlanDistance(first, p) < SAME_PLACE;
  });
  std::string const all = "all " + std::to_string(count) + " points lie ";
  return all + (one_place ? "in one place" : "on one line") + ": there is no surface";
}

bool IsSeedCorner(TPoint const& p, Box const& world) {
  return p.z == 0.0 && (p.x == world.min.x || p.x == world.max.x) &&
         (p.y == world.min.y || p.y == world.max.y);
}

SurfaceFacts FactsOf(TIN const& tin) {
  SurfaceFacts facts;
  facts.points = tin.GetNumberOfPoints();
  facts.triangles = tin.GetNumberOfTriangles();
  tin.GetBounds(facts.bounds.min, facts.bounds.max);
  tin.GetWorldBounds(facts.world_bounds.min, facts.world_bounds.max);

  facts.lowest = std::numeric_limits<double>::infinity();
  facts.highest = -facts.lowest;
  VertexMarks marks(tin);
  for (int i = 0; i < facts.triangles; ++i) {
    TTriangle const& triangle = *tin.GetTriangle(i, true);
    for (TPoint const* corner : triangle.m_pVertex) marks.Mark(corner);
    if (!triangle.IsHidden()) Count(triangle, facts);
  }
  if (facts.visible_triangles == 0) facts.lowest = facts.highest = 0.0;
  for (int i = 0; i < facts.points; ++i) {
    TPoint const* const p = tin.GetPoint(i);
    if (IsSeedCorner(*p, facts.world_bounds)) continue;
    ++facts.data_points;
    if (marks.Has(p)) ++facts.vertices;
  }
  return facts;
}

std::unique_ptr<TIN> BuildSurface(std::vector<IPoint>& points, bool keep_order,
                                  std::optional<Box> const& bounds, bool quiet) {
  Progress const progress = EstimatedProgress(points.size(), quiet);
  auto tin = std::make_unique<TIN>();
  if (keep_order) {
    tin->Create(&points);
  } else {
    Box box = BoundsOf(points);
    if (bounds) {
      box = {{bounds->min.x, bounds->min.y, box.min.z}, {bounds->max.x, bounds->max.y, box.max.z}};
    }
    InsertShuffled(*tin, points, box);
  }
  // The library does without what the system refuses it, and says nothing.
  bool const complete = tin->GetNumberOfPoints() >= static_cast<int>(points.size()) &&
                        tin->GetNumberOfTriangles() > 0;
  if (!complete) throw std::bad_alloc();
  return tin;
}

}  // namespace qeltin::cli
