#pragma once

#include <cstddef>

namespace qeltin::detail {

// Inverts an n by n matrix held row by row in `work`, which is used up, into `inverse`. `order` is
// scratch of n entries. Returns false, with `inverse` of no meaning, where a pivot is below 1e-15.
//
// LU factorisation with row pivoting, the topmost of equal pivots, then substitution: see G. H.
// Golub and C. F. Van Loan, "Matrix Computations", section 3.4.
bool Invert(double* work, double* inverse, std::ptrdiff_t* order, std::ptrdiff_t n);

// The same for 3 by 3.
bool Invert3(double* work, double* inverse);

}  // namespace qeltin::detail
