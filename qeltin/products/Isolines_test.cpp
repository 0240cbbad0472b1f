#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"
#include "testing/HandMadeMesh.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/VerifySurface.h"

namespace {

using qeltin::testing::Dice;
using qeltin::testing::Extent;
using qeltin::testing::ExtentOf;
using qeltin::testing::HandMadeMesh;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Survey;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;
using qeltin::testing::VerifySurface;

using Lines = std::vector<std::unique_ptr<TPolygon>>;

Lines Trace(TIN& tin, double level) {
  std::vector<TPolygon*> traced;
  int const count = tin.GenerateIsoline(traced, level);
  EXPECT_EQ(count, static_cast<int>(traced.size()));
  return {traced.begin(), traced.end()};
}

std::vector<TPoint> PointsOf(TPolygon const& line) {
  return {line.Get(0), line.Get(0) + line.GetSize()};
}

bool IsVisited(TTriangle const* t) { return (t->m_Flags & TRI_VISITED) != 0; }

// Whole units from -5 to 5, the height that of the function.
template <typename Height>
void BuildLattice(TIN& tin, Height height) {
  tin.Init(121, TPoint(-5, -5, -100), TPoint(5, 5, 100));
  for (int x = -5; x <= 5; ++x) {
    for (int y = -5; y <= 5; ++y) tin.AddPoint(x, y, height(x, y));
  }
}

void BuildHill(TIN& tin) {
  BuildLattice(tin, [](double x, double y) { return 20 - x * x - y * y; });
}

// A strip to the east as HandMadeMesh lays it, the heights of its points by their number.
struct Strip : HandMadeMesh {
  std::vector<TTriangle*> triangles;

  explicit Strip(std::vector<double> const& heights) {
    triangles = LayStrip(static_cast<int>(heights.size()) - 2);
    for (std::size_t i = 0; i < heights.size(); ++i) {
      TINPeer::Points(tin)->At(static_cast<int>(i))->z = heights[i];
    }
  }
};

// The line of 5 along such a strip of heights 0, 10, 0, ... lies at y = 0.5; triangle i has its
// crossings at x = i + 0.5 and i + 1.5.
using Crossings = std::vector<std::vector<double>>;

Crossings TraceAlong(Strip& strip) {
  Crossings all;
  for (auto const& line : Trace(strip.tin, 5.0)) {
    all.emplace_back();
    for (TPoint const& p : PointsOf(*line)) {
      EXPECT_EQ(p.y, 0.5);
      all.back().push_back(p.x);
    }
  }
  return all;
}

TEST(Isolines, LevelAboveEveryHeightGivesNoLine) {
  TIN tin;
  BuildHill(tin);
  EXPECT_TRUE(Trace(tin, 20.5).empty());
  EXPECT_TRUE(Trace(tin, std::numeric_limits<double>::quiet_NaN()).empty());
}

TEST(Isolines, LevelAtTheLowestHeightGivesNoLineSinceAllVerticesCountAsAbove) {
  TIN tin;
  BuildHill(tin);
  EXPECT_TRUE(Trace(tin, -30).empty());
  EXPECT_FALSE(Trace(tin, -29.5).empty());
}

TEST(Isolines, AppendsToTheEntriesThatAreThere) {
  TIN tin;
  BuildHill(tin);
  TPolygon before;
  std::vector<TPolygon*> lines{&before};
  ASSERT_EQ(tin.GenerateIsoline(lines, 10.5), 1);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0], &before);
  EXPECT_EQ(before.GetSize(), 0);
  delete lines[1];
}

TEST(Isolines, FewerThanThreeTrianglesGiveNoLineAndKeepTheirMarks) {
  Strip strip({0, 10, 0, 10});
  strip.triangles[0]->m_Flags |= TRI_VISITED;
  EXPECT_TRUE(Trace(strip.tin, 5).empty());
  EXPECT_TRUE(IsVisited(strip.triangles[0]));
  TIN nothing;
  EXPECT_TRUE(Trace(nothing, 5).empty());
}

