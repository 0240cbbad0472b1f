#pragma once

#include <gmpxx.h>

#include <vector>

#include "qeltin/kernel/TPoint.h"

// Exact plane geometry over double coordinates: a floating filter first, integers where it cannot
// decide. Shares nothing with the library but the record TPoint; z plays no part.
//
// REQUIRES of everything here: finite coordinates.
// Threads: the functions use scratch numbers of the calling thread, safe from any thread.
namespace qeltin::testing {

// Returns twice the signed area of a, b, c, positive for a clockwise triangle (x east, y north).
// The sign is exact, and 0 means exactly 0; the size is good to a few roundings of its terms.
double TwiceAreaClockwise(TPoint const& a, TPoint const& b, TPoint const& c);

// Returns the in-circle determinant of the clockwise triangle a, b, c: twice its area times the
// power of `p`, r squared less the squared distance to the centre. Positive iff `p` lies strictly
// inside the circle, with an exact sign; the size is good to a few parts in 1e15 wherever the sign
// is not beyond doubt by floating point. For corners that run the other way the sign is reversed.
double InCircle(TPoint const& a, TPoint const& b, TPoint const& c, TPoint const& p);

// Exact sums of areas over a fixed set of points, which are named by their position in it.
class ExactAreas {
 public:
  explicit ExactAreas(std::vector<TPoint const*> const& points);

  // Returns twice the area of the triangle, exactly, in a unit that all results share, positive for
  // clockwise corners.
  mpz_class Twice(int a, int b, int c) const;

  // Returns the share of one directed side in twice the clockwise area of a closed figure.
  mpz_class Side(int a, int b) const;

  // Returns half of a sum of results as a double in the squared unit of the coordinates.
  double Area(mpz_class const& twiceArea) const;

 private:
  int m_iExponent = 0;
  std::vector<mpz_class> m_X;
  std::vector<mpz_class> m_Y;
};

}  // namespace qeltin::testing
