#include "qeltin/decimate/matrix.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "qeltin/decimate/Inverse.h"

constinit matrix const matrix::NULL_MATRIX;

matrix::matrix(unsigned int rows, unsigned int cols) {
  if (rows == 0 || cols == 0) return;
  m_iRows = rows;
  m_iCols = cols;
  m_pData = new double[Count()];
  m_bOwner = 1;
}

matrix::matrix(unsigned int rows, unsigned int cols, double* data)
    : m_iRows(rows), m_iCols(cols), m_pData(data) {}

matrix::matrix(matrix const& other) { CopyFrom(other); }

matrix::~matrix() { Free(); }

matrix& matrix::operator=(matrix const& other) {
  if (this == &other) return *this;
  Free();
  CopyFrom(other);
  return *this;
}

matrix& matrix::operator=(double value) {
  if (m_pData != nullptr) std::fill_n(m_pData, Count(), value);
  return *this;
}

void matrix::zero() { *this = 0.0; }

void matrix::idn() {
  if (m_iRows != m_iCols || m_pData == nullptr) return;
  zero();
  for (std::size_t i = 0; i < m_iRows; ++i) m_pData[i * m_iCols + i] = 1.0;
}

matrix matrix::idn(unsigned int n) {
  if (n == 0) return NULL_MATRIX;
  matrix result(n, n);
  result.idn();
  return result;
}

matrix matrix::trn() {
  if (m_pData == nullptr) return NULL_MATRIX;
  matrix result(m_iCols, m_iRows);
  for (std::size_t r = 0; r < m_iRows; ++r) {
    for (std::size_t c = 0; c < m_iCols; ++c) {
      result.m_pData[c * m_iRows + r] = m_pData[r * m_iCols + c];
    }
  }
  return result;
}

matrix matrix::inv() {
  if (m_iRows != m_iCols || m_pData == nullptr) return NULL_MATRIX;
  matrix work(*this);
  matrix result(m_iRows, m_iCols);
  auto const order = std::make_unique<std::ptrdiff_t[]>(m_iRows);
  bool const done = qeltin::detail::Invert(work.m_pData, result.m_pData, order.get(), m_iRows);
  return done ? result : NULL_MATRIX;
}

matrix matrix::operator+(matrix const& other) {
  if (m_iRows != other.m_iRows || m_iCols != other.m_iCols) return NULL_MATRIX;
  matrix result(*this);
  result += other;
  return result;
}

matrix matrix::operator-(matrix const& other) {
  if (m_iRows != other.m_iRows || m_iCols != other.m_iCols) return NULL_MATRIX;
  matrix result(*this);
  result -= other;
  return result;
}

matrix matrix::operator*(matrix const& other) {
  if (m_iCols != other.m_iRows || m_pData == nullptr || other.m_pData == nullptr) {
    return NULL_MATRIX;
  }
  matrix result(m_iRows, other.m_iCols);
  for (std::size_t r = 0; r < m_iRows; ++r) {
    for (std::size_t c = 0; c < other.m_iCols; ++c) {
      double sum = 0.0;
      for (std::size_t k = 0; k < m_iCols; ++k) {
        sum += m_pData[r * m_iCols + k] * other.m_pData[k * other.m_iCols + c];
      }
      result.m_pData[r * other.m_iCols + c] = sum;
    }
  }
  return result;
}

matrix matrix::operator*(double factor) {
  matrix result(*this);
  result *= factor;
  return result;
}

matrix matrix::operator/(double divisor) { return *this * (1.0 / divisor); }

matrix& matrix::operator+=(matrix const& other) {
  for (std::size_t i = 0, n = CommonCount(other); i < n; ++i) m_pData[i] += other.m_pData[i];
  return *this;
}

matrix& matrix::operator-=(matrix const& other) {
  for (std::size_t i = 0, n = CommonCount(other); i < n; ++i) m_pData[i] -= other.m_pData[i];
  return *this;
}

matrix& matrix::operator*=(double factor) {
  for (std::size_t i = 0, n = m_pData == nullptr ? 0 : Count(); i < n; ++i) m_pData[i] *= factor;
  return *this;
}

matrix& matrix::operator/=(double divisor) { return *this *= 1.0 / divisor; }

int matrix::operator==(matrix const& other) const {
  if (m_iRows != other.m_iRows || m_iCols != other.m_iCols) return 0;
  if (m_pData == other.m_pData) return 1;
  if (m_pData == nullptr || other.m_pData == nullptr) return 0;
  return std::memcmp(m_pData, other.m_pData, Count() * sizeof(double)) == 0 ? 1 : 0;
}

int matrix::operator!=(matrix const& other) const { return *this == other ? 0 : 1; }

// How many entries an operation in place runs over.
std::size_t matrix::CommonCount(matrix const& other) const {
  if (m_iRows != other.m_iRows && m_iCols != other.m_iCols) return 0;
  if (m_pData == nullptr || other.m_pData == nullptr) return 0;
  return std::min(Count(), other.Count());
}

void matrix::CopyFrom(matrix const& other) {
  m_iRows = other.m_iRows;
  m_iCols = other.m_iCols;
  m_pData = nullptr;
  m_bOwner = 0;
  if (other.m_pData == nullptr) return;
  m_pData = new double[Count()];
  m_bOwner = 1;
  std::copy_n(other.m_pData, Count(), m_pData);
}

void matrix::Free() {
  if (m_bOwner != 0) delete[] m_pData;
}
