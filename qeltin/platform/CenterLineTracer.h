#pragma once

#include <vector>

#include "qeltin/platform/CenterLineLeg.h"
#include "qeltin/platform/CenterLinePoint.h"

namespace qeltin::detail {

// Goes along the points of a center line and tells the leg that each of them stands for.
class CenterLineTracer {
 public:
  // The points are not owned and must outlive the tracer.
  explicit CenterLineTracer(std::vector<CenterLinePoint> const& points) : m_Points(points) {}

  // Returns the leg of the next point: of a vertex before another one the straight leg between
  // them, of a centre between two vertices its arc, of any other point a leg without length.
  // REQUIRES: there is a next point.
  CenterLineLeg Next();

 private:
  bool IsVertex(int index) const;
  bool IsArc(int index) const;
  CenterLineLeg ArcOf(int index) const;
  bool TurnsRight(int index, double clockwise) const;

  std::vector<CenterLinePoint> const& m_Points;
  int m_iNext = 0;
  CenterLineLeg m_Last;  // the last leg that has a length
};

}  // namespace qeltin::detail
