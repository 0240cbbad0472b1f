#include "qeltin/tin/TIN.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <vector>

#include "testing/ExpectSound.h"
#include "testing/Formula.h"
#include "testing/TINPeer.h"

namespace {

using qeltin::testing::ExpectSound;
using qeltin::testing::FormulaInputs;
using qeltin::testing::SameBits;
using qeltin::testing::TINPeer;

constexpr double LARGEST_FLOAT = 3.4028234663852886e38;
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
TPoint const EMPTY_MIN(LARGEST_FLOAT, LARGEST_FLOAT, LARGEST_FLOAT);
TPoint const EMPTY_MAX(-LARGEST_FLOAT, -LARGEST_FLOAT, -LARGEST_FLOAT);

struct Boxes {
  TPoint min;
  TPoint max;
  TPoint world_min;
  TPoint world_max;

  explicit Boxes(TIN const& tin) {
    tin.GetBounds(min, max);
    tin.GetWorldBounds(world_min, world_max);
  }
};

// A surface of five points with the bounds of its data.
void Build(TIN& tin) {
  ASSERT_TRUE(tin.Init(5, TPoint(0, 0, -9), TPoint(100, 80, -1)));
  for (TPoint const& p : {TPoint(0, 0, -1), TPoint(100, 0, -2), TPoint(100, 80, -3),
                          TPoint(0, 80, -4), TPoint(40, 30, -9)}) {
    ASSERT_NE(tin.AddPoint(p), nullptr);
  }
}

// --- Without pools
// --------------------------------------------------------------------------------

void ExpectNoPools(TIN& tin) {
  EXPECT_EQ(tin.GetNumberOfPoints(), 0);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 0);
  EXPECT_EQ(tin.GetTriangleWithPoint(TPoint(0, 0)), nullptr);
  EXPECT_EQ(tin.FindPoint(TPoint(0, 0, 0)), nullptr);
  double z = -7;
  EXPECT_FALSE(tin.GetZ(0, 0, z));
  EXPECT_EQ(z, -7.0);
  EXPECT_EQ(tin.GetNearestEdge(TPoint(0, 0)).m_pStart, nullptr);
  TPoint a;
  TPoint b;
  TTriangle* first = nullptr;
  TTriangle* second = nullptr;
  EXPECT_EQ(tin.GetTrianglesWithEdge(TEdge(&a, &b), first, second), 0);
  EXPECT_EQ(tin.FindTriangle(nullptr, 0, 0), nullptr);
  EXPECT_EQ(TINPeer::LastTriangle(tin), nullptr);
}

TEST(TIN, DefaultSurfaceHasNoPoolsAndItsBoxesAreZero) {
  TIN tin;
  ExpectNoPools(tin);
  Boxes const boxes(tin);
  for (TPoint const& corner : {boxes.min, boxes.max, boxes.world_min, boxes.world_max}) {
    EXPECT_EQ(corner, TPoint(0, 0, 0));
  }
  EXPECT_EQ(TINPeer::Points(tin), nullptr);
  EXPECT_EQ(TINPeer::Triangles(tin), nullptr);
  EXPECT_EQ(TINPeer::Map(tin), nullptr);
  EXPECT_EQ(TINPeer::Border(tin), nullptr);
  EXPECT_EQ(TINPeer::StartPoints(tin), nullptr);
  EXPECT_EQ(TINPeer::UnitConverter(tin), nullptr);
}

TEST(TIN, ClearedSurfaceHasNoPoolsAndItsBoxesAreZero) {
  TIN tin;
  Build(tin);
  tin.Clear();
  ExpectNoPools(tin);
  Boxes const boxes(tin);
  for (TPoint const& corner : {boxes.min, boxes.max, boxes.world_min, boxes.world_max}) {
    EXPECT_EQ(corner, TPoint(0, 0, 0));
  }
}

