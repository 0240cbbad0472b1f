#pragma once

#include <cstddef>
#include <cstdint>

#include "qeltin/platform/Export.h"

// A small dense matrix of doubles, row by row. A value: copies are deep, also those of a matrix
// that wraps a caller's buffer.
//
// Misuse is answered by the empty matrix, whose sizes are 0, and an operation on it answers the
// empty matrix again: a chain of operators needs one test at its end. Indices are not checked.
//
// Threads: a value. Concurrent reads are safe.
class QELTIN_API matrix {
 public:
  static matrix const NULL_MATRIX;

  matrix() = default;

  // Entries are not set. Empty where either size is 0.
  matrix(unsigned int rows, unsigned int cols);

  // Wraps `data`, row by row, which stays the caller's and must outlive this matrix.
  matrix(unsigned int rows, unsigned int cols, double* data);

  matrix(matrix const& other);
  ~matrix();

  // The left side owns a copy from then on, whatever it wrapped before.
  matrix& operator=(matrix const& other);

  // Sets every entry.
  matrix& operator=(double value);

  // Returns the number of rows for 0, of columns for anything else.
  int size(int which) const { return static_cast<int>(which == 0 ? m_iRows : m_iCols); }

  // Returns the address of a row.
  double* operator[](int row) const { return m_pData + row * static_cast<std::ptrdiff_t>(m_iCols); }

  void zero();

  // Makes a square matrix the identity; leaves any other as it is.
  void idn();
  static matrix idn(unsigned int n);

  // Returns the transpose.
  matrix trn();

  // Returns the inverse, by LU factorisation with row pivoting. Empty for a matrix that is not
  // square and where a pivot is below 1e-15, whatever the scale of the entries.
  matrix inv();

  // Both sizes must agree, for the product those within.
  matrix operator+(matrix const& other);
  matrix operator-(matrix const& other);
  matrix operator*(matrix const& other);

  matrix operator*(double factor);

  // Multiplies by the reciprocal, which is infinite for 0.
  matrix operator/(double divisor);

  // Entry by entry in memory order, over the entries that both have. Nothing is done only where
  // rows AND columns differ; one size that agrees is enough.
  matrix& operator+=(matrix const& other);
  matrix& operator-=(matrix const& other);

  matrix& operator*=(double factor);
  matrix& operator/=(double divisor);

  // Return 1 or 0. Entries are compared as bytes: 0.0 is not -0.0, and a not-a-number equals
  // itself.
  int operator==(matrix const& other) const;
  int operator!=(matrix const& other) const;

 private:
  std::size_t Count() const { return static_cast<std::size_t>(m_iRows) * m_iCols; }
  std::size_t CommonCount(matrix const& other) const;
  void CopyFrom(matrix const& other);
  void Free();

  std::uint32_t m_iRows = 0;
  std::uint32_t m_iCols = 0;
  double* m_pData = nullptr;
  std::int32_t m_bOwner = 0;  // 1 iff m_pData is to be freed here
};
