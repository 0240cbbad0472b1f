#include "qeltin/tin/PointMap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/ExpectSound.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"

namespace {

using qeltin::testing::ExpectSound;
using qeltin::testing::ExtentOf;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;

using Triangles = std::vector<TTriangle*>;

// Two triangles on four points, all of them in a map.
struct Mapped {
  TPoint a{0, 0, 1};
  TPoint b{0, 10, 2};
  TPoint c{10, 0, 3};
  TPoint d{10, 10, 4};
  TTriangle first{&a, &b, &c};
  TTriangle second{&b, &d, &c};
  PointMap map;

  Mapped() {
    for (TPoint const* p : {&a, &b, &c, &d}) EXPECT_TRUE(map.AddPoint(p));
    EXPECT_TRUE(map.AddTriangle(&first));
    EXPECT_TRUE(map.AddTriangle(&second));
  }
  Triangles At(TPoint const& p) { return map.FindPoint(&p).GetTriangles(); }
};

// A square around a middle point.
void BuildSquare(TIN& tin) {
  tin.Init(5, TPoint(0, 0), TPoint(8, 8));
  for (TPoint const& p :
       {TPoint(0, 0, 1), TPoint(8, 0, 2), TPoint(8, 8, 3), TPoint(0, 8, 4), TPoint(4, 4, 5)}) {
    ASSERT_NE(tin.AddPoint(p), nullptr);
  }
}

// --- Nodes
// ----------------------------------------------------------------------------------------

TEST(PointMapNode, DefaultNodeIsInvalidAndEmpty) {
  PointMapNode const node;
  EXPECT_FALSE(node.IsValid());
  EXPECT_EQ(node.GetPoint(), nullptr);
  EXPECT_EQ(node.NumberOfTriangles(), 0);
  EXPECT_TRUE(node.GetTriangles().empty());
  EXPECT_EQ(node[0], nullptr);
}

TEST(PointMapNode, NodeOfAPointIsValidAndEmpty) {
  TPoint const p(1, 2, 3);
  PointMapNode const node(&p);
  EXPECT_TRUE(node.IsValid());
  EXPECT_EQ(node.GetPoint(), &p);
  EXPECT_EQ(node.NumberOfTriangles(), 0);
}

TEST(PointMapNode, TrianglePastTheListIsNull) {
  Mapped m;
  PointMapNode const& node = m.map.FindPoint(&m.b);
  ASSERT_EQ(node.NumberOfTriangles(), 2);
  EXPECT_EQ(node[0], &m.first);
  EXPECT_EQ(node[1], &m.second);
  EXPECT_EQ(node[2], nullptr);
  EXPECT_EQ(node[1000], nullptr);
}

TEST(PointMapNode, ComparesItsPointByValue) {
  TPoint const p(1, 2, 3);
  TPoint const same(1, 2, 3);
  TPoint const higher(1, 2, 4);
  TPoint const further(1, 3, 0);
  EXPECT_TRUE(PointMapNode(&p) == PointMapNode(&same));
  EXPECT_FALSE(PointMapNode(&p) == PointMapNode(&higher));
  EXPECT_TRUE(PointMapNode(&p) < PointMapNode(&higher));
  EXPECT_TRUE(PointMapNode(&higher) < PointMapNode(&further));
  EXPECT_TRUE(PointMapNode(&further) > PointMapNode(&higher));
  EXPECT_FALSE(PointMapNode(&p) < PointMapNode(&same));
  EXPECT_FALSE(PointMapNode(&p) > PointMapNode(&same));
}

TEST(PointMapNode, CopyHasTheListAndMoveTakesIt) {
  Mapped m;
  PointMapNode copy = m.map.FindPoint(&m.b);
  EXPECT_EQ(copy.GetPoint(), &m.b);
  EXPECT_EQ(copy.GetTriangles(), m.At(m.b));
  PointMapNode const moved = std::move(copy);
  EXPECT_EQ(moved.GetPoint(), &m.b);
  EXPECT_EQ(moved.NumberOfTriangles(), 2);
  EXPECT_EQ(copy.NumberOfTriangles(), 0);
  PointMapNode assigned;
  assigned = PointMapNode(moved);
  EXPECT_EQ(assigned.GetTriangles(), moved.GetTriangles());
}

// --- Points
// ---------------------------------------------------------------------------------------

TEST(PointMap, NewMapIsEmpty) {
  PointMap map;
  EXPECT_EQ(map.GetNumberOfPoints(), 0);
}

TEST(PointMap, FindsAPointByItsCoordinates) {
  Mapped m;
  TPoint const elsewhere = m.b;
  PointMapNode const& node = m.map.FindPoint(&elsewhere);
  EXPECT_TRUE(node.IsValid());
  EXPECT_EQ(node.GetPoint(), &m.b);
  EXPECT_EQ(&m.map[&elsewhere], &node);
}

TEST(PointMap, UnknownPointIsTheInvalidNode) {
  Mapped m;
  TPoint const unknown(0, 10, 2.5);
  EXPECT_FALSE(m.map.FindPoint(&unknown).IsValid());
  EXPECT_EQ(m.map.FindPoint(&unknown).NumberOfTriangles(), 0);
  EXPECT_EQ(m.map.FindPoint(&unknown)[0], nullptr);
  PointMap other;
  EXPECT_EQ(&m.map.FindPoint(&unknown), &other.FindPoint(&unknown));
}

TEST(PointMap, EqualPointIsNotEnteredAndTheFirstStays) {
  PointMap map;
  TPoint const first(1, 2, 3);
  TPoint const second(1, 2, 3);
  EXPECT_TRUE(map.AddPoint(&first));
  EXPECT_FALSE(map.AddPoint(&second));
  EXPECT_EQ(map.GetNumberOfPoints(), 1);
  EXPECT_EQ(map.FindPoint(&second).GetPoint(), &first);
}

TEST(PointMap, EqualPointKeepsTheTrianglesOfTheEntry) {
  Mapped m;
  TPoint const again = m.b;
  EXPECT_FALSE(m.map.AddPoint(&again));
  EXPECT_EQ(m.At(m.b), (Triangles{&m.first, &m.second}));
}

TEST(PointMap, RemovedPointIsGone) {
  Mapped m;
  TPoint const elsewhere = m.b;
  EXPECT_TRUE(m.map.RemovePoint(&elsewhere));
  EXPECT_FALSE(m.map.FindPoint(&m.b).IsValid());
  EXPECT_EQ(m.map.GetNumberOfPoints(), 3);
  EXPECT_FALSE(m.map.RemovePoint(&elsewhere));
}

TEST(PointMap, LeftIsTheFirstEntryAtOrAfterAPlace) {
  Mapped m;
  EXPECT_EQ(m.map.FindLeft(TPoint(-1, 0, 0)).GetPoint(), &m.a);  // before all entries
  EXPECT_EQ(m.map.FindLeft(TPoint(0, 0, 1)).GetPoint(), &m.a);
  EXPECT_EQ(m.map.FindLeft(TPoint(0, 0, 2)).GetPoint(), &m.b);
  EXPECT_EQ(m.map.FindLeft(TPoint(5, -99, -99)).GetPoint(), &m.c);
  EXPECT_EQ(m.map.FindLeft(TPoint(10, 10, 4)).GetPoint(), &m.d);
  EXPECT_EQ(m.map.FindLeft(TPoint(10, 10, 4)).NumberOfTriangles(), 1);
}

TEST(PointMap, LeftPastAllEntriesIsTheInvalidNode) {
  Mapped m;
  EXPECT_FALSE(m.map.FindLeft(TPoint(10, 10, 5)).IsValid());
  EXPECT_FALSE(m.map.FindLeft(TPoint(11, 0, 0)).IsValid());
  PointMap empty;
  EXPECT_FALSE(empty.FindLeft(TPoint(0, 0, 0)).IsValid());
}

// --- Triangles
// ------------------------------------------------------------------------------------

TEST(PointMap, TriangleIsEnteredUnderEachCorner) {
  Mapped m;
  EXPECT_EQ(m.At(m.a), Triangles{&m.first});
  EXPECT_EQ(m.At(m.b), (Triangles{&m.first, &m.second}));
  EXPECT_EQ(m.At(m.c), (Triangles{&m.first, &m.second}));
  EXPECT_EQ(m.At(m.d), Triangles{&m.second});
}

TEST(PointMap, TriangleEnteredTwiceStandsThereOnce) {
  Mapped m;
  EXPECT_TRUE(m.map.AddTriangle(&m.first));
  EXPECT_EQ(m.At(m.a), Triangles{&m.first});
  EXPECT_EQ(m.At(m.b), (Triangles{&m.first, &m.second}));
}

TEST(PointMap, TriangleWithAnUnknownCornerIsRefusedThereAndKeepsTheCornersBefore) {
  Mapped m;
  TPoint unknown(5, 5, 5);
  TTriangle t(&m.a, &unknown, &m.d);
  EXPECT_FALSE(m.map.AddTriangle(&t));
  EXPECT_EQ(m.At(m.a), (Triangles{&m.first, &t}));
  EXPECT_EQ(m.At(m.d), Triangles{&m.second});
}

TEST(PointMap, RemovedTriangleLeavesTheOrderOfTheOthers) {
  Mapped m;
  TTriangle third(&m.a, &m.b, &m.d);
  m.map.AddTriangle(&third);
  EXPECT_TRUE(m.map.RemoveTriangle(&m.second));
  EXPECT_EQ(m.At(m.b), (Triangles{&m.first, &third}));
  EXPECT_EQ(m.At(m.c), Triangles{&m.first});
  EXPECT_EQ(m.At(m.d), Triangles{&third});
}

TEST(PointMap, RemovalOfATriangleThatIsNotThereIsTrue) {
  Mapped m;
  TTriangle stranger(&m.a, &m.b, &m.d);
  EXPECT_TRUE(m.map.RemoveTriangle(&stranger));
  TPoint unknown(5, 5, 5);
  TTriangle partly(&unknown, &unknown, &unknown);
  EXPECT_TRUE(m.map.RemoveTriangle(&partly));
  EXPECT_EQ(m.At(m.b), (Triangles{&m.first, &m.second}));
}

TEST(PointMap, RemovalOfATrianglePassesOverAMissingCorner) {
  Mapped m;
  m.map.RemovePoint(&m.a);
  EXPECT_TRUE(m.map.RemoveTriangle(&m.first));
  EXPECT_EQ(m.At(m.b), Triangles{&m.second});
  EXPECT_EQ(m.At(m.c), Triangles{&m.second});
}

TEST(PointMap, CopyIsAMapOfItsOwnOverTheSamePoints) {
  Mapped m;
  PointMap copy(m.map);
  copy.RemovePoint(&m.a);
  copy.RemoveTriangle(&m.second);
  EXPECT_EQ(m.map.GetNumberOfPoints(), 4);
  EXPECT_EQ(m.At(m.b), (Triangles{&m.first, &m.second}));
  EXPECT_EQ(copy.FindPoint(&m.b).GetTriangles(), Triangles{&m.first});
  copy = m.map;
  EXPECT_EQ(copy.GetNumberOfPoints(), 4);
  PointMap& itself = copy;
  copy = itself;
  EXPECT_EQ(copy.FindPoint(&m.b).GetTriangles(), (Triangles{&m.first, &m.second}));
}

// --- Surfaces
// -------------------------------------------------------------------------------------

TEST(PointMap, BuildOfASurfaceWithPointsAnswersFalse) {
  TIN tin;
  BuildSquare(tin);
  PointMap map;
  EXPECT_FALSE(map.Build(tin));
  EXPECT_EQ(map.GetNumberOfPoints(), 9);
}

TEST(PointMap, BuildOfAnEmptySurfaceAnswersTrue) {
  PointMap map;
  EXPECT_TRUE(map.Build(TIN()));
  EXPECT_TRUE(map.Build(TIN(TPoint(0, 0), TPoint(1, 1), 5)));
  EXPECT_EQ(map.GetNumberOfPoints(), 0);
}

TEST(PointMap, BuildAddsToWhatTheMapHolds) {
  Mapped m;
  EXPECT_FALSE(m.map.Build(TIN()));
  EXPECT_EQ(m.map.GetNumberOfPoints(), 4);
  TIN tin;
  BuildSquare(tin);
  m.map.Build(tin);
  EXPECT_EQ(m.map.GetNumberOfPoints(), 4 + 9 - 1);  // (0, 0, 1) is in both
  EXPECT_EQ(m.map.FindPoint(tin.GetPoint(4)).GetPoint(), &m.a);
  EXPECT_EQ(m.At(m.a)[0], &m.first);
}

TEST(PointMap, BuildEntersEveryTriangleInLiveOrderHiddenOnesToo) {
  auto const points = MakeSurvey(Survey::Uniform, 400, TestSeed());
  auto const box = ExtentOf(points);
  TIN tin;
  tin.Init(400, box.min, box.max);
  for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
  tin.Triangulate();
  EXPECT_TRUE(tin.BuildPointMap());
  EXPECT_EQ(tin.GetMap().GetNumberOfPoints(), 404);
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
    TPoint const* const p = tin.GetPoint(i);
    Triangles expected;
    for (int k = 0; k < tin.GetNumberOfTriangles(); ++k) {
      TTriangle* const t = tin.GetTriangle(k, true);
      if (t->XY_FindVertex(p)) expected.push_back(t);
    }
    EXPECT_EQ(tin.GetMap().FindPoint(p).GetTriangles(), expected);
  }
  ExpectSound(tin);
}

