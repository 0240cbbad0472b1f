#include "qeltin/models/CLineList.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr double LARGEST = std::numeric_limits<double>::max();

struct Box {
  double minX = 1;
  double maxX = 2;
  double minY = 3;
  double maxY = 4;

  bool operator==(Box const&) const = default;
};

Box ExtentsOf(ILineList const& list) {
  Box box;
  EXPECT_TRUE(list.GetExtents(&box.minX, &box.maxX, &box.minY, &box.maxY));
  return box;
}

TEST(CLineList, AddLineNamesTheDataFileAfterTheLine) {
  CLineList list;
  EXPECT_TRUE(list.AddLine(L"Harbour", 10, 10, 20, 30));
  EXPECT_STREQ(list.GetLine(0)->GetName(), L"Harbour");
  EXPECT_STREQ(list.GetLine(0)->GetDataFileName(), L"Harbour.MDB");
}

TEST(CLineList, ANullNameCountsAsAnEmptyOne) {
  CLineList list;
  EXPECT_TRUE(list.AddLine(nullptr, 10, 10, 20, 30));
  EXPECT_STREQ(list.GetLine(0)->GetName(), L"");
  EXPECT_STREQ(list.GetLine(0)->GetDataFileName(), L".MDB");
}

TEST(CLineList, TheNameOfAnotherLineOfTheListIsTaken) {
  CLineList list;
  list.AddLine(L"a name that is too long for the short string", 0, 0, 1, 1);
  for (int i = 0; i < 9; ++i) list.AddLine(list.GetLine(0)->GetName(), 0, 0, 1, 1);
  EXPECT_STREQ(list.GetLine(9)->GetName(), L"a name that is too long for the short string");
}

TEST(CLineList, AnAddedLineHasTwoPointsOneSegmentAndAMark) {
  CLineList list;
  list.AddLine(L"Harbour", 10, 10, 20, 30);
  CLine const& line = *list.GetLine(0);
  EXPECT_EQ(line.GetNumPoints(), 2);
  LineSegmentEnd from{};
  LineSegmentEnd to{};
  EXPECT_FALSE(line.GetSegment(1, from, to));
  ASSERT_TRUE(line.GetSegment(0, from, to));
  EXPECT_EQ(from.x, 10);
  EXPECT_EQ(from.y, 10);
  EXPECT_EQ(from.kp, 0);
  EXPECT_EQ(to.x, 20);
  EXPECT_EQ(to.y, 30);
  EXPECT_EQ(to.kp, std::sqrt(500.0));
  EXPECT_TRUE(line.IsMarked());
}

TEST(CLineList, AnAddedLineIsReadyForQueries) {
  CLineList list;
  list.AddLine(L"", 0, 0, 0, 100);
  CurvedCenterLine const& center_line = *list.GetLine(0)->GetCenterLine();
  EXPECT_TRUE(center_line.HaveCenterLine());
  double offset = 0.0;
  double travel = 0.0;
  EXPECT_TRUE(center_line.GetOffsetAndTravel({7, 30, 0}, offset, travel));
  EXPECT_EQ(offset, 7.0);
  EXPECT_EQ(travel, 30.0);
}

TEST(CLineList, AddLineCopiesTheWholeLine) {
  CLine line;
  line.SetName(L"own");
  line.SetDataFileName(L"other.MDB");
  line.SetAttribute(1, 5);
  line.GetCenterLine()->AddCurvedPoint(0, 0, 0, 1);
  line.GetCenterLine()->AddCurvedPoint(0, 50, 5, 1);
  CLineList list;
  EXPECT_TRUE(list.AddLine(line));
  CLine& copy = *list.GetLine(0);
  EXPECT_STREQ(copy.GetDataFileName(), L"other.MDB");
  EXPECT_EQ(copy.GetAttribute(1), 5);
  EXPECT_FALSE(copy.IsMarked());
  copy.GetCenterLine()->AddCurvedPoint(50, 50, 0, 1);
  EXPECT_EQ(copy.GetNumPoints(), 5);
  EXPECT_EQ(line.GetNumPoints(), 1);
}

