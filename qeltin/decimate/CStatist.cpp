#include "qeltin/decimate/CStatist.h"

CStatist::~CStatist() = default;

void CStatist::Reset() {
  count = 0;
  minimum = maximum = mean = sumSquares = 0.0;
}

void CStatist::Add(double sample) {
  if (count == 0) {
    minimum = maximum = sample;
  } else {
    if (sample < minimum) minimum = sample;
    if (sample > maximum) maximum = sample;
  }
  double const n = count;
  mean = (n * mean + sample) / (n + 1.0);
  double const deviation = sample - static_cast<double>(offset);
  sumSquares += deviation * deviation;
  ++count;
}