TEST(TIN, ClearKeepsTheMapWithoutEntriesAndWhatElseBelongsToTheSurface) {
  TIN tin;
  int converter = 0;
  tin.SetUnitConverter(reinterpret_cast<CQelUnitCnv*>(&converter));
  Build(tin);
  tin.BuildPointMap();
  PointMap* const map = TINPeer::Map(tin);
  auto* const border = TINPeer::Border(tin) = new TArray<int>(3);
  auto* const starts = TINPeer::StartPoints(tin) = new TArray<TArrayStartPoint>(3);
  tin.Clear();
  EXPECT_EQ(TINPeer::Map(tin), map);
  EXPECT_EQ(map->GetNumberOfPoints(), 0);
  EXPECT_EQ(TINPeer::Border(tin), border);
  EXPECT_EQ(TINPeer::StartPoints(tin), starts);
  EXPECT_EQ(TINPeer::UnitConverter(tin), reinterpret_cast<CQelUnitCnv*>(&converter));
}

TEST(TIN, ClearTwiceIsHarmless) {
  TIN tin;
  tin.Clear();
  tin.Clear();
  ExpectNoPools(tin);
}

// --- Init and the box constructor
// -----------------------------------------------------------------

TEST(TIN, InitMakesRoomForThePointsTheSeedAndAMargin) {
  TIN tin;
  EXPECT_TRUE(tin.Init(3, TPoint(0, 0), TPoint(1, 1)));
  EXPECT_EQ(TINPeer::Points(tin)->m_iCapacity, 3 + 1004);
  EXPECT_EQ(TINPeer::Triangles(tin)->m_iCapacity, (3 + 1004) * 2);
  EXPECT_EQ(tin.GetNumberOfPoints(), 0);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 0);
}

TEST(TIN, InitTakesANegativeNumberOffTheMargin) {
  TIN tin;
  EXPECT_TRUE(tin.Init(-4, TPoint(0, 0), TPoint(1, 1)));
  EXPECT_EQ(TINPeer::Points(tin)->m_iCapacity, 1000);
  EXPECT_EQ(TINPeer::Triangles(tin)->m_iCapacity, 2000);
  EXPECT_TRUE(tin.Init(-5000, TPoint(0, 0), TPoint(1, 1)));
  EXPECT_EQ(TINPeer::Points(tin)->m_iCapacity, 10);
  EXPECT_EQ(TINPeer::Triangles(tin)->m_iCapacity, 10);
}

TEST(TIN, InitGivesAWorldBoxOfTenWidthsOnEverySide) {
  TIN tin;
  tin.Init(3, TPoint(0, 10, -5), TPoint(1, 30, 5));
  Boxes const boxes(tin);
  EXPECT_EQ(boxes.world_min, TPoint(-10, -190, -105));
  EXPECT_EQ(boxes.world_max, TPoint(11, 230, 105));
  EXPECT_EQ(boxes.min, TPoint(0, 10, -5));
  EXPECT_EQ(boxes.max, TPoint(1, 30, 5));
}

TEST(TIN, InitFollowsItsFormulaOnRandomBoxes) {
  FormulaInputs in;
  for (int i = 0; i < 200; ++i) {
    TPoint const min = in.AnyPoint();
    TPoint const max = in.AnyPoint();
    double const ex = max.x - min.x;
    double const ey = max.y - min.y;
    double const ez = max.z - min.z;
    TIN tin;
    tin.Init(1, min, max);
    Boxes const boxes(tin);
    EXPECT_TRUE(
        SameBits(boxes.world_min, TPoint(min.x - 10 * ex, min.y - 10 * ey, min.z - 10 * ez)));
    EXPECT_TRUE(
        SameBits(boxes.world_max, TPoint(max.x + 10 * ex, max.y + 10 * ey, max.z + 10 * ez)));
    EXPECT_TRUE(SameBits(boxes.min, min));
    EXPECT_TRUE(SameBits(boxes.max, max));
  }
}

