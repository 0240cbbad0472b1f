#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/ExpectSound.h"
#include "testing/HandMadeMesh.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/VerifySurface.h"

namespace {

using qeltin::testing::ExpectSound;
using qeltin::testing::ExtentOf;
using qeltin::testing::HandMadeMesh;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;
using qeltin::testing::VerifySurface;

// A surface for the square from 0 to 10, seeded and without a point of its own.
struct Seeded {
  TIN tin;

  Seeded() {
    tin.Init(20, TPoint(0, 0, 0), TPoint(10, 10, 10));
    EXPECT_TRUE(TINPeer::Seed(tin));
  }
  ~Seeded() { ExpectSound(tin); }

  int TrianglesWith(TPoint* a, TPoint* b) const {
    TTriangle* first = nullptr;
    TTriangle* second = nullptr;
    return tin.GetTrianglesWithEdge(TEdge(a, b), first, second);
  }
};

// --- The seed
// -------------------------------------------------------------------------------------

TEST(TINSeed, IsARectangleOnTheWorldBoxInTwoHiddenTriangles) {
  TIN tin;
  tin.Init(1, TPoint(0, 0, 3), TPoint(10, 20, 7));
  ASSERT_TRUE(TINPeer::Seed(tin));
  ASSERT_EQ(tin.GetNumberOfPoints(), 4);
  TPoint* const corner1 = tin.GetPoint(0);
  TPoint* const corner2 = tin.GetPoint(1);
  TPoint* const corner3 = tin.GetPoint(2);
  TPoint* const corner4 = tin.GetPoint(3);
  EXPECT_EQ(*corner1, TPoint(-100, -200, 0));
  EXPECT_EQ(*corner2, TPoint(110, -200, 0));
  EXPECT_EQ(*corner3, TPoint(110, 220, 0));
  EXPECT_EQ(*corner4, TPoint(-100, 220, 0));

  ASSERT_EQ(tin.GetNumberOfTriangles(), 2);
  TTriangle* const first = tin.GetTriangle(0, true);
  TTriangle* const second = tin.GetTriangle(1, true);
  EXPECT_EQ(first->m_pVertex[0], corner1);
  EXPECT_EQ(first->m_pVertex[1], corner3);
  EXPECT_EQ(first->m_pVertex[2], corner2);
  EXPECT_EQ(first->m_pAdjacent[0], second);
  EXPECT_EQ(first->m_pAdjacent[1], nullptr);
  EXPECT_EQ(first->m_pAdjacent[2], nullptr);
  EXPECT_EQ(second->m_pVertex[0], corner1);
  EXPECT_EQ(second->m_pVertex[1], corner4);
  EXPECT_EQ(second->m_pVertex[2], corner3);
  EXPECT_EQ(second->m_pAdjacent[0], nullptr);
  EXPECT_EQ(second->m_pAdjacent[1], nullptr);
  EXPECT_EQ(second->m_pAdjacent[2], first);
  for (TTriangle const* t : {first, second}) {
    EXPECT_EQ(t->m_Flags, TRI_OUTSIDE);
    EXPECT_EQ(t->m_CentreX, 5.0);
    EXPECT_EQ(t->m_CentreY, 10.0);
    EXPECT_EQ(t->m_RadiusSq, 105.0 * 105.0 + 210.0 * 210.0);
  }
  EXPECT_EQ(TINPeer::LastTriangle(tin), first);
  EXPECT_EQ(TINPeer::Location(tin).m_pCurrent, nullptr);
  ExpectSound(tin);
}

TEST(TINSeed, IsEnteredInAMap) {
  TIN tin;
  tin.Init(1, TPoint(0, 0), TPoint(10, 20));
  tin.BuildPointMap();
  ASSERT_TRUE(TINPeer::Seed(tin));
  PointMap& map = tin.GetMap();
  TTriangle* const first = tin.GetTriangle(0, true);
  TTriangle* const second = tin.GetTriangle(1, true);
  std::vector<TTriangle*> const both = {first, second};
  EXPECT_EQ(map.GetNumberOfPoints(), 4);
  EXPECT_EQ(map.FindPoint(tin.GetPoint(0)).GetTriangles(), both);
  EXPECT_EQ(map.FindPoint(tin.GetPoint(1)).GetTriangles(), std::vector<TTriangle*>{first});
  EXPECT_EQ(map.FindPoint(tin.GetPoint(2)).GetTriangles(), both);
  EXPECT_EQ(map.FindPoint(tin.GetPoint(3)).GetTriangles(), std::vector<TTriangle*>{second});
  ExpectSound(tin);
}

TEST(TINSeed, StandsBeforeTheFirstPointAndIsNeverRemoved) {
  TIN tin;
  tin.Init(3, TPoint(0, 0), TPoint(10, 10));
  TPoint* const p = tin.AddPoint(4, 4, 1);
  EXPECT_EQ(tin.GetPoint(4), p);
  tin.AddPoint(5, 9, 1);
  EXPECT_EQ(tin.GetNumberOfPoints(), 6);
  EXPECT_EQ(*tin.GetPoint(3), TPoint(-100, 110, 0));
  ExpectSound(tin);
}

TEST(TINSeed, NeedsRoomInBothPools) {
  TIN tin;
  tin.Init(-1001, TPoint(0, 0), TPoint(10, 10));  // room for three points
  ASSERT_EQ(TINPeer::Points(tin)->m_iCapacity, 3);
  EXPECT_EQ(tin.AddPoint(5, 5, 5), nullptr);
  EXPECT_EQ(tin.GetNumberOfPoints(), 0);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 0);
}

