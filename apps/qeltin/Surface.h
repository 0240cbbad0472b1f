#pragma once

#include <optional>
#include <string>
#include <vector>

#include "apps/qeltin/HeldSurface.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

// A box in plan.
struct Box {
  TPoint min;
  TPoint max;

  bool Has(IPoint const& p) const {
    return p.x >= min.x && p.x <= max.x && p.y >= min.y && p.y <= max.y;
  }
};

// The box of points that come one by one.
class Extent {
 public:
  void Add(IPoint const& p);

  long long Count() const { return m_iCount; }

  // At zero without points.
  Box const& Bounds() const { return m_Box; }

 private:
  Box m_Box;
  long long m_iCount = 0;
};

// How many there are of what a surface is made of, and where it lies.
struct SurfaceCounts {
  int points = 0;       // live, seed corners included
  int data_points = 0;  // live, without the seed corners
  int vertices = 0;     // data points that are corners of a triangle
  int triangles = 0;    // live, hidden ones included
  int visible_triangles = 0;
  Box bounds;  // data bounds
  Box world_bounds;
};

// What there is to tell about a surface.
struct SurfaceFacts : SurfaceCounts {
  double lowest = 0.0;  // corners of visible triangles; 0 without any
  double highest = 0.0;
  double area = 0.0;  // of the visible triangles, in plan
};

SurfaceFacts FactsOf(TIN const& tin);

// The same without what asks for the corners of every triangle, in a third of the time.
SurfaceCounts CountsOf(TIN const& tin);

// Gathers the facts of a surface element by element.
class FactsGatherer {
 public:
  FactsGatherer(Box const& bounds, Box const& world_bounds);

  void CountTriangle(bool visible);
  void AddVisibleTriangle(TPoint const& a, TPoint const& b, TPoint const& c);

  // `vertex` tells whether a triangle, hidden ones too, has the point as a corner.
  void AddPoint(TPoint const& p, bool vertex);

  SurfaceFacts Facts() const;

 private:
  SurfaceFacts m_Facts;
};

// Returns true iff `p` stands exactly where a corner of the seed rectangle does.
bool IsSeedCorner(TPoint const& p, Box const& world);

// Appends the data points of a surface that are corners of a triangle, in their order.
void AppendVertices(TIN const& tin, std::vector<IPoint>& points);

// Builds the surface of `points`, in random order, which is the fast way, or in the order given,
// which leads to the same surface bit by bit on every run. In random order the data bounds are
// `bounds`, or else those of the points. In the order given they are those of the points, and what
// reached beyond the bounds of the points before it may stay hidden. Points that are moved in give
// their memory back as soon as they are in the surface. Shows its progress unless `quiet`. Throws
// OutOfMemory.
// REQUIRES: WhyNoSurface has nothing to say; the points lie inside `bounds`.
HeldSurface BuildSurface(std::vector<IPoint> points, bool keep_order,
                         std::optional<Box> const& bounds, bool quiet);

// Returns true iff the surface shows a triangle.
bool HasVisibleTriangle(TIN const& tin);

// Throws Failure, in the name of `file`, where the surface shows no triangle.
void RequireVisible(TIN const& tin, std::string const& file);

// So many the library can number.
inline constexpr std::size_t MOST_POINTS = 1'000'000'000;

// Returns why no surface can be made of `points`, in words that follow "FILE: ", or an empty text.
// Fewer than three, all within 0.001 of one place or of one line, coordinates that overflow where
// they are multiplied, or more than the library can number.
std::string WhyNoSurface(std::vector<IPoint> const& points);

}  // namespace qeltin::cli
