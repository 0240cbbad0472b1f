#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "qeltin/decimate/Decimator.h"
#include "testing/DecimatorPeer.h"
#include "testing/HandMadeMesh.h"
#include "testing/MakeSurvey.h"

namespace {

using qeltin::testing::DecimatorPeer;
using qeltin::testing::Extent;
using qeltin::testing::ExtentOf;
using qeltin::testing::HandMadeMesh;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Survey;

constexpr auto PI = static_cast<float>(std::numbers::pi);

int PositionOf(TIN const& tin, TPoint const* point) {
  for (int i = 0; i < tin.GetNumberOfPoints(); ++i) {
    if (tin.GetPoint(i) == point) return i;
  }
  return -1;
}

// The ends of a line that the decimator found.
struct Line {
  TPoint* first;
  TPoint* second;
};

Line BoundaryLine(Decimator const& decimator, int index) {
  static TPoint other;
  Line line{&other, &other};
  DecimatorPeer::BoundaryNeighbours(decimator, index, line.first, line.second);
  return line;
}

Line InteriorLine(Decimator const& decimator, int index) {
  static TPoint other;
  Line line{&other, &other};
  DecimatorPeer::InteriorNeighbours(decimator, index, line.first, line.second);
  return line;
}

void ExpectNoLine(Line const& line) {
  EXPECT_EQ(line.first, nullptr);
  EXPECT_EQ(line.second, nullptr);
}

// A centre in the origin with `degree` neighbours at a distance of 8, the first to the north, and a
// wide ring around them.
class Star {
 public:
  explicit Star(int degree, double height = 0.0) {
    tin.Init(100, TPoint(-500, -500), TPoint(500, 500));
    centre = tin.AddPoint(0.0, 0.0, height);
    double const step = 2.0 * std::numbers::pi / degree;
    for (int i = 0; i < degree; ++i) {
      ring.push_back(tin.AddPoint(8.0 * std::sin(i * step), 8.0 * std::cos(i * step), 0.0));
      tin.AddPoint(100.0 * std::sin((i + 0.5) * step), 100.0 * std::cos((i + 0.5) * step), 0.0);
    }
    tin.BuildPointMap();
    decimator.SetSource(&tin);
  }

  int Index() const { return PositionOf(tin, centre); }
  VERTEX_TYPE Class() const { return DecimatorPeer::Classify(decimator, centre); }
  bool PassesPlane() { return DecimatorPeer::PassPlane(decimator, Index()); }