// --- What is refused
// ------------------------------------------------------------------------------

TEST(TINInsertion, PointBeyondTheWorldBoxIsRefusedAndChangesNothing) {
  Seeded s;
  s.tin.AddPoint(4, 5, 6);
  TPoint min;
  TPoint max;
  s.tin.GetBounds(min, max);
  for (TPoint const& p : {TPoint(std::nextafter(110.0, 111.0), 5), TPoint(5, -101),
                          TPoint(1e300, 0), TPoint(std::numeric_limits<double>::quiet_NaN(), 5)}) {
    EXPECT_EQ(s.tin.AddPoint(p), nullptr);
  }
  EXPECT_EQ(s.tin.GetNumberOfPoints(), 5);
  EXPECT_EQ(s.tin.GetNumberOfTriangles(), 4);
  TPoint min_after;
  TPoint max_after;
  s.tin.GetBounds(min_after, max_after);
  EXPECT_EQ(min_after, min);
  EXPECT_EQ(max_after, max);
}

TEST(TINInsertion, FirstPointBeyondTheWorldBoxDoesNotSeed) {
  TIN tin;
  tin.Init(3, TPoint(0, 0), TPoint(10, 10));
  EXPECT_EQ(tin.AddPoint(500, 5, 5), nullptr);
  EXPECT_EQ(tin.GetNumberOfPoints(), 0);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 0);
}

// The rim edge that the point lies on makes a triangle without area, with its corners in the order
// of their addresses: here against the sense of the hull, which the verifier would not accept.
TEST(TINInsertion, PointOnTheWorldBoxIsAcceptedAndMakesAFlatTriangle) {
  TIN tin;
  tin.Init(1, TPoint(0, 0), TPoint(10, 10));
  TPoint* const p = tin.AddPoint(110, 5, 1);
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(*p, TPoint(110, 5, 1));
  EXPECT_EQ(tin.GetNumberOfPoints(), 5);
  ASSERT_EQ(tin.GetNumberOfTriangles(), 4);
  TTriangle* flat = nullptr;
  TTriangle* none = nullptr;
  ASSERT_EQ(tin.GetTrianglesWithEdge(TEdge(tin.GetPoint(1), tin.GetPoint(2)), flat, none), 1);
  EXPECT_EQ(flat->m_pVertex[0], p);
  EXPECT_EQ(flat->m_pVertex[1], tin.GetPoint(1));
  EXPECT_EQ(flat->m_pVertex[2], tin.GetPoint(2));
  EXPECT_EQ(flat->m_pAdjacent[1], nullptr);
  EXPECT_EQ(flat->TriSide(0), 1);
  EXPECT_NE(flat->TriSide(2), 3);
}

