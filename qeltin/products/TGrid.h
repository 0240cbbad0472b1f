#pragma once

#include "qeltin/kernel/TPoint.h"
#include "qeltin/platform/Export.h"

class TIN;

namespace qeltin::detail {
class GridSampler;
}

// Heights of a surface on a regular lattice in plan.
//
// Node (i, j) is the i-th from the west in the j-th row from the south, both from 0. A node is
// invalid where there is no visible surface: outside the data bounds, which a last row or column
// beyond them always is, in a hidden triangle, and in one without plan area.
//
// The grid keeps no link to the surface: it is a snapshot. Units are those of the surface. Copies
// share one array of nodes, and each frees it: keep at most one of them alive to its end.
//
// Threads: concurrent reads are safe. Create moves the location object of the surface, so that two
// grids of one surface are not built at once.
class QELTIN_API TGrid {
 public:
  TGrid() = default;

  // As TGrid(), then Create.
  TGrid(TIN const& tin, double dx, double dy);

  TGrid(TGrid const&) = default;
  TGrid& operator=(TGrid const&) = default;
  virtual ~TGrid();

  // Lays a lattice over the data bounds and asks the surface for a height at every node. A spacing
  // is never more than the extent and never finer than a thousandth of it: 0 and negative values
  // give the finest. Positions are running sums of the spacing. An axis without extent gets a
  // single node. Always true.
  bool Create(TIN const& tin, double dx, double dy);

  int GetNumberOfNodesX() const { return m_iNodesX; }
  int GetNumberOfNodesY() const { return m_iNodesY; }

  // Returns the position and height of a node, owned by the grid; null out of range and where the
  // node is invalid.
  TPoint* GetNode(int i, int j) const;

  // Returns true iff `p` is inside or on the box of the data, in x, y and z.
  bool InBounds(TPoint const& p) const;

  void GetBounds(TPoint& min, TPoint& max) const;

 private:
  friend class qeltin::detail::GridSampler;

  struct Node {
    bool m_bValid = false;
    TPoint m_Point;
  };

  void BuildNodes(int count);
  void DestroyNodes();

  Node* m_pNodes = nullptr;  // row by row from the south-west
  TPoint m_Min;
  TPoint m_Max;
  double m_dDeltaX = 0.0;
  double m_dDeltaY = 0.0;
  int m_iNodesX = 0;
  int m_iNodesY = 0;
};

// Returns a new empty grid, to be given back to ReleaseGrid.
QELTIN_API TGrid* CreateGrid();

// Destroys a grid. Null is ignored.
QELTIN_API void ReleaseGrid(TGrid* grid);
