#include "testing/reference/StatedVolume.h"

#include <vector>

#include "testing/reference/StatedGeometry.h"

namespace qeltin::testing::stated {

namespace {

void Consider(TIN& tin, TPoint const& p) {
  if (p.z == 0.0) return;
  TPoint min;
  TPoint max;
  tin.GetBounds(min, max);
  if (p.x < min.x || p.x > max.x || p.y < min.y || p.y > max.y) return;
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
    if (Same(*tin.GetPoint(i), p)) return;
  }
  tin.AddPoint(p);
}

}  // namespace

bool CalculateVolume(TIN& tin, TPolygon const& boundary, double& below, double& above) {
  std::vector<TPolygon> pieces;
  if (tin.GenerateProfile(pieces, boundary) == 0) return false;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    for (int pass = 0; pass < pieces[i].GetSize(); ++pass) {
      if (static_cast<int>(i) < pieces[i].GetSize()) {
        Consider(tin, *pieces[i].Get(static_cast<int>(i)));
      }
    }
  }

  double aboveSum = 0.0;
  double belowSum = 0.0;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const& t = *tin.GetTriangle(i, true);
    TPoint const& a = *t.m_pVertex[0];
    TPoint const& b = *t.m_pVertex[1];
    TPoint const& c = *t.m_pVertex[2];
    if (!boundary.XY_Contains((a.x + b.x + c.x) / 3, (a.y + b.y + c.y) / 3)) continue;
    double first = 0.0;
    double second = 0.0;
    CutFill(t, first, second);
    aboveSum += first;
    belowSum += second;
  }
  below = -belowSum;
  above = aboveSum;
  return true;
}

}  // namespace qeltin::testing::stated
