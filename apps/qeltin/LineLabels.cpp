#include "apps/qeltin/LineLabels.h"

#include <cmath>
#include <numbers>

#include "qeltin/products/TPolygon.h"
#include "qeltin/products/TPolygonLabel.h"

namespace qeltin::cli {

namespace {

// In pixels.
constexpr double FINEST_STEP = 0.25;
constexpr double STRAIGHT_WITHIN = 1.5;

double DistanceFromChord(TPoint const& p, TPoint const& a, TPoint const& b) {
  TPoint const chord = b - a;
  double const length = chord.XY_Length();
  if (length == 0.0) return a.XY_Distance(p);
  return std::fabs(chord.x * (p.y - a.y) - chord.y * (p.x - a.x)) / length;
}

// Returns the line as few long edges that stay close to it: where a text fits along it.
TPolygon StraightStretches(std::vector<TPoint> const& points) {
  TPolygon stretches;
  std::size_t from = 0;
  stretches.Add(points[0]);
  for (std::size_t to = 2; to <= points.size(); ++to) {
    bool straight = to < points.size();
    for (std::size_t i = from + 1; straight && i < to; ++i) {
      straight = DistanceFromChord(points[i], points[from], points[to]) <= STRAIGHT_WITHIN;
    }
    if (straight) continue;
    from = to - 1;
    stretches.Add(points[from]);
  }
  return stretches;
}

}  // namespace

std::vector<TPoint> ThinnedLine(std::vector<TPoint> const& points) {
  std::vector<TPoint> kept;
  for (TPoint const& p : points) {
    if (kept.empty() || kept.back().XY_Distance(p) >= FINEST_STEP) kept.push_back(p);
  }
  if (kept.size() == 1) kept.push_back(points.back());
  return kept;
}

std::vector<LabelSpot> LabelSpots(std::vector<TPoint> const& points, std::string const& text,
                                  double width, double spacing) {
  TPolygon const stretches = StraightStretches(points);
  std::wstring const wide(text.begin(), text.end());
  TPolygonLabel const label(&stretches, wide.c_str(), width, spacing);
  std::vector<LabelSpot> spots;
  for (int i = 0; i + 1 < stretches.GetSize(); ++i) {
    TLabeledSegment const* const segment = label.GetLabeledSegment(i);
    if (segment == nullptr) continue;
    double turn = segment->GetAngle() * 180.0 / std::numbers::pi;
    if (turn > 90.0 && turn <= 270.0) turn -= 180.0;
    spots.push_back({segment->GetCenter(), turn});
  }
  return spots;
}

}  // namespace qeltin::cli