TEST(Isolines, EveryPointHasTheLevelAsItsHeight) {
  TIN tin;
  BuildHill(tin);
  for (auto const& line : Trace(tin, 7.3)) {
    for (TPoint const& p : PointsOf(*line)) EXPECT_EQ(p.z, 7.3);
  }
}

TEST(Isolines, CrossingFollowsItsFormulaFromTheFirstVertexOfTheSide) {
  Strip strip({1, 4, 1.5, 4.25, 2});
  Lines const lines = Trace(strip.tin, 3.1);
  ASSERT_EQ(lines.size(), 1U);
  TTriangle const& t = *strip.triangles[0];
  int side = 0;
  while ((t.GetPoint(side)->z >= 3.1) == (t.GetPoint((side + 1) % 3)->z >= 3.1)) ++side;
  TPoint const& a = *t.GetPoint(side);
  TPoint const& b = *t.GetPoint((side + 1) % 3);
  double const f = (3.1 - a.z) / (b.z - a.z);
  TPoint const expected(a.x + (b.x - a.x) * f, a.y + (b.y - a.y) * f, 3.1);
  std::vector<TPoint> const points = PointsOf(*lines[0]);
  EXPECT_TRUE(points.front() == expected || points.back() == expected);
}

TEST(Isolines, ClosedLineAboutAHillStopsOneCrossingShortOfItsStart) {
  TIN tin;
  BuildHill(tin);
  Lines const lines = Trace(tin, 10.5);
  ASSERT_EQ(lines.size(), 1U);
  std::vector<TPoint> const points = PointsOf(*lines[0]);
  EXPECT_FALSE(points.front().XY_EqualsTo(points.back()));
  EXPECT_LT(points.front().XY_Distance(points.back()), std::sqrt(2.0));
  int visited = 0;
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    visited += IsVisited(tin.GetTriangle(i, true)) ? 1 : 0;
  }
  EXPECT_EQ(visited, lines[0]->GetSize());  // a crossing a triangle
  EXPECT_TRUE(VerifySurface(tin).Ok());
}

TEST(Isolines, LineThroughVerticesPassesEachOfThemOnce) {
  TIN tin;
  BuildLattice(tin, [](double x, double) { return x; });
  Lines const lines = Trace(tin, 0.0);  // along the vertices of x = 0, which count as above
  ASSERT_FALSE(lines.empty());
  for (auto const& line : lines) {
    for (TPoint const& p : PointsOf(*line)) EXPECT_EQ(p.x, 0.0);
  }
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    TTriangle const& t = *tin.GetTriangle(i, true);
    if (t.IsHidden()) continue;
    double const west = std::fmin(t.GetPoint(0)->x, std::fmin(t.GetPoint(1)->x, t.GetPoint(2)->x));
    EXPECT_EQ(IsVisited(&t), west == -1.0);  // none of those to the east
  }
}

TEST(Isolines, PlateauAtTheLevelStopsTheLineAndIsMarked) {
  Strip strip({1, 9, 5, 5, 5, 5, 9, 1, 9});  // triangles 2 and 3 have all corners at the level
  Lines const lines = Trace(strip.tin, 5.0);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(PointsOf(*lines[0]), (std::vector<TPoint>{TPoint(0.5, 0.5, 5)}));
  EXPECT_EQ(PointsOf(*lines[1]), (std::vector<TPoint>{TPoint(5, 1, 5), TPoint(6.5, 0.5, 5)}));
  EXPECT_TRUE(IsVisited(strip.triangles[2]));
  EXPECT_TRUE(IsVisited(strip.triangles[3]));
}

TEST(Isolines, FlatTriangleIsMarkedAtAnyLevelUnlessItIsHidden) {
  Strip strip({5, 5, 5 + 9e-12, 9, 20});
  std::vector<TTriangle*> const& t = strip.triangles;
  EXPECT_TRUE(Trace(strip.tin, 100.0).empty());
  EXPECT_TRUE(IsVisited(t[0]));
  EXPECT_FALSE(IsVisited(t[1]));
  t[0]->m_Flags = TRI_FILTERED;
  EXPECT_TRUE(Trace(strip.tin, 100.0).empty());
  EXPECT_FALSE(IsVisited(t[0]));
}

