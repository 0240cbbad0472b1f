#include "qeltin/products/TGrid.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <new>

#include "qeltin/tin/TIN.h"
#include "testing/HandMadeMesh.h"
#include "testing/TINPeer.h"
#include "testing/VerifySurface.h"

namespace {

using qeltin::testing::HandMadeMesh;
using qeltin::testing::TINPeer;
using qeltin::testing::VerifySurface;

constexpr double FINEST_SHARE = 0.0010000000474974513;

// z = 5 + x + 2 y over a rectangle of 8 by 4.
void BuildSlope(TIN& tin) {
  tin.Init(5, TPoint(0, 0, 5), TPoint(8, 4, 21));
  for (TPoint const& p : {TPoint(0, 0), TPoint(8, 0), TPoint(8, 4), TPoint(0, 4), TPoint(5, 1)}) {
    ASSERT_NE(tin.AddPoint(p.x, p.y, 5 + p.x + 2 * p.y), nullptr);
  }
}

int CountValid(TGrid const& grid) {
  int valid = 0;
  for (int j = 0; j < grid.GetNumberOfNodesY(); ++j) {
    for (int i = 0; i < grid.GetNumberOfNodesX(); ++i) valid += grid.GetNode(i, j) ? 1 : 0;
  }
  return valid;
}

TEST(TGrid, NewGridIsEmpty) {
  TGrid const grid;
  EXPECT_EQ(grid.GetNumberOfNodesX(), 0);
  EXPECT_EQ(grid.GetNumberOfNodesY(), 0);
  EXPECT_EQ(grid.GetNode(0, 0), nullptr);
  TPoint min(1, 1, 1);
  TPoint max(1, 1, 1);
  grid.GetBounds(min, max);
  EXPECT_EQ(min, TPoint());
  EXPECT_EQ(max, TPoint());
}

TEST(TGrid, NodesHoldPlaceAndHeight) {
  TIN tin;
  BuildSlope(tin);
  TGrid const grid(tin, 2, 1);
  ASSERT_EQ(grid.GetNumberOfNodesX(), 5);
  ASSERT_EQ(grid.GetNumberOfNodesY(), 5);
  ASSERT_NE(grid.GetNode(3, 2), nullptr);
  EXPECT_EQ(*grid.GetNode(3, 2), TPoint(6, 2, 15));
  EXPECT_EQ(CountValid(grid), 25);
  EXPECT_TRUE(VerifySurface(tin).Ok());
}

TEST(TGrid, CreateIsAlwaysTrueAndMayBeCalledAgain) {
  TIN tin;
  BuildSlope(tin);
  TGrid grid;
  EXPECT_TRUE(grid.Create(tin, 2, 1));
  EXPECT_TRUE(grid.Create(tin, 4, 2));
  EXPECT_EQ(grid.GetNumberOfNodesX(), 3);
  EXPECT_EQ(CountValid(grid), 9);
  EXPECT_TRUE(grid.Create(TIN(), 1, 1));
}

TEST(TGrid, PlacesAreRunningSums) {
  TIN tin;
  tin.Init(4, TPoint(0, 0, 0), TPoint(1, 1, 0));
  for (TPoint const& p : {TPoint(0, 0), TPoint(1, 0), TPoint(1, 1), TPoint(0, 1)}) tin.AddPoint(p);
  TGrid const grid(tin, 0.1, 0.1);
  double sum = 0.0;
  for (int i = 0; i < 10; ++i, sum += 0.1) {
    ASSERT_NE(grid.GetNode(i, i), nullptr);
    EXPECT_EQ(grid.GetNode(i, i)->x, sum);
    EXPECT_EQ(grid.GetNode(i, i)->y, sum);
  }
  EXPECT_NE(grid.GetNode(8, 0)->x, 8 * 0.1);
}

TEST(TGrid, SpacingLargerThanTheExtentIsTheExtent) {
  TIN tin;
  BuildSlope(tin);
  TGrid const grid(tin, 100, 100);
  ASSERT_EQ(grid.GetNumberOfNodesX(), 2);
  ASSERT_EQ(grid.GetNumberOfNodesY(), 2);
  ASSERT_NE(grid.GetNode(1, 1), nullptr);
  EXPECT_EQ(*grid.GetNode(1, 1), TPoint(8, 4, 21));
}

TEST(TGrid, SpacingOfZeroOrLessIsAThousandthOfTheExtent) {
  TIN tin;
  BuildSlope(tin);
  for (double spacing : {0.0, -3.0, 1e-9, -std::numeric_limits<double>::infinity()}) {
    TGrid const grid(tin, spacing, spacing);
    EXPECT_EQ(grid.GetNumberOfNodesX(), 1001);
    EXPECT_EQ(grid.GetNumberOfNodesY(), 1001);
    ASSERT_NE(grid.GetNode(1, 1), nullptr);
    EXPECT_EQ(grid.GetNode(1, 1)->x, 8 * FINEST_SHARE);
    EXPECT_EQ(grid.GetNode(1, 1)->y, 4 * FINEST_SHARE);
  }
}

TEST(TGrid, SpacingThatIsNoNumberIsTheExtent) {
  TIN tin;
  BuildSlope(tin);
  double const no_number = std::numeric_limits<double>::quiet_NaN();
  TGrid const grid(tin, no_number, no_number);
  EXPECT_EQ(grid.GetNumberOfNodesX(), 2);
  EXPECT_EQ(grid.GetNumberOfNodesY(), 2);
}

TEST(TGrid, LastRowAndColumnBeyondTheBoundsAreInvalid) {
  TIN tin;
  BuildSlope(tin);
  TGrid const grid(tin, 3, 3);  // at 0, 3, 6, 9 and 0, 3, 6
  ASSERT_EQ(grid.GetNumberOfNodesX(), 4);
  ASSERT_EQ(grid.GetNumberOfNodesY(), 3);
  for (int j = 0; j < 3; ++j) EXPECT_EQ(grid.GetNode(3, j), nullptr);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(grid.GetNode(i, 2), nullptr);
  EXPECT_EQ(CountValid(grid), 6);
}

TEST(TGrid, NodeOutOfRangeIsNull) {
  TIN tin;
  BuildSlope(tin);
  TGrid const grid(tin, 2, 1);
  EXPECT_EQ(grid.GetNode(-1, 0), nullptr);
  EXPECT_EQ(grid.GetNode(5, 0), nullptr);
  EXPECT_EQ(grid.GetNode(0, -1), nullptr);
  EXPECT_EQ(grid.GetNode(0, 5), nullptr);
}

TEST(TGrid, FilteredTriangleGivesInvalidNodes) {
  TIN tin;
  BuildSlope(tin);
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    tin.GetTriangle(i, true)->m_Flags |= TRI_FILTERED;
  }
  TGrid const grid(tin, 2, 1);
  EXPECT_EQ(CountValid(grid), 0);
}

