#include "qeltin/tin/Triangulator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/Formula.h"
#include "testing/HandMadeMesh.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/VerifySurface.h"

namespace {

using qeltin::testing::CentroidOf;
using qeltin::testing::Dice;
using qeltin::testing::ExtentOf;
using qeltin::testing::HandMadeMesh;
using qeltin::testing::MakeSurvey;
using qeltin::testing::SameBits;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;
using qeltin::testing::VerifySurface;

TPoint const NOWHERE(500, 300);

// A strip whose location object stands at triangle `at`.
struct Strip : HandMadeMesh {
  std::vector<TTriangle*> triangles;
  Triangulator& location;

  explicit Strip(int count, std::size_t at = 0)
      : triangles(LayStrip(count)), location(TINPeer::Location(tin)) {
    location.m_pCurrent = triangles[at];
  }
  TPoint In(std::size_t i) const { return CentroidOf(*triangles[i]); }
};

// --- Seating
// --------------------------------------------------------------------------------------

TEST(Triangulator, SeatTakesTheSurfaceAndForgetsThePlace) {
  TIN tin;
  TArray<TTriangle> pool(5);
  Triangulator location;
  EXPECT_EQ(location.m_pTin, nullptr);
  EXPECT_EQ(location.m_pTriangles, nullptr);
  EXPECT_EQ(location.m_pCurrent, nullptr);
  location.m_pCurrent = pool.m_pData;
  location.m_iBest = 3;
  location.Seat(&tin, &pool);
  EXPECT_EQ(location.m_pTin, &tin);
  EXPECT_EQ(location.m_pTriangles, &pool);
  EXPECT_EQ(location.m_pCurrent, nullptr);
  EXPECT_EQ(location.m_iBest, 0);
}

TEST(Triangulator, WithoutAPoolFindsNothing) {
  Triangulator unseated;
  EXPECT_EQ(unseated.Find(TPoint(0, 0)), nullptr);
  TIN tin;
  Triangulator seated;
  seated.Seat(&tin, nullptr);
  EXPECT_EQ(seated.Find(TPoint(0, 0)), nullptr);
}

TEST(Triangulator, WithoutTrianglesFindsNothingAndKeepsNoPlace) {
  TIN tin(TPoint(0, 0), TPoint(1, 1), 5);
  EXPECT_EQ(TINPeer::Location(tin).Find(TPoint(0.5, 0.5)), nullptr);
  EXPECT_EQ(TINPeer::Location(tin).m_pCurrent, nullptr);
}

// --- The walk
// -------------------------------------------------------------------------------------

TEST(Triangulator, WalkStopsWhereThePointIsAndStaysThere) {
  Strip s(10);
  EXPECT_EQ(s.location.Walk(s.In(7), 20), s.triangles[7]);
  EXPECT_EQ(s.location.m_pCurrent, s.triangles[7]);
  EXPECT_EQ(s.location.Walk(s.In(2), 20), s.triangles[2]);
  EXPECT_EQ(s.location.m_pCurrent, s.triangles[2]);
}

TEST(Triangulator, WalkLooksAtAsManyTrianglesAsItsBudget) {
  Strip s(40);
  EXPECT_EQ(s.location.Walk(s.In(20), 20), nullptr);
  EXPECT_EQ(s.location.m_pCurrent, s.triangles[0]);
  EXPECT_EQ(s.location.Walk(s.In(19), 20), s.triangles[19]);
}

TEST(Triangulator, WalkWithoutABudgetFails) {
  Strip s(3);
  EXPECT_EQ(s.location.Walk(s.In(0), 0), nullptr);
  EXPECT_EQ(s.location.Walk(s.In(0), -5), nullptr);
  EXPECT_EQ(s.location.Walk(s.In(0), 1), s.triangles[0]);
}

TEST(Triangulator, WalkOffTheMeshFailsAndKeepsItsPlace) {
  Strip s(10, 4);
  EXPECT_EQ(s.location.Walk(NOWHERE, 20), nullptr);
  EXPECT_EQ(s.location.m_pCurrent, s.triangles[4]);
}

TEST(Triangulator, PointOnASharedEdgeIsInTheTriangleThatTheWalkReachesFirst) {
  Strip s(12);
  TPoint const on_edge(4.5, 0.5);  // from (4, 0) to (5, 1), shared by triangles 3 and 4
  s.location.m_pCurrent = s.triangles[0];
  EXPECT_EQ(s.location.Find(on_edge), s.triangles[3]);
  s.location.m_pCurrent = s.triangles[11];
  EXPECT_EQ(s.location.Find(on_edge), s.triangles[4]);
}

TEST(Triangulator, PointJustOutsideASideIsTakenByTheBand) {
  Strip s(4);
  EXPECT_EQ(s.location.Find(TPoint(1, -1e-09)), s.triangles[0]);
  EXPECT_EQ(s.location.Find(TPoint(1, -1.1e-09)), nullptr);
}

// Far from the origin the side test rounds to steps of 1.5e-8, and these two triangles send the
// point on their common side to each other. `upper` has it by the containment test.
struct Sliver : HandMadeMesh {
  TPoint const p{100000009.2930152, 100000007.60964641};
  TTriangle* lower;
  TTriangle* upper;
  TTriangle* before;  // across another side of `lower`
  Triangulator& location;

