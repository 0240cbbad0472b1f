#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "qeltin/kernel/TPoint.h"

namespace qeltin::cli {

// How numbers are written: with as many digits as it takes to read the same double back, or, with
// `decimals` 0 or more, with that many decimals.
struct NumberStyle {
  int decimals = -1;

  // Appends `value`. Never in the form 4e+05, unless the number is beyond 1e16 or below 1e-6; never
  // "-0".
  void Append(std::string& text, double value) const;

  std::string Text(double value) const;

  // Returns `value` as JSON shows it: rounded to the decimals that are asked for.
  double Rounded(double value) const;

  // Returns [x, y, z].
  nlohmann::json Array(TPoint const& p) const;
};

// Reads the number at the start of `text` and takes it off. Returns false, with `text` as it was,
// where no finite decimal number stands there. Independent of the locale; a leading + is allowed.
bool TakeNumber(std::string_view& text, double& value);

// Reads exactly `count` numbers separated by commas, and nothing else, into `values`.
bool ParseNumbers(std::string_view text, double* values, int count);

}  // namespace qeltin::cli