TEST(TGrid, OneFlatTriangleGivesValidNodesInItAndInvalidOnesElsewhere) {
  HandMadeMesh mesh;
  mesh.LayClockwise(mesh.Point(-500, -500, 3), mesh.Point(500, -500, 3), mesh.Point(0, 500, 3));
  TGrid const grid(mesh.tin, 100, 100);
  ASSERT_EQ(grid.GetNumberOfNodesX(), 21);
  for (int j = 0; j < 21; ++j) {
    for (int i = 0; i < 21; ++i) {
      double const x = -1000 + 100 * i;
      double const y = -1000 + 100 * j;
      bool const inside = y >= -500 && y <= 500 - 2 * (x < 0 ? -x : x);
      TPoint const* const node = grid.GetNode(i, j);
      ASSERT_EQ(node != nullptr, inside) << x << " " << y;
      if (!inside) continue;
      EXPECT_EQ(*node, TPoint(x, y, 3));
    }
  }
}

TEST(TGrid, TriangleWithoutPlanAreaGivesInvalidNodes) {
  HandMadeMesh mesh;
  mesh.Lay(mesh.Point(-500, 0, 3), mesh.Point(0, 0, 3), mesh.Point(500, 0, 3));
  TGrid const grid(mesh.tin, 100, 100);
  EXPECT_NE(mesh.tin.GetTriangleWithPoint(TPoint(0, 0)), nullptr);
  EXPECT_EQ(CountValid(grid), 0);
}