  Sliver() : location(TINPeer::Location(tin)) {
    TPoint* const a = Point(100000003.0082, 100000015.9894);
    TPoint* const b = Point(100000014.6038, 100000000.52860001);
    TPoint* const c = Point(100000000, 100000000);
    TPoint* const d = Point(100000020, 100000020);
    lower = Lay(a, b, c);
    upper = Lay(b, a, d);
    before = LayClockwise(c, a, Point(99999990, 100000010));
    Link(lower, upper);
    Link(lower, before);
  }
};

TEST(Triangulator, TheTwoTrianglesOfASliverSendAPointToEachOther) {
  Sliver s;
  ASSERT_EQ(s.lower->m_pAdjacent[s.lower->WhereTri(s.p)], s.upper);
  ASSERT_EQ(s.upper->m_pAdjacent[s.upper->WhereTri(s.p)], s.lower);
  ASSERT_FALSE(s.lower->XY_HasPoint(s.p));
  ASSERT_TRUE(s.upper->XY_HasPoint(s.p));
}

TEST(Triangulator, WalkThatWouldGoStraightBackEndsInTheTriangleThatHasThePoint) {
  Sliver s;
  s.location.m_pCurrent = s.before;
  EXPECT_EQ(s.location.Walk(s.p, 20), s.upper);
  EXPECT_EQ(s.location.m_pCurrent, s.before);
  s.location.m_pCurrent = s.upper;  // now `upper` is the one before the last
  EXPECT_EQ(s.location.Walk(s.p, 20), s.upper);
  EXPECT_EQ(s.location.m_pCurrent, s.upper);
}

TEST(Triangulator, SearchAfterAWalkThatWouldGoStraightBackAnswersWhereTheWalkBegan) {
  Sliver s;
  s.location.m_pCurrent = s.before;
  EXPECT_EQ(s.location.Find(s.p), s.before);
  EXPECT_EQ(s.location.m_pCurrent, s.before);
  s.location.m_pCurrent = s.lower;
  EXPECT_EQ(s.location.Find(s.p), s.lower);
}

// Two triangles that send the place `p` to each other although neither has it, and one that does.
struct Trap : HandMadeMesh {
  TPoint const p{100, 0};
  TTriangle* holder;
  TTriangle* left;
  TTriangle* right;
  Triangulator& location;

