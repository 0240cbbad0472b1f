#include "apps/qeltin/Surface.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <limits>
#include <new>
#include <string>
#include <utility>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/Memory.h"
#include "apps/qeltin/Prism.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/Sweep.h"

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

  void MarkCorners(TTriangle const& t) {
    for (TPoint const* p : t.m_pVertex) {
      // A damaged file can leave a corner on a slot that is not in use.
      if (Offset(p) < m_Marked.size()) m_Marked[Offset(p)] = true;
    }
  }

  // REQUIRES: a live point.
  bool Has(TPoint const& p) const { return m_Marked[Offset(&p)]; }

 private:
  std::size_t Offset(TPoint const* p) const { return static_cast<std::size_t>(p - m_pFirst); }

  TPoint const* m_pFirst = nullptr;
  std::vector<bool> m_Marked;
};

FactsGatherer GathererFor(TIN const& tin) {
  Box bounds;
  Box world;
  tin.GetBounds(bounds.min, bounds.max);
  tin.GetWorldBounds(world.min, world.max);
  return {bounds, world};
}

double PlanDistance(IPoint const& a, IPoint const& b) { return std::hypot(b.x - a.x, b.y - a.y); }

double SquaredPlanDistance(IPoint const& a, IPoint const& b) {
  return (b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y);
}

IPoint const& FarthestFrom(IPoint const& a, std::vector<IPoint> const& points) {
  return *std::max_element(points.begin(), points.end(),
                           [&a](IPoint const& one, IPoint const& other) {
                             return SquaredPlanDistance(a, one) < SquaredPlanDistance(a, other);
                           });
}

// Returns true iff a point lies `width` or more off the line through the first point and the one
// that is farthest from it.
bool AreAsWideAs(double width, std::vector<IPoint> const& points) {
  IPoint const& a = points.front();
  IPoint const& b = FarthestFrom(a, points);
  double const length = PlanDistance(a, b);
  return length > 0.0 && std::any_of(points.begin(), points.end(), [&](IPoint const& p) {
           double const across = (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
           return std::fabs(across) / length >= width;
         });
}

bool IsSensible(IPoint const& p) {
  constexpr double LARGEST = 1e100;  // its third power is still a number
  return std::fabs(p.x) < LARGEST && std::fabs(p.y) < LARGEST && std::isfinite(p.z);
}

// Shows how far `count` points have probably come: building is one call, which tells nothing.
Progress EstimatedProgress(std::size_t count, bool keep_order, bool quiet) {
  double const seconds_per_point = keep_order ? 2e-6 : 6e-7;
  std::chrono::duration<double> const guess(seconds_per_point * static_cast<double>(count));
  return Progress("build", guess, quiet);
}

HeldSurface MakeShuffled(std::vector<IPoint>&& points, std::optional<Box> const& bounds) {
  Extent extent;
  for (IPoint const& p : points) extent.Add(p);
  Box box = extent.Bounds();
  if (bounds) {
    box = {{bounds->min.x, bounds->min.y, box.min.z}, {bounds->max.x, bounds->max.y, box.max.z}};
  }
  HeldSurface tin = MakeEmpty(static_cast<int>(points.size()), box.min, box.max);
  for (IPoint const& p : points) tin->LoadPoint(p.x, p.y, p.z);
  std::vector<IPoint>().swap(points);  // their memory is wanted for the triangles
  tin->Triangulate();
  return tin;
}

}  // namespace

void Extent::Add(IPoint const& p) {
  if (m_iCount++ == 0) m_Box = {p, p};
  m_Box.min = {std::min(m_Box.min.x, p.x), std::min(m_Box.min.y, p.y), std::min(m_Box.min.z, p.z)};
  m_Box.max = {std::max(m_Box.max.x, p.x), std::max(m_Box.max.y, p.y), std::max(m_Box.max.z, p.z)};
}

bool HasVisibleTriangle(TIN const& tin) {
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    if (tin.GetTriangle(i, false) != nullptr) return true;
  }
  return false;
}

void RequireVisible(TIN const& tin, std::string const& file) {
  if (!HasVisibleTriangle(tin))
    throw Failure(file, "the points span no area: no triangle is visible");
}

