#include "qeltin/decimate/TPlane.h"

#include <gtest/gtest.h>

#include <cmath>

#include "qeltin/decimate/matrix.h"
#include "testing/Formula.h"

namespace {

using qeltin::testing::FormulaInputs;
using qeltin::testing::SameBits;

std::vector<TPoint*> AddressesOf(std::vector<TPoint>& points) {
  std::vector<TPoint*> addresses;
  for (TPoint& p : points) addresses.push_back(&p);
  return addresses;
}

// The same fit, with the matrices laid out.
int FitByMatrices(std::vector<TPoint*> const& points, TPlane& plane) {
  if (points.size() < 4) return 0;
  auto const n = static_cast<unsigned int>(points.size());
  matrix A(n, 3);
  matrix B(n, 1);
  for (unsigned int i = 0; i < n; ++i) {
    double* const row = A[static_cast<int>(i)];
    row[0] = points[i]->x;
    row[1] = points[i]->y;
    row[2] = 1.0;
    B[0][i] = points[i]->z;
  }
  matrix At = A.trn();
  matrix const X = (At * A).inv() * (At * B);
  if (X.size(0) == 0) return 0;
  plane.a = X[0][0];
  plane.b = X[1][0];
  plane.c = X[2][0];
  return 1;
}

// Returns the result of the fit.
int ExpectSameAsByMatrices(std::vector<TPoint> points) {
  TPlane plane;
  TPlane expected;
  plane.a = expected.a = 11.0;
  plane.b = expected.b = 12.0;
  plane.c = expected.c = 13.0;
  std::vector<TPoint*> const addresses = AddressesOf(points);
  int const result = plane.Fit(addresses);
  EXPECT_EQ(result, FitByMatrices(addresses, expected));
  EXPECT_TRUE(SameBits(plane.a, expected.a));
  EXPECT_TRUE(SameBits(plane.b, expected.b));
  EXPECT_TRUE(SameBits(plane.c, expected.c));
  return result;
}

TEST(TPlane, StartsAtZero) {
  TPlane const plane;
  EXPECT_EQ(plane.a, 0.0);
  EXPECT_EQ(plane.b, 0.0);
  EXPECT_EQ(plane.c, 0.0);
}

TEST(TPlane, ThreePointsAreTooFew) {
  std::vector<TPoint> points = {{0, 0, 1}, {1, 0, 2}, {0, 1, 3}};
  TPlane plane;
  plane.a = 5.0;
  EXPECT_EQ(plane.Fit(AddressesOf(points)), 0);
  EXPECT_EQ(plane.a, 5.0);
}

TEST(TPlane, PointsOnALineInPlanHaveNoPlane) {
  std::vector<TPoint> points = {{0, 0, 1}, {1, 1, 5}, {2, 2, 2}, {3, 3, 0}};
  TPlane plane;
  plane.c = 5.0;
  EXPECT_EQ(plane.Fit(AddressesOf(points)), 0);
  EXPECT_EQ(plane.c, 5.0);
}

TEST(TPlane, FitsWhatLiesOnAPlaneExactly) {
  std::vector<TPoint> points = {{-1, 0, 3}, {1, 0, 7}, {0, -1, 4}, {0, 1, 6}};
  TPlane plane;
  EXPECT_EQ(plane.Fit(AddressesOf(points)), 1);
  EXPECT_EQ(plane.a, 2.0);
  EXPECT_EQ(plane.b, 1.0);
  EXPECT_EQ(plane.c, 5.0);
}

TEST(TPlane, EqualsTheRouteThroughMatricesBitForBit) {
  FormulaInputs inputs;
  int fitted = 0;
  for (int round = 0; round < 20000; ++round) {
    std::vector<TPoint> points;
    int const kind = inputs.Whole(0, 3);
    for (int n = inputs.Whole(3, 12); n > 0; --n) {
      points.push_back(kind == 0   ? inputs.Sounding()
                       : kind == 1 ? inputs.Node()
                       : kind == 2 ? inputs.Point()
                                   : inputs.AnyPoint());
    }
    fitted += ExpectSameAsByMatrices(points);
  }
  EXPECT_GT(fitted, 1000);
}

TEST(TPlane, EqualsTheRouteThroughMatricesOnSingularInput) {
  FormulaInputs inputs;
  int refused = 0;
  for (int round = 0; round < 5000; ++round) {
    TPoint const from = inputs.AnyPoint();
    TPoint const step = inputs.AnyPoint();
    std::vector<TPoint> points;
    for (int n = inputs.Whole(4, 9); n > 0; --n) {
      double const t = inputs.Whole(-3, 3);
      points.emplace_back(from.x + t * step.x, from.y + t * step.y, inputs.Number());
    }
    refused += 1 - ExpectSameAsByMatrices(points);
  }
  EXPECT_GT(refused, 100);
}

TEST(TPlane, EqualsTheRouteThroughMatricesWhereNumbersOverflow) {
  ExpectSameAsByMatrices({{1e200, 0, 1}, {0, 1e200, 2}, {1e200, 1e200, 3}, {0, 0, 4}});
  ExpectSameAsByMatrices({{std::nan(""), 0, 1}, {0, 1, 2}, {1, 1, 3}, {0, 0, 4}});
  ExpectSameAsByMatrices({{1e-9, 0, 1}, {0, 1e-9, 2}, {1e-9, 1e-9, 3}, {0, 0, 4}});
}

}  // namespace
