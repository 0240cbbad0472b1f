#pragma once

#include <iosfwd>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "testing/MakeSurvey.h"

// Closed figures as lists of vertices, and figures that nobody should draw.
namespace qeltin::testing {

enum class Figure {
  Simple,        // a star about a middle, random radii
  Comb,          // teeth side by side, all tips level
  Spiral,        // a round corridor of many turns
  SquareSpiral,  // the same with four walls a turn
  SelfCrossing,  // random vertices in random order
  Repeated,      // SelfCrossing over few places, so that vertices and edges repeat
  Grid,          // random vertices on whole numbers
  Collinear,     // all on one oblique line, as far as rounding lets them
  Tilted,        // Comb, turned
};

inline constexpr Figure ALL_FIGURES[] = {
    Figure::Simple,   Figure::Comb, Figure::Spiral,    Figure::SquareSpiral, Figure::SelfCrossing,
    Figure::Repeated, Figure::Grid, Figure::Collinear, Figure::Tilted,
};

char const* NameOf(Figure figure);
std::ostream& operator<<(std::ostream& out, Figure figure);

// Returns `count` vertices about the origin of `frame`, some hundreds of units across, in one
// turning direction or the other. z differs from vertex to vertex.
std::vector<TPoint> MakeFigure(Figure figure, int count, std::uint64_t seed,
                               Frame const& frame = AT_ORIGIN);

// Factors that take a figure to where products of its coordinates get lost below the smallest
// number or past the largest, and to where they just do not.
inline constexpr double EXTREME_SCALES[] = {1e-300, 1e-170, 1e-155, 1e-110, 1e-80, 1e-54, 1e-48,
                                            1e66,   1e69,   1e75,   1e90,   1e110, 1e150, 1e300};

// Draws a place in or about the figure: anywhere, at or beside a vertex, level with one, in the
// middle of an edge or of two vertices. REQUIRES: at least one vertex.
TPoint PlaceAbout(std::vector<TPoint> const& figure, Dice& dice);

}  // namespace qeltin::testing
