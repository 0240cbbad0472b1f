#include "qeltin/platform/gtl/Polyline.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Point = GTL::Point2D<double>;
using Line = GTL::Polyline<Point>;
using Extents = GTL::Extents3D<double>;

Line LineOf(std::vector<Point> const& points) {
  Line line;
  for (Point const& p : points) line.AddBack(p);
  return line;
}

std::vector<Point> PointsOf(Line const& line) {
  std::vector<Point> points;
  for (int i = 0; i < line.NumPoints(); ++i) points.push_back(line[i]);
  return points;
}

void ExpectBox(Line const& line, double min_x, double min_y, double max_x, double max_y) {
  Extents box;
  line.GetExtents(box);
  EXPECT_EQ(box.GetMin().x, min_x);
  EXPECT_EQ(box.GetMin().y, min_y);
  EXPECT_EQ(box.GetMax().x, max_x);
  EXPECT_EQ(box.GetMax().y, max_y);
  EXPECT_EQ(box.GetMin().z, 0.0);
  EXPECT_EQ(box.GetMax().z, 0.0);
}

class Shift final : public GTL::TransformFunctor<Point> {
 public:
  void operator()(Point& p) override { p = p + Point(10, 20); }
};

TEST(Polyline, StartsEmptyWithoutABox) {
  Line const line;
  EXPECT_EQ(line.NumPoints(), 0);
  EXPECT_EQ(line.Dimension(), 0);
  Extents box;
  line.GetExtents(box);
  EXPECT_FALSE(box.IsValid());
}

TEST(Polyline, AddsAtBothEnds) {
  Line line = LineOf({{1, 2}, {3, 4}});
  line.AddFront({-1, 0});
  EXPECT_EQ(PointsOf(line), (std::vector<Point>{{-1, 0}, {1, 2}, {3, 4}}));
  ExpectBox(line, -1, 0, 3, 4);
}

TEST(Polyline, AddsAPointOfItsOwn) {
  Line line = LineOf({{1, 2}});
  for (int i = 0; i < 1000; ++i) line.AddBack(line[0]);
  EXPECT_EQ(line[1000], Point(1, 2));
}

TEST(Polyline, ACopyDetachesBeforeItWrites) {
  Line const source = LineOf({{1, 1}, {2, 2}});
  Line copy(source);
  copy.AddBack({3, 3});
  copy.SetPoint(0, {9, 9});
  EXPECT_EQ(PointsOf(source), (std::vector<Point>{{1, 1}, {2, 2}}));
  EXPECT_EQ(PointsOf(copy), (std::vector<Point>{{9, 9}, {2, 2}, {3, 3}}));
}

TEST(Polyline, TheSourceSurvivesItsCopiesAndTheyIt) {
  Line kept;
  {
    Line const source = LineOf({{1, 1}, {2, 2}});
    { Line const copy(source); }
    EXPECT_EQ(source.NumPoints(), 2);
    kept = source;
  }
  EXPECT_EQ(PointsOf(kept), (std::vector<Point>{{1, 1}, {2, 2}}));
}

TEST(Polyline, AMoveKeepsItsSource) {
  Line source = LineOf({{1, 1}, {2, 2}});
  Line const moved(std::move(source));
  EXPECT_EQ(source.NumPoints(), 2);  // NOLINT(bugprone-use-after-move): a move is a copy
  EXPECT_EQ(moved.NumPoints(), 2);
}

TEST(Polyline, AssignsToItselfAndToOneThatSharesItsPoints) {
  Line line = LineOf({{1, 1}, {2, 2}});
  Line copy(line);
  Line& same = line;
  line = same;
  line = copy;
  EXPECT_EQ(line.NumPoints(), 2);
  EXPECT_EQ(copy.NumPoints(), 2);
}

TEST(Polyline, SetPointOutsideTheBoxLeavesTheBoxStale) {
  Line line = LineOf({{0, 0}, {5, 5}, {10, 10}});
  line.SetPoint(1, {50, 50});
  ExpectBox(line, 0, 0, 10, 10);
}

TEST(Polyline, SetPointOnTheBoxBuildsItAnew) {
  Line line = LineOf({{0, 0}, {5, 5}, {10, 10}});
  line.SetPoint(2, {7, 6});
  ExpectBox(line, 0, 0, 7, 6);
}

TEST(Polyline, RemovingAPointThatTouchesTheBoxShrinksIt) {
  Line line = LineOf({{0, 0}, {5, 5}, {10, 10}});
  line.RemoveBack();
  ExpectBox(line, 0, 0, 5, 5);
  line.RemoveFront();
  ExpectBox(line, 5, 5, 5, 5);
}