TEST(TIN, InitWithNoPointsIsFalseAndKeepsTheSurface) {
  TIN tin;
  Build(tin);
  tin.BuildPointMap();
  TPoint* const point = tin.GetPoint(4);
  TTriangle* const current = TINPeer::Location(tin).m_pCurrent;
  EXPECT_FALSE(tin.Init(0, TPoint(5, 5), TPoint(6, 6)));
  EXPECT_EQ(tin.GetNumberOfPoints(), 9);
  EXPECT_EQ(tin.GetPoint(4), point);
  EXPECT_EQ(TINPeer::Location(tin).m_pCurrent, current);
  EXPECT_EQ(TINPeer::Map(tin)->GetNumberOfPoints(), 9);
  EXPECT_EQ(Boxes(tin).max, TPoint(100, 80, -1));
  ExpectSound(tin);
}

TEST(TIN, InitDropsTheSurfaceAndForgetsEveryPlaceInIt) {
  TIN tin;
  Build(tin);
  tin.BuildPointMap();
  ASSERT_NE(TINPeer::Location(tin).m_pCurrent, nullptr);
  EXPECT_TRUE(tin.Init(3, TPoint(0, 0), TPoint(1, 1)));
  EXPECT_EQ(tin.GetNumberOfPoints(), 0);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 0);
  EXPECT_EQ(TINPeer::LastTriangle(tin), nullptr);
  EXPECT_EQ(TINPeer::Location(tin).m_pCurrent, nullptr);
  EXPECT_EQ(TINPeer::Location(tin).m_iBest, 0);
  EXPECT_EQ(TINPeer::Location(tin).m_pTin, &tin);
  EXPECT_EQ(TINPeer::Location(tin).m_pTriangles, TINPeer::Triangles(tin));
  EXPECT_EQ(TINPeer::Map(tin)->GetNumberOfPoints(), 0);
}

TEST(TIN, InitMayTakeTheCornersOfTheSurfaceItself) {
  TIN tin;
  Build(tin);
  tin.Init(3, TINPeer::Min(tin), TINPeer::Max(tin));
  EXPECT_EQ(Boxes(tin).min, TPoint(0, 0, -9));
  EXPECT_EQ(Boxes(tin).max, TPoint(100, 80, -1));
  EXPECT_EQ(Boxes(tin).world_min, TPoint(-1000, -800, -89));
}

TEST(TIN, BoxConstructorIsInit) {
  TIN tin(TPoint(0, 10, -5), TPoint(1, 30, 5), 3);
  EXPECT_EQ(TINPeer::Points(tin)->m_iCapacity, 3 + 1004);
  EXPECT_EQ(Boxes(tin).world_min, TPoint(-10, -190, -105));
  EXPECT_EQ(Boxes(tin).world_max, TPoint(11, 230, 105));
  EXPECT_EQ(Boxes(tin).min, TPoint(0, 10, -5));
  EXPECT_EQ(TINPeer::UnitConverter(tin), nullptr);
}

TEST(TIN, BoxConstructorWithNoPointsTakesTheBoxAsTheWorldWithEmptyBounds) {
  TIN tin(TPoint(0, 10, -5), TPoint(1, 30, 5), 0);
  EXPECT_EQ(TINPeer::Points(tin), nullptr);
  EXPECT_EQ(tin.GetNumberOfPoints(), 0);
  EXPECT_EQ(Boxes(tin).world_min, TPoint(0, 10, -5));
  EXPECT_EQ(Boxes(tin).world_max, TPoint(1, 30, 5));
  EXPECT_EQ(Boxes(tin).min, EMPTY_MIN);
  EXPECT_EQ(Boxes(tin).max, EMPTY_MAX);
}

// --- Box tests
// ------------------------------------------------------------------------------------

TEST(TIN, PointOnTheEdgeOfABoxIsInAndHeightPlaysNoPart) {
  TIN tin(TPoint(0, 0, 0), TPoint(10, 20, 0), 1);
  for (TPoint const& p :
       {TPoint(0, 0, 5), TPoint(10, 20, -5), TPoint(0, 20, 1e300), TPoint(5, 5)}) {
    EXPECT_TRUE(tin.InBounds(p));
  }
  EXPECT_FALSE(tin.InBounds(TPoint(-5e-324, 5)));
  EXPECT_FALSE(tin.InBounds(TPoint(5, std::nextafter(20.0, 21.0))));
  EXPECT_FALSE(tin.InBounds(TPoint(NOT_A_NUMBER, 5)));
  EXPECT_FALSE(tin.InBounds(TPoint(5, NOT_A_NUMBER)));
  for (TPoint const& p : {TPoint(-100, -200, 5), TPoint(110, 220, -5), TPoint(110, -200, 1e300)}) {
    EXPECT_TRUE(tin.InWorldBounds(p));
  }
  EXPECT_FALSE(tin.InWorldBounds(TPoint(std::nextafter(110.0, 111.0), 0)));
  EXPECT_FALSE(tin.InWorldBounds(TPoint(0, std::nextafter(-200.0, -201.0))));
}

