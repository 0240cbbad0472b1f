#include "apps/qeltin/Prism.h"

#include <algorithm>
#include <cmath>

namespace qeltin::cli {

namespace {

// Returns the volume between the plane z = 0 and the corner at height `lone`, which has the two
// others on the far side of the plane.
double CornerVolume(double area, double lone, double other, double another) {
  double const share = lone / (lone - other) * (lone / (lone - another));
  return area * share * lone / 3;
}

}  // namespace

double PlanArea(TPoint const& a, TPoint const& b, TPoint const& c) {
  return std::fabs((b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y)) / 2;
}

void Prisms::Add(TPoint const& a, TPoint const& b, TPoint const& c) {
  double z[3] = {a.z, b.z, c.z};
  std::sort(z, z + 3);
  double const plan = PlanArea(a, b, c);
  double const whole = plan * ((z[0] + z[1] + z[2]) / 3);
  double above = std::max(whole, 0.0);
  if (z[0] < 0.0 && z[2] > 0.0) {
    bool const one_above = z[1] <= 0.0;
    above = one_above ? CornerVolume(plan, z[2], z[0], z[1])
                      : whole - CornerVolume(plan, z[0], z[1], z[2]);
  }
  cut += above;
  fill += above - whole;
  area += plan;
  ++count;
}

void Prisms::Add(Prisms const& other) {
  cut += other.cut;
  fill += other.fill;
  area += other.area;
  count += other.count;
}

}  // namespace qeltin::cli