TEST(Isolines, HeightsThatDifferByTheLimitAreNotFlat) {
  Strip strip({0, 0, 1e-11, 9, 20});
  EXPECT_TRUE(Trace(strip.tin, 100.0).empty());
  EXPECT_FALSE(IsVisited(strip.triangles[0]));
}

TEST(Isolines, WalkOverAMissingNeighbourEnds) {
  Strip strip({0, 10, 0, 10, 0, 10});
  EXPECT_EQ(TraceAlong(strip), (Crossings{{3.5, 2.5, 1.5, 0.5}}));
}

TEST(Isolines, WalkIntoANeighbourThatDoesNotLeadBackEnds) {
  Strip strip({0, 10, 0, 10, 0, 10});
  std::vector<TTriangle*> const& t = strip.triangles;
  for (TTriangle*& back : t[2]->m_pAdjacent) {
    if (back == t[1]) back = nullptr;
  }
  EXPECT_EQ(TraceAlong(strip), (Crossings{{1.5, 0.5}, {3.5, 2.5}}));
}

TEST(Isolines, FilteredTriangleEndsALineAndStartsNone) {
  Crossings const expected[] = {{{4.5, 3.5, 2.5, 1.5}},
                                {{0.5}, {4.5, 3.5, 2.5}},
                                {{1.5, 0.5}, {4.5, 3.5}},
                                {{2.5, 1.5, 0.5}, {4.5}},
                                {{3.5, 2.5, 1.5, 0.5}}};
  for (std::size_t i = 0; i < 5; ++i) {
    Strip strip({0, 10, 0, 10, 0, 10, 0});
    strip.triangles[i]->m_Flags |= TRI_FILTERED;
    EXPECT_EQ(TraceAlong(strip), expected[i]);
    EXPECT_FALSE(IsVisited(strip.triangles[i]));
  }
}

TEST(Isolines, TriangleMarkedOutsideStartsNoLineButIsWalkedThrough) {
  Strip strip({0, 10, 0, 10, 0, 10, 0});
  for (TTriangle* t : strip.triangles) t->m_Flags |= TRI_OUTSIDE;
  EXPECT_EQ(TraceAlong(strip), Crossings{});
  strip.triangles[0]->m_Flags = 0;
  EXPECT_EQ(TraceAlong(strip), (Crossings{{4.5, 3.5, 2.5, 1.5, 0.5}}));
}

TEST(Isolines, TriangleAcrossTheBoundsGetsItsEntryPointAndEndsTheLine) {
  Strip strip({0, 10, 0, 10, 0, 10, 0});
  TINPeer::Max(strip.tin).x = 3.5;  // triangle 1 reaches to 3, triangle 2 to 4
  EXPECT_EQ(TraceAlong(strip), (Crossings{{2.5, 1.5, 0.5}}));
  EXPECT_TRUE(IsVisited(strip.triangles[2]));
  EXPECT_FALSE(IsVisited(strip.triangles[3]));
}

TEST(Isolines, LineWithOnePointStaysAsItIs) {
  Strip strip({0, 10, 0, 10, 0});
  strip.triangles[1]->m_Flags |= TRI_FILTERED;
  EXPECT_EQ(TraceAlong(strip), (Crossings{{0.5}, {2.5}}));
}

// -0.09 + (0.2 + 0.09) rounds past 0.2.
TEST(Isolines, LineWhoseOnlyCrossingRoundsOutOfTheBoundsStaysWithoutPoints) {
  HandMadeMesh mesh;
  TTriangle* const t =
      mesh.Lay(mesh.Point(-0.09, 0, 0), mesh.Point(0.2, 0, 1), mesh.Point(0.1, -1, 0));
  for (int i = 0; i < 2; ++i) {
    mesh.Lay(mesh.Point(-10, 0, 7), mesh.Point(-9, 1, 7), mesh.Point(-8, 0, 7));
  }
  TINPeer::Max(mesh.tin).x = 0.2;
  Lines const lines = Trace(mesh.tin, 1.0);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0]->GetSize(), 0);
  EXPECT_TRUE(IsVisited(t));
}