TEST(TIN, TriangleIsInABoxWithAllThreeCorners) {
  TIN tin(TPoint(0, 0, 0), TPoint(10, 20, 0), 1);
  TPoint in(0, 0, 99);
  TPoint also_in(10, 20);
  TPoint out(10, 21);
  TPoint far(10, 221);
  EXPECT_TRUE(tin.InBounds(TTriangle(&in, &also_in, &in)));
  EXPECT_FALSE(tin.InBounds(TTriangle(&out, &in, &in)));
  EXPECT_FALSE(tin.InBounds(TTriangle(&in, &out, &in)));
  EXPECT_FALSE(tin.InBounds(TTriangle(&in, &in, &out)));
  EXPECT_TRUE(tin.InWorldBounds(TTriangle(&out, &in, &out)));
  EXPECT_FALSE(tin.InWorldBounds(TTriangle(&far, &in, &in)));
  EXPECT_FALSE(tin.InWorldBounds(TTriangle(&in, &far, &in)));
  EXPECT_FALSE(tin.InWorldBounds(TTriangle(&in, &in, &far)));
}

// --- Elements
// -------------------------------------------------------------------------------------

TEST(TIN, TriangleThatReachesTheSeedIsNullUnlessAllAreAskedFor) {
  TIN tin;
  Build(tin);
  int visible = 0;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle* const all = tin.GetTriangle(i, true);
    ASSERT_NE(all, nullptr);
    bool const reaches_seed = !tin.InBounds(*all);
    EXPECT_EQ(tin.GetTriangle(i, false), reaches_seed ? nullptr : all);
    if (!reaches_seed) ++visible;
  }
  EXPECT_EQ(visible, 4);
  ExpectSound(tin);
}

TEST(TIN, FilteredTriangleIsNullUnlessAllAreAskedFor) {
  TIN tin;
  Build(tin);
  TTriangle* const t = tin.GetTriangleWithPoint(TPoint(30, 30));
  int position = 0;
  while (tin.GetTriangle(position, true) != t) ++position;
  EXPECT_EQ(tin.GetTriangle(position, false), t);
  t->m_Flags = TRI_VISITED;
  EXPECT_EQ(tin.GetTriangle(position, false), t);
  t->m_Flags = TRI_FILTERED;
  EXPECT_EQ(tin.GetTriangle(position, false), nullptr);
  EXPECT_EQ(tin.GetTriangle(position, true), t);
}

TEST(TIN, ElementsAreReadInLiveOrder) {
  TIN tin;
  Build(tin);
  TArray<TPoint>& points = *TINPeer::Points(tin);
  std::swap(points.m_pIndex[1], points.m_pIndex[7]);
  EXPECT_EQ(tin.GetPoint(1), points.m_pData + 7);
  EXPECT_EQ(tin.GetPoint(7), points.m_pData + 1);
}

TEST(TIN, UnitConverterIsKept) {
  TIN tin;
  int converter = 0;
  tin.SetUnitConverter(reinterpret_cast<CQelUnitCnv*>(&converter));
  EXPECT_EQ(TINPeer::UnitConverter(tin), reinterpret_cast<CQelUnitCnv*>(&converter));
  tin.SetUnitConverter(nullptr);
  EXPECT_EQ(TINPeer::UnitConverter(tin), nullptr);
}

TEST(TIN, MapIsTheOneThatWasBuilt) {
  TIN tin;
  Build(tin);
  tin.BuildPointMap();
  EXPECT_EQ(&tin.GetMap(), TINPeer::Map(tin));
}

