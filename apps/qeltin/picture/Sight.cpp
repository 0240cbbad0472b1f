#include "apps/qeltin/picture/Sight.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qeltin::cli {

namespace {

// A part of a line of sight, by shares of its two places.
struct Part {
  double begin = 0.0;
  double end = HUGE_VAL;

  // Cuts off what is not from `low` to `high`, on one axis.
  void Clip(double from, double through, double low, double high) {
    double const step = through - from;
    if (step == 0.0) {
      if (from < low || from > high) end = -HUGE_VAL;
      return;
    }
    double const one = (low - from) / step;
    double const other = (high - from) / step;
    begin = std::max(begin, std::min(one, other));
    end = std::min(end, std::max(one, other));
  }
};

Part PartInside(Box const& box, Sight const& sight) {
  Part part;
  part.Clip(sight.from.x, sight.through.x, box.min.x, box.max.x);
  part.Clip(sight.from.y, sight.through.y, box.min.y, box.max.y);
  part.Clip(sight.from.z, sight.through.z, box.min.z, box.max.z);
  return part;
}

// Returns twice the area of a, b, p in plan, with a sign for the side of a-b that p is on.
double Side(TPoint const& a, TPoint const& b, TPoint const& p) {
  return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

// Walks over a surface under a line of sight.
class Walk {
 public:
  Walk(TIN const& tin, Sight const& sight, Part const& part)
      : m_Tin(tin), m_Sight(sight), m_Part(part), m_dShare(part.begin) {
    // What is nearer together in plan cannot be told apart in such coordinates.
    constexpr double SMALLEST = 1e-15;
    constexpr double SMALL = 1e-9;
    TPoint const along = sight.through - sight.from;
    double const largest = std::max({std::fabs(sight.from.x), std::fabs(sight.from.y), 1.0});
    m_dStep = std::max((part.end - part.begin) * SMALL,
                       largest * SMALLEST / std::hypot(along.x, along.y));
  }

  bool IsAtEnd() const { return !(m_dShare <= m_Part.end); }

  // Goes on to behind the triangle that is next, or a little where there is none. Returns where the
  // line of sight comes upon it, if it does so.
  std::optional<TPoint> Next() {
    constexpr double ACROSS_A_GAP = 1.0 / 512.0;  // of the whole way
    TTriangle const* const triangle = m_Tin.GetTriangleWithPoint(m_Sight.At(m_dShare));
    double const begin = m_dShare;
    if (triangle == nullptr) {
      m_dShare += std::max((m_Part.end - m_Part.begin) * ACROSS_A_GAP, m_dStep);
      return {};
    }
    double const end = std::clamp(ShareBehind(*triangle), begin, m_Part.end);
    m_dShare = end + m_dStep;
    return triangle->IsHidden() ? std::nullopt : Meet(*triangle, begin, end);
  }

 private:
  // Returns where the line of sight leaves a triangle in plan.
  double ShareBehind(TTriangle const& triangle) const {
    TPoint const* const* const corners = triangle.m_pVertex;
    double const turn = Side(*corners[0], *corners[1], *corners[2]);
    double share = HUGE_VAL;
    for (int i = 0; i < 3; ++i) {
      TPoint const& a = *corners[i];
      TPoint const& b = *corners[(i + 1) % 3];
      double const from = Side(a, b, m_Sight.from);
      double const towards = Side(a, b, m_Sight.through) - from;
      if (towards * turn < 0.0) share = std::min(share, -from / towards);
    }
    return share;
  }

  std::optional<TPoint> Meet(TTriangle const& triangle, double begin, double end) const {
    double const before = Above(triangle, begin);
    double const after = Above(triangle, end);
    if (before * after > 0.0) return {};
    double const f = before == after ? 0.0 : before / (before - after);
    TPoint hit = m_Sight.At(begin + (end - begin) * f);
    hit.z = triangle.GetZ(hit.x, hit.y);
    return hit;
  }

  // Returns how far the line of sight is above the plane of a triangle.
  double Above(TTriangle const& triangle, double share) const {
    TPoint const p = m_Sight.At(share);
    return p.z - triangle.GetZ(p.x, p.y);
  }

  TIN const& m_Tin;
  Sight const& m_Sight;
  Part m_Part;
  double m_dShare;
  double m_dStep;  // to get behind a side for sure
};

}  // namespace

Sight SightThrough(Camera const& camera, int x, int y, int width, int height) {
  double const tangent = std::tan(camera.fovy / 2.0 * std::numbers::pi / 180.0);
  double const unit = 2.0 * tangent / height;
  double const right = (x + 0.5 - width / 2.0) * unit;
  double const up = (height / 2.0 - y - 0.5) * unit;
  return {camera.frame.GetOrigin(), camera.frame >> TPoint(right, up, -1.0)};
}

std::optional<TPoint> FirstOnSurface(TIN const& tin, Box const& bounds, Sight const& sight) {
  for (Walk walk(tin, sight, PartInside(bounds, sight)); !walk.IsAtEnd();) {
    if (std::optional<TPoint> const hit = walk.Next()) return hit;
  }
  return {};
}

}  // namespace qeltin::cli
