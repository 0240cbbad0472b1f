#pragma once

#include <memory>
#include <vector>

#include "qeltin/products/TGrid.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli {

// The positions of a lattice along one axis: running sums of the spacing, so that the last one lies
// on the upper end or up to one spacing beyond it.
struct LatticeAxis {
  double begin = 0.0;
  double extent = 0.0;
  double spacing = 0.0;  // never more than the extent

  LatticeAxis(double from, double to, double wanted);

  double Intervals() const;
  std::vector<double> Positions() const;
};

// The heights of a surface on a lattice over its data bounds, with node (0, 0) on the lower corner.
//
// A TGrid holds them where it can. It has no more than about 1000 intervals a side; with a finer
// spacing the surface is asked node by node in the same way, a row at a time.
class Lattice {
 public:
  // REQUIRES: both extents are above 0; `tin` outlives this object.
  Lattice(TIN const& tin, LatticeAxis const& x, LatticeAxis const& y);

  int Columns() const { return static_cast<int>(m_X.size()); }
  int Rows() const { return static_cast<int>(m_Y.size()); }

  // Sets `heights` to those of row `j`, from the south, not-a-number where there is none.
  void Row(int j, std::vector<double>& heights) const;

 private:
  double Height(int i, int j) const;

  TIN const& m_Tin;
  std::vector<double> m_X;
  std::vector<double> m_Y;
  std::unique_ptr<TGrid> m_pGrid;  // null where the spacing is too fine for it
};

}  // namespace qeltin::cli