TEST(Isolines, MarksOfAnEarlierRunAreCleared) {
  TIN tin;
  BuildHill(tin);
  Trace(tin, 10.5);
  EXPECT_EQ(Trace(tin, 10.5).size(), 1U);
  Trace(tin, 100.0);
  for (int i = 0; i < tin.GetNumberOfTriangles(); ++i) {
    EXPECT_FALSE(IsVisited(tin.GetTriangle(i, true)));
  }
}

TEST(Isolines, HigherGroundIsToTheRight) {
  TIN tin;
  BuildHill(tin);
  for (double level : {10.5, 3.5, 17.5}) {
    Lines const lines = Trace(tin, level);
    ASSERT_EQ(lines.size(), 1U);
    std::vector<TPoint> const p = PointsOf(*lines[0]);
    double area = 0.0;
    for (std::size_t i = 0; i < p.size(); ++i) {
      TPoint const& q = p[(i + 1) % p.size()];
      area += p[i].x * q.y - p[i].y * q.x;
    }
    EXPECT_LT(area, 0.0) << "clockwise about the hill";
  }
}

// --- Surfaces of known shape
// --------------------------------------------------------------------------

class IsolineShapes : public ::testing::Test {
 protected:
  template <typename Height>
  void Build(Height height) {
    std::vector<TPoint> points = MakeSurvey(Survey::Uniform, 2000, m_Dice.Bits());
    m_Extent = ExtentOf(points);
    m_Tin.Init(2000, m_Extent.min, m_Extent.max);
    for (TPoint const& p : points) m_Tin.LoadPoint(p.x, p.y, height(p.x, p.y));
    m_Tin.Triangulate();
  }

  // Every point of every line is on the surface. Returns the points.
  std::vector<TPoint> ExpectOnTheSurface(double level) {
    std::vector<TPoint> all;
    for (auto const& line : Trace(m_Tin, level)) {
      EXPECT_GT(line->GetSize(), 0);
      for (TPoint const& p : PointsOf(*line)) {
        double z = 0.0;
        EXPECT_EQ(p.z, level);
        bool const visible = m_Tin.GetZ(p, z, nullptr);
        EXPECT_NEAR(visible ? z : level, level, 1e-6);
        all.push_back(p);
      }
    }
    EXPECT_FALSE(all.empty());
    return all;
  }

  Dice m_Dice{TestSeed()};
  Extent m_Extent;
  TIN m_Tin;
};

TEST_F(IsolineShapes, LinesOfAPlaneAreStraight) {
  Build([](double x, double y) { return 0.3 * x - 0.7 * y; });
  for (double level : {-100.0, 0.0, 50.0}) {
    for (TPoint const& p : ExpectOnTheSurface(level))
      EXPECT_NEAR(0.3 * p.x - 0.7 * p.y, level, 1e-9);
  }
}

TEST_F(IsolineShapes, LinesOfAConeAreRings) {
  Build([](double x, double y) { return 500.0 - std::hypot(x - 500.0, y - 500.0); });
  for (double level : {150.0, 300.0}) {
    for (TPoint const& p : ExpectOnTheSurface(level)) {
      EXPECT_NEAR(500.0 - std::hypot(p.x - 500.0, p.y - 500.0), level, 15.0);
    }
  }
}

TEST_F(IsolineShapes, LinesOfASaddleAreOnTheSurface) {
  Build([](double x, double y) { return (x - 500.0) * (y - 500.0) / 100.0; });
  for (double level : {-300.0, 0.0, 200.0}) ExpectOnTheSurface(level);
}

}  // namespace