TEST(TINInsertion, PointOnACornerOfTheWorldBoxIsThatSeedCorner) {
  Seeded s;
  EXPECT_EQ(s.tin.AddPoint(110, 110, 5), s.tin.GetPoint(2));
  EXPECT_EQ(s.tin.GetPoint(2)->z, 0.0);
  EXPECT_EQ(s.tin.GetNumberOfPoints(), 5);
  EXPECT_EQ(s.tin.GetNumberOfTriangles(), 2);
}

TEST(TINInsertion, FullPointPoolRefusesEvenADuplicate) {
  TIN tin;
  tin.Init(-994, TPoint(0, 0), TPoint(10, 10));  // 10 slots
  TPoint const corners[] = {TPoint(1, 1), TPoint(9, 2), TPoint(8, 8),
                            TPoint(2, 9), TPoint(5, 4), TPoint(4, 7)};
  for (TPoint const& p : corners) ASSERT_NE(tin.AddPoint(p), nullptr);
  ASSERT_EQ(tin.GetNumberOfPoints(), TINPeer::Points(tin)->m_iCapacity);
  EXPECT_EQ(tin.AddPoint(corners[0]), nullptr);
  EXPECT_EQ(tin.AddPoint(5, 5, 5), nullptr);
  EXPECT_EQ(tin.GetNumberOfPoints(), 10);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 14);
  ExpectSound(tin);
}

TEST(TINInsertion, PointThatCannotBeLocatedTakesNoSlot) {
  HandMadeMesh mesh;
  mesh.LayStrip(5);
  EXPECT_EQ(mesh.tin.AddPoint(500, 500, 1), nullptr);
  EXPECT_EQ(mesh.tin.GetNumberOfPoints(), 7);
}

TEST(TINInsertion, PooledPointThatCannotBeLocatedStaysInPoolAndMap) {
  HandMadeMesh mesh;
  mesh.LayStrip(5);
  mesh.tin.BuildPointMap();
  TPoint* const p = mesh.Point(500, 500);
  EXPECT_EQ(TINPeer::AddPoint(mesh.tin, p, nullptr), nullptr);
  EXPECT_EQ(mesh.tin.GetNumberOfPoints(), 8);
  EXPECT_EQ(mesh.tin.GetMap().FindPoint(p).GetPoint(), p);
  EXPECT_EQ(mesh.tin.GetNumberOfTriangles(), 5);
}

// --- Duplicates
// -----------------------------------------------------------------------------------

TEST(TINInsertion, SecondPointAtTheSamePlaceIsTheFirstWithItsHeight) {
  Seeded s;
  TPoint* const first = s.tin.AddPoint(4, 5, 6);
  EXPECT_EQ(s.tin.AddPoint(4, 5, 99), first);
  EXPECT_EQ(first->z, 6.0);
  EXPECT_EQ(s.tin.GetNumberOfTriangles(), 4);
}

TEST(TINInsertion, DuplicateKeepsItsSlotWithoutTriangles) {
  Seeded s;
  s.tin.AddPoint(4, 5, 6);
  s.tin.BuildPointMap();
  s.tin.AddPoint(4, 5, 99);
  ASSERT_EQ(s.tin.GetNumberOfPoints(), 6);
  TPoint* const loose = s.tin.GetPoint(5);
  EXPECT_EQ(*loose, TPoint(4, 5, 99));
  EXPECT_TRUE(s.tin.GetMap().FindPoint(loose).IsValid());
  EXPECT_EQ(s.tin.GetMap().FindPoint(loose).NumberOfTriangles(), 0);
  TPoint min;
  TPoint max;
  s.tin.GetBounds(min, max);
  EXPECT_EQ(max.z, 10.0);  // its height widens nothing
  EXPECT_EQ(VerifySurface(s.tin).loosePoints, 1);
}

