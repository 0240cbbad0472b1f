#include "qeltin/models/CLine.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

CLine LineWithArc() {
  CLine line;
  line.GetCenterLine()->AddCurvedPoint(0, 0, 0, 1);
  line.GetCenterLine()->AddCurvedPoint(0, 100, 20, 1);
  line.GetCenterLine()->AddCurvedPoint(100, 100, 0, 1);
  line.GetCenterLine()->SetStartKp(1000);
  line.GetCenterLine()->Init(0.0, false);
  return line;
}

TEST(CLine, StartsEmpty) {
  CLine const line;
  EXPECT_STREQ(line.GetName(), L"");
  EXPECT_STREQ(line.GetDataFileName(), L"");
  EXPECT_EQ(line.GetNumPoints(), 0);
  EXPECT_FALSE(line.IsMarked());
  for (int i = 0; i < 5; ++i) EXPECT_EQ(line.GetAttribute(i), 0);
  EXPECT_FALSE(line.GetCenterLine()->HaveCenterLine());
}

TEST(CLine, SetNameLeavesTheDataFileName) {
  CLine line;
  line.SetDataFileName(L"a.MDB");
  line.SetName(L"Harbour");
  EXPECT_STREQ(line.GetName(), L"Harbour");
  EXPECT_STREQ(line.GetDataFileName(), L"a.MDB");
  line.SetName(nullptr);
  EXPECT_STREQ(line.GetName(), L"");
}

TEST(CLine, SegmentHoldsPositionKpZeroAndRadius) {
  CLine const line = LineWithArc();
  LineSegmentEnd from{{11, 12}, 1, 1, 1, 1, 1};
  LineSegmentEnd to{{21, 22}, 1, 1, 1, 1, 1};
  ASSERT_TRUE(line.GetSegment(1, from, to));
  CenterLinePoint const& p = line.GetCenterLine()->GetPoint(1);
  CenterLinePoint const& q = line.GetCenterLine()->GetPoint(2);
  EXPECT_EQ(from.reserved[0], 11);
  EXPECT_EQ(from.reserved[1], 12);
  EXPECT_EQ(from.x, p.GetPosition().x);
  EXPECT_EQ(from.y, p.GetPosition().y);
  EXPECT_EQ(from.kp, p.GetKP());
  EXPECT_EQ(from.zero, 0.0);
  EXPECT_EQ(from.radius, 0.0);
  EXPECT_EQ(to.reserved[1], 22);
  EXPECT_EQ(to.x, q.GetPosition().x);
  EXPECT_EQ(to.kp, p.GetKP());
  EXPECT_EQ(to.zero, 0.0);
  EXPECT_EQ(to.radius, 20.0);
}

TEST(CLine, SegmentPastTheLastLeavesTheRecords) {
  CLine const line = LineWithArc();
  LineSegmentEnd from{{1, 2}, 3, 4, 5, 6, 7};
  LineSegmentEnd to = from;
  for (int const index : {4, 5, 1000, -1, std::numeric_limits<int>::min()}) {
    EXPECT_FALSE(line.GetSegment(index, from, to));
  }
  EXPECT_FALSE(CLine().GetSegment(0, from, to));
  EXPECT_EQ(from.x, 3);
  EXPECT_EQ(from.zero, 6);
  EXPECT_EQ(to.radius, 7);
}

TEST(CLine, MarkStays) {
  CLine line;
  line.Mark();
  EXPECT_TRUE(line.IsMarked());
  line.Mark();
  EXPECT_TRUE(line.IsMarked());
}

TEST(CLine, AttributesAreFiveNumbersOfTheHost) {
  CLine line;
  for (int i = 0; i < 5; ++i) line.SetAttribute(i, -10 * i - 1);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(line.GetAttribute(i), -10 * i - 1);
}

TEST(CLine, AttributeFiveIsZeroAndCannotBeSet) {
  CLine line;
  for (int i = 0; i < 5; ++i) line.SetAttribute(i, i + 1);
  for (int const index : {5, 6, -1, std::numeric_limits<int>::max()}) {
    line.SetAttribute(index, 99);
    EXPECT_EQ(line.GetAttribute(index), 0);
  }
  for (int i = 0; i < 5; ++i) EXPECT_EQ(line.GetAttribute(i), i + 1);
}

TEST(CLine, BothCenterLineOperationsGiveTheSameObject) {
  CLine line;
  CLine const& const_line = line;
  EXPECT_EQ(line.GetCenterLine(), const_line.GetCenterLine());
}

TEST(CLine, ACopyIsOnItsOwn) {
  CLine line = LineWithArc();
  line.SetName(L"first");
  line.SetAttribute(2, 7);
  line.GetCenterLine()->AddCurvedPoint(100, 200, 5, 1);
  CLine copy = line;
  line.SetName(L"second");
  line.GetCenterLine()->Clear();
  EXPECT_STREQ(copy.GetName(), L"first");
  EXPECT_EQ(copy.GetAttribute(2), 7);
  EXPECT_EQ(copy.GetNumPoints(), 5);
  EXPECT_TRUE(copy.GetCenterLine()->IsPending());
}

}  // namespace
