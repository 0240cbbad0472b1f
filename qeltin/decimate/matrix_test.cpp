#include "qeltin/decimate/matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <limits>

#include "testing/Formula.h"

namespace {

using qeltin::testing::Dice;
using qeltin::testing::SameBits;
using qeltin::testing::TestSeed;

matrix Of(int rows, int cols, std::initializer_list<double> entries) {
  matrix result(rows, cols);
  int i = 0;
  for (double const entry : entries) result[0][i++] = entry;
  return result;
}

matrix Random(int rows, int cols, Dice& dice) {
  matrix result(rows, cols);
  for (int i = 0; i < rows * cols; ++i) result[0][i] = dice.Between(-10.0, 10.0);
  return result;
}

bool IsEmpty(matrix const& m) { return m.size(0) == 0 && m.size(1) == 0 && m[0] == nullptr; }

TEST(Matrix, TheNullMatrixIsEmpty) {
  EXPECT_TRUE(IsEmpty(matrix::NULL_MATRIX));
  EXPECT_TRUE(IsEmpty(matrix()));
}

TEST(Matrix, ASizeOfZeroMakesBothSizesZero) {
  EXPECT_TRUE(IsEmpty(matrix(0, 5)));
  EXPECT_TRUE(IsEmpty(matrix(5, 0)));
}

TEST(Matrix, SizeAnswersTheRowsForZeroAndTheColumnsForAnythingElse) {
  matrix const m(2, 3);
  EXPECT_EQ(m.size(0), 2);
  EXPECT_EQ(m.size(1), 3);
  EXPECT_EQ(m.size(-7), 3);
  EXPECT_EQ(m[1], m[0] + 3);
}

TEST(Matrix, WritesThroughToAWrappedBufferAndLeavesItAtTheEnd) {
  double buffer[4] = {1.0, 2.0, 3.0, 4.0};
  {
    matrix wrapped(2, 2, buffer);
    EXPECT_EQ(wrapped[0], buffer);
    wrapped[1][0] = 30.0;
    wrapped *= 2.0;
  }
  EXPECT_EQ(buffer[0], 2.0);
  EXPECT_EQ(buffer[2], 60.0);
}

TEST(Matrix, ACopyOfAWrappingMatrixOwnsItsEntries) {
  double buffer[2] = {1.0, 2.0};
  matrix const wrapped(1, 2, buffer);
  matrix copy(wrapped);
  EXPECT_NE(copy[0], buffer);
  copy[0][0] = 9.0;
  EXPECT_EQ(buffer[0], 1.0);
}

TEST(Matrix, AssignmentEndsTheWrapping) {
  double here[2] = {1.0, 2.0};
  double there[2] = {3.0, 4.0};
  matrix wrapped(1, 2, here);
  wrapped = matrix(1, 2, there);
  wrapped[0][0] = 9.0;
  EXPECT_EQ(wrapped[0][1], 4.0);
  EXPECT_EQ(here[0], 1.0);
  EXPECT_EQ(there[0], 3.0);
}

TEST(Matrix, AssignmentToItselfChangesNothing) {
  double buffer[2] = {1.0, 2.0};
  matrix wrapped(1, 2, buffer);
  matrix const& same = wrapped;
  wrapped = same;
  EXPECT_EQ(wrapped[0], buffer);
}

TEST(Matrix, ACopyOfAMatrixWithoutDataKeepsTheSizes) {
  matrix const hollow(2, 3, nullptr);
  matrix const copy(hollow);
  EXPECT_EQ(copy.size(0), 2);
  EXPECT_EQ(copy.size(1), 3);
  EXPECT_EQ(copy[0], nullptr);
}

TEST(Matrix, SetsEveryEntry) {
  matrix m(2, 2);
  m = 1.5;
  EXPECT_TRUE(m == Of(2, 2, {1.5, 1.5, 1.5, 1.5}));
  m.zero();
  EXPECT_TRUE(m == Of(2, 2, {0.0, 0.0, 0.0, 0.0}));
  matrix empty;
  empty.zero();
  empty = 1.0;
  EXPECT_TRUE(IsEmpty(empty));
}

TEST(Matrix, IdentityOfASquareMatrixOnly) {
  matrix square = Of(2, 2, {5.0, 6.0, 7.0, 8.0});
  square.idn();
  EXPECT_TRUE(square == Of(2, 2, {1.0, 0.0, 0.0, 1.0}));
  matrix wide = Of(1, 2, {5.0, 6.0});
  wide.idn();
  EXPECT_TRUE(wide == Of(1, 2, {5.0, 6.0}));
  EXPECT_TRUE(matrix::idn(2) == square);
  EXPECT_TRUE(IsEmpty(matrix::idn(0)));
}

TEST(Matrix, Transposes) {
  EXPECT_TRUE(Of(2, 3, {1, 2, 3, 4, 5, 6}).trn() == Of(3, 2, {1, 4, 2, 5, 3, 6}));
  EXPECT_TRUE(IsEmpty(matrix().trn()));
}

TEST(Matrix, ASumNeedsBothSizesToAgree) {
  matrix a = Of(1, 2, {1.0, 2.0});
  matrix const b = Of(1, 2, {10.0, 20.0});
  EXPECT_TRUE(a + b == Of(1, 2, {11.0, 22.0}));
  EXPECT_TRUE(a - b == Of(1, 2, {-9.0, -18.0}));
  EXPECT_TRUE(IsEmpty(a + matrix(1, 3)));
  EXPECT_TRUE(IsEmpty(a - matrix(2, 2)));
}

TEST(Matrix, AProductNeedsTheInnerSizesToAgree) {
  matrix a = Of(2, 3, {1, 2, 3, 4, 5, 6});
  EXPECT_TRUE(a * Of(3, 1, {1, 10, 100}) == Of(2, 1, {321, 654}));
  EXPECT_TRUE(IsEmpty(a * a));
}

TEST(Matrix, AProductAddsItsTermsInOrderFromZero) {
  matrix row = Of(1, 3, {1e16, 1.0, -1e16});
  EXPECT_EQ((row * Of(3, 1, {1.0, 1.0, 1.0}))[0][0], 0.0);
  matrix negative = Of(1, 1, {-0.0});
  EXPECT_TRUE(SameBits((negative * Of(1, 1, {1.0}))[0][0], 0.0));
}

TEST(Matrix, TheEmptyMatrixGoesThroughAChainOfOperators) {
  matrix a = Of(2, 2, {1, 2, 3, 4});
  matrix const b = a;
  matrix empty = matrix::NULL_MATRIX;
  EXPECT_TRUE(IsEmpty(empty * b));
  EXPECT_TRUE(IsEmpty(a * empty));
  EXPECT_TRUE(IsEmpty(empty + b));
  EXPECT_TRUE(IsEmpty(empty - empty));
  EXPECT_TRUE(IsEmpty(empty * empty));
  EXPECT_TRUE(IsEmpty(empty * 2.0));
  EXPECT_TRUE(IsEmpty(empty.inv()));
}

TEST(Matrix, ScalesACopyOrItself) {
  matrix a = Of(1, 2, {1.0, -2.0});
  EXPECT_TRUE(a * 3.0 == Of(1, 2, {3.0, -6.0}));
  a *= 0.5;
  EXPECT_TRUE(a == Of(1, 2, {0.5, -1.0}));
}

TEST(Matrix, DividesByTheReciprocal) {
  matrix a = Of(1, 1, {10.0});
  double const expected = 10.0 * (1.0 / 3.0);
  EXPECT_EQ((a / 3.0)[0][0], expected);
  a /= 3.0;
  EXPECT_EQ(a[0][0], expected);
  EXPECT_NE(expected, 10.0 / 3.0);
  matrix one = Of(1, 1, {1.0});
  EXPECT_EQ((one / 0.0)[0][0], std::numeric_limits<double>::infinity());
}

TEST(Matrix, InPlaceNothingHappensWhereRowsAndColumnsDiffer) {
  matrix a = Of(2, 3, {1, 2, 3, 4, 5, 6});
  a += Of(3, 2, {1, 1, 1, 1, 1, 1});
  EXPECT_TRUE(a == Of(2, 3, {1, 2, 3, 4, 5, 6}));
}

TEST(Matrix, InPlaceOneSizeThatAgreesIsEnough) {
  matrix a = Of(2, 3, {1, 2, 3, 4, 5, 6});
  matrix const wide = Of(2, 4, {10, 20, 30, 40, 50, 60, 70, 80});
  a += wide;
  EXPECT_TRUE(a == Of(2, 3, {11, 22, 33, 44, 55, 66}));
  a -= wide;
  EXPECT_TRUE(a == Of(2, 3, {1, 2, 3, 4, 5, 6}));
}

TEST(Matrix, InPlaceASmallerMatrixCountsAsFarAsItGoes) {
  matrix a = Of(2, 3, {1, 2, 3, 4, 5, 6});
  a -= Of(2, 2, {1, 1, 1, 1});
  EXPECT_TRUE(a == Of(2, 3, {0, 1, 2, 3, 5, 6}));
}

TEST(Matrix, ComparesEntriesAsBytes) {
  double const nan = std::nan("");
  EXPECT_EQ(Of(1, 1, {nan}) == Of(1, 1, {nan}), 1);
  EXPECT_EQ(Of(1, 1, {0.0}) == Of(1, 1, {-0.0}), 0);
  EXPECT_EQ(Of(1, 1, {0.0}) != Of(1, 1, {-0.0}), 1);
  EXPECT_EQ(Of(1, 2, {1.0, 2.0}) == Of(2, 1, {1.0, 2.0}), 0);
  EXPECT_EQ(matrix() == matrix::NULL_MATRIX, 1);
  EXPECT_EQ(matrix() != matrix::NULL_MATRIX, 0);
}

TEST(Matrix, OneBufferEqualsItself) {
  double buffer[2] = {1.0, 2.0};
  EXPECT_EQ(matrix(1, 2, buffer) == matrix(1, 2, buffer), 1);
}

TEST(MatrixInverse, OfASingularMatrixIsEmpty) {
  EXPECT_TRUE(IsEmpty(Of(2, 2, {1, 2, 2, 4}).inv()));
}

TEST(MatrixInverse, OfAMatrixThatIsNotSquareIsEmpty) {
  EXPECT_TRUE(IsEmpty(Of(2, 3, {1, 2, 3, 4, 5, 6}).inv()));
}

TEST(MatrixInverse, PivotsAreJudgedWithoutRegardToTheScale) {
  EXPECT_TRUE(IsEmpty((matrix::idn(3) * 1e-16).inv()));
  EXPECT_TRUE((matrix::idn(2) * 1e-15).inv() == matrix::idn(2) * (1.0 / 1e-15));
}

TEST(MatrixInverse, RowsAreSwapped) {
  matrix swap = Of(2, 2, {0, 1, 1, 0});
  EXPECT_TRUE(swap.inv() == swap);
  matrix cycle = Of(3, 3, {0, 1, 0, 0, 0, 1, 1, 0, 0});
  EXPECT_TRUE(cycle.inv() == Of(3, 3, {0, 0, 1, 1, 0, 0, 0, 1, 0}));
}

TEST(MatrixInverse, OfOneEntryIsItsReciprocal) {
  EXPECT_EQ(Of(1, 1, {3.0}).inv()[0][0], 1.0 / 3.0);
}

TEST(MatrixInverse, LeavesTheMatrixAsItWas) {
  matrix m = Of(2, 2, {1, 2, 3, 4});
  m.inv();
  EXPECT_TRUE(m == Of(2, 2, {1, 2, 3, 4}));
}

// The topmost of two equal pivots wins, and the operations have their order.
TEST(MatrixInverse, FollowsTheFormulaForTwoByTwo) {
  Dice dice(TestSeed());
  for (int round = 0; round < 1000; ++round) {
    matrix m = Random(2, 2, dice);
    if (dice.OneIn(3)) m[1][0] = dice.OneIn(2) ? m[0][0] : -m[0][0];
    bool const swapped = std::fabs(m[1][0]) > std::fabs(m[0][0]);
    double const* const top = m[swapped ? 1 : 0];
    double const* const low = m[swapped ? 0 : 1];
    double const factor = low[0] / top[0];
    double const pivot = low[1] - top[1] * factor;
    double const right[2][2] = {{swapped ? 0.0 : 1.0, swapped ? 1.0 : 0.0},
                                {swapped ? 1.0 : 0.0, swapped ? 0.0 : 1.0}};
    matrix const inverse = m.inv();
    ASSERT_EQ(inverse.size(0), 2);
    for (int c = 0; c < 2; ++c) {
      double const second = (right[1][c] - right[0][c] * factor) / pivot;
      double const first = (right[0][c] - second * top[1]) / top[0];
      EXPECT_TRUE(SameBits(inverse[0][c], first));
      EXPECT_TRUE(SameBits(inverse[1][c], second));
    }
  }
}

TEST(MatrixInverse, TimesTheMatrixIsNearTheIdentity) {
  Dice dice(TestSeed());
  for (int n = 1; n <= 12; ++n) {
    matrix m = Random(n, n, dice);
    for (int i = 0; i < n; ++i) m[i][(i + 1) % n] += 100.0;  // well conditioned, rows out of order
    matrix inverse = m.inv();
    matrix const product = inverse * m;
    for (int r = 0; r < n; ++r) {
      for (int c = 0; c < n; ++c) EXPECT_NEAR(product[r][c], r == c ? 1.0 : 0.0, 1e-12);
    }
  }
}

}  // namespace