std::string WhyNoSurface(std::vector<IPoint> const& points) {
  constexpr double SAME_PLACE = 0.001;  // the library's tolerance
  std::size_t const count = points.size();
  if (count == 0) return "there are no points";
  if (count > MOST_POINTS) return "there are more than 1000000000 points";
  if (!std::all_of(points.begin(), points.end(), IsSensible)) {
    return "a coordinate is not a number, or beyond 1e100";
  }
  if (count < 3) return "a surface needs three points, and there are " + std::to_string(count);
  if (AreAsWideAs(SAME_PLACE, points)) return {};
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

FactsGatherer::FactsGatherer(Box const& bounds, Box const& world_bounds) {
  m_Facts.bounds = bounds;
  m_Facts.world_bounds = world_bounds;
  m_Facts.lowest = std::numeric_limits<double>::infinity();
  m_Facts.highest = -m_Facts.lowest;
}

void FactsGatherer::CountTriangle(bool visible) {
  ++m_Facts.triangles;
  if (visible) ++m_Facts.visible_triangles;
}

void FactsGatherer::AddVisibleTriangle(TPoint const& a, TPoint const& b, TPoint const& c) {
  CountTriangle(true);
  m_Facts.area += PlanArea(a, b, c);
  for (TPoint const* corner : {&a, &b, &c}) {
    m_Facts.lowest = std::min(m_Facts.lowest, corner->z);
    m_Facts.highest = std::max(m_Facts.highest, corner->z);
  }
}

void FactsGatherer::AddPoint(TPoint const& p, bool vertex) {
  ++m_Facts.points;
  if (IsSeedCorner(p, m_Facts.world_bounds)) return;
  ++m_Facts.data_points;
  if (vertex) ++m_Facts.vertices;
}

SurfaceFacts FactsGatherer::Facts() const {
  SurfaceFacts facts = m_Facts;
  if (facts.visible_triangles == 0) facts.lowest = facts.highest = 0.0;
  return facts;
}

SurfaceFacts FactsOf(TIN const& tin) {
  FactsGatherer gatherer = GathererFor(tin);
  VertexMarks marks(tin);
  ForEachTriangle(tin, [&](TTriangle const& t) {
    marks.MarkCorners(t);
    if (t.IsHidden()) {
      gatherer.CountTriangle(false);
    } else {
      gatherer.AddVisibleTriangle(*t.m_pVertex[0], *t.m_pVertex[1], *t.m_pVertex[2]);
    }
  });
  ForEachPoint(tin, [&](TPoint const& p) { gatherer.AddPoint(p, marks.Has(p)); });
  return gatherer.Facts();
}

SurfaceCounts CountsOf(TIN const& tin) {
  FactsGatherer gatherer = GathererFor(tin);
  VertexMarks marks(tin);
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const& t = *tin.GetTriangle(i, true);
    marks.MarkCorners(t);
    gatherer.CountTriangle(!t.IsHidden());
  }
  ForEachPoint(tin, [&](TPoint const& p) { gatherer.AddPoint(p, marks.Has(p)); });
  return gatherer.Facts();
}

void AppendVertices(TIN const& tin, std::vector<IPoint>& points) {
  Box world;
  tin.GetWorldBounds(world.min, world.max);
  VertexMarks marks(tin);
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) marks.MarkCorners(*tin.GetTriangle(i, true));
  ForEachPoint(tin, [&](TPoint const& p) {
    if (!IsSeedCorner(p, world) && marks.Has(p)) points.push_back({p.x, p.y, p.z});
  });
}

HeldSurface BuildSurface(std::vector<IPoint> points, bool keep_order,
                         std::optional<Box> const& bounds, bool quiet) {
  std::size_t const count = points.size();
  Progress const progress = EstimatedProgress(count, keep_order, quiet);
  try {
    HeldSurface tin = keep_order ? MakeInOrder(points) : MakeShuffled(std::move(points), bounds);
    // The library does without what the system refuses it, and says nothing.
    bool const complete =
        tin->GetNumberOfPoints() >= static_cast<int>(count) && tin->GetNumberOfTriangles() > 0;
    if (complete) return tin;
  } catch (std::bad_alloc const&) {
  }
  throw OutOfMemory(static_cast<double>(count));
}

}  // namespace qeltin::cli