TEST(TIN, RemoveAllPointsFreesTheSlotsAndKeepsTrianglesAndMap) {
  TIN tin;
  Build(tin);
  tin.BuildPointMap();
  TArray<TPoint>& points = *TINPeer::Points(tin);
  points.Shuffle();
  int const triangles = tin.GetNumberOfTriangles();
  TPoint* const corner = tin.GetTriangle(0, true)->GetPoint(0);
  tin.RemoveAllPoints();
  EXPECT_EQ(tin.GetNumberOfPoints(), 0);
  for (int i = 0; i < points.m_iCapacity; ++i) EXPECT_EQ(points.m_pIndex[i], i);
  EXPECT_EQ(tin.GetNumberOfTriangles(), triangles);
  EXPECT_EQ(tin.GetTriangle(0, true)->GetPoint(0), corner);
  EXPECT_EQ(TINPeer::Map(tin)->GetNumberOfPoints(), 9);
  EXPECT_EQ(Boxes(tin).max, TPoint(100, 80, -1));
}

TEST(TIN, InsertionAfterRemoveAllPointsSeedsAnew) {
  TIN tin;
  Build(tin);
  int const triangles = tin.GetNumberOfTriangles();
  tin.RemoveAllPoints();
  TPoint* const p = tin.AddPoint(50, 33, -5);
  EXPECT_EQ(tin.GetNumberOfPoints(), 5);
  EXPECT_EQ(tin.GetPoint(4), p);
  EXPECT_EQ(*tin.GetPoint(0), TPoint(-1000, -800, 0));
  EXPECT_EQ(*tin.GetPoint(2), TPoint(1100, 880, 0));
  EXPECT_EQ(TINPeer::LastTriangle(tin), tin.GetTriangle(triangles, true));
  EXPECT_GE(tin.GetNumberOfTriangles(), triangles + 2);
}

// --- AddTriangle and RemoveTriangle
// ---------------------------------------------------------------

TEST(TIN, AddedTriangleIsACopyMarkedByTheDataBounds) {
  TIN tin(TPoint(0, 0), TPoint(10, 10), 1);
  TPoint in(0, 0);
  TPoint out(11, 0);
  TTriangle neighbour;
  TTriangle inside(&in, &in, &in);
  inside.m_Flags = TRI_VISITED;
  inside.m_pAdjacent[1] = &neighbour;
  inside.m_RadiusSq = 5;
  TTriangle* const first = TINPeer::AddTriangle(tin, inside);
  EXPECT_EQ(first, tin.GetTriangle(0, true));
  EXPECT_EQ(first->m_Flags, TRI_VISITED);
  EXPECT_EQ(first->m_pAdjacent[1], &neighbour);
  EXPECT_EQ(neighbour.m_pAdjacent[0], nullptr);
  EXPECT_EQ(first->m_RadiusSq, 5.0);
  TTriangle reaching(&in, &in, &out);
  reaching.m_Flags = TRI_VISITED;
  EXPECT_EQ(TINPeer::AddTriangle(tin, reaching)->m_Flags, TRI_VISITED | TRI_OUTSIDE);
}

TEST(TIN, AddedTriangleWithoutACornerIsNeitherMarkedNorEnteredInTheMap) {
  TIN tin(TPoint(0, 0), TPoint(10, 10), 1);
  tin.BuildPointMap();
  TPoint out(11, 0);
  TINPeer::Map(tin)->AddPoint(&out);
  TTriangle* const t = TINPeer::AddTriangle(tin, TTriangle(&out, &out, nullptr));
  EXPECT_EQ(t->m_Flags, 0);
  EXPECT_EQ(TINPeer::Map(tin)->FindPoint(&out).NumberOfTriangles(), 0);
}

