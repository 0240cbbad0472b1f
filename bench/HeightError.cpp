#include "bench/HeightError.h"

#include <algorithm>
#include <cmath>

namespace qeltin::bench {

namespace {

constexpr double POINTS_A_CELL = 4.0;

// The points sorted by the cells of a grid over their box.
class PointGrid {
 public:
  explicit PointGrid(std::vector<IPoint> const& points) : m_Box(BoxOf(points)) {
    double const width = std::max(m_Box.max.x - m_Box.min.x, 1e-9);
    double const height = std::max(m_Box.max.y - m_Box.min.y, 1e-9);
    double const cells = std::max(1.0, static_cast<double>(points.size()) / POINTS_A_CELL);
    m_dCell = std::sqrt(width * height / cells);
    m_iColumns = static_cast<std::size_t>(width / m_dCell) + 1;
    m_iRows = static_cast<std::size_t>(height / m_dCell) + 1;
    m_Start.resize(m_iColumns * m_iRows + 1);
    for (IPoint const& p : points) ++m_Start[CellOf(p) + 1];
    for (std::size_t i = 1; i < m_Start.size(); ++i) m_Start[i] += m_Start[i - 1];
    std::vector<std::size_t> next(m_Start.begin(), m_Start.end() - 1);
    m_Points.resize(points.size());
    for (IPoint const& p : points) m_Points[next[CellOf(p)]++] = {p, false};
  }

  // Calls `see` for each point in the cells that meet the box, until it answers true for it.
  template <typename See>
  void Visit(Box const& box, See see) {
    std::size_t const last = ColumnOf(box.max.x);
    for (std::size_t row = RowOf(box.min.y); row <= RowOf(box.max.y); ++row) {
      std::size_t const from = m_Start[row * m_iColumns + ColumnOf(box.min.x)];
      std::size_t const to = m_Start[row * m_iColumns + last + 1];
      for (std::size_t i = from; i < to; ++i) {
        if (!m_Points[i].seen) m_Points[i].seen = see(m_Points[i].point);
      }
    }
  }

 private:
  struct Entry {
    IPoint point;
    bool seen;
  };

  std::size_t Bin(double offset, std::size_t bins) const {
    double const bin = std::max(0.0, offset / m_dCell);
    return std::min(static_cast<std::size_t>(bin), bins - 1);
  }
  std::size_t ColumnOf(double x) const { return Bin(x - m_Box.min.x, m_iColumns); }
  std::size_t RowOf(double y) const { return Bin(y - m_Box.min.y, m_iRows); }
  std::size_t CellOf(IPoint const& p) const { return RowOf(p.y) * m_iColumns + ColumnOf(p.x); }

  Box m_Box;
  double m_dCell;
  std::size_t m_iColumns;
  std::size_t m_iRows;
  std::vector<std::size_t> m_Start;
  std::vector<Entry> m_Points;
};

double Turn(IPoint const& a, IPoint const& b, IPoint const& p) {
  return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

// Returns true iff `p` lies in the triangle, `z` being its height there. A point on a side that two
// triangles share lies in either.
bool HeightIn(IPoint const& a, IPoint const& b, IPoint const& c, IPoint const& p, double& z) {
  double const area = Turn(a, b, c);
  double const u = Turn(b, c, p) / area;
  double const v = Turn(c, a, p) / area;
  double const w = Turn(a, b, p) / area;
  if (!(std::min({u, v, w}) >= 0.0)) return false;
  z = u * a.z + v * b.z + w * c.z;
  return true;
}

}  // namespace

HeightError MeasureHeightError(std::vector<IPoint> const& points, FlatMesh const& mesh) {
  PointGrid grid(points);
  HeightError error;
  double sum = 0.0;
  for (std::size_t i = 0; i < mesh.corners.size(); i += 3) {
    std::vector<IPoint> const t = {mesh.points[mesh.corners[i]], mesh.points[mesh.corners[i + 1]],
                                   mesh.points[mesh.corners[i + 2]]};
    grid.Visit(BoxOf(t), [&](IPoint const& p) {
      double z = 0.0;
      if (!HeightIn(t[0], t[1], t[2], p, z)) return false;
      double const difference = std::fabs(z - p.z);
      sum += difference * difference;
      error.largest = std::max(error.largest, difference);
      ++error.covered;
      return true;
    });
  }
  if (error.covered > 0.0) error.rms = std::sqrt(sum / error.covered);
  return error;
}

void AddFacts(HeightError const& error, FlatMesh const& mesh, Measurement& measurement) {
  measurement.AddFact("left", static_cast<double>(mesh.points.size()));
  measurement.AddFact("covered", error.covered);
  measurement.AddFact("rms_error", error.rms);
  measurement.AddFact("largest_error", error.largest);
}

}  // namespace qeltin::bench
