#include "qeltin/decimate/TPlane.h"

#include "qeltin/decimate/Inverse.h"

namespace {

constexpr std::size_t FEWEST = 4;

}  // namespace

TPlane::~TPlane() = default;

// The products of the matrices with rows (x, y, 1), entry by entry and in their order, without
// laying the matrices out.
int TPlane::Fit(std::vector<TPoint*> const& points) {
  if (points.size() < FEWEST) return 0;
  double normal[9] = {};
  double right[3] = {};
  for (TPoint const* p : points) {
    double const row[3] = {p->x, p->y, 1.0};
    for (int i = 0; i < 3; ++i) {
      for (int j = i; j < 3; ++j) normal[i * 3 + j] += row[i] * row[j];
      right[i] += row[i] * p->z;
    }
  }
  for (int i = 1; i < 3; ++i) {
    for (int j = 0; j < i; ++j) normal[i * 3 + j] = normal[j * 3 + i];
  }
  double inverse[9];
  if (!qeltin::detail::Invert3(normal, inverse)) return 0;
  double plane[3];
  for (int i = 0; i < 3; ++i) {
    plane[i] = 0.0;
    for (int k = 0; k < 3; ++k) plane[i] += inverse[i * 3 + k] * right[k];
  }
  a = plane[0];
  b = plane[1];
  c = plane[2];
  return 1;
}