TEST(TIN, AddedTriangleIsEnteredInTheMap) {
  TIN tin(TPoint(0, 0), TPoint(10, 10), 1);
  tin.BuildPointMap();
  TPoint corner(5, 5);
  TINPeer::Map(tin)->AddPoint(&corner);
  TTriangle* const t = TINPeer::AddTriangle(tin, TTriangle(&corner, &corner, &corner));
  EXPECT_EQ(TINPeer::Map(tin)->FindPoint(&corner)[0], t);
}

TEST(TIN, RemovedTriangleIsCutOffFromItsNeighboursAndKeepsItsFields) {
  TIN tin;
  Build(tin);
  tin.BuildPointMap();
  TTriangle* const t = tin.GetTriangleWithPoint(TPoint(30, 30));
  TTriangle const before = *t;
  int const count = tin.GetNumberOfTriangles();
  TINPeer::RemoveTriangle(tin, t, false);
  EXPECT_EQ(tin.GetNumberOfTriangles(), count);
  for (int side = 0; side < 3; ++side) {
    EXPECT_EQ(t->m_pAdjacent[side], before.m_pAdjacent[side]);
    EXPECT_EQ(t->m_pVertex[side], before.m_pVertex[side]);
    ASSERT_NE(t->m_pAdjacent[side], nullptr);
    for (TTriangle const* back : t->m_pAdjacent[side]->m_pAdjacent) EXPECT_NE(back, t);
    auto const& list = TINPeer::Map(tin)->FindPoint(t->m_pVertex[side]).GetTriangles();
    EXPECT_EQ(std::count(list.begin(), list.end(), t), 0);
  }
  EXPECT_EQ(t->m_RadiusSq, before.m_RadiusSq);
}

TEST(TIN, RemovedTriangleIsTakenFromTheLowestSideOfANeighbourOnly) {
  TIN tin(TPoint(0, 0), TPoint(10, 10), 1);
  TPoint p;
  TTriangle* const t = TINPeer::AddTriangle(tin, TTriangle(&p, &p, &p));
  TTriangle* const n = TINPeer::AddTriangle(tin, TTriangle(&p, &p, &p));
  t->m_pAdjacent[2] = n;
  n->m_pAdjacent[1] = n->m_pAdjacent[2] = t;
  TINPeer::RemoveTriangle(tin, t, false);
  EXPECT_EQ(n->m_pAdjacent[1], nullptr);
  EXPECT_EQ(n->m_pAdjacent[2], t);
}

TEST(TIN, ReleasedTriangleGivesBackTheSlotOfItsByteDistance) {
  TIN tin;
  tin.Init(1, TPoint(0, 0), TPoint(10, 10));
  TPoint p;
  for (int i = 0; i < 100; ++i) TINPeer::AddTriangle(tin, TTriangle(&p, &p, &p));
  TArray<TTriangle>& pool = *TINPeer::Triangles(tin);
  TINPeer::RemoveTriangle(tin, pool.m_pData + 1, true);  // 80 bytes: slot 80 goes
  EXPECT_EQ(tin.GetNumberOfTriangles(), 99);
  EXPECT_EQ(tin.GetTriangle(1, true), pool.m_pData + 1);
  EXPECT_EQ(tin.GetTriangle(80, true), pool.m_pData + 99);
  TINPeer::RemoveTriangle(tin, pool.m_pData, true);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 98);
  EXPECT_EQ(tin.GetTriangle(0, true), pool.m_pData + 98);
  TINPeer::RemoveTriangle(tin, pool.m_pData + 99, true);  // 7920 bytes, beyond the capacity
  EXPECT_EQ(tin.GetNumberOfTriangles(), 98);
}

TEST(TIN, ReleaseLeavesThePlaceOfTheLocationObject) {
  TIN tin;
  Build(tin);
  TTriangle* const t = tin.GetTriangleWithPoint(TPoint(30, 30));
  ASSERT_EQ(TINPeer::Location(tin).m_pCurrent, t);
  TINPeer::RemoveTriangle(tin, t, true);
  EXPECT_EQ(TINPeer::Location(tin).m_pCurrent, t);
}

// --- Copies
// ---------------------------------------------------------------------------------------

