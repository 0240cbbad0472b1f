#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "qeltin/products/TPolygon.h"

namespace qeltin::detail {

// The work of Triangulator::FillHole. Keeps its storage from one hole to the next.
//
// Threads: one at a time.
class HoleFiller {
 public:
  // As Triangulator::FillHole. Leaves the last three corners in `ring`.
  bool Fill(std::vector<TPoint*>& ring, std::vector<TTriangle>& result);

 private:
  using Ring = std::vector<TPoint*>;

  struct Ear {
    std::size_t position;  // of its first corner
    TTriangle triangle;
  };

  std::optional<Ear> SmallestEar(Ring const& ring) const;
  bool IsEar(Ring const& ring, std::size_t position, TTriangle const& ear) const;
  void Clip(Ring& ring, std::size_t middle);

  TPolygon m_Polygon;               // the ring by value
  std::vector<double> m_Radii;      // of the triangle that begins at each position
  std::vector<TPoint> m_Positions;  // of the whole ring, while m_Polygon is made
};

}  // namespace qeltin::detail
