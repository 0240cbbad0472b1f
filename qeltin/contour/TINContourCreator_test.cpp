#include "qeltin/contour/TINContourCreator.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <vector>

#include "testing/HandMadeMesh.h"

namespace {

using qeltin::testing::HandMadeMesh;
using Point = GTL::Point2D<double>;

std::atomic<bool> const RUNNING{true};
std::atomic<bool> const STOPPED{false};

std::vector<Point> PointsOf(Contour const& contour) {
  std::vector<Point> points;
  for (int i = 0; i < contour.NumPoints(); ++i) points.push_back(contour[i]);
  return points;
}

// A pyramid of `sides` triangles about a summit of height 10 at the origin, its foot at 0.
class Pyramid : public HandMadeMesh {
 public:
  explicit Pyramid(int sides) {
    TPoint* const summit = Point(0, 0, 10);
    std::vector<TPoint*> foot;
    for (int i = 0; i < sides; ++i) {
      double const turn = 2 * 3.141592653589793 * i / sides;
      foot.push_back(Point(10 * std::cos(turn), 10 * std::sin(turn), 0));
    }
    for (int i = 0; i < sides; ++i) {
      faces.push_back(LayClockwise(summit, foot[static_cast<std::size_t>(i)],
                                   foot[static_cast<std::size_t>((i + 1) % sides)]));
    }
    for (int i = 0; i < sides; ++i) {
      Link(faces[static_cast<std::size_t>(i)], faces[static_cast<std::size_t>((i + 1) % sides)]);
    }
  }
  std::vector<TTriangle*> faces;
};

ContourList ContoursOf(TIN const& tin, double level) {
  TINContourCreator creator(&tin);
  ContourList list;
  creator.AddLevel(level, list, RUNNING);
  return list;
}

TEST(TINContourCreator, WithoutASurfaceAddsNothing) {
  TINContourCreator creator;
  ContourList list;
  EXPECT_EQ(creator.GetTIN(), nullptr);
  EXPECT_EQ(creator.AddLevel(1.0, list, RUNNING), 0);
  EXPECT_EQ(creator.AddLevels({1.0, 2.0}, list, RUNNING), 0);
  EXPECT_TRUE(list.IsEmpty());
}

TEST(TINContourCreator, NoLevelsAddNothing) {
  Pyramid const pyramid(6);
  TINContourCreator creator;
  creator.SetTIN(&pyramid.tin);
  ContourList list;
  EXPECT_EQ(creator.AddLevels({}, list, RUNNING), 0);
}

TEST(TINContourCreator, ALevelBeyondTheHeightsAddsNothingButLiftsWhatIsNear) {
  Pyramid const pyramid(6);
  TPoint const* const foot = pyramid.tin.GetPoint(1);
  EXPECT_EQ(ContoursOf(pyramid.tin, 20.0).Size(), 0);
  EXPECT_EQ(foot->z, 0.0);
  EXPECT_EQ(ContoursOf(pyramid.tin, -0.5e-8).Size(), 0);
  EXPECT_EQ(foot->z, 1e-8);
}

TEST(TINContourCreator, ARingEndsWithADoubledPointAndStaysOpen) {
  Pyramid const pyramid(6);
  ContourList const list = ContoursOf(pyramid.tin, 5.0);
  ASSERT_EQ(list.Size(), 1);
  Contour const& ring = list[0];
  ASSERT_EQ(ring.NumPoints(), 7);
  EXPECT_FALSE(ring.IsClosed());
  bool const doubled_last = ring[5].Dist2D(ring[6], false) < 1e-12;
  bool const doubled_first = ring[0].Dist2D(ring[1], false) < 1e-12;  // where it was reversed
  EXPECT_TRUE(doubled_last || doubled_first);
}

TEST(TINContourCreator, AStartOnTheEdgeOfTheStructureClosesAnOpenLine) {
  HandMadeMesh mesh;
  TTriangle* const west =
      mesh.LayClockwise(mesh.Point(0, 0, 0), mesh.Point(5, 10, 10), mesh.Point(10, 0, 0));
  TTriangle* const east =
      mesh.LayClockwise(mesh.Point(5, 10, 10), mesh.Point(15, 10, 10), mesh.Point(10, 0, 0));
  // By address, so that the two share corners.
  east->m_pVertex[0] = west->m_pVertex[1];
  east->m_pVertex[2] = west->m_pVertex[2];
  mesh.Link(west, east);
  ASSERT_EQ(west->m_pAdjacent[0], nullptr);

  ContourList const list = ContoursOf(mesh.tin, 5.0);
  ASSERT_EQ(list.Size(), 1);
  EXPECT_TRUE(list[0].IsClosed());
  EXPECT_EQ(list[0].NumPoints(), 3);
}

TEST(TINContourCreator, BetweenTwoEdgesOfTheStructureTwoPointsAtTheOrigin) {
  HandMadeMesh mesh;
  mesh.LayClockwise(mesh.Point(100, 100, 0), mesh.Point(105, 110, 10), mesh.Point(110, 100, 0));
  ContourList const list = ContoursOf(mesh.tin, 5.0);
  ASSERT_EQ(list.Size(), 1);
  EXPECT_EQ(PointsOf(list[0]), (std::vector<Point>{{0, 0}, {0, 0}}));
}

TEST(TINContourCreator, BesideAHiddenTriangleALineOfTwoPoints) {
  HandMadeMesh mesh;
  std::vector<TTriangle*> const strip = mesh.LayStrip(3);
  for (int i = 0; i < 5; ++i) mesh.tin.GetPoint(i)->z = i % 2 == 0 ? 0.0 : 10.0;
  strip[0]->m_Flags |= TRI_OUTSIDE;
  strip[2]->m_Flags |= TRI_FILTERED;
  ContourList const list = ContoursOf(mesh.tin, 5.0);
  ASSERT_EQ(list.Size(), 1);
  ASSERT_EQ(list[0].NumPoints(), 2);
  EXPECT_EQ(list[0][0].y, 0.5);
  EXPECT_EQ(list[0][1].y, 0.5);
  EXPECT_EQ(std::fabs(list[0][1].x - list[0][0].x), 1.0);
}

TEST(TINContourCreator, BetweenAHiddenTriangleAndTheEdgeOneOfTheTwoPointsIsTheOrigin) {
  HandMadeMesh mesh;
  TPoint* const a = mesh.Point(100, 100, 0);
  TPoint* const b = mesh.Point(100, 110, 10);
  TPoint* const c = mesh.Point(110, 110, 0);
  TTriangle* const start = mesh.Lay(a, b, c);  // crossed on side 0 and, at the edge, on side 1
  TTriangle* const hidden = mesh.LayClockwise(a, mesh.Point(90, 105, 0), b);
  mesh.Link(start, hidden);
  hidden->m_Flags |= TRI_OUTSIDE;
  ContourList const list = ContoursOf(mesh.tin, 5.0);
  ASSERT_EQ(list.Size(), 1);
  EXPECT_EQ(PointsOf(list[0]), (std::vector<Point>{{100, 105}, {0, 0}}));
}

TEST(TINContourCreator, AVertexAtTheLevelIsLiftedAndTheLinePassesBelowIt) {
  Pyramid pyramid(6);
  TPoint* const summit = pyramid.tin.GetPoint(0);
  summit->z = 10.0;
  ContourList const list = ContoursOf(pyramid.tin, 10.0);
  EXPECT_EQ(summit->z, 10.0 + 1e-8);
  ASSERT_EQ(list.Size(), 1);
  EXPECT_EQ(list[0].NumPoints(), 7);
  for (Point const& p : PointsOf(list[0])) EXPECT_LT(std::hypot(p.x, p.y), 1e-7);
}

TEST(TINContourCreator, AVertexOfSeveralTrianglesIsLiftedTwiceWhereOnceIsTooLittle) {
  Pyramid const pyramid(6);
  TPoint* const summit = pyramid.tin.GetPoint(0);
  double const level = 1.0;
  summit->z = level - 0.5e-8;
  double expected = summit->z;
  while (std::fabs(expected - level) < 1e-8) expected += 1e-8;
  ContoursOf(pyramid.tin, level);
  EXPECT_EQ(summit->z, expected);
  EXPECT_NEAR(summit->z - level, 1.5e-8, 1e-15);
}

TEST(TINContourCreator, AVertexOfOneTriangleIsLiftedOnce) {
  HandMadeMesh mesh;
  double const level = 1.0;
  TPoint* const low = mesh.Point(0, 0, level - 0.5e-8);
  mesh.LayClockwise(low, mesh.Point(0, 10, 5), mesh.Point(10, 0, 5));
  ContoursOf(mesh.tin, level);
  EXPECT_EQ(low->z, level - 0.5e-8 + 1e-8);
}

TEST(TINContourCreator, AFlatTriangleHoldsNoPointAndEndsAWalk) {
  HandMadeMesh mesh;
  std::vector<TTriangle*> const strip = mesh.LayStrip(5);
  double const heights[] = {0, 10, 0, 10, 4.9999999999, 5, 5};
  for (int i = 0; i < 7; ++i) mesh.tin.GetPoint(i)->z = heights[i];
  TINContourCreator creator(&mesh.tin);
  ContourList list;
  mesh.tin.GetPoint(4)->z = 5.0;
  creator.AddLevel(5.0, list, RUNNING);
  EXPECT_TRUE((strip[4]->m_Flags & TRI_VISITED) != 0);
  for (int i = 0; i < list.Size(); ++i) {
    for (Point const& p : PointsOf(list[i])) EXPECT_LE(p.x, 4.0);
  }
}

TEST(TINContourCreator, OnASlopeThatRisesToTheEastALineRunsFromSouthToNorth) {
  HandMadeMesh mesh;
  std::vector<TPoint*> points;
  for (int i = 0; i < 12; ++i) points.push_back(mesh.Point(i % 2 * 10.0, i * 5.0, i % 2 * 10.0));
  TTriangle* last = nullptr;
  for (std::size_t i = 0; i + 2 < points.size(); ++i) {
    TTriangle* const t = mesh.LayClockwise(points[i], points[i + 1], points[i + 2]);
    if (last != nullptr) mesh.Link(last, t);
    last = t;
  }
  ContourList const list = ContoursOf(mesh.tin, 5.0);
  ASSERT_EQ(list.Size(), 1);
  ASSERT_EQ(list[0].NumPoints(), 11);
  for (int i = 1; i < 10; ++i) EXPECT_LT(list[0][i - 1].y, list[0][i].y);
}

double TwiceArea(Contour const& ring) {
  double sum = 0.0;
  for (int i = 0; i < ring.NumPoints(); ++i) {
    Point const& p = ring[i];
    Point const& q = ring[(i + 1) % ring.NumPoints()];
    sum += p.x * q.y - q.x * p.y;
  }
  return sum;
}

TEST(TINContourCreator, ARingRunsClockwiseAboutASummitAndTheOtherWayAboutAPit) {
  Pyramid const summit(6);
  EXPECT_LT(TwiceArea(ContoursOf(summit.tin, 5.0)[0]), 0.0);
  Pyramid const pit(6);
  pit.tin.GetPoint(0)->z = -10.0;
  EXPECT_GT(TwiceArea(ContoursOf(pit.tin, -5.0)[0]), 0.0);
}

TEST(TINContourCreator, AddsLevelsAsGivenEachBatchAtItsPlace) {
  Pyramid const pyramid(6);
  TINContourCreator creator(&pyramid.tin);
  ContourList list;
  EXPECT_EQ(creator.AddLevels({7.0, 3.0, 7.0, 5.0}, list, RUNNING), 4);
  std::vector<double> levels;
  for (int i = 0; i < list.Size(); ++i) levels.push_back(list[i].Level());
  EXPECT_EQ(levels, (std::vector<double>{3.0, 5.0, 7.0, 7.0}));
}

TEST(TINContourCreator, StoppedFromTheStartAddsNothingAndKeepsTheMarks) {
  Pyramid const pyramid(6);
  pyramid.faces[2]->m_Flags |= TRI_VISITED;
  TINContourCreator creator(&pyramid.tin);
  ContourList list;
  EXPECT_EQ(creator.AddLevel(5.0, list, STOPPED), 0);
  EXPECT_EQ(creator.AddLevels({5.0, 6.0}, list, STOPPED), 0);
  EXPECT_TRUE((pyramid.faces[2]->m_Flags & TRI_VISITED) != 0);
  EXPECT_TRUE(list.IsEmpty());
}

// Opens the own lines.
class OpenCreator : public TINContourCreator {
 public:
  using TINContourCreator::TINContourCreator;
  std::size_t Lines() const { return m_Contours.size(); }
  int AddLevel(double level, ContourList& list, std::atomic<bool> const& running) override {
    levels.push_back(level);
    return TINContourCreator::AddLevel(level, list, running);
  }
  std::vector<double> levels;
};

TEST(TINContourCreator, KeepsTheLinesOfTheLastLevel) {
  Pyramid const pyramid(6);
  OpenCreator creator(&pyramid.tin);
  ContourList list;
  creator.AddLevel(5.0, list, RUNNING);
  EXPECT_EQ(creator.Lines(), 1u);
  creator.AddLevel(6.0, list, STOPPED);
  EXPECT_EQ(creator.Lines(), 0u);
}

TEST(TINContourCreator, SeveralLevelsGoThroughTheVirtualOperation) {
  Pyramid const pyramid(6);
  OpenCreator creator(&pyramid.tin);
  ContourList list;
  EXPECT_EQ(creator.AddLevels({2.0, 4.0}, list, RUNNING), 2);
  EXPECT_EQ(creator.levels, (std::vector<double>{2.0, 4.0}));
}

TEST(TINContourCreator, CopiesAndMovesKeepTheSurface) {
  Pyramid const pyramid(6);
  TINContourCreator creator(&pyramid.tin);
  TINContourCreator const copy(creator);
  TINContourCreator const moved(std::move(creator));
  EXPECT_EQ(copy.GetTIN(), &pyramid.tin);
  EXPECT_EQ(moved.GetTIN(), &pyramid.tin);
}

}  // namespace