TEST(Polyline, RemovingAnInnerPointKeepsTheBox) {
  Line line = LineOf({{5, 5}, {0, 0}, {10, 10}});
  line.RemoveFront();
  ExpectBox(line, 0, 0, 10, 10);
}

TEST(Polyline, ClearKeepsTheBox) {
  Line line = LineOf({{0, 1}, {10, 11}});
  line.Clear();
  EXPECT_EQ(line.NumPoints(), 0);
  ExpectBox(line, 0, 1, 10, 11);
}

TEST(Polyline, InsertTakesInTheOtherBox) {
  Line line = LineOf({{0, 0}, {1, 1}});
  Line const other = LineOf({{5, -5}, {6, 6}});
  line.Insert(1, other);
  EXPECT_EQ(PointsOf(line), (std::vector<Point>{{0, 0}, {5, -5}, {6, 6}, {1, 1}}));
  ExpectBox(line, 0, -5, 6, 6);
}

TEST(Polyline, InsertTakesInAStaleBoxOfTheOther) {
  Line line = LineOf({{0, 0}});
  Line other = LineOf({{5, 5}, {9, 9}});
  other.Clear();
  line.Insert(1, other);
  EXPECT_EQ(line.NumPoints(), 1);
  ExpectBox(line, 0, 0, 9, 9);
}

TEST(Polyline, InsertsIntoItself) {
  Line line = LineOf({{0, 0}, {1, 1}});
  line.Insert(1, line);
  EXPECT_EQ(PointsOf(line), (std::vector<Point>{{0, 0}, {0, 0}, {1, 1}, {1, 1}}));
}

TEST(Polyline, InsertIntoOneThatSharesPointsLeavesTheOther) {
  Line line = LineOf({{0, 0}, {1, 1}});
  Line const other(line);
  line.Insert(2, other);
  EXPECT_EQ(line.NumPoints(), 4);
  EXPECT_EQ(other.NumPoints(), 2);
}

TEST(Polyline, ReverseKeepsTheMiddlePoint) {
  Line line = LineOf({{1, 0}, {2, 0}, {3, 0}});
  line.Reverse();
  EXPECT_EQ(PointsOf(line), (std::vector<Point>{{3, 0}, {2, 0}, {1, 0}}));
}

TEST(Polyline, ReverseOfOnePointOrNoneChangesNothing) {
  Line none;
  none.Reverse();
  EXPECT_EQ(none.NumPoints(), 0);
  Line one = LineOf({{1, 2}});
  one.Reverse();
  EXPECT_EQ(one[0], Point(1, 2));
}

TEST(Polyline, LengthOfOnePointIsZero) {
  EXPECT_EQ(Line().Length(false), 0.0);
  EXPECT_EQ(LineOf({{3, 4}}).Length(false), 0.0);
}

TEST(Polyline, LengthSumsTheParts) {
  Line const line = LineOf({{0, 0}, {3, 4}, {3, 5}});
  EXPECT_EQ(line.Length(false), 6.0);
  EXPECT_EQ(line.Length(true), 26.0);
}

TEST(Polyline, IsClosedComparesExactly) {
  EXPECT_TRUE(LineOf({{1, 1}, {2, 2}, {1, 1}}).IsClosed());
  EXPECT_FALSE(LineOf({{1, 1}, {2, 2}, {1, 1.0000000001}}).IsClosed());
  EXPECT_TRUE(LineOf({{1, 1}}).IsClosed());
}

TEST(Polyline, SegmentsRunFromAPointToTheNext) {
  Line const line = LineOf({{0, 0}, {3, 4}, {5, 6}});
  GTL::Line<Point> const segment = line.GetSegment(1);
  EXPECT_EQ(segment.GetBegin(), Point(3, 4));
  EXPECT_EQ(segment.GetEnd(), Point(5, 6));
}

TEST(Polyline, TransformMovesEveryPointAndTheBox) {
  Line line = LineOf({{0, 0}, {1, 2}});
  Line const copy(line);
  Shift shift;
  line.Transform(shift);
  EXPECT_EQ(PointsOf(line), (std::vector<Point>{{10, 20}, {11, 22}}));
  EXPECT_EQ(PointsOf(copy), (std::vector<Point>{{0, 0}, {1, 2}}));
  ExpectBox(line, 10, 20, 11, 22);
}

TEST(Extents3D, AnInvalidBoxBecomesTheFirstPoint) {
  Extents box;
  EXPECT_FALSE(box.IsValid());
  box.Update({1, 2, 3});
  EXPECT_TRUE(box.IsValid());
  EXPECT_EQ(box.GetMin().z, 3.0);
  box.Update({-1, 5, 3});
  EXPECT_EQ(box.GetMin().x, -1.0);
  EXPECT_EQ(box.GetMax().y, 5.0);
  box.Reset();
  EXPECT_FALSE(box.IsValid());
}

}  // namespace