TEST(CLineList, GetLineOutOfRangeIsNull) {
  CLineList list;
  EXPECT_EQ(list.GetLine(0), nullptr);
  list.AddLine(L"a", 0, 0, 1, 1);
  CLineList const& const_list = list;
  EXPECT_EQ(list.GetLine(1), nullptr);
  EXPECT_EQ(const_list.GetLine(1), nullptr);
  EXPECT_EQ(list.GetLine(-1), nullptr);
  EXPECT_EQ(const_list.GetLine(0), list.GetLine(0));
  EXPECT_NE(list.GetLine(0), nullptr);
}

TEST(CLineList, RemoveLineOnAnEmptyListIsFalse) {
  CLineList list;
  CLine line;
  EXPECT_FALSE(list.RemoveLine(&line));
  EXPECT_FALSE(list.RemoveLine(nullptr));
}

TEST(CLineList, RemoveLineMovesLaterLinesDown) {
  CLineList list;
  for (wchar_t const* name : {L"a", L"b", L"c", L"d"}) list.AddLine(name, 0, 0, 1, 1);
  EXPECT_TRUE(list.RemoveLine(list.GetLine(1)));
  ASSERT_EQ(list.GetNumLines(), 3);
  EXPECT_STREQ(list.GetLine(0)->GetName(), L"a");
  EXPECT_STREQ(list.GetLine(1)->GetName(), L"c");
  EXPECT_STREQ(list.GetLine(2)->GetName(), L"d");
  EXPECT_TRUE(list.RemoveLine(list.GetLine(2)));
  EXPECT_TRUE(list.RemoveLine(list.GetLine(0)));
  EXPECT_STREQ(list.GetLine(0)->GetName(), L"c");
}

TEST(CLineList, RemoveLineRefusesWhatIsNotItsOwn) {
  CLineList list;
  list.AddLine(L"a", 0, 0, 1, 1);
  CLine stranger;
  EXPECT_FALSE(list.RemoveLine(&stranger));
  EXPECT_FALSE(list.RemoveLine(nullptr));
  EXPECT_EQ(list.GetNumLines(), 1);
}

TEST(CLineList, ExtentsTakeInTheOrigin) {
  CLineList list;
  list.AddLine(L"Harbour", 10, 10, 20, 30);
  EXPECT_EQ(ExtentsOf(list), (Box{0, 20, 0, 30}));
  list.AddLine(L"Quay", -5, 3, -2, -7);
  EXPECT_EQ(ExtentsOf(list), (Box{-5, 20, -7, 30}));
}

TEST(CLineList, ALineOfOnePointCountsAsTheOriginAlone) {
  CLine line;
  line.GetCenterLine()->AddCurvedPoint(50, 60, 0, 1);
  CLineList list;
  list.AddLine(line);
  EXPECT_EQ(ExtentsOf(list), (Box{0, 0, 0, 0}));
}

TEST(CLineList, ExtentsOfNothingAreTheInitialValues) {
  CLineList list;
  EXPECT_EQ(ExtentsOf(list), (Box{LARGEST, -LARGEST, LARGEST, -LARGEST}));
  list.AddLine(CLine());
  EXPECT_EQ(ExtentsOf(list), (Box{LARGEST, -LARGEST, LARGEST, -LARGEST}));
}

TEST(CLineList, ExtentsTakeInTheCentresOfArcs) {
  CLine line;
  line.GetCenterLine()->AddCurvedPoint(0, 0, 0, 1);
  line.GetCenterLine()->AddElem({Point(500, 600, 0), 0, 0, POINT_ARC_CENTER, 10, 0, L""});
  line.GetCenterLine()->AddCurvedPoint(1, 1, 0, 1);
  CLineList list;
  list.AddLine(line);
  EXPECT_EQ(ExtentsOf(list), (Box{0, 500, 0, 600}));
}

}  // namespace