  TIN tin;
  TPoint* centre = nullptr;
  std::vector<TPoint*> ring;
  Decimator decimator;
};

// A roof with a ridge from west to east over a centre of degree 4.
class Roof : public Star {
 public:
  explicit Roof(double rise) : Star(4, rise) { ring[1]->z = ring[3]->z = rise; }
};

TEST(DecimatorPlane, APointWithThreeNeighboursStays) {
  Star star(3);
  DecimatorPeer::CurrentError(star.decimator) = 100.0f;
  EXPECT_FALSE(star.PassesPlane());
  EXPECT_EQ(star.decimator.GetErrorStat().count, 0u);
}

TEST(DecimatorPlane, APointWithNeighboursOnALineStays) {
  HandMadeMesh mesh;
  TPoint* const point = mesh.Point(1.5, 1.0);
  std::vector<TPoint*> line;
  for (int i = 0; i < 4; ++i) line.push_back(mesh.Point(i, 0.0));
  for (std::size_t i = 0; i < 3; ++i) mesh.LayClockwise(point, line[i], line[i + 1]);
  mesh.tin.BuildPointMap();
  Decimator decimator;
  decimator.SetSource(&mesh.tin);
  DecimatorPeer::CurrentError(decimator) = 100.0f;
  EXPECT_FALSE(DecimatorPeer::PassPlane(decimator, 0));
}

TEST(DecimatorPlane, APointWithoutTrianglesStays) {
  HandMadeMesh mesh;
  mesh.Point(1.0, 1.0);
  mesh.tin.BuildPointMap();
  Decimator decimator;
  decimator.SetSource(&mesh.tin);
  DecimatorPeer::CurrentError(decimator) = 100.0f;
  EXPECT_FALSE(DecimatorPeer::PassPlane(decimator, 0));
}

TEST(DecimatorPlane, APointOnThePlaneOfItsNeighboursPassesWithAnErrorOfZero) {
  Star star(4);
  EXPECT_TRUE(star.PassesPlane());
  EXPECT_EQ(star.decimator.GetErrorStat().count, 1u);
  EXPECT_EQ(star.decimator.GetErrorStat().maximum, 0.0);
}

TEST(DecimatorPlane, APointExactlyAtTheErrorPasses) {
  Star star(4, 0.5);
  DecimatorPeer::CurrentError(star.decimator) = 0.5f;
  EXPECT_TRUE(star.PassesPlane());
  DecimatorPeer::CurrentError(star.decimator) = std::nextafter(0.5f, 0.0f);
  EXPECT_FALSE(star.PassesPlane());
}

TEST(DecimatorPlane, AcceptedDistancesEnterTheStatistics) {
  Star star(4);
  DecimatorPeer::CurrentError(star.decimator) = 2.0f;
  for (double const height : {0.5, -1.5, 0.25, 3.0}) {
    star.centre->z = height;
    EXPECT_EQ(star.PassesPlane(), height != 3.0);
  }
  CStatist const& statistics = star.decimator.GetErrorStat();
  EXPECT_EQ(statistics.count, 3u);
  EXPECT_EQ(statistics.minimum, 0.25);
  EXPECT_EQ(statistics.maximum, 1.5);
  EXPECT_EQ(statistics.mean, (2.0 * ((1.0 * 0.5 + 1.5) / 2.0) + 0.25) / 3.0);
  EXPECT_EQ(statistics.sumSquares, 0.25 + 2.25 + 0.0625);
  EXPECT_EQ(statistics.offset, 0u);
}

// A point on the edge of a strip, half a unit off the line through its neighbours there.
class Hull : public ::testing::Test {
 protected:
  Hull() {
    m_pPoint = m_Mesh.Point(0.0, 0.5);
    m_pWest = m_Mesh.Point(-1.0, 0.0);
    m_pEast = m_Mesh.Point(1.0, 0.0);
    m_pNorth = m_Mesh.Point(0.0, 5.0);
    HandMadeMesh::Link(m_Mesh.LayClockwise(m_pPoint, m_pWest, m_pNorth),
                       m_Mesh.LayClockwise(m_pPoint, m_pNorth, m_pEast));
    m_Mesh.tin.BuildPointMap();
    m_Decimator.SetSource(&m_Mesh.tin);
  }

  bool PassesLine() const { return DecimatorPeer::PassLine(m_Decimator, 0, VERTEX_ON_HULL); }

