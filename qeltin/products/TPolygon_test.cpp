#include "qeltin/products/TPolygon.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "testing/Formula.h"
#include "testing/MakeFigure.h"
#include "testing/reference/StatedPolygon.h"

namespace {

using namespace qeltin::testing;

std::vector<TPoint> VerticesOf(TPolygon const& polygon) {
  return {polygon.Get(0), polygon.Get(0) + polygon.GetSize()};
}

TPolygon Square() { return TPolygon({TPoint(0, 0), TPoint(0, 10), TPoint(10, 10), TPoint(10, 0)}); }

// --- The list
// -----------------------------------------------------------------------------------

TEST(TPolygon, HoldsAListBehindAVirtualTable) {
  EXPECT_TRUE(std::is_polymorphic_v<TPolygon>);
  EXPECT_TRUE(std::has_virtual_destructor_v<TPolygon>);
  EXPECT_EQ(sizeof(TPolygon), 2 * sizeof(void*));
}

TEST(TPolygon, StartsEmpty) { EXPECT_EQ(TPolygon().GetSize(), 0); }

TEST(TPolygon, CopiesAreDeep) {
  TPolygon original({TPoint(1, 2, 3)});
  TPolygon const copy(original);
  TPolygon assigned;
  assigned.Add(9, 9, 9);
  assigned = original;
  original.Get(0)->x = 7;
  EXPECT_EQ(VerticesOf(copy), std::vector{TPoint(1, 2, 3)});
  EXPECT_EQ(VerticesOf(assigned), std::vector{TPoint(1, 2, 3)});
}

TEST(TPolygon, IsMadeOfAndAssignedFromAList) {
  std::vector<TPoint> list{TPoint(1, 2, 3), TPoint(4, 5, 6)};
  TPolygon const made(list);
  TPolygon assigned({TPoint(9, 9, 9)});
  assigned = list;
  list[0].x = 7;
  EXPECT_EQ(made.Get(0)->x, 1);
  EXPECT_EQ(assigned.GetSize(), 2);
  EXPECT_EQ(assigned.Get(0)->x, 1);
}

TEST(TPolygon, AssignedToItselfStays) {
  TPolygon polygon = Square();
  TPolygon const& alias = polygon;
  polygon = alias;
  EXPECT_EQ(VerticesOf(polygon), VerticesOf(Square()));
}

TEST(TPolygon, AddAppendsAlsoWhatIsThere) {
  TPolygon polygon;
  polygon.Add(TPoint(1, 2, 3));
  polygon.Add(1, 2, 3);
  polygon.Add(4, 5, 6);
  EXPECT_EQ(VerticesOf(polygon), (std::vector{TPoint(1, 2, 3), TPoint(1, 2, 3), TPoint(4, 5, 6)}));
}

TEST(TPolygon, RemoveByPlaceTakesTheFirstExactMatch) {
  TPolygon polygon({TPoint(0, 0, 1), TPoint(1, 2, 3), TPoint(1, 2, 4)});
  polygon.Remove(1.0, 2.0);
  EXPECT_EQ(VerticesOf(polygon), (std::vector{TPoint(0, 0, 1), TPoint(1, 2, 4)}));
  polygon.Remove(1.0, 2.0000000001);
  EXPECT_EQ(polygon.GetSize(), 2);
}

TEST(TPolygon, RemoveByPointTakesAVertexOfADifferentHeight) {
  TPolygon polygon({TPoint(0, 0, 1), TPoint(1, 2, 3)});
  polygon.Remove(TPoint(1, 2, 99));
  EXPECT_EQ(VerticesOf(polygon), std::vector{TPoint(0, 0, 1)});
}

TEST(TPolygon, RemoveByIndexTakesThatVertex) {
  TPolygon polygon = Square();
  polygon.Remove(1);
  EXPECT_EQ(VerticesOf(polygon), (std::vector{TPoint(0, 0), TPoint(10, 10), TPoint(10, 0)}));
}

TEST(TPolygon, RemoveAllEmpties) {
  TPolygon polygon = Square();
  polygon.RemoveAll();
  EXPECT_EQ(polygon.GetSize(), 0);
}

TEST(TPolygon, HasVertexLooksAtTheHeightToo) {
  TPolygon const polygon({TPoint(1, 2, 3)});
  EXPECT_TRUE(polygon.HasVertex(TPoint(1, 2, 3)));
  EXPECT_FALSE(polygon.HasVertex(TPoint(1, 2, 4)));
}

TEST(TPolygon, GetGivesTheVertexItself) {
  TPolygon polygon = Square();
  polygon.Get(2)->z = 5;
  EXPECT_EQ(std::as_const(polygon).Get(2)->z, 5);
}

// --- XY_Contains
// --------------------------------------------------------------------------------

TEST(TPolygonXYContains, IsFalseEverywhereBelowThreeVertices) {
  TPolygon const line({TPoint(0, 0), TPoint(10, 10)});
  EXPECT_FALSE(line.XY_Contains(5, 5));
  EXPECT_FALSE(line.XY_Contains(2, 5));
  EXPECT_FALSE(line.XY_Contains(0, 0));
  EXPECT_FALSE(TPolygon().XY_Contains(0, 0));
}

TEST(TPolygonXYContains, LevelEdgeIsNotCounted) {
  TPolygon const square = Square();
  // On the lower edge: the left edge is behind, and only the right one counts.
  EXPECT_TRUE(square.XY_Contains(5, 0));
  // The same with a right side of two edges that meet at this level: both count.
  TPolygon const kinked(
      {TPoint(0, 0), TPoint(0, 10), TPoint(10, 10), TPoint(20, 0), TPoint(10, -10), TPoint(10, 0)});
  EXPECT_TRUE(kinked.XY_Contains(5, 0));
  EXPECT_FALSE(TPolygon({TPoint(0, 0), TPoint(5, 0), TPoint(10, 0)}).XY_Contains(3, 0));
}

TEST(TPolygonXYContains, RayThroughAVertexCountsBothEdges) {
  TPolygon const diamond({TPoint(0, 0), TPoint(10, 10), TPoint(20, 0), TPoint(10, -10)});
  EXPECT_TRUE(diamond.XY_Contains(10, 1));
  EXPECT_FALSE(diamond.XY_Contains(10, 0));
}

TEST(TPolygonXYContains, LeftAndRightEdgesAreCrossedByAPlaceOnThem) {
  TPolygon const square = Square();
  EXPECT_FALSE(square.XY_Contains(0, 5));  // left and right edge both count
  EXPECT_TRUE(square.XY_Contains(10, 5));
}

TEST(TPolygonXYContains, IgnoresHeights) {
  TPolygon const square = Square();
  EXPECT_TRUE(square.XY_Contains(TPoint(5, 5, 1e9)));
}

TEST(TPolygonXYContains, FollowsTheFormula) {
  FormulaInputs inputs;
  for (int round = 0; round < 5000; ++round) {
    std::vector<TPoint> figure;
    for (int i = inputs.Whole(0, 7); i > 0; --i) figure.push_back(inputs.AnyPoint());
    TPoint place = inputs.AnyPoint();
    if (!figure.empty() && inputs.Whole(0, 1) == 0) place.y = figure[0].y;
    ASSERT_EQ(TPolygon(figure).XY_Contains(place), stated::XY_Contains(figure, place.x, place.y));
  }
}

// --- PointInPolygon
// -----------------------------------------------------------------------------

TEST(TPolygonPointInPolygon, IsFalseWithoutVertices) {
  EXPECT_FALSE(TPolygon().PointInPolygon(TPoint(0, 0)));
}

TEST(TPolygonPointInPolygon, IsFalseOutsideOfTheBox) {
  TPolygon const square = Square();
  EXPECT_FALSE(square.PointInPolygon(TPoint(-1, 5)));
  EXPECT_FALSE(square.PointInPolygon(TPoint(11, 5)));
  EXPECT_FALSE(square.PointInPolygon(TPoint(5, -1)));
  EXPECT_FALSE(square.PointInPolygon(TPoint(5, 11)));
}

TEST(TPolygonPointInPolygon, TakesCareOfVerticesThatAreLevel) {
  TPolygon const diamond({TPoint(0, 0), TPoint(10, 10), TPoint(20, 0), TPoint(10, -10)});
  EXPECT_TRUE(diamond.PointInPolygon(TPoint(10, 0)));
}

TEST(TPolygonPointInPolygon, AnswersAVertexAsThePlaceJustBesideIt) {
  TPolygon const square = Square();
  // Just beside means: on the ray.
  EXPECT_EQ(square.PointInPolygon(TPoint(0, 0)), square.PointInPolygon(TPoint(1e-6, 1e-7)));
  EXPECT_TRUE(square.PointInPolygon(TPoint(0, 0)));
  EXPECT_FALSE(square.PointInPolygon(TPoint(0, 10)));
  EXPECT_FALSE(square.PointInPolygon(TPoint(10, 10)));
  EXPECT_FALSE(square.PointInPolygon(TPoint(10, 0)));
}

TEST(TPolygonPointInPolygon, LineIsEmpty) {
  EXPECT_FALSE(TPolygon({TPoint(0, 0), TPoint(10, 10)}).PointInPolygon(TPoint(5, 5)));
  EXPECT_FALSE(TPolygon({TPoint(5, 5)}).PointInPolygon(TPoint(5, 5)));
}

TEST(TPolygonPointInPolygon, FollowsTheFormula) {
  FormulaInputs inputs;
  for (int round = 0; round < 5000; ++round) {
    std::vector<TPoint> figure;
    for (int i = inputs.Whole(0, 7); i > 0; --i) figure.push_back(inputs.AnyPoint());
    TPoint place = inputs.AnyPoint();
    if (!figure.empty() && inputs.Whole(0, 1) == 0) place.y = figure[0].y;
    ASSERT_EQ(TPolygon(figure).PointInPolygon(place), stated::PointInPolygon(figure, place));
  }
}

// --- Triangulate
// --------------------------------------------------------------------------------

TEST(TPolygonTriangulate, IsFalseAndEmptiesTheListBelowThreeVertices) {
  std::vector<TPoint> triangles{TPoint(1, 2, 3)};
  EXPECT_FALSE(TPolygon({TPoint(0, 0), TPoint(1, 1)}).Triangulate(triangles));
  EXPECT_TRUE(triangles.empty());
}

TEST(TPolygonTriangulate, GivesTheThreePointsOfATriangle) {
  std::vector<TPoint> const corners{TPoint(0, 0, 1), TPoint(0, 10, 2), TPoint(10, 0, 3)};
  std::vector<TPoint> triangles{TPoint(1, 2, 3)};
  EXPECT_TRUE(TPolygon(corners).Triangulate(triangles));
  EXPECT_EQ(triangles, corners);
}

TEST(TPolygonTriangulate, SquareGivesTheEarAtItsFirstVertexFirst) {
  std::vector<TPoint> triangles;
  EXPECT_TRUE(Square().Triangulate(triangles));
  EXPECT_EQ(triangles, (std::vector{TPoint(0, 0), TPoint(0, 10), TPoint(10, 10), TPoint(0, 0),
                                    TPoint(10, 10), TPoint(10, 0)}));
}

TEST(TPolygonTriangulate, SmallestCircleGoesFirst) {
  TPolygon const polygon({TPoint(0, 0), TPoint(0, 10), TPoint(10, 10), TPoint(10, 0.5),
                          TPoint(10, 0), TPoint(9.5, 0)});
  std::vector<TPoint> triangles;
  EXPECT_TRUE(polygon.Triangulate(triangles));
  ASSERT_EQ(triangles.size(), 12u);
  EXPECT_EQ(triangles[0], TPoint(10, 0.5));
  EXPECT_EQ(triangles[1], TPoint(10, 0));
  EXPECT_EQ(triangles[2], TPoint(9.5, 0));
}

TEST(TPolygonTriangulate, RepeatedVertexStillGivesTwoTrianglesLessThanVertices) {
  TPolygon polygon = Square();
  polygon.Add(10, 0, 0);
  polygon.Add(0, 0, 0);
  std::vector<TPoint> triangles;
  EXPECT_TRUE(polygon.Triangulate(triangles));
  EXPECT_EQ(triangles.size(), 3u * 4u);
}

TEST(TPolygonTriangulate, WithoutAnEarTheFirstCornerIsClipped) {
  TPolygon const line({TPoint(0, 0), TPoint(1, 0), TPoint(2, 0), TPoint(3, 0)});
  std::vector<TPoint> triangles;
  EXPECT_TRUE(line.Triangulate(triangles));
  EXPECT_EQ(triangles, (std::vector{TPoint(0, 0), TPoint(1, 0), TPoint(2, 0), TPoint(0, 0),
                                    TPoint(2, 0), TPoint(3, 0)}));
}

// --- Length
// -------------------------------------------------------------------------------------

TEST(TPolygonLength, NeedsTheFirstVertexAgainToCountTheClosingEdge) {
  TPolygon polygon = Square();
  EXPECT_EQ(polygon.Length(), 30.0);
  polygon.Add(0, 0, 0);
  EXPECT_EQ(polygon.Length(), 40.0);
}

TEST(TPolygonLength, IsZeroBelowTwoVertices) {
  EXPECT_EQ(TPolygon().Length(), 0.0);
  EXPECT_EQ(TPolygon({TPoint(3, 4)}).Length(), 0.0);
}

TEST(TPolygonLength, IgnoresHeights) {
  EXPECT_EQ(TPolygon({TPoint(0, 0, 0), TPoint(3, 4, 100)}).Length(), 5.0);
}

}  // namespace
