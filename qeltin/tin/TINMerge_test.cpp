#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/Formula.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/VerifySurface.h"
#include "testing/reference/CompareSurfaces.h"

namespace {

using qeltin::testing::Dice;
using qeltin::testing::Difference;
using qeltin::testing::ExtentOf;
using qeltin::testing::MakeSurvey;
using qeltin::testing::ReferenceTin;
using qeltin::testing::SameBits;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;
using qeltin::testing::VerifySurface;

constexpr double LARGEST_FLOAT = 3.4028234663852886e38;

void ExpectSound(TIN const& tin, int loose = 0) {
  auto const report = VerifySurface(tin);
  EXPECT_TRUE(report.Ok()) << report;
  EXPECT_EQ(report.loosePoints, loose);
}

std::unique_ptr<TIN> Make(std::vector<TPoint> const& points, TPoint const& min, TPoint const& max) {
  auto tin = std::make_unique<TIN>(min, max, static_cast<int>(points.size()));
  for (TPoint const& p : points) tin->AddPoint(p);
  return tin;
}

// Two surfaces side by side, with the same range of heights, so that the boxes merge as boxes do.
struct Neighbours {
  std::unique_ptr<TIN> west = Make({{0, 0, 1}, {10, 0, 2}, {3, 9, 3}}, {0, 0, 0}, {10, 10, 10});
  std::unique_ptr<TIN> east = Make({{20, 0, 4}, {30, 1, 5}, {25, 8, 6}}, {20, 0, 0}, {30, 10, 10});
};

int VisibleTriangles(TIN const& tin) {
  int visible = 0;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    if (tin.GetTriangle(i, false) != nullptr) ++visible;
  }
  return visible;
}

bool HasPoint(TIN const& tin, TPoint const& p) { return tin.FindPoint(p) != nullptr; }

TEST(TINMerge, CountsTheRealPointsOfBothAndFourNewCorners) {
  Neighbours n;
  TIN& result = *n.west += *n.east;
  EXPECT_EQ(&result, n.west.get());
  EXPECT_EQ(n.west->GetNumberOfPoints(), 3 + 3 + 4);
  EXPECT_EQ(n.west->GetNumberOfTriangles(), 2 * 6 + 2);
  EXPECT_EQ(*n.west->GetPoint(0), TPoint(-100, -100, 0));
  EXPECT_EQ(*n.west->GetPoint(2), TPoint(130, 110, 0));
  EXPECT_EQ(*n.west->GetPoint(4), TPoint(0, 0, 1));
  EXPECT_EQ(*n.west->GetPoint(7), TPoint(20, 0, 4));
  EXPECT_FALSE(HasPoint(*n.west, {110, -100, 0}));  // corners of what was before
  EXPECT_FALSE(HasPoint(*n.west, {-80, -100, 0}));
  EXPECT_EQ(TINPeer::LastTriangle(*n.west), n.west->GetTriangle(0, true));
  ExpectSound(*n.west);
}

TEST(TINMerge, LeavesTheOtherSurfaceAsItIs) {
  Neighbours n;
  std::vector<TPoint> before;
  for (int i = 0; i < 7; ++i) before.push_back(*n.east->GetPoint(i));
  *n.west += *n.east;
  ASSERT_EQ(n.east->GetNumberOfPoints(), 7);
  for (int i = 0; i < 7; ++i) EXPECT_EQ(*n.east->GetPoint(i), before[static_cast<std::size_t>(i)]);
  ExpectSound(*n.east);
}

TEST(TINMerge, PoolsHaveRoomForBoth) {
  Neighbours n;
  *n.west += *n.east;
  EXPECT_EQ(TINPeer::Points(*n.west)->m_iCapacity, 2 * 1007);
  EXPECT_EQ(TINPeer::Triangles(*n.west)->m_iCapacity, 2 * 2 * 1007 + 1000);
}

TEST(TINMerge, DataBoundsStartEmptyAndWhatReachesBeyondThemStaysHidden) {
  Neighbours n;
  *n.west += *n.east;
  TPoint min;
  TPoint max;
  n.west->GetBounds(min, max);
  EXPECT_EQ(min, TPoint(0, 0, 1));
  EXPECT_EQ(max, TPoint(30, 9, 6));
  EXPECT_EQ(VisibleTriangles(*n.west), 3);  // of the four that the six points span
}

