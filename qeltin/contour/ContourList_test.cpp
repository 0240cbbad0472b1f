#include "qeltin/contour/ContourList.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

Contour WithPoints(double level, int points) {
  Contour contour(level);
  for (int i = 0; i < points; ++i) contour.Line().AddBack({1.0 * i, level});
  return contour;
}

std::vector<int> CountsOf(ContourList const& list) {
  std::vector<int> counts;
  for (int i = 0; i < list.Size(); ++i) counts.push_back(list[i].NumPoints());
  return counts;
}

ContourList ListOfLevels(std::vector<double> const& levels) {
  ContourList list;
  for (double const level : levels) list.Add(Contour(level));
  return list;
}

TEST(Contour, ClearKeepsTheLevelAndTheBox) {
  Contour contour = WithPoints(7.0, 3);
  contour.Clear();
  EXPECT_TRUE(contour.IsEmpty());
  EXPECT_EQ(contour.Level(), 7.0);
  GTL::Extents3D<double> box;
  contour.Line().GetExtents(box);
  EXPECT_EQ(box.GetMax().x, 2.0);
}

TEST(Contour, ChangingACopyLeavesTheSource) {
  Contour const source = WithPoints(1.0, 2);
  {
    Contour copy(source);
    copy.Line().AddBack({9, 9});
    copy.Reverse();
    EXPECT_EQ(copy.NumPoints(), 3);
  }
  EXPECT_EQ(source.NumPoints(), 2);
  EXPECT_EQ(source[0], GTL::Point2D<double>(0.0, 1.0));
}

TEST(Contour, AMoveKeepsItsSource) {
  Contour source = WithPoints(3.0, 2);
  Contour moved(std::move(source));
  EXPECT_EQ(source.NumPoints(), 2);  // NOLINT(bugprone-use-after-move): a move is a copy
  Contour assigned(1.0);
  assigned = std::move(moved);
  EXPECT_EQ(moved.NumPoints(), 2);  // NOLINT(bugprone-use-after-move): a move is a copy
  EXPECT_EQ(assigned.Level(), 3.0);
}

TEST(Contour, ComparesLevelsAlone) {
  EXPECT_TRUE(WithPoints(1.0, 9) < WithPoints(2.0, 1));
  EXPECT_FALSE(WithPoints(2.0, 1) < WithPoints(2.0, 2));
}

TEST(Contour, LengthAndClosing) {
  Contour contour(0.0);
  contour.Line().AddBack({0, 0});
  EXPECT_EQ(contour.Length(), 0.0);
  contour.Line().AddBack({3, 4});
  EXPECT_EQ(contour.Length(), 5.0);
  EXPECT_FALSE(contour.IsClosed());
  contour.Line().AddBack({0, 0});
  EXPECT_TRUE(contour.IsClosed());
}

TEST(ContourList, FindInAnEmptyListYieldsMinusOne) { EXPECT_EQ(ContourList().Find(1.0, 0), -1); }

TEST(ContourList, FindsTheFirstOfALevelFromAStart) {
  ContourList const list = ListOfLevels({1.0, 2.0, 2.0, 3.0});
  EXPECT_EQ(list.Find(2.0, 0), 1);
  EXPECT_EQ(list.Find(2.0, 2), 2);
  EXPECT_EQ(list.Find(2.0, 3), -1);
  EXPECT_EQ(list.Find(2.5, 0), -1);
  EXPECT_EQ(list.Find(2.0, list.Size()), -1);
}

TEST(ContourList, ANewContourStandsBeforeThoseOfItsLevel) {
  ContourList list;
  list.Add(WithPoints(2.0, 1));
  list.Add(WithPoints(2.0, 2));
  list.Add(WithPoints(1.0, 3));
  list.Add(WithPoints(3.0, 4));
  list.Add(WithPoints(2.0, 5));
  EXPECT_EQ(CountsOf(list), (std::vector<int>{3, 5, 2, 1, 4}));
}

TEST(ContourList, ABatchGoesInWholeAtThePlaceOfItsFirstLevel) {
  ContourList list = ListOfLevels({1.0, 2.0, 3.0});
  list.Add(std::deque<Contour>{WithPoints(2.0, 1), WithPoints(9.0, 2), WithPoints(0.0, 3)});
  EXPECT_EQ(CountsOf(list), (std::vector<int>{0, 1, 2, 3, 0, 0}));
  EXPECT_EQ(list[2].Level(), 9.0);
}

TEST(ContourList, AnEmptyBatchDoesNothing) {
  ContourList list = ListOfLevels({1.0});
  list.Add(std::deque<Contour>());
  EXPECT_EQ(list.Size(), 1);
}

TEST(ContourList, AMoveLeavesTheSourceEmpty) {
  ContourList source = ListOfLevels({1.0, 2.0});
  ContourList moved(std::move(source));
  EXPECT_TRUE(source.IsEmpty());  // NOLINT(bugprone-use-after-move): promised to be empty
  ContourList assigned = ListOfLevels({5.0});
  assigned = std::move(moved);
  EXPECT_TRUE(moved.IsEmpty());  // NOLINT(bugprone-use-after-move): promised to be empty
  EXPECT_EQ(assigned.Size(), 2);
}

TEST(ContourList, AssigningToItselfDoesNothing) {
  ContourList list = ListOfLevels({1.0, 2.0});
  ContourList& same = list;
  list = same;
  EXPECT_EQ(list.Size(), 2);
  list = std::move(same);
  EXPECT_EQ(list.Size(), 2);
}

TEST(ContourList, RemovesByIndexAndClears) {
  ContourList list = ListOfLevels({1.0, 2.0, 3.0});
  list.Remove(1);
  EXPECT_EQ(list.Find(2.0, 0), -1);
  EXPECT_EQ(list.Size(), 2);
  list.Clear();
  EXPECT_TRUE(list.IsEmpty());
}

}  // namespace
