#include "qeltin/decimate/Inverse.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace qeltin::detail {

namespace {

constexpr double SMALLEST_PIVOT = 1e-15;

template <typename Size>
void SwapRows(double* m, std::ptrdiff_t a, std::ptrdiff_t b, Size n) {
  std::swap_ranges(m + a * n, m + a * n + n, m + b * n);
}

template <typename Size>
bool Factorise(double* w, std::ptrdiff_t* order, Size n) {
  for (std::ptrdiff_t k = 0; k < n; ++k) {
    std::ptrdiff_t best = k;
    double largest = std::fabs(w[k * n + k]);
    for (std::ptrdiff_t i = k + 1; i < n; ++i) {
      double const size = std::fabs(w[i * n + k]);
      if (size > largest) {
        largest = size;
        best = i;
      }
    }
    if (best != k) {
      SwapRows(w, k, best, n);
      std::swap(order[k], order[best]);
    }
    if (largest < SMALLEST_PIVOT) return false;
    for (std::ptrdiff_t i = k + 1; i < n; ++i) {
      w[i * n + k] /= w[k * n + k];
      for (std::ptrdiff_t j = k + 1; j < n; ++j) w[i * n + j] -= w[k * n + j] * w[i * n + k];
    }
  }
  return true;
}

// Brings the rows into the order of the pivots. One sweep leaves nothing to do.
template <typename Size>
void Permute(double* r, std::ptrdiff_t* order, Size n) {
  for (std::ptrdiff_t i = 0; i < n - 1; ++i) {
    if (order[i] == i) continue;
    SwapRows(r, i, order[i], n);
    std::ptrdiff_t m = i + 1;
    while (order[m] != i) ++m;
    order[m] = order[i];
    order[i] = i;
  }
}

// Columns do not touch each other: the innermost loop goes over all of them at once.
template <typename Size>
void Substitute(double const* w, double* r, Size n) {
  for (std::ptrdiff_t i = 0; i < n; ++i) {
    for (std::ptrdiff_t j = i - 1; j >= 0; --j) {
      for (std::ptrdiff_t c = 0; c < n; ++c) r[i * n + c] -= r[j * n + c] * w[i * n + j];
    }
  }
  for (std::ptrdiff_t i = n - 1; i >= 0; --i) {
    for (std::ptrdiff_t j = i + 1; j < n; ++j) {
      for (std::ptrdiff_t c = 0; c < n; ++c) r[i * n + c] -= r[j * n + c] * w[i * n + j];
    }
    for (std::ptrdiff_t c = 0; c < n; ++c) r[i * n + c] /= w[i * n + i];
  }
}

template <typename Size>
bool InvertBy(double* work, double* inverse, std::ptrdiff_t* order, Size n) {
  for (std::ptrdiff_t i = 0; i < n; ++i) {
    order[i] = i;
    for (std::ptrdiff_t j = 0; j < n; ++j) inverse[i * n + j] = i == j ? 1.0 : 0.0;
  }
  if (!Factorise(work, order, n)) return false;
  Permute(inverse, order, n);
  Substitute(work, inverse, n);
  return true;
}

}  // namespace

bool Invert(double* work, double* inverse, std::ptrdiff_t* order, std::ptrdiff_t n) {
  return InvertBy(work, inverse, order, n);
}

bool Invert3(double* work, double* inverse) {
  std::ptrdiff_t order[3];
  return InvertBy(work, inverse, order, std::integral_constant<std::ptrdiff_t, 3>());
}

}  // namespace qeltin::detail