  Trap() : location(TINPeer::Location(tin)) {
    holder = LayClockwise(Point(90, -10), Point(100, 20), Point(110, -10));
    left = LayClockwise(Point(0, 0), Point(0, 10), Point(10, 0));
    right = LayClockwise(Point(20, 0), Point(20, 10), Point(30, 0));
    for (int side = 0; side < 3; ++side) {
      left->m_pAdjacent[side] = right;
      right->m_pAdjacent[side] = left;
    }
    location.m_pCurrent = left;
  }
  void SetCount(int live) { TINPeer::Triangles(tin)->m_iCount = live; }
};

TEST(Triangulator, WalkJumpsWhereNeitherOfThePairHasThePoint) {
  Trap t;
  t.SetCount(2);  // every jump goes to position 0
  EXPECT_EQ(t.location.Walk(t.p, 20), t.holder);
  EXPECT_EQ(t.location.m_pCurrent, t.holder);
}

TEST(Triangulator, JumpCostsOneStep) {
  Trap t;
  t.SetCount(2);
  EXPECT_EQ(t.location.Walk(t.p, 2), nullptr);
  EXPECT_EQ(t.location.Walk(t.p, 3), t.holder);
}

TEST(Triangulator, JumpNeverLandsOnTheLastTriangle) {
  Trap t;
  TArray<TTriangle>& pool = *TINPeer::Triangles(t.tin);
  std::swap(pool.m_pIndex[0], pool.m_pIndex[2]);
  for (int round = 0; round < 100; ++round) EXPECT_EQ(t.location.Walk(t.p, 1000), nullptr);
}

TEST(Triangulator, JumpWithOneLiveTriangleGoesThere) {
  Trap t;
  t.SetCount(1);
  EXPECT_EQ(t.location.Walk(t.p, 3), t.holder);
}

// --- The stages of a search
// -----------------------------------------------------------------------

TEST(Triangulator, FirstSearchStartsAtTheFirstLiveTriangle) {
  Strip s(30);
  TArray<TTriangle>& pool = *TINPeer::Triangles(s.tin);
  std::swap(pool.m_pIndex[0], pool.m_pIndex[17]);
  s.location.m_pCurrent = nullptr;
  TPoint const on_edge(10.5, 0.5);  // shared by triangles 9 and 10
  EXPECT_EQ(s.location.Find(on_edge), s.triangles[10]);
}

TEST(Triangulator, PlaceIsKeptFromOneSearchToTheNext) {
  Strip s(30);
  EXPECT_EQ(s.location.Find(s.In(12)), s.triangles[12]);
  EXPECT_EQ(s.location.m_pCurrent, s.triangles[12]);
  TPoint const on_edge(16.5, 0.5);  // shared by 15 and 16
  EXPECT_EQ(s.location.Find(on_edge), s.triangles[15]);
  EXPECT_EQ(s.location.m_pCurrent, s.triangles[15]);
}

TEST(Triangulator, HiddenTriangleIsFoundLikeAnyOther) {
  Strip s(5);
  s.triangles[3]->m_Flags = TRI_OUTSIDE | TRI_FILTERED;
  EXPECT_EQ(s.location.Find(s.In(3)), s.triangles[3]);
}

TEST(Triangulator, PointFartherThanTwentyStepsIsStillFound) {
  for (std::size_t const to : {20u, 21u, 50u, 299u}) {
    Strip s(300);
    EXPECT_EQ(s.location.Find(s.In(to)), s.triangles[to]);
    EXPECT_EQ(s.location.m_pCurrent, s.triangles[to]);
  }
}

TEST(Triangulator, PointOutsideTheMeshIsNotFound) {
  Strip s(300);
  EXPECT_EQ(s.location.Find(NOWHERE), nullptr);
  EXPECT_EQ(s.location.Find(s.In(200)), s.triangles[200]);
}

// --- The sample search
// ----------------------------------------------------------------------------

// The sampling of a search that nothing else has answered, step by step.
struct Sampling {
  int best = 0;
  double best_distance = 9e20;
  double distance = 0;
  double dx = 0;
  double dy = 0;
  int rounds = 0;

