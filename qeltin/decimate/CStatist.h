#pragma once

#include <cstdint>

#include "qeltin/platform/Export.h"

// The count, extremes, mean and sum of squares of a run of samples.
//
// Threads: a value.
class QELTIN_API CStatist {
 public:
  std::uint32_t count = 0;
  double minimum = 0.0;
  double maximum = 0.0;
  double mean = 0.0;
  double sumSquares = 0.0;   // of the deviations from `offset`
  std::uint32_t offset = 0;  // stays 0, so that sumSquares is the plain sum of squares

  CStatist() = default;
  CStatist(CStatist const&) = default;
  CStatist& operator=(CStatist const&) = default;
  virtual ~CStatist();

  // Sets everything but the offset to 0.
  void Reset();

  void Add(double sample);
};