TEST(TIN, CopyHasPoolsOfItsOwnWhoseTrianglesPointIntoTheSource) {
  TIN tin;
  Build(tin);
  TIN const copy(tin);
  EXPECT_EQ(copy.GetNumberOfPoints(), tin.GetNumberOfPoints());
  EXPECT_EQ(copy.GetNumberOfTriangles(), tin.GetNumberOfTriangles());
  EXPECT_NE(TINPeer::Points(copy), TINPeer::Points(tin));
  EXPECT_NE(TINPeer::Triangles(copy), TINPeer::Triangles(tin));
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
    EXPECT_NE(copy.GetPoint(i), tin.GetPoint(i));
    EXPECT_EQ(*copy.GetPoint(i), *tin.GetPoint(i));
  }
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const& mine = *copy.GetTriangle(i, true);
    TTriangle const& theirs = *tin.GetTriangle(i, true);
    EXPECT_NE(&mine, &theirs);
    for (int k = 0; k < 3; ++k) {
      EXPECT_EQ(mine.m_pVertex[k], theirs.m_pVertex[k]);
      EXPECT_EQ(mine.m_pAdjacent[k], theirs.m_pAdjacent[k]);
    }
    EXPECT_EQ(mine.m_Flags, theirs.m_Flags);
    EXPECT_EQ(mine.m_RadiusSq, theirs.m_RadiusSq);
  }
  ExpectSound(tin);
}

TEST(TIN, CopySharesTheTrimbleArraysAndHasNoMapOrUnitConverter) {
  TIN tin;
  Build(tin);
  int converter = 0;
  tin.SetUnitConverter(reinterpret_cast<CQelUnitCnv*>(&converter));
  tin.BuildPointMap();
  TINPeer::Border(tin) = new TArray<int>(3);
  TINPeer::StartPoints(tin) = new TArray<TArrayStartPoint>(3);
  TIN copy(tin);
  EXPECT_EQ(TINPeer::Border(copy), TINPeer::Border(tin));
  EXPECT_EQ(TINPeer::StartPoints(copy), TINPeer::StartPoints(tin));
  EXPECT_EQ(TINPeer::Map(copy), nullptr);
  EXPECT_EQ(TINPeer::UnitConverter(copy), nullptr);
  EXPECT_EQ(TINPeer::LastTriangle(copy), TINPeer::LastTriangle(tin));
  Boxes const mine(copy);
  Boxes const theirs(tin);
  EXPECT_EQ(mine.min, theirs.min);
  EXPECT_EQ(mine.max, theirs.max);
  EXPECT_EQ(mine.world_min, theirs.world_min);
  EXPECT_EQ(mine.world_max, theirs.world_max);
}

TEST(TIN, CopyLocatesOnItsOwnPoolFromItsFirstTriangle) {
  TIN tin;
  Build(tin);
  TIN const copy(tin);
  Triangulator const& location = TINPeer::Location(copy);
  EXPECT_EQ(location.m_pTin, &copy);
  EXPECT_EQ(location.m_pTriangles, TINPeer::Triangles(copy));
  EXPECT_EQ(location.m_pCurrent, nullptr);
  double mine = 0;
  double theirs = 0;
  EXPECT_TRUE(copy.GetZ(30, 30, mine));
  EXPECT_TRUE(tin.GetZ(30, 30, theirs));
  EXPECT_EQ(mine, theirs);
}

TEST(TIN, CopyOfASurfaceWithoutPoolsHasNone) {
  TIN const tin(TPoint(1, 2, 3), TPoint(4, 5, 6), 0);
  TIN copy(tin);
  ExpectNoPools(copy);
  EXPECT_EQ(Boxes(copy).world_min, TPoint(1, 2, 3));
  EXPECT_EQ(Boxes(copy).min, EMPTY_MIN);
}

TEST(TIN, CopyMayOutliveItsSourceUnused) {
  auto tin = std::make_unique<TIN>();
  Build(*tin);
  TINPeer::Border(*tin) = new TArray<int>(3);
  auto copy = std::make_unique<TIN>(*tin);
  auto second = std::make_unique<TIN>(*copy);
  tin.reset();
  copy.reset();
  second.reset();
}

}  // namespace