TEST(TINMerge, LosesARealPointOnALineOfItsWorldBox) {
  for (TPoint const& p :
       {TPoint(-100, 5, 7), TPoint(110, 5, 7), TPoint(5, -100, 7), TPoint(5, 110, 7)}) {
    Neighbours n;
    ASSERT_NE(n.west->AddPoint(p), nullptr);
    *n.west += *n.east;
    EXPECT_EQ(n.west->GetNumberOfPoints(), 10);
    EXPECT_FALSE(HasPoint(*n.west, p));
    ExpectSound(*n.west);
  }
}

TEST(TINMerge, LosesARealPointOnALineOfTheOthersWorldBox) {
  for (TPoint const& p :
       {TPoint(-80, 5, 7), TPoint(130, 5, 7), TPoint(25, -100, 7), TPoint(25, 110, 7)}) {
    Neighbours n;
    ASSERT_NE(n.east->AddPoint(p), nullptr);
    *n.west += *n.east;
    EXPECT_EQ(n.west->GetNumberOfPoints(), 10);
    EXPECT_FALSE(HasPoint(*n.west, p));
    ExpectSound(*n.west);
  }
}

TEST(TINMerge, KeepsAPointOnALineOfTheBoxThatIsNotItsOwn) {
  Neighbours n;
  ASSERT_NE(n.east->AddPoint(-79, 5, 7), nullptr);
  ASSERT_NE(n.east->AddPoint(110, 5, 8), nullptr);  // on a line of the western box
  ASSERT_NE(n.west->AddPoint(-80, 5, 9), nullptr);  // on a line of the eastern box
  *n.west += *n.east;
  EXPECT_EQ(n.west->GetNumberOfPoints(), 13);
  ExpectSound(*n.west);
}

TEST(TINMerge, HeightsOfTheWorldBoxesAreWrittenIntoXAndPointsOutsideAreLost) {
  // World boxes: x -100 to 110 and -80 to 130, heights -30 to 33 and -20 to 22.
  auto const low = Make({{0, 0, 1}, {10, 0, 2}, {3, 9, 3}}, {0, 0, 0}, {10, 10, 3});
  auto const high = Make({{20, 0, 4}, {30, 1, 5}, {25, 8, 6}}, {20, 0, 0}, {30, 10, 2});
  *low += *high;
  TPoint min;
  TPoint max;
  low->GetWorldBounds(min, max);
  EXPECT_EQ(min, TPoint(-30, -100, 0));
  EXPECT_EQ(max, TPoint(33, 110, 0));
  EXPECT_EQ(low->GetNumberOfPoints(), 10);
  ExpectSound(*low);

  auto const flat = Make({{0, 0, 1}, {10, 0, 2}, {3, 9, 3}}, {0, 0, 0}, {10, 10, 0.5});
  *flat += *Make({{20, 0, 4}, {30, 1, 5}, {25, 8, 6}}, {20, 0, 0}, {30, 10, 0.2});
  flat->GetWorldBounds(min, max);
  EXPECT_EQ(min, TPoint(-5, -100, 0));
  EXPECT_EQ(max, TPoint(5.5, 110, 0));
  EXPECT_EQ(flat->GetNumberOfPoints(), 4 + 2);  // all points east of 5.5 are outside
  ExpectSound(*flat);
}

TEST(TINMerge, HeightsTheOtherWayRoundGiveTheLargerBoxOfBoth) {
  auto const high = Make({{20, 0, 4}, {30, 1, 5}, {25, 8, 6}}, {20, 0, 0}, {30, 10, 2});
  *high += *Make({{0, 0, 1}, {10, 0, 2}, {3, 9, 3}}, {0, 0, 0}, {10, 10, 3});
  TPoint min;
  TPoint max;
  high->GetWorldBounds(min, max);
  EXPECT_EQ(min, TPoint(-100, -100, -30));
  EXPECT_EQ(max, TPoint(130, 110, 33));
  EXPECT_EQ(high->GetNumberOfPoints(), 10);
  ExpectSound(*high);
}

