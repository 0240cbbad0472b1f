#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

struct Isoline {
  std::vector<TPoint> points;
  bool closed = false;  // the last point is then the first once more
};

// Draws whole lines of equal height over the visible surface, which it follows to both ends. Unlike
// TIN::GenerateIsoline, which leaves a line in pieces, and closed ones open.
//
// One pass over the surface finds the triangles of all levels. Lines of different levels never
// cross.
//
// A vertex at the height counts as above it, and a line that runs through it has its very x and y;
// a summit at the height so gives a line of one point. No two consecutive points are equal. Higher
// ground lies to the right of a line.
class WholeIsolines {
 public:
  // REQUIRES: the surface stays as it is while this object lives.
  // `levels` rise, each once.
  WholeIsolines(TIN const& tin, std::vector<double> levels);

  // Returns the lines of level number `i`, in the order of the triangles that they are met in.
  std::vector<Isoline> At(std::size_t i);

 private:
  using Points = std::vector<TPoint>;

  bool IsOpen(TTriangle const& t) const { return !t.IsHidden() && m_Tin.InBounds(t); }
  bool IsCrossed(TTriangle const& t, int side) const;
  int OtherCrossed(TTriangle const& t, int side) const;
  TPoint Crossing(TTriangle const& t, int side) const;

  // Returns the side across which a line comes in with the higher ground to its right, if any line
  // runs through.
  std::optional<int> Entry(TTriangle const& t) const;

  Isoline Follow(TTriangle const& start, int entry);

  // Appends the points from `side` of `start` on. Returns true iff the line comes back to `start`.
  bool Follow(TTriangle const& start, int side, Points& points);

  std::size_t Slot(TTriangle const* t) const { return static_cast<std::size_t>(t - m_pFirst); }

  void FindBlock();
  void FindCrossed();

  TIN const& m_Tin;
  std::vector<double> m_Levels;
  std::vector<std::vector<TTriangle const*>> m_Crossed;  // open triangles, for each level
  double m_dLevel = 0.0;
  TTriangle const* m_pFirst = nullptr;  // of the block in which the triangles stand
  std::vector<bool> m_Walked;           // by slot
};

}  // namespace qeltin::cli