TEST(PointMap, BuildEntersATriangleOnceWhereACornerRepeats) {
  TIN tin;
  BuildSquare(tin);
  TTriangle* const t = tin.GetTriangle(0, true);
  t->m_pVertex[1] = t->m_pVertex[0];
  PointMap map;
  map.Build(tin);
  Triangles const triangles = map.FindPoint(t->m_pVertex[0]).GetTriangles();
  EXPECT_EQ(std::count(triangles.begin(), triangles.end(), t), 1);
}

// As a damaged file may have it. A search of the list for each would look at 4e8 entries.
TEST(PointMap, BuildTakesManyTrianglesAboutOnePoint) {
  TIN tin;
  constexpr int COUNT = 29000;
  tin.Init(COUNT, TPoint(-1, -1), TPoint(1, 1));
  TPoint* const a = TINPeer::Points(tin)->Add(TPoint(0, 0, 1));
  TPoint* const b = TINPeer::Points(tin)->Add(TPoint(0, 1, 1));
  TPoint* const c = TINPeer::Points(tin)->Add(TPoint(1, 0, 1));
  for (int i = 0; i < COUNT; ++i) TINPeer::AddTriangle(tin, TTriangle(a, b, c));
  PointMap map;
  map.Build(tin);
  ASSERT_EQ(map.FindPoint(a).NumberOfTriangles(), COUNT);
  EXPECT_EQ(map.FindPoint(a)[COUNT - 1], tin.GetTriangle(COUNT - 1, true));
}