TEST(TINMerge, BoxWithoutAnInsideLeavesNoPointAtAll) {
  auto const low = Make({{1000, 0, 1}, {1010, 0, 2}, {1003, 9, 3}}, {1000, 0, 0}, {1010, 10, 3});
  *low += *Make({{1020, 0, 4}, {1030, 1, 5}, {1025, 8, 6}}, {1020, 0, 0}, {1030, 10, 2});
  EXPECT_EQ(low->GetNumberOfPoints(), 0);  // the box ends at x = 33
  EXPECT_EQ(low->GetNumberOfTriangles(), 0);
  EXPECT_EQ(TINPeer::LastTriangle(*low), nullptr);
  TPoint min;
  TPoint max;
  low->GetBounds(min, max);
  EXPECT_EQ(min, TPoint(LARGEST_FLOAT, LARGEST_FLOAT, LARGEST_FLOAT));
  EXPECT_EQ(max, TPoint(-LARGEST_FLOAT, -LARGEST_FLOAT, -LARGEST_FLOAT));
}

TEST(TINMerge, PointOfTheOtherAtAVertexStaysUnconnectedAndTheFirstHeightStays) {
  Neighbours n;
  n.east->AddPoint(10.0005, 0.0005, 99);
  *n.west += *n.east;
  EXPECT_EQ(n.west->GetNumberOfPoints(), 11);
  EXPECT_TRUE(HasPoint(*n.west, {10.0005, 0.0005, 99}));
  TTriangle const* const t = n.west->GetTriangleWithPoint(TPoint(9.9999, 0.0003));
  ASSERT_NE(t->XY_FindVertex(TPoint(10, 0)), nullptr);
  EXPECT_EQ(t->XY_FindVertex(TPoint(10, 0))->z, 2.0);
  ExpectSound(*n.west, 1);
}

TEST(TINMerge, MapStaysAndIsStale) {
  Neighbours n;
  n.west->BuildPointMap();
  PointMap* const map = &n.west->GetMap();
  *n.west += *n.east;
  ASSERT_EQ(&n.west->GetMap(), map);
  EXPECT_EQ(map->GetNumberOfPoints(), 10);  // those of the insertions, none from before
  int listed = 0;
  for (int i = 0; i < 10; ++i) {
    listed += map->FindPoint(n.west->GetPoint(i)).NumberOfTriangles();
  }
  EXPECT_EQ(listed, 3 * 14);  // each slot once, as it was when it was taken
  bool stale = false;
  for (int i = 0; i < 14; ++i) {
    TTriangle* const t = n.west->GetTriangle(i, true);
    for (TPoint const* corner : t->m_pVertex) {
      auto const& list = map->FindPoint(corner).GetTriangles();
      stale = stale || std::find(list.begin(), list.end(), t) == list.end();
    }
  }
  EXPECT_TRUE(stale);
  ExpectSound(*n.west);
}

TEST(TINMerge, TrimbleArraysStay) {
  Neighbours n;
  auto* const border = TINPeer::Border(*n.west) = new TArray<int>(3);
  auto* const starts = TINPeer::StartPoints(*n.west) = new TArray<TArrayStartPoint>(3);
  *n.west += *n.east;
  EXPECT_EQ(TINPeer::Border(*n.west), border);
  EXPECT_EQ(TINPeer::StartPoints(*n.west), starts);
}

TEST(TINMerge, WithItselfIsTheMergeWithACopy) {
  Neighbours n;
  *n.west += *n.west;
  EXPECT_EQ(n.west->GetNumberOfPoints(), 4 + 3 + 3);
  EXPECT_EQ(n.west->GetNumberOfTriangles(), 2 * 3 + 2);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(*n.west->GetPoint(4 + i), *n.west->GetPoint(7 + i));
  ExpectSound(*n.west, 3);
}

TEST(TINMerge, SurfaceWithoutPoolsChangesNothing) {
  Neighbours n;
  TIN none;
  *n.west += none;
  EXPECT_EQ(n.west->GetNumberOfPoints(), 7);
  ExpectSound(*n.west);
  none += *n.west;
  EXPECT_EQ(none.GetNumberOfPoints(), 0);
  EXPECT_EQ(TINPeer::Points(none), nullptr);
}

