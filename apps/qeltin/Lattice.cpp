#include "apps/qeltin/Lattice.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qeltin::cli {

LatticeAxis::LatticeAxis(double from, double to, double wanted)
    : begin(from), extent(to - from), spacing(std::min(wanted, extent)) {}

double LatticeAxis::Intervals() const { return std::ceil(extent / spacing); }

std::vector<double> LatticeAxis::Positions() const {
  std::vector<double> positions(static_cast<std::size_t>(Intervals()) + 1);
  double position = begin;
  for (double& each : positions) {
    each = position;
    position += spacing;
  }
  return positions;
}

Lattice::Lattice(TIN const& tin, LatticeAxis const& x, LatticeAxis const& y)
    : m_Tin(tin), m_X(x.Positions()), m_Y(y.Positions()) {
  constexpr double MOST_INTERVALS = 999;  // with more, a TGrid would choose the spacing itself
  if (std::max(x.Intervals(), y.Intervals()) > MOST_INTERVALS) return;
  m_pGrid = std::make_unique<TGrid>(tin, x.spacing, y.spacing);
}

void Lattice::Row(int j, std::vector<double>& heights) const {
  heights.resize(m_X.size());
  for (int i = 0; i < Columns(); ++i) {
    double const height = Height(i, j);
    heights[i] = std::isfinite(height) ? height : std::numeric_limits<double>::quiet_NaN();
  }
}

double Lattice::Height(int i, int j) const {
  double height = std::numeric_limits<double>::quiet_NaN();
  if (m_pGrid != nullptr) {
    TPoint const* const node = m_pGrid->GetNode(i, j);
    return node == nullptr ? height : node->z;
  }
  m_Tin.GetZ(m_X[i], m_Y[j], height);
  return height;
}

}  // namespace qeltin::cli
