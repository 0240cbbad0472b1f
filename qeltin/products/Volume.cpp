#include <cassert>
#include <functional>
#include <unordered_map>
#include <vector>

#include "qeltin/products/ContainmentIndex.h"
#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"

namespace {

// A point of the boundary, and how often it is to be considered.
struct Considered {
  TPoint point;
  int times;
};

// Tells of a few points whether an equal one is live in a surface: one look over the live points,
// then word of those that are added. A height that is not a number equals none.
class StandingPoints {
 public:
  StandingPoints(std::vector<Considered> const& asked, TIN const& tin) {
    for (Considered const& each : asked) m_Stands.emplace(each.point, false);
    if (m_Stands.empty()) return;
    for (int i = 0; i < tin.GetNumberOfPoints(); ++i) Note(*tin.GetPoint(i));
  }

  // Takes note of a live point.
  void Note(TPoint const& live) {
    auto const found = m_Stands.find(live);
    if (found != m_Stands.end()) found->second = true;
  }

  bool Has(TPoint const& p) const {
    auto const found = m_Stands.find(p);
    return found != m_Stands.end() && found->second;
  }

 private:
  struct HashOfX {
    std::size_t operator()(TPoint const& p) const { return std::hash<double>()(p.x); }
  };

  std::unordered_map<TPoint, bool, HashOfX> m_Stands;
};

// Of the piece at position i only its point at position i counts, once for each of its points.
std::vector<Considered> PointsToConsider(std::vector<TPolygon> const& pieces, TIN const& tin) {
  std::vector<Considered> considered;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    auto const position = static_cast<int>(i);
    if (position >= pieces[i].GetSize()) continue;
    TPoint const& p = *pieces[i].Get(position);
    if (p.z != 0.0 && tin.InBounds(p)) considered.push_back({p, pieces[i].GetSize()});
  }
  return considered;
}

void InsertBoundaryPoints(std::vector<TPolygon> const& pieces, TIN& tin) {
  std::vector<Considered> const considered = PointsToConsider(pieces, tin);
  StandingPoints standing(considered, tin);
  for (auto const& [point, times] : considered) {
    for (int pass = 0; pass < times && !standing.Has(point); ++pass) {
      tin.AddPoint(point);
      int const count = tin.GetNumberOfPoints();
      if (count > 0) standing.Note(*tin.GetPoint(count - 1));
    }
  }
}

}  // namespace

bool TIN::CalculateVolume(TPolygon const* boundary, double* below, double* above) {
  assert(boundary != nullptr && below != nullptr && above != nullptr);
  std::vector<TPolygon> pieces;
  if (GenerateProfile(pieces, *boundary) == 0) return false;
  InsertBoundaryPoints(pieces, *this);

  qeltin::detail::ContainmentIndex const inside(*boundary);
  double aboveSum = 0.0;
  double belowSum = 0.0;
  for (int i = 0; i < GetNumberOfTriangles(); ++i) {
    TTriangle const& t = *GetTriangle(i, true);
    TPoint const& a = *t.m_pVertex[0];
    TPoint const& b = *t.m_pVertex[1];
    TPoint const& c = *t.m_pVertex[2];
    if (!inside.Contains((a.x + b.x + c.x) / 3.0, (a.y + b.y + c.y) / 3.0)) continue;
    double first;
    double second;
    t.CutFill(&first, &second);
    aboveSum += first;
    belowSum += second;
  }
  *below = -belowSum;
  *above = aboveSum;
  return true;
}