TEST(TINMerge, EmptySurfaceTakesThePointsOfTheOther) {
  Neighbours n;
  TIN empty(TPoint(0, 0, 0), TPoint(10, 10, 10), 5);
  empty += *n.east;
  EXPECT_EQ(empty.GetNumberOfPoints(), 7);
  ExpectSound(empty);
}

TEST(TINMerge, LargeSurfacesAreFoundAgainAfterwards) {
  std::uint64_t const seed = TestSeed();
  auto const mine = MakeSurvey(Survey::Uniform, 3000, seed);
  auto const theirs = MakeSurvey(Survey::Swaths, 3000, seed + 1);
  auto box = ExtentOf(mine);
  box.min.z = -1000;
  box.max.z = 1000;
  auto const a = Make(mine, box.min, box.max);
  double z = 0.0;
  for (TPoint const& p : theirs) a->GetZ(p, z, nullptr);  // far apart: the location builds an index
  *a += *Make(theirs, box.min, box.max);
  ExpectSound(*a, a->GetNumberOfPoints() - (a->GetNumberOfTriangles() - 2) / 2 - 4);
  EXPECT_GT(a->GetNumberOfPoints(), 5000);
}

// --- Against the plain way
// ------------------------------------------------------------------------

// The merge step by step. Returns false where chance has a say.
bool MergeAsStated(TIN const& a, TIN const& b, ReferenceTin& result) {
  TPoint mine[2];
  TPoint theirs[2];
  a.GetWorldBounds(mine[0], mine[1]);
  b.GetWorldBounds(theirs[0], theirs[1]);
  result.m_WorldMin = TPoint::Min(mine[0], theirs[0]);
  result.m_WorldMax = TPoint::Max(mine[1], theirs[1]);
  result.m_Min = TPoint(LARGEST_FLOAT, LARGEST_FLOAT, LARGEST_FLOAT);
  result.m_Max = TPoint(-LARGEST_FLOAT, -LARGEST_FLOAT, -LARGEST_FLOAT);
  int const capacity = TINPeer::Points(a)->m_iCapacity + TINPeer::Points(b)->m_iCapacity;
  result.m_pPoints = std::make_unique<TArray<TPoint>>(capacity);
  result.m_pTriangles = std::make_unique<TArray<TTriangle>>(capacity * 2 + 1000);
  for (TIN const* from : {&a, &b}) {
    TPoint const* const box = from == &a ? mine : theirs;
    for (int i = 0; i < from->GetNumberOfPoints(); ++i) {
      TPoint const& p = *from->GetPoint(i);
      if (p.x == box[0].x || p.x == box[1].x || p.y == box[0].y || p.y == box[1].y) continue;
      if (!result.Accepts(p)) continue;
      ReferenceTin::Location const found = result.Find(p);
      if (found.chance) return false;
      result.AddPoint(p, found.triangle);
    }
  }
  return true;
}

TEST(TINMerge, AgreesWithThePlainWayOnRandomSurfaces) {
  std::uint64_t const seed = TestSeed();
  Dice dice(seed);
  int compared = 0;
  for (int round = 0; round < 300; ++round) {
    std::unique_ptr<TIN> surface[2];
    for (auto& tin : surface) {
      Survey const survey = qeltin::testing::ALL_SURVEYS[dice.Below(13)];
      auto points = MakeSurvey(survey, 3 + dice.Below(40), dice.Bits());
      auto const box = ExtentOf(points);
      if (dice.OneIn(3)) points.push_back(points[points.size() / 2]);
      tin = std::make_unique<TIN>(box.min, box.max, static_cast<int>(points.size()));
      if (dice.OneIn(4)) {
        for (TPoint const& p : points) tin->LoadPoint(p.x, p.y, p.z);
        tin->Triangulate();
      } else {
        for (TPoint const& p : points) tin->AddPoint(p);
      }
    }
    ReferenceTin expected;
    if (!MergeAsStated(*surface[0], *surface[1], expected)) continue;
    *surface[0] += *surface[1];
    ASSERT_EQ(Difference(*surface[0], expected), "") << "round " << round;
    ++compared;
  }
  EXPECT_GT(compared, 100);
}

}  // namespace