TEST(TINInsertion, DuplicateOfEqualHeightSharesTheMapEntryOfTheFirst) {
  Seeded s;
  TPoint* const first = s.tin.AddPoint(4, 5, 6);
  s.tin.BuildPointMap();
  s.tin.AddPoint(4, 5, 6);
  EXPECT_EQ(s.tin.GetNumberOfPoints(), 6);
  EXPECT_EQ(s.tin.GetMap().GetNumberOfPoints(), 5);
  EXPECT_EQ(s.tin.GetMap().FindPoint(s.tin.GetPoint(5)).GetPoint(), first);
}

TEST(TINInsertion, PointWithinAThousandthOnBothAxesIsTheVertex) {
  Seeded s;
  TPoint* const vertex = s.tin.AddPoint(4, 5, 6);
  EXPECT_EQ(s.tin.AddPoint(4.0005, 5.0005, 7), vertex);
  TPoint* const other = s.tin.AddPoint(4.002, 5.002, 8);
  ASSERT_NE(other, nullptr);
  EXPECT_NE(other, vertex);
  EXPECT_EQ(*other, TPoint(4.002, 5.002, 8));
}

// --- The shape
// ------------------------------------------------------------------------------------

TEST(TINInsertion, PointOnASharedEdgeMakesTheEdgeDisappear) {
  Seeded s;
  TPoint* const a = s.tin.AddPoint(0, 0, 1);
  TPoint* const b = s.tin.AddPoint(8, 0, 1);
  s.tin.AddPoint(4, 3, 1);
  s.tin.AddPoint(4, -3, 1);
  ASSERT_EQ(s.TrianglesWith(a, b), 0);
  TPoint* const c = s.tin.GetPoint(6);
  TPoint* const d = s.tin.GetPoint(7);
  ASSERT_EQ(s.TrianglesWith(c, d), 2);
  TPoint* const p = s.tin.AddPoint(4, 1, 1);
  EXPECT_EQ(s.TrianglesWith(c, d), 0);
  for (TPoint* corner : {a, b, c, d}) EXPECT_EQ(s.TrianglesWith(p, corner), 2);
}

TEST(TINInsertion, PointOnTheCircleOfANeighbourTakesThatNeighbour) {
  Seeded s;
  TPoint* const a = s.tin.AddPoint(0, 0, 1);
  TPoint* const b = s.tin.AddPoint(0, 10, 1);
  TPoint* const c = s.tin.AddPoint(10, 0, 1);
  ASSERT_EQ(s.TrianglesWith(b, c), 2);
  TPoint* const d = s.tin.AddPoint(10, 10, 1);
  EXPECT_EQ(s.TrianglesWith(b, c), 0);
  EXPECT_EQ(s.TrianglesWith(a, d), 2);
}

TEST(TINInsertion, PointJustOutsideTheCircleOfANeighbourLeavesIt) {
  Seeded s;
  TPoint* const a = s.tin.AddPoint(0, 0, 1);
  TPoint* const b = s.tin.AddPoint(0, 10, 1);
  TPoint* const c = s.tin.AddPoint(10, 0, 1);
  TPoint* const d = s.tin.AddPoint(10, std::nextafter(10.0, 11.0), 1);
  EXPECT_EQ(s.TrianglesWith(b, c), 2);
  EXPECT_EQ(s.TrianglesWith(a, d), 0);
}

