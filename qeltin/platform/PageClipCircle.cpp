#include <algorithm>
#include <array>
#include <cmath>

#include "qeltin/platform/Math.h"
#include "qeltin/platform/Page.h"

namespace {

double Turn(double angle) {
  double const rest = std::fmod(angle, 360.0);
  double const turned = rest < 0.0 ? rest + 360.0 : rest;
  return turned < 360.0 ? turned : 0.0;
}

double SweepFrom(double start, double end) {
  if (end - start >= 360.0) return 360.0;
  double const sweep = Turn(end - start);
  return sweep > 0.0 ? sweep : 360.0;
}

// Returns whether a line at so many radii from the centre crosses the circle, touches it, or all
// but touches it: a piece is judged by its middle, which must not be a place where rounding
// decides.
bool Meets(double radii) { return std::fabs(radii) < 1.0 + 1e-6; }

// A place on the arc: how far it is from the start, and its bearing.
struct Cut {
  double along;
  double bearing;

  bool operator<(Cut const& other) const { return along < other.along; }
};

// The places where an arc begins, ends and crosses the lines through the edges of a page, in order.
class Cuts {
 public:
  Cuts(double start, double end) : m_dStart(start), m_dSweep(SweepFrom(start, end)) {
    m_Cuts[m_iCount++] = {0.0, Turn(start)};
    m_Cuts[m_iCount++] = {m_dSweep, Turn(end)};
  }

  // `sine` is how far east of the centre a line runs, in radii.
  void AddEastOf(double sine) {
    if (!Meets(sine)) return;
    double const bearing = std::asin(std::clamp(sine, -1.0, 1.0)) / D_TO_R;
    Add(bearing);
    Add(180.0 - bearing);
  }

  void AddNorthOf(double cosine) {
    if (!Meets(cosine)) return;
    double const bearing = std::acos(std::clamp(cosine, -1.0, 1.0)) / D_TO_R;
    Add(bearing);
    Add(-bearing);
  }

  // Sorts, and drops what is no further than EPSILON from another.
  void Settle() {
    std::sort(m_Cuts.begin(), m_Cuts.begin() + m_iCount);
    int kept = 1;
    for (int i = 1; i < m_iCount; ++i) {
      if (m_Cuts[i].along - m_Cuts[kept - 1].along > EPSILON) m_Cuts[kept++] = m_Cuts[i];
    }
    m_iCount = kept;
  }

  int Count() const { return m_iCount; }
  Cut const& operator[](int index) const { return m_Cuts[index]; }

 private:
  void Add(double bearing) {
    double const along = Turn(bearing - m_dStart);
    if (along > EPSILON && along < m_dSweep - EPSILON) m_Cuts[m_iCount++] = {along, Turn(bearing)};
  }

  double m_dStart;
  double m_dSweep;
  std::array<Cut, 10> m_Cuts;
  int m_iCount = 0;
};

}  // namespace

void Page::ClipCircle(Point const& center, double radius, double start, double end, long& count,
                      double (&starts)[5], double (&ends)[5]) const {
  count = 0;
  if (!std::isfinite(start) || !std::isfinite(end - start)) return;
  Cuts cuts(start, end);
  cuts.AddEastOf((m_BottomLeft.x - center.x) / radius);
  cuts.AddEastOf((m_TopRight.x - center.x) / radius);
  cuts.AddNorthOf((m_BottomLeft.y - center.y) / radius);
  cuts.AddNorthOf((m_TopRight.y - center.y) / radius);
  cuts.Settle();

  bool joins = false;
  for (int i = 0; i + 1 < cuts.Count(); ++i) {
    double const middle = (start + (cuts[i].along + cuts[i + 1].along) / 2.0) * D_TO_R;
    double const x = center.x + radius * std::sin(middle);
    double const y = center.y + radius * std::cos(middle);
    bool const kept =
        x >= m_BottomLeft.x && x <= m_TopRight.x && y >= m_BottomLeft.y && y <= m_TopRight.y;
    if (kept && joins) {
      ends[count - 1] = cuts[i + 1].bearing;
    } else if (kept && count < 5) {
      starts[count] = cuts[i].bearing;
      ends[count] = cuts[i + 1].bearing;
      ++count;
    }
    joins = kept;
  }
}