  HandMadeMesh m_Mesh;
  Decimator m_Decimator;
  TPoint* m_pPoint;
  TPoint* m_pWest;
  TPoint* m_pEast;
  TPoint* m_pNorth;
};

TEST_F(Hull, ALaterNeighbourTakesTheSecondPlace) {
  auto const [first, second] = BoundaryLine(m_Decimator, 0);
  std::vector<TPoint*> neighbours;
  ASSERT_TRUE(m_Mesh.tin.GetNeighbours(m_pPoint, neighbours));
  ASSERT_EQ(neighbours.size(), 3u);  // all of them on the edge
  EXPECT_EQ(first, neighbours[0]);
  EXPECT_EQ(second, neighbours[2]);
}

TEST_F(Hull, APointExactlyAtTheErrorFromTheLineStays) {
  auto const [first, second] = BoundaryLine(m_Decimator, 0);
  auto const distance = static_cast<float>(TEdge(first, second).XY_Distance(*m_pPoint));
  ASSERT_GT(distance, 0.0f);
  DecimatorPeer::CurrentError(m_Decimator) = distance;
  EXPECT_FALSE(PassesLine());
  DecimatorPeer::CurrentError(m_Decimator) = std::nextafter(distance, 100.0f);
  EXPECT_TRUE(PassesLine());
  EXPECT_EQ(m_Decimator.GetErrorStat().count, 0u);
}

TEST_F(Hull, WithFewerThanTwoNeighboursThereIsNoLine) {
  m_Mesh.tin.GetMap().RemovePoint(m_pEast);
  m_Mesh.tin.GetMap().RemovePoint(m_pNorth);
  ExpectNoLine(BoundaryLine(m_Decimator, 0));
  DecimatorPeer::CurrentError(m_Decimator) = 100.0f;
  EXPECT_FALSE(PassesLine());
}

TEST_F(Hull, IsAClassOfItsOwn) {
  EXPECT_EQ(DecimatorPeer::Classify(m_Decimator, m_pPoint), VERTEX_ON_HULL);
}

TEST(DecimatorClass, AtAFeatureAngleOfZeroNothingIsSmooth) {
  for (int degree = 3; degree <= 8; ++degree) EXPECT_EQ(Star(degree).Class(), VERTEX_NO_SMOOTH);
  EXPECT_EQ(Star(6, 3.0).Class(), VERTEX_NO_SMOOTH);
}

TEST(DecimatorClass, AtAFeatureAngleOf180DegreesEverySideIsSmooth) {
  for (int degree = 3; degree <= 8; ++degree) {
    Star star(degree, 2.0 * degree);
    DecimatorPeer::CurrentFeatureAngle(star.decimator) = PI;
    EXPECT_EQ(star.Class(), VERTEX_IRREGULAR) << degree;
  }
}

TEST(DecimatorClass, TheRidgeOfARoofHasTwoSmoothSides) {
  Roof roof(4.0);
  DecimatorPeer::CurrentFeatureAngle(roof.decimator) = 0.1f;
  EXPECT_EQ(roof.Class(), VERTEX_TWO_SMOOTH);
}

TEST(DecimatorClass, OneSmoothSideIsIrregular) {
  Roof roof(4.0);
  roof.ring[0]->z = -9.0;  // both sides of the ridge go down, one of them in two planes
  roof.ring[1]->z = 6.0;
  roof.ring[2]->z = 0.0;
  roof.ring[3]->z = 4.0;
  DecimatorPeer::CurrentFeatureAngle(roof.decimator) = 0.15f;
  int smooth = 0;
  auto const& fan = roof.tin.GetMap().FindPoint(roof.centre).GetTriangles();
  ASSERT_EQ(fan.size(), 4u);
  for (TTriangle const* t : fan) {
    for (TTriangle const* n : t->m_pAdjacent) {
      if (!n->XY_FindVertex(roof.centre)) continue;
      TPoint const a = t->GetNormal();
      TPoint const b = n->GetNormal();
      if (a.x * b.x + a.y * b.y + a.z * b.z > std::cos(0.15)) ++smooth;
    }
  }
  ASSERT_EQ(smooth, 2);  // one side, seen from both of its triangles
  EXPECT_EQ(roof.Class(), VERTEX_IRREGULAR);
}

TEST(DecimatorClass, APointThatIsInNoTriangleHasNoSmoothSide) {
  HandMadeMesh mesh;
  TPoint* const point = mesh.Point(1.0, 1.0);
  mesh.tin.BuildPointMap();
  Decimator decimator;
  decimator.SetSource(&mesh.tin);
  EXPECT_EQ(DecimatorPeer::Classify(decimator, point), VERTEX_NO_SMOOTH);
}

// Triangles around one point, to be linked at will.
class Fan : public ::testing::Test {
 protected:
  Fan() {
    m_pCentre = m_Mesh.Point(0.0, 0.0);
    for (int i = 0; i < 8; ++i) {
      double const angle = i * std::numbers::pi / 4.0;
      m_Ring.push_back(m_Mesh.Point(std::sin(angle), std::cos(angle), 0.1 * (i % 2)));
    }
    for (std::size_t i = 0; i < 8; ++i) {
      m_Triangles.push_back(m_Mesh.LayClockwise(m_pCentre, m_Ring[i], m_Ring[(i + 1) % 8]));
    }
    m_pFar = m_Mesh.LayClockwise(m_Mesh.Point(50, 50), m_Mesh.Point(60, 50), m_Mesh.Point(50, 60));
    for (TTriangle* t : m_Triangles) t->m_pAdjacent[0] = t->m_pAdjacent[1] = m_pFar;
    for (TTriangle* t : m_Triangles) t->m_pAdjacent[2] = m_pFar;
    m_Mesh.tin.BuildPointMap();
    m_Decimator.SetSource(&m_Mesh.tin);
  }