TEST(TINInsertion, StartJoinsTheCavityWhateverItsCircleSays) {
  Seeded s;
  TPoint* const p = TINPeer::Points(s.tin)->Add(TPoint(4, 5, 6));
  TTriangle* const start = s.tin.GetTriangle(0, true);
  start->m_RadiusSq = 0.0;
  EXPECT_EQ(TINPeer::AddPoint(s.tin, p, start), p);
  EXPECT_EQ(s.tin.GetNumberOfTriangles(), 4);
}

TEST(TINInsertion, GivenStartIsNotLocatedAnew) {
  Seeded s;
  TPoint* const p = TINPeer::Points(s.tin)->Add(TPoint(4, 5, 6));
  EXPECT_EQ(TINPeer::AddPoint(s.tin, p, s.tin.GetTriangle(1, true)), p);
  EXPECT_EQ(TINPeer::Location(s.tin).m_pCurrent, nullptr);
}

TEST(TINInsertion, EveryAcceptedPointAddsTwoTriangles) {
  std::uint64_t const seed = TestSeed();
  for (Survey const survey : {Survey::Uniform, Survey::JitteredGrid, Survey::Swaths}) {
    SCOPED_TRACE(survey);
    auto const points = MakeSurvey(survey, 500, seed);
    auto const box = ExtentOf(points);
    TIN tin;
    tin.Init(500, box.min, box.max);
    for (TPoint const& p : points) {
      TPoint const* const stored = tin.AddPoint(p);
      ASSERT_NE(stored, nullptr);
      EXPECT_EQ(*stored, p);
    }
    EXPECT_EQ(tin.GetNumberOfPoints(), 500 + 4);
    EXPECT_EQ(tin.GetNumberOfTriangles(), 2 * 500 + 2);
    ExpectSound(tin);
  }
}

TEST(TINInsertion, NoTriangleStaysMarkedAsCavity) {
  auto const points = MakeSurvey(Survey::ExactGrid, 400, 1);
  auto const box = ExtentOf(points);
  TIN tin;
  tin.Init(400, box.min, box.max);
  for (TPoint const& p : points) {
    tin.AddPoint(p);
    for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
      ASSERT_EQ(tin.GetTriangle(i, true)->m_Flags & TRI_CAVITY, 0);
    }
  }
  ExpectSound(tin);
}

// What a slot of the triangle pool holds: slots of corners and of neighbours (-1 for none), flags.
struct Slot {
  int corners[3];
  int neighbours[3];
  int flags;
};

void ExpectSlots(TIN const& tin, std::vector<Slot> const& expected) {
  TTriangle const* const slots = TINPeer::Triangles(tin)->m_pData;
  TPoint const* const points = TINPeer::Points(tin)->m_pData;
  ASSERT_EQ(tin.GetNumberOfTriangles(), static_cast<int>(expected.size()));
  for (std::size_t i = 0; i < expected.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(tin.GetTriangle(static_cast<int>(i), true), slots + i);
    for (int k = 0; k < 3; ++k) {
      EXPECT_EQ(slots[i].m_pVertex[k] - points, expected[i].corners[k]);
      int const neighbour = expected[i].neighbours[k];
      EXPECT_EQ(slots[i].m_pAdjacent[k], neighbour < 0 ? nullptr : slots + neighbour);
    }
    EXPECT_EQ(slots[i].m_Flags, expected[i].flags);
  }
}

// One point in the first seed triangle: its circle and that of the second hold the point. The four
// edges of the hole, from the sides of the first triangle and then the second, take the cavity
// slots from the last one back and two new ones.
TEST(TINInsertion, FanTakesTheCavitySlotsFromTheLastOneBack) {
  Seeded s;
  s.tin.AddPoint(6, 3, 1);
  std::vector<Slot> const expected = {
      {{0, 4, 1}, {2, 1, -1}, TRI_OUTSIDE},
      {{1, 4, 2}, {0, 3, -1}, TRI_OUTSIDE},
      {{4, 0, 3}, {0, -1, 3}, TRI_OUTSIDE},
      {{2, 4, 3}, {1, 2, -1}, TRI_OUTSIDE},
  };
  ExpectSlots(s.tin, expected);
}

