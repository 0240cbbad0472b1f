#include <gtest/gtest.h>

#include <cmath>

#include "qeltin/kernel/TTriangle.h"
#include "testing/Formula.h"
#include "testing/reference/StatedPolygon.h"

namespace {

using namespace qeltin::testing;

// A triangle with corners of its own.
struct Cell {
  TPoint corner[3];
  TTriangle triangle{&corner[0], &corner[1], &corner[2]};
};

double Distance(TPoint const& a, TPoint const& b) {
  return std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y));
}

// Rounds to single precision what stands in double precision.
double Single(double value) {
  float volatile stored = static_cast<float>(value);
  return static_cast<double>(stored);
}

// The formula, each operation in double precision and rounded: for one operation on
// single-precision numbers this is the same as doing it in single precision.
double HeightAt(TPoint const& N, TPoint const& A, TPoint const& B, TPoint const& p) {
  double const m1 = Single((B.y - A.y) / (B.x - A.x));
  double const m2 = Single((p.y - N.y) / (p.x - N.x));
  double const c1 = Single(A.y - A.x * m1);
  double const c2 = Single(N.y - N.x * m2);
  double const xi = Single(Single(c2 - c1) / Single(m1 - m2));
  TPoint const I(xi, m1 * xi + c1);
  double const AB = Single(Distance(A, B));
  double const AI = Single(Distance(A, I));
  double const NI = Single(Distance(N, I));
  double const NP = Single(Distance(N, p));
  double const h = Single(Single(Single(B.z - A.z) / AB) * AI);
  return Single(Single(Single(h - N.z) / NI) * NP);
}

TEST(TTriangleXYHeightAt, OutsideLeavesTheHeightAsItWas) {
  Cell const cell{{TPoint(0, 0, 1), TPoint(0, 10, 2), TPoint(10, 0, 3)}};
  double z = 42.0;
  EXPECT_FALSE(cell.triangle.XY_HeightAt(TPoint(20, 20), z));
  EXPECT_EQ(z, 42.0);
}

TEST(TTriangleXYHeightAt, AnswersAHeightDifferenceAndNotAHeight) {
  // From (0, 0) through (2, 1) to the opposite side y = 8 - x, met at (16/3, 8/3).
  Cell const cell{{TPoint(0, 0, 100), TPoint(0, 8, 104), TPoint(8, 0, 112)}};
  double z = 0.0;
  EXPECT_TRUE(cell.triangle.XY_HeightAt(TPoint(2, 1), z));
  // h = 8 / |AB| |AI| = 8 * 2/3; z = (h - 100) * 3/8.
  EXPECT_NEAR(z, (16.0 / 3.0 - 100.0) * 0.375, 1e-4);
  EXPECT_EQ(z, -35.499996185302734);
  EXPECT_NEAR(cell.triangle.GetZ(2, 1), 103.5, 1e-9);
}

TEST(TTriangleXYHeightAt, GoesFromTheNearestCornerTheEarlierOneInATie) {
  Cell const cell{{TPoint(0, 0, 1), TPoint(1, 9, 5), TPoint(10, 2, 8)}};
  TPoint const* const c = cell.corner;
  double z = 0.0;
  TPoint const places[] = {TPoint(2, 1.5), TPoint(2, 7), TPoint(8, 2.25)};
  for (int k = 0; k < 3; ++k) {
    ASSERT_TRUE(cell.triangle.XY_HeightAt(places[k], z));
    EXPECT_EQ(z, HeightAt(c[k], c[(k + 1) % 3], c[(k + 2) % 3], places[k]));
  }

  Cell const even{{TPoint(0, 0, 1), TPoint(4, 9, 5), TPoint(8, 0, 8)}};
  TPoint const between(4, 1);
  ASSERT_TRUE(even.triangle.XY_HeightAt(between, z));
  EXPECT_EQ(z, HeightAt(even.corner[0], even.corner[1], even.corner[2], between));
  EXPECT_NE(z, HeightAt(even.corner[2], even.corner[0], even.corner[1], between));
}

TEST(TTriangleXYHeightAt, UprightOppositeSideGivesNotANumber) {
  Cell const cell{{TPoint(0, 0, 1), TPoint(10, 8, 2), TPoint(10, -8, 3)}};
  double z = 0.0;
  EXPECT_TRUE(cell.triangle.XY_HeightAt(TPoint(2, 1), z));
  EXPECT_TRUE(std::isnan(z));
}

TEST(TTriangleXYHeightAt, FollowsTheFormula) {
  FormulaInputs inputs;
  int inside = 0;
  for (int round = 0; round < 20000; ++round) {
    Cell const cell{{inputs.AnyPoint(), inputs.AnyPoint(), inputs.AnyPoint()}};
    TPoint const* const c = cell.corner;
    double const u = inputs.Between(0, 1);
    double const v = inputs.Between(0, 1 - u);
    TPoint const p(c[0].x + (c[1].x - c[0].x) * u + (c[2].x - c[0].x) * v,
                   c[0].y + (c[1].y - c[0].y) * u + (c[2].y - c[0].y) * v);
    double z = 42.0;
    bool const answer = cell.triangle.XY_HeightAt(p, z);
    ASSERT_EQ(answer, stated::XY_Contains({c[0], c[1], c[2]}, p.x, p.y));
    if (!answer) continue;
    ++inside;
    int nearest = 0;
    if (Distance(p, c[1]) < Distance(p, c[nearest])) nearest = 1;
    if (Distance(p, c[2]) < Distance(p, c[nearest])) nearest = 2;
    ASSERT_TRUE(SameBits(z, HeightAt(c[nearest], c[(nearest + 1) % 3], c[(nearest + 2) % 3], p)));
  }
  EXPECT_GT(inside, 1000);
}

}  // namespace