TEST(PointMap, BuildOnASurfaceReplacesItsMapAndAnswersTrue) {
  TIN tin;
  BuildSquare(tin);
  EXPECT_TRUE(tin.BuildPointMap());
  TPoint const stranger(77, 77, 77);
  tin.GetMap().AddPoint(&stranger);
  EXPECT_TRUE(tin.BuildPointMap());
  EXPECT_FALSE(tin.GetMap().FindPoint(&stranger).IsValid());
  EXPECT_EQ(tin.GetMap().GetNumberOfPoints(), 9);
  TIN empty;
  EXPECT_TRUE(empty.BuildPointMap());
  EXPECT_EQ(empty.GetMap().GetNumberOfPoints(), 0);
  ExpectSound(tin);
}

TEST(PointMap, NeighboursOfAVertexWithThreeTrianglesAreItsThreeNeighboursOnceEach) {
  TIN tin;
  tin.Init(4, TPoint(0, 0), TPoint(8, 8));
  for (TPoint const& p : {TPoint(0, 0, 1), TPoint(8, 0, 2), TPoint(4, 8, 3), TPoint(4, 3, 4)}) {
    tin.AddPoint(p);
  }
  tin.BuildPointMap();
  TPoint* const middle = tin.GetPoint(7);
  ASSERT_EQ(tin.GetMap().FindPoint(middle).NumberOfTriangles(), 3);
  std::vector<TPoint*> neighbours(5, nullptr);
  EXPECT_TRUE(tin.GetNeighbours(middle, neighbours));
  ASSERT_EQ(neighbours.size(), 3u);
  std::vector<TPoint*> expected;  // in list order, corners 0, 1, 2 of each
  for (TTriangle const* t : tin.GetMap().FindPoint(middle).GetTriangles()) {
    for (TPoint* corner : t->m_pVertex) {
      bool const known = std::find(expected.begin(), expected.end(), corner) != expected.end();
      if (corner != middle && !known) expected.push_back(corner);
    }
  }
  EXPECT_EQ(neighbours, expected);
  std::sort(neighbours.begin(), neighbours.end());
  EXPECT_EQ(neighbours, (std::vector<TPoint*>{tin.GetPoint(4), tin.GetPoint(5), tin.GetPoint(6)}));
  ExpectSound(tin);
}

TEST(PointMap, NeighboursIncludeTheVertexItselfForACopyOfIt) {
  TIN tin;
  BuildSquare(tin);
  tin.BuildPointMap();
  TPoint const copy = *tin.GetPoint(8);
  std::vector<TPoint*> neighbours;
  EXPECT_TRUE(tin.GetNeighbours(&copy, neighbours));
  EXPECT_EQ(neighbours.size(), 5u);
  EXPECT_EQ(std::count(neighbours.begin(), neighbours.end(), tin.GetPoint(8)), 1);
}

TEST(PointMap, NeighboursOfAnUnknownPointAreNoneAndFalse) {
  TIN tin;
  BuildSquare(tin);
  tin.BuildPointMap();
  TPoint const unknown(4, 4, 99);
  std::vector<TPoint*> neighbours(3, nullptr);
  EXPECT_FALSE(tin.GetNeighbours(&unknown, neighbours));
  EXPECT_TRUE(neighbours.empty());
}

}  // namespace
