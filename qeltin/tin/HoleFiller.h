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
// Most radii are only compared, and an estimate without angles tells the smaller one; those that it
// cannot tell apart are calculated as TTriangle::XY_CircumcircleRadius does.
//
// Threads: one at a time.
class HoleFiller {
 public:
  // As Triangulator::FillHole. Leaves the last three corners in `ring`.
  bool Fill(std::vector<TPoint*>& ring, std::vector<TTriangle>& result);

  // Returns where in the ring of its round each ear began. Fewer than there were rounds where one
  // of them found no ear.
  std::vector<std::size_t> const& Ears() const { return m_Ears; }

 private:
  using Ring = std::vector<TPoint*>;

  // The radius of the triangle that begins at a position of the ring.
  struct Radius {
    double square;  // an estimate; infinite where no ear can be
    double exact;   // the radius itself, or UNKNOWN
    bool refused;   // in this round
  };

  Radius EstimateAt(Ring const& ring, std::size_t position) const;
  double ExactAt(Ring const& ring, std::size_t position);
  bool IsSmaller(Ring const& ring, std::size_t position, std::size_t than);
  std::optional<std::size_t> SmallestEar(Ring const& ring);
  bool IsEar(Ring const& ring, std::size_t position);
  bool HasCornerInTheWay(Ring const& ring, std::size_t position);
  void Clip(Ring& ring, std::size_t middle);

  TPolygon m_Polygon;  // the ring by value
  std::vector<Radius> m_Radii;
  std::vector<std::size_t> m_Ears;
  std::vector<TPoint> m_Positions;  // of the whole ring, while m_Polygon is made
  double m_dNearest = 0.0;  // of the whole ring: the smallest squared distance to the origin
};

}  // namespace qeltin::detail
