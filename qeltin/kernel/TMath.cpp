#include "qeltin/kernel/TMath.h"

#include <cmath>

#include "qeltin/kernel/Angles.h"

double TMath::RestoreAngle(double cosine, double sine) {
  double const a = std::asin(sine);
  return std::acos(cosine) <= qeltin::detail::HALF_PI ? a : qeltin::detail::PI - a;
}
