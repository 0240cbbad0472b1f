#include "apps/qeltin/VolumeMeter.h"

#include <cmath>
#include <vector>

#include "apps/qeltin/Boundary.h"

namespace qeltin::cli {

namespace {

using Sides = std::vector<Boundary::Side const*>;

class Meter {
 public:
  Meter(TPolygon const& polygon, std::optional<double> step) : m_Boundary(polygon), m_Step(step) {}

  void Add(TTriangle const& triangle) {
    TPoint const* const corners[] = {triangle.m_pVertex[0], triangle.m_pVertex[1],
                                     triangle.m_pVertex[2]};
    long long const before = m_Result.prisms.count;
    if (m_Step) {
      Sides sides;
      m_Boundary.SidesIn(corners, sides);
      AddPiece(corners, sides);
    } else {
      AddWhole(corners);
    }
    if (m_Result.prisms.count > before) ++m_Result.triangles;
  }

  Volume const& Result() const { return m_Result; }

 private:
  void AddWhole(TPoint const* const corners[3]) {
    TPoint const& a = *corners[0];
    TPoint const& b = *corners[1];
    TPoint const& c = *corners[2];
    if (m_Boundary.Contains((a.x + b.x + c.x) / 3, (a.y + b.y + c.y) / 3)) {
      m_Result.prisms.Add(a, b, c);
    }
  }

  // Adds a piece that `sides` of the boundary pass through.
  void AddPiece(TPoint const* const corners[3], Sides const& sides) {
    if (sides.empty()) return AddWhole(corners);
    int const longest = LongestSide(corners);
    TPoint const& from = *corners[longest];
    TPoint const& to = *corners[(longest + 1) % 3];
    TPoint const& far = *corners[(longest + 2) % 3];
    TPoint const middle{from.x + (to.x - from.x) / 2, from.y + (to.y - from.y) / 2,
                        from.z + (to.z - from.z) / 2};
    bool const is_smallest = middle.XY_EqualsTo(from) || middle.XY_EqualsTo(to);
    if (is_smallest || !(from.XY_Distance(to) > *m_Step)) return AddWhole(corners);
    AddHalf(from, middle, far, sides);
    AddHalf(middle, to, far, sides);
  }

  void AddHalf(TPoint const& a, TPoint const& b, TPoint const& c, Sides const& candidates) {
    TPoint const* const corners[] = {&a, &b, &c};
    Sides sides;
    Boundary::SidesIn(corners, candidates, sides);
    AddPiece(corners, sides);
  }

  static int LongestSide(TPoint const* const corners[3]) {
    int longest = 0;
    for (int k = 1; k < 3; ++k) {
      if (Length(corners, k) > Length(corners, longest)) longest = k;
    }
    return longest;
  }

  static double Length(TPoint const* const corners[3], int side) {
    return corners[side]->XY_Distance(*corners[(side + 1) % 3]);
  }

  Boundary m_Boundary;
  std::optional<double> m_Step;
  Volume m_Result;
};

}  // namespace

Volume MeasureVolume(TIN const& tin, TPolygon const& polygon, std::optional<double> step) {
  Meter meter(polygon, step);
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const* const triangle = tin.GetTriangle(i, false);
    if (triangle != nullptr) meter.Add(*triangle);
  }
  return meter.Result();
}

}  // namespace qeltin::cli
