#pragma once

#include <map>

#include "qeltin/platform/Export.h"

// Converts lengths from foreign units into the unit that a host works in, its internal unit. The
// numbers of the units are the host's own; those of a Trimble terrain model are in unit 1. A unit
// of which nothing was said is the internal one.
//
//   CQelUnitCnv converter;
//   converter.SetFactor(1, 0.3048);  // models are in feet, the host works in metres
//   tin.SetUnitConverter(&converter);
//
// Threads: no lock. One writer, or any number of readers.
class QELTIN_API CQelUnitCnv {
 public:
  // Says that one of `unit` is `factor` internal units.
  void SetFactor(int unit, double factor) { m_Factors[unit] = factor; }

  // Returns `value`, a length in `unit`, times `scale`, in internal units, and `offset` more. So
  // the factor of a unit is ToInternalUnit(unit, 1.0, 1.0, 0.0).
  double ToInternalUnit(int unit, double value, double scale, double offset) const {
    auto const at = m_Factors.find(unit);
    double const factor = at == m_Factors.end() ? 1.0 : at->second;
    return factor * value * scale + offset;
  }

 private:
  std::map<int, double> m_Factors;
};