  Sampling(TIN const& tin, TPoint const& p, double t, int rounds_) : rounds(rounds_) {
    for (int i = 0; i < rounds; ++i) {
      TTriangle const& s = *tin.GetTriangle(std::rand() % (tin.GetNumberOfTriangles() - 1), true);
      dx = (s.m_pVertex[0]->x + s.m_pVertex[1]->x + s.m_pVertex[2]->x) / 3.0 - p.x;
      dy = (s.m_pVertex[0]->y + s.m_pVertex[1]->y + s.m_pVertex[2]->y) / 3.0 - p.y;
      distance = dx * dx + dy * dy;
      if (best_distance > distance) {
        best_distance = distance;
        best = i;
      }
      if (t >= best_distance) break;
    }
  }
};

void ExpectSampled(Strip& s, Sampling const& expected) {
  EXPECT_EQ(s.location.m_iSamples, expected.rounds);
  EXPECT_EQ(s.location.m_iBest, expected.best);
  EXPECT_TRUE(SameBits(s.location.m_dBest, expected.best_distance));
  EXPECT_TRUE(SameBits(s.location.m_dDistSq, expected.distance));
  EXPECT_TRUE(SameBits(s.location.m_dDeltaX, expected.dx));
  EXPECT_TRUE(SameBits(s.location.m_dDeltaY, expected.dy));
  // The walk starts at the round of the best sample, not at the triangle that was sampled.
  EXPECT_EQ(s.location.m_pCurrent, s.tin.GetTriangle(expected.best, true));
}

TEST(Triangulator, SampleSearchKeepsTheRoundOfTheBestSampleAndNotItsPosition) {
  for (int const count : {49, 50, 54, 300}) {
    Strip s(count);
    TINPeer::Max(s.tin) = TINPeer::Min(s.tin);  // no threshold
    std::srand(4711);
    EXPECT_EQ(s.location.Find(NOWHERE), nullptr);
    std::srand(4711);
    ExpectSampled(s, Sampling(s.tin, NOWHERE, 0.0, count < 50 ? count : count / 5));
  }
}

TEST(Triangulator, SampleSearchStopsAtASampleWithinTheMeanSpacing) {
  Strip s(300);
  TINPeer::Min(s.tin) = TPoint(0, 0);
  TINPeer::Max(s.tin) = TPoint(3000, 4000);
  double const t = (3000.0 * 3000.0 + 4000.0 * 4000.0) / 302;  // 288 squared
  TPoint const p(450, 0);                                      // 150 from the end of the strip
  std::srand(815);
  EXPECT_EQ(s.location.Find(p), nullptr);
  std::srand(815);
  Sampling const expected(s.tin, p, t, 60);
  ASSERT_LE(expected.best_distance, t);
  ExpectSampled(s, expected);
}

TEST(Triangulator, SampleSearchStopsAtASampleOfExactlyTheMeanSpacing) {
  HandMadeMesh mesh;
  for (int i = 0; i < 60; ++i) {
    mesh.LayClockwise(mesh.Point(0, 0), mesh.Point(0, 3), mesh.Point(3, 0));  // about (1, 1)
  }
  ASSERT_EQ(mesh.tin.GetNumberOfPoints(), 180);
  TINPeer::Min(mesh.tin) = TPoint(0, 0);
  TINPeer::Max(mesh.tin) = TPoint(30, 60);  // squared diagonal 25 * 180
  std::srand(7);
  std::rand();
  int const second = std::rand();
  std::srand(7);
  EXPECT_EQ(mesh.tin.GetTriangleWithPoint(TPoint(4, 5)), nullptr);
  EXPECT_EQ(TINPeer::Location(mesh.tin).m_dBest, 25.0);
  EXPECT_EQ(std::rand(), second);  // one sample was drawn
}

TEST(Triangulator, SampleSearchStopsAtOnceWhereThereIsNoPoint) {
  Strip s(300);
  s.tin.RemoveAllPoints();
  std::srand(815);
  EXPECT_EQ(s.location.Find(NOWHERE), nullptr);
  std::srand(815);
  ExpectSampled(s, Sampling(s.tin, NOWHERE, INFINITY, 60));
  EXPECT_EQ(s.location.m_iBest, 0);
}

TEST(Triangulator, SampleSearchWithEverySampleTooFarKeepsTheRoundOfTheSearchBefore) {
  Strip s(300);
  TINPeer::Max(s.tin) = TINPeer::Min(s.tin);
  s.location.m_iBest = 7;
  EXPECT_EQ(s.location.Find(TPoint(0, 1e11)), nullptr);
  EXPECT_EQ(s.location.m_dBest, 9e20);
  EXPECT_EQ(s.location.m_iBest, 7);
  EXPECT_EQ(s.location.m_pCurrent, s.triangles[7]);
}

TEST(Triangulator, SampleSearchOfOneTriangleTakesIt) {
  Strip s(1);
  EXPECT_EQ(s.location.Find(NOWHERE), nullptr);
  EXPECT_EQ(s.location.m_iSamples, 1);
  EXPECT_EQ(s.location.m_iBest, 0);
  EXPECT_EQ(s.location.m_pCurrent, s.triangles[0]);
}

TEST(Triangulator, SampleSearchWithoutLiveTrianglesTakesNoSample) {
  Strip s(5, 4);
  TINPeer::Triangles(s.tin)->m_iCount = 0;
  s.location.m_iBest = 2;
  EXPECT_EQ(s.location.Find(NOWHERE), nullptr);
  EXPECT_EQ(s.location.m_iSamples, 0);
  EXPECT_EQ(s.location.m_dBest, 9e20);
  EXPECT_EQ(s.location.m_pCurrent, s.triangles[2]);
}

// --- The start-point search
// -----------------------------------------------------------------------

// A long strip with start records, at its first triangle.
struct StripWithStarts : Strip {
  StripWithStarts() : Strip(100) { TINPeer::StartPoints(tin) = new TArray<TArrayStartPoint>(10); }
  void Start(double x, int position) {
    TINPeer::StartPoints(tin)->Add(TArrayStartPoint{x, 0.5, 99.0, position});
  }
};

TEST(Triangulator, StartRecordsAreTriedFromTheNearestOn) {
  StripWithStarts s;
  s.Start(10, 10);
  s.Start(58, 55);
  s.Start(90, 90);
  EXPECT_EQ(s.location.Find(s.In(60)), s.triangles[60]);
  EXPECT_EQ(s.location.m_pCurrent, s.triangles[60]);
  EXPECT_EQ(s.location.m_iSamples, 0);
}

TEST(Triangulator, StartRecordsServeOnlyWhereTheCheapWalkFails) {
  StripWithStarts s;
  s.Start(10, 90);
  EXPECT_EQ(s.location.Find(s.In(10)), s.triangles[10]);
}

TEST(Triangulator, CheapWalkLooksAtTwentyTriangles) {
  StripWithStarts s;
  s.Start(10, -1);  // of no use
  EXPECT_EQ(s.location.Find(s.In(20)), nullptr);
  EXPECT_EQ(s.location.Find(s.In(19)), s.triangles[19]);
}

TEST(Triangulator, StartRecordIsLeftForTheNextWhereTheLineFromItFails) {
  StripWithStarts s;
  TTriangle* const alone = s.LayClockwise(s.Point(0, 50), s.Point(1, 52), s.Point(2, 50));
  s.Start(60.2, 100);  // `alone` has no neighbours
  s.Start(40, 40);
  EXPECT_EQ(s.location.Find(s.In(60)), s.triangles[60]);
  s.location.m_pCurrent = s.triangles[0];
  TINPeer::StartPoints(s.tin)->Reset();
  s.Start(60.2, 100);
  EXPECT_EQ(s.location.Find(s.In(60)), nullptr);
  EXPECT_EQ(s.location.m_pCurrent, alone);
  EXPECT_EQ(s.location.m_iSamples, 0);  // the sample search is not tried
}

TEST(Triangulator, LaterOfTwoStartRecordsAtOneDistanceReplacesTheEarlier) {
  StripWithStarts s;
  s.LayClockwise(s.Point(0, 50), s.Point(1, 52), s.Point(2, 50));
  TPoint const p(60.75, 0.5);
  s.Start(58.75, 58);
  s.Start(62.75, 100);
  EXPECT_EQ(s.location.Find(p), nullptr);
  TINPeer::StartPoints(s.tin)->Reset();
  s.location.m_pCurrent = s.triangles[0];
  s.Start(62.75, 100);
  s.Start(58.75, 58);
  EXPECT_NE(s.location.Find(p), nullptr);
}

TEST(Triangulator, StartRecordPastTheLiveOrderIsPassedOver) {
  StripWithStarts s;
  s.Start(60, 100);
  s.Start(61, -1);
  s.Start(62, 2147483647);
  EXPECT_EQ(s.location.Find(s.In(60)), nullptr);
  s.Start(40, 40);
  s.location.m_pCurrent = s.triangles[0];
  EXPECT_EQ(s.location.Find(s.In(60)), s.triangles[60]);
}

TEST(Triangulator, StartRecordOfTheTriangleWithThePointDoesNotFindIt) {
  StripWithStarts s;
  s.Start(60, 60);
  TPoint const p(61, 0.01);  // in triangle 60, below its centroid
  ASSERT_EQ(s.triangles[60]->WhereTri(p), 3);
  EXPECT_EQ(s.location.Find(p), nullptr);
  EXPECT_EQ(s.location.m_pCurrent, s.triangles[60]);
}

TEST(Triangulator, EmptyListOfStartRecordsLeavesTheSampleSearch) {
  StripWithStarts s;
  EXPECT_EQ(s.location.Find(s.In(60)), s.triangles[60]);
}

// --- Whole surfaces
// -------------------------------------------------------------------------------

TEST(Triangulator, FindsEveryPlaceOfASurface) {
  std::uint64_t const seed = TestSeed();
  for (Survey const survey : {Survey::Uniform, Survey::Swaths, Survey::TwoIslands}) {
    SCOPED_TRACE(survey);
    std::vector<TPoint> const points = MakeSurvey(survey, 3000, seed);
    auto const box = ExtentOf(points);
    TIN tin;
    tin.Init(3000, box.min, box.max);
    for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
    tin.Triangulate();
    TPoint low;
    TPoint high;
    tin.GetWorldBounds(low, high);
    Dice dice(seed);
    for (int i = 0; i < 20000; ++i) {
      TPoint p = points[static_cast<std::size_t>(dice.Below(3000))];
      if (i % 3 == 0) p = TPoint(dice.Between(low.x, high.x), dice.Between(low.y, high.y));
      if (i % 3 == 1) p = TPoint(dice.Between(box.min.x, box.max.x), dice.Between(low.y, high.y));
      TTriangle* const found = tin.GetTriangleWithPoint(p);
      ASSERT_NE(found, nullptr) << p.x << " " << p.y;
      EXPECT_EQ(found->WhereTri(p), 3) << p.x << " " << p.y;
      EXPECT_EQ(TINPeer::Location(tin).m_pCurrent, found);
    }
    EXPECT_EQ(tin.GetTriangleWithPoint(TPoint(high.x + 1, low.y)), nullptr);
    auto const report = VerifySurface(tin);
    EXPECT_TRUE(report.Ok()) << report;
  }
}

TEST(Triangulator, FindsPlacesUnderDataBoundsWithoutEnd) {
  std::vector<TPoint> const points = MakeSurvey(Survey::Uniform, 3000, TestSeed());
  auto const box = ExtentOf(points);
  TIN tin;
  tin.Init(3000, box.min, box.max);
  for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
  tin.Triangulate();
  TINPeer::Min(tin) = TPoint(-INFINITY, -INFINITY);
  TINPeer::Max(tin) = TPoint(INFINITY, INFINITY);
  Dice dice(1);
  for (int i = 0; i < 3000; ++i) {
    TPoint const& p = points[static_cast<std::size_t>(dice.Below(3000))];
    TTriangle* const found = tin.GetTriangleWithPoint(p);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->WhereTri(p), 3);
  }
}

TEST(Triangulator, FindsPlacesWhileTheSurfaceGrows) {
  std::uint64_t const seed = TestSeed();
  std::vector<TPoint> const points = MakeSurvey(Survey::Clusters, 6000, seed);
  auto const box = ExtentOf(points);
  TIN tin;
  tin.Init(6000, box.min, box.max);
  Dice dice(seed);
  for (std::size_t i = 0; i < points.size(); ++i) {
    TPoint* const stored = tin.AddPoint(points[i]);
    ASSERT_NE(stored, nullptr);
    for (int query = 0; query < 2; ++query) {
      TPoint const& p = points[static_cast<std::size_t>(dice.Below(static_cast<int>(i) + 1))];
      TTriangle* const found = tin.GetTriangleWithPoint(p);
      ASSERT_NE(found, nullptr);
      EXPECT_NE(found->XY_FindVertex(p), nullptr);
    }
  }
  auto const report = VerifySurface(tin);
  EXPECT_TRUE(report.Ok()) << report;
}

}  // namespace