// The last point takes out slots 15, 19, 18, 14, 12, 13 and 6, in this order: 19, 14 and 6 are
// neighbours of 15, 18 is found from 19 before 14 is looked at.
TEST(TINInsertion, CavityIsFoundDepthFirst) {
  Seeded s;
  for (TPoint const& p :
       {TPoint(5, 0), TPoint(8.5, 1), TPoint(10, 4.5), TPoint(9, 8), TPoint(6, 10),
        TPoint(2.5, 9.5), TPoint(0.5, 7), TPoint(0, 3), TPoint(2, 1), TPoint(4.7, 5.2)}) {
    ASSERT_NE(s.tin.AddPoint(p.x, p.y, 1), nullptr);
  }
  int const hidden = TRI_OUTSIDE;
  std::vector<Slot> const expected = {
      {{0, 4, 1}, {8, 3, -1}, hidden},    {{6, 1, 5}, {5, 3, 20}, hidden},
      {{9, 3, 8}, {9, 11, 15}, hidden},   {{5, 1, 4}, {1, 0, 21}, hidden},
      {{12, 0, 11}, {8, 16, 13}, hidden}, {{1, 6, 2}, {1, 7, -1}, hidden},
      {{13, 4, 12}, {21, 8, 13}, 0},      {{7, 2, 6}, {10, 5, 14}, hidden},
      {{0, 12, 4}, {4, 6, 0}, hidden},    {{10, 3, 9}, {17, 2, 19}, hidden},
      {{8, 2, 7}, {11, 7, 18}, hidden},   {{2, 8, 3}, {10, 2, -1}, hidden},
      {{10, 13, 11}, {19, 13, 17}, 0},    {{11, 13, 12}, {12, 6, 4}, 0},
      {{6, 13, 7}, {20, 18, 7}, 0},       {{8, 13, 9}, {18, 19, 2}, 0},
      {{11, 0, 3}, {4, -1, 17}, hidden},  {{11, 3, 10}, {16, 9, 12}, hidden},
      {{7, 13, 8}, {14, 15, 10}, 0},      {{9, 13, 10}, {15, 12, 9}, 0},
      {{5, 13, 6}, {21, 14, 1}, 0},       {{4, 13, 5}, {6, 20, 3}, 0},
  };
  ExpectSlots(s.tin, expected);
}

// --- Flags and bounds
// -----------------------------------------------------------------------------

TEST(TINInsertion, BoundsAreWidenedOnAllThreeAxes) {
  Seeded s;
  TPoint min;
  TPoint max;
  s.tin.AddPoint(-3, 5, 20);
  s.tin.GetBounds(min, max);
  EXPECT_EQ(min, TPoint(-3, 0, 0));
  EXPECT_EQ(max, TPoint(10, 10, 20));
  s.tin.AddPoint(5, 30, -4);
  s.tin.GetBounds(min, max);
  EXPECT_EQ(min, TPoint(-3, 0, -4));
  EXPECT_EQ(max, TPoint(10, 30, 20));
}

TEST(TINInsertion, TrianglesAreHiddenByTheBoundsBeforeTheirPointWidensThem) {
  Seeded s;
  s.tin.AddPoint(0, 0, 1);
  s.tin.AddPoint(10, 0, 1);
  s.tin.AddPoint(10, 10, 1);
  s.tin.AddPoint(0, 10, 1);
  s.tin.AddPoint(20, 5, 1);  // outside the bounds, which reach to 20 afterwards
  TTriangle* const t = s.tin.GetTriangleWithPoint(TPoint(13, 5));
  EXPECT_TRUE(s.tin.InBounds(*t));
  EXPECT_EQ(t->m_Flags, TRI_OUTSIDE);
  double z = 0;
  EXPECT_FALSE(s.tin.GetZ(13, 5, z));

  s.tin.AddPoint(13, 5, 1);  // rebuilds it against the wider bounds
  EXPECT_TRUE(s.tin.GetZ(13, 5, z));
  EXPECT_TRUE(s.tin.GetZ(16, 5, z));
  EXPECT_EQ(s.tin.GetTriangleWithPoint(TPoint(16, 5))->m_Flags, 0);
}