TEST(TGrid, AxisWithoutExtentGetsOneNode) {
  TIN tin;
  tin.Init(3, TPoint(0, 0, 0), TPoint(10, 5, 0));
  for (TPoint const& p : {TPoint(0, 0, 1), TPoint(10, 0, 2), TPoint(5, 5, 3)}) tin.AddPoint(p);
  TINPeer::Max(tin).y = 0;
  TGrid grid(tin, 2, 2);
  EXPECT_EQ(grid.GetNumberOfNodesX(), 6);
  EXPECT_EQ(grid.GetNumberOfNodesY(), 1);
  ASSERT_NE(grid.GetNode(5, 0), nullptr);
  EXPECT_EQ(*grid.GetNode(5, 0), TPoint(10, 0, 2));
  TINPeer::Max(tin).x = 0;
  grid.Create(tin, -2, 0);
  EXPECT_EQ(grid.GetNumberOfNodesX(), 1);
  EXPECT_EQ(grid.GetNumberOfNodesY(), 1);
  EXPECT_EQ(*grid.GetNode(0, 0), TPoint(0, 0, 1));
}

TEST(TGrid, SurfaceWithoutPoolsGivesOneInvalidNode) {
  TGrid const grid(TIN(), 1, 1);
  EXPECT_EQ(grid.GetNumberOfNodesX(), 1);
  EXPECT_EQ(grid.GetNumberOfNodesY(), 1);
  EXPECT_EQ(grid.GetNode(0, 0), nullptr);
}

// The bounds of a surface that has seen no point are turned inside out.
TEST(TGrid, EmptyBoundsGiveInvalidNodesOnly) {
  TIN const tin(TPoint(0, 0), TPoint(1, 1), 0);
  TGrid const grid(tin, 1, 1);
  EXPECT_EQ(grid.GetNumberOfNodesX(), 1001);
  EXPECT_EQ(grid.GetNumberOfNodesY(), 1001);
  EXPECT_EQ(CountValid(grid), 0);
}

TEST(TGrid, InBoundsLooksAtZToo) {
  TIN tin;
  BuildSlope(tin);
  TGrid const grid(tin, 2, 1);
  EXPECT_TRUE(grid.InBounds(TPoint(8, 4, 21)));
  EXPECT_TRUE(grid.InBounds(TPoint(0, 0, 5)));
  EXPECT_FALSE(grid.InBounds(TPoint(4, 2, 21.5)));
  EXPECT_FALSE(grid.InBounds(TPoint(4, 2, 4.5)));
  EXPECT_FALSE(grid.InBounds(TPoint(8.5, 2, 10)));
  EXPECT_FALSE(grid.InBounds(TPoint(-0.5, 2, 10)));
  EXPECT_FALSE(grid.InBounds(TPoint(4, 4.5, 10)));
  EXPECT_FALSE(grid.InBounds(TPoint(4, -0.5, 10)));
}

TEST(TGrid, BoundsAreThoseOfTheData) {
  TIN tin;
  BuildSlope(tin);
  TGrid const grid(tin, 3, 3);
  TPoint min;
  TPoint max;
  grid.GetBounds(min, max);
  EXPECT_EQ(min, TPoint(0, 0, 5));
  EXPECT_EQ(max, TPoint(8, 4, 21));
}

TEST(TGrid, IsASnapshot) {
  TIN tin;
  BuildSlope(tin);
  TGrid const grid(tin, 2, 1);
  ASSERT_NE(tin.AddPoint(3.5, 2.5, 500), nullptr);
  EXPECT_EQ(*grid.GetNode(2, 2), TPoint(4, 2, 13));
  EXPECT_TRUE(VerifySurface(tin).Ok());
}

TEST(TGrid, CopiesShareTheNodes) {
  TIN tin;
  BuildSlope(tin);
  TGrid const grid(tin, 2, 1);
  alignas(TGrid) std::byte first[sizeof(TGrid)];  // never destroyed: each would free the nodes
  alignas(TGrid) std::byte second[sizeof(TGrid)];
  TGrid const* const copy = new (first) TGrid(grid);
  TGrid* const assigned = new (second) TGrid;
  *assigned = grid;
  EXPECT_EQ(copy->GetNode(3, 2), grid.GetNode(3, 2));
  EXPECT_EQ(assigned->GetNode(3, 2), grid.GetNode(3, 2));
  EXPECT_EQ(assigned->GetNumberOfNodesX(), 5);
}

TEST(TGrid, CreatedGridsAreGivenBack) {
  TIN tin;
  BuildSlope(tin);
  TGrid* const grid = CreateGrid();
  EXPECT_EQ(grid->GetNumberOfNodesX(), 0);
  grid->Create(tin, 1, 1);
  ReleaseGrid(grid);
  ReleaseGrid(nullptr);
}

}  // namespace
