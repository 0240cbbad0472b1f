#include "apps/qeltin/picture/ShiftedPoints.h"

namespace qeltin::cli {

ShiftedPoints::ShiftedPoints(TIN& tin, TPoint const& origin) {
  m_Places.reserve(static_cast<std::size_t>(tin.GetNumberOfPoints()));
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) Shift(tin.GetPoint(i), origin);
}

ShiftedPoints::ShiftedPoints(TGrid const& grid, TPoint const& origin) {
  for (int j = 0; j < grid.GetNumberOfNodesY(); ++j) {
    for (int i = 0; i < grid.GetNumberOfNodesX(); ++i) {
      TPoint* const node = grid.GetNode(i, j);
      if (node != nullptr) Shift(node, origin);
    }
  }
}

ShiftedPoints::~ShiftedPoints() {
  for (Place const& place : m_Places) {
    place.point->x = place.x;
    place.point->y = place.y;
  }
}

void ShiftedPoints::Shift(TPoint* point, TPoint const& origin) {
  m_Places.push_back({point, point->x, point->y});
  point->x -= origin.x;
  point->y -= origin.y;
}

}  // namespace qeltin::cli