TEST(TINInsertion, PointOutsideBoundsThatWereGivenInAdvanceHidesOnlyItsOwnTriangles) {
  Seeded s;
  for (TPoint const& p : {TPoint(0, 0), TPoint(10, 0), TPoint(10, 10), TPoint(0, 10)}) {
    s.tin.AddPoint(p);
  }
  s.tin.AddPoint(20, 5, 1);
  double z = 0;
  EXPECT_TRUE(s.tin.GetZ(5, 5, z));
  EXPECT_TRUE(s.tin.GetZ(9.9, 5, z));
}

// --- The map
// --------------------------------------------------------------------------------------

TEST(TINInsertion, MapLearnsOnlyTheTwoNewSlotsOfAnInsertion) {
  Seeded s;
  s.tin.AddPoint(2, 2, 1);
  s.tin.AddPoint(8, 3, 1);
  s.tin.AddPoint(4, 9, 1);
  s.tin.BuildPointMap();
  int const triangles = s.tin.GetNumberOfTriangles();
  std::vector<std::vector<TTriangle*>> before;
  for (int i = 0; i < s.tin.GetNumberOfPoints(); ++i) {
    before.push_back(s.tin.GetMap().FindPoint(s.tin.GetPoint(i)).GetTriangles());
  }

  TPoint* const p = s.tin.AddPoint(5, 4, 1);
  TTriangle* const fresh[] = {s.tin.GetTriangle(triangles, true),
                              s.tin.GetTriangle(triangles + 1, true)};
  EXPECT_EQ(s.tin.GetMap().FindPoint(p).GetTriangles(),
            std::vector<TTriangle*>(std::begin(fresh), std::end(fresh)));
  bool stale = false;
  for (std::size_t i = 0; i < before.size(); ++i) {
    TPoint* const q = s.tin.GetPoint(static_cast<int>(i));
    std::vector<TTriangle*> expected = before[i];
    for (TTriangle* t : fresh) {
      if (t->XY_FindVertex(q)) expected.push_back(t);
    }
    EXPECT_EQ(s.tin.GetMap().FindPoint(q).GetTriangles(), expected);
    for (TTriangle* t : expected) stale = stale || !t->XY_FindVertex(q);
  }
  EXPECT_TRUE(stale);
}

TEST(TINInsertion, SurfaceWithAMapKeepsWorking) {
  auto const points = MakeSurvey(Survey::Uniform, 300, TestSeed());
  auto const box = ExtentOf(points);
  TIN tin;
  tin.Init(300, box.min, box.max);
  TIN plain;
  plain.Init(300, box.min, box.max);
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (i == 100) tin.BuildPointMap();
    ASSERT_NE(tin.AddPoint(points[i]), nullptr);
    plain.AddPoint(points[i]);
  }
  EXPECT_EQ(tin.GetMap().GetNumberOfPoints(), 304);
  ASSERT_EQ(tin.GetNumberOfTriangles(), plain.GetNumberOfTriangles());
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    EXPECT_TRUE(*tin.GetTriangle(i, true) == *plain.GetTriangle(i, true));
  }
  ExpectSound(tin);
}

// --- Location
// -------------------------------------------------------------------------------------

TEST(TINInsertion, PlaceOfTheSearchIsKeptAndItsSlotHoldsATriangleOfTheNewFan) {
  Seeded s;
  s.tin.AddPoint(4, 5, 6);
  TPoint* const p = s.tin.AddPoint(7, 2, 6);
  TTriangle* const current = TINPeer::Location(s.tin).m_pCurrent;
  ASSERT_NE(current, nullptr);
  EXPECT_TRUE(current->XY_FindVertex(p));
}

}  // namespace