  void Lead(std::size_t from, std::size_t to) {
    m_Triangles[from]->m_pAdjacent[0] = m_Triangles[to];
  }

  HandMadeMesh m_Mesh;
  Decimator m_Decimator;
  TPoint* m_pCentre;
  std::vector<TPoint*> m_Ring;
  std::vector<TTriangle*> m_Triangles;
  TTriangle* m_pFar;
};

TEST_F(Fan, WithoutANextTriangleIsUnresolved) {
  EXPECT_EQ(DecimatorPeer::Classify(m_Decimator, m_pCentre), VERTEX_UNRESOLVED);
  Lead(0, 1);
  Lead(1, 2);
  EXPECT_EQ(DecimatorPeer::Classify(m_Decimator, m_pCentre), VERTEX_UNRESOLVED);
  ExpectNoLine(InteriorLine(m_Decimator, 0));
}

TEST_F(Fan, ThatNeverComesBackToItsFirstTriangleIsUnresolved) {
  for (std::size_t i = 0; i < 7; ++i) Lead(i, i + 1);
  Lead(7, 2);
  EXPECT_EQ(DecimatorPeer::Classify(m_Decimator, m_pCentre), VERTEX_UNRESOLVED);
  ExpectNoLine(InteriorLine(m_Decimator, 0));
}

TEST_F(Fan, ThatRunsInCirclesThroughASmoothSideCountsItAgain) {
  for (std::size_t i = 0; i < 7; ++i) Lead(i, i + 1);
  Lead(7, 2);
  m_Ring[5]->z = m_Ring[4]->z + m_Ring[6]->z;
  for (std::size_t i = 4; i < 7; ++i) m_Ring[i]->z = 0.0;  // triangles 4 and 5 are level
  DecimatorPeer::CurrentFeatureAngle(m_Decimator) = 0.01f;
  EXPECT_EQ(DecimatorPeer::Classify(m_Decimator, m_pCentre), VERTEX_IRREGULAR);
}

TEST_F(Fan, AVertexWithinTheToleranceLeadsOn) {
  TPoint* const beside = m_Mesh.Point(0.0009, -0.0009, 7.0);
  for (std::size_t i = 0; i < 8; ++i) Lead(i, (i + 1) % 8);
  m_Triangles[3]->m_pVertex[0] =
      m_Triangles[3]->m_pVertex[0] == m_pCentre ? beside : m_Triangles[3]->m_pVertex[0];
  EXPECT_EQ(DecimatorPeer::Classify(m_Decimator, m_pCentre), VERTEX_NO_SMOOTH);
}

TEST(DecimatorInside, TheAngleIsComparedWithTheCosine) {
  // A normal of a side of the roof leans by atan(rise / 8): 0.46 in one case, 0.56 in the other, so
  // that the angle over the ridge is below and above 1, the cosine of 0.
  for (double const rise : {4.0, 5.0}) {
    Roof roof(rise);
    auto const [first, second] = InteriorLine(roof.decimator, roof.Index());
    EXPECT_EQ(first != nullptr, rise == 5.0);
    EXPECT_EQ(second != nullptr, rise == 5.0);
  }
}

TEST(DecimatorInside, TheNeighboursAreTheSecondPointsOfTheSharedSides) {
  Roof roof(5.0);
  auto const [first, second] = InteriorLine(roof.decimator, roof.Index());
  std::vector<TPoint*> const expected = {roof.ring[1], roof.ring[3], roof.centre};
  EXPECT_NE(std::find(expected.begin(), expected.end(), first), expected.end());
  EXPECT_NE(std::find(expected.begin(), expected.end(), second), expected.end());
  ASSERT_NE(first, nullptr);
  auto const distance = static_cast<float>(TEdge(first, second).XY_Distance(*roof.centre));
  DecimatorPeer::CurrentError(roof.decimator) = distance;
  EXPECT_FALSE(DecimatorPeer::PassLine(roof.decimator, roof.Index(), VERTEX_TWO_SMOOTH));
  DecimatorPeer::CurrentError(roof.decimator) = std::nextafter(distance, 100.0f);
  EXPECT_TRUE(DecimatorPeer::PassLine(roof.decimator, roof.Index(), VERTEX_TWO_SMOOTH));
}

TEST(DecimatorInside, OneNeighbourAloneIsNone) {
  Roof roof(5.0);
  roof.ring[3]->z = -3.0;  // along the other half of the ridge the angle is 0.83 now
  ExpectNoLine(InteriorLine(roof.decimator, roof.Index()));
  DecimatorPeer::CurrentError(roof.decimator) = 100.0f;
  EXPECT_FALSE(DecimatorPeer::PassLine(roof.decimator, roof.Index(), VERTEX_TWO_SMOOTH));
}

TEST(DecimatorSharedEdge, FollowsTheOrderOfTheFirstTriangle) {
  TPoint a(0, 0), b(1, 0), c(0, 1), d(1, 1);
  Decimator const decimator;
  TEdge const edge =
      DecimatorPeer::SharedEdge(decimator, TTriangle(&a, &b, &c), TTriangle(&b, &d, &c));
  EXPECT_EQ(edge.m_pStart, &b);
  EXPECT_EQ(edge.m_pEnd, &c);
}

TEST(DecimatorSharedEdge, OfThreeMatchesTheLastIsTheSecond) {
  TPoint a(0, 0), b(1, 0), c(0, 1);
  Decimator const decimator;
  TEdge const edge =
      DecimatorPeer::SharedEdge(decimator, TTriangle(&a, &b, &c), TTriangle(&c, &a, &b));
  EXPECT_EQ(edge.m_pStart, &a);
  EXPECT_EQ(edge.m_pEnd, &c);
}

TEST(DecimatorSharedEdge, WhatDoesNotMatchStaysNull) {
  TPoint a(0, 0), b(1, 0), c(0, 1), d(5, 5), e(6, 6), f(1.002, 0);
  Decimator const decimator;
  TEdge const one =
      DecimatorPeer::SharedEdge(decimator, TTriangle(&a, &b, &c), TTriangle(&d, &e, &c));
  EXPECT_EQ(one.m_pStart, &c);
  EXPECT_EQ(one.m_pEnd, nullptr);
  TEdge const none =
      DecimatorPeer::SharedEdge(decimator, TTriangle(&a, &b, &c), TTriangle(&d, &e, &f));
  EXPECT_EQ(none.m_pStart, nullptr);
}

TEST(DecimatorSharedEdge, MatchesWithinTheToleranceWhateverTheHeight) {
  TPoint a(0, 0, 0), b(1, 0, 0), c(0, 1, 0), near(0.0009, -0.0009, 55), d(7, 7);
  Decimator const decimator;
  TEdge const edge =
      DecimatorPeer::SharedEdge(decimator, TTriangle(&a, &b, &c), TTriangle(&d, &near, &b));
  EXPECT_EQ(edge.m_pStart, &a);
  EXPECT_EQ(edge.m_pEnd, &b);
}

TEST(DecimatorStatistics, HaveASampleForEachCandidateThatPassedThePlane) {
  std::vector<TPoint> const points = MakeSurvey(Survey::JitteredGrid, 200, 5);
  Extent const extent = ExtentOf(points);
  TIN tin;
  tin.Init(200, extent.min, extent.max);
  for (TPoint const& p : points) tin.AddPoint(p);
  Decimator decimator;
  decimator.SetSource(&tin);
  decimator.NumberOfPasses(3);
  decimator.MinimumError(0.05f);
  decimator.MaximumError(0.5f);
  int const before = DecimatorPeer::Begin(decimator);
  std::size_t candidates = 0;
  std::size_t removed = 0;
  while (DecimatorPeer::IsRunning(decimator)) {
    bool const collected = DecimatorPeer::Info(decimator).evaluating;
    decimator.ThreadFunction();
    if (!collected || DecimatorPeer::Info(decimator).evaluating) continue;
    std::size_t const now = DecimatorPeer::Candidates(decimator).size();
    candidates += now;
    removed += now > 4 ? now - 4 : 0;
  }
  EXPECT_EQ(decimator.GetErrorStat().count, candidates);
  ASSERT_GT(removed, 0u);
  EXPECT_EQ(tin.GetMap().GetNumberOfPoints(), before - static_cast<int>(removed));
}

}  // namespace
