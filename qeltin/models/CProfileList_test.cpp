#include "qeltin/models/CProfileList.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "qeltin/models/LastError.h"

namespace {

using qeltin::detail::SetLastErrorCode;

constexpr double LARGEST = std::numeric_limits<double>::max();

// minX, maxX, minY, maxY, minZ, maxZ, statMin, statMax.
using Extents = std::array<double, 8>;

class CProfileListTest : public ::testing::Test {
 protected:
  CProfileListTest() { SetLastErrorCode(0); }

  bool GetExtents() {
    Extents& e = m_Extents;
    e.fill(77.0);
    return m_List.GetExtents(&e[0], &e[1], &e[2], &e[3], &e[4], &e[5], &e[6], &e[7]);
  }

  CProfile m_First;
  CProfile m_Second;
  CProfileList m_List;
  Extents m_Extents;
};

TEST_F(CProfileListTest, NullIsNotAdded) {
  EXPECT_FALSE(m_List.AddProfile(nullptr));
  EXPECT_EQ(m_List.GetNumProfiles(), 0);
}

TEST_F(CProfileListTest, ProfilesStayInOrderAndOutliveTheList) {
  {
    CProfileList list;
    EXPECT_TRUE(list.AddProfile(&m_First));
    EXPECT_TRUE(list.AddProfile(&m_Second));
    EXPECT_EQ(list.GetNumProfiles(), 2);
    EXPECT_EQ(list.GetProfile(0), &m_First);
    EXPECT_EQ(list.GetProfile(1), &m_Second);
  }
  EXPECT_EQ(m_First.GetNumPoints(), 0);
}

TEST_F(CProfileListTest, GetProfileOfAnEmptyListIsNull) {
  EXPECT_EQ(m_List.GetProfile(0), nullptr);
  EXPECT_EQ(m_List.GetProfile(5), nullptr);
  EXPECT_EQ(GetLastErrorCode(), 0);
}

TEST_F(CProfileListTest, TheCursorGoesOverTheList) {
  m_List.AddProfile(&m_First);
  m_List.AddProfile(&m_Second);
  EXPECT_EQ(m_List.GetNextProfile(), &m_First);
  EXPECT_EQ(m_List.GetNextProfile(), &m_Second);
  EXPECT_TRUE(m_List.ResetCursor());
  EXPECT_EQ(m_List.GetNextProfile(), &m_First);
  EXPECT_EQ(GetLastErrorCode(), 0);
}

TEST_F(CProfileListTest, NextProfileAfterTheEndIsNullWithErrorThree) {
  m_List.AddProfile(&m_First);
  m_List.GetNextProfile();
  EXPECT_EQ(m_List.GetNextProfile(), nullptr);
  EXPECT_EQ(GetLastErrorCode(), 3);
  EXPECT_EQ(m_List.GetNextProfile(), nullptr);
  m_List.AddProfile(&m_Second);
  EXPECT_EQ(m_List.GetNextProfile(), &m_Second);
  EXPECT_EQ(GetLastErrorCode(), 3);
}

TEST_F(CProfileListTest, TotalPointsIsTheSum) {
  EXPECT_EQ(m_List.GetTotalPoints(), 0);
  for (int i = 0; i < 3; ++i) m_First.AddPoint({});
  m_Second.AddPoint({});
  m_List.AddProfile(&m_First);
  m_List.AddProfile(&m_Second);
  m_List.AddProfile(&m_First);
  EXPECT_EQ(m_List.GetTotalPoints(), 7);
}

TEST_F(CProfileListTest, ExtentsOfAnEmptyListAreFalseAndLeaveTheFloors) {
  EXPECT_FALSE(GetExtents());
  EXPECT_EQ(m_Extents,
            (Extents{LARGEST, -LARGEST, LARGEST, -LARGEST, LARGEST, -10000.0, LARGEST, 0.0}));
}

TEST_F(CProfileListTest, ExtentsAreThoseThatTheProfilesStore) {
  m_First.AddPoint({900, 900, 900, 0, 0});
  m_First.SetExtents(1, 2, 3, 4, 5, 6);
  m_First.SetStatistics(0, 0, 0, 7, 8);
  m_Second.SetExtents(-1, 1.5, 3.5, 44, 5.5, 66);
  m_Second.SetStatistics(0, 0, 0, 7.5, 88);
  m_List.AddProfile(&m_First);
  m_List.AddProfile(&m_Second);
  EXPECT_TRUE(GetExtents());
  EXPECT_EQ(m_Extents, (Extents{-1, 2, 3, 44, 5, 66, 7, 88}));
}

TEST_F(CProfileListTest, ExtentsAreReadInSinglePrecision) {
  m_First.SetExtents(0.1, 0.2, 0.3, 0.4, 0.5, 0.6);
  m_First.SetStatistics(0, 0, 0, 0.7, 0.8);
  m_List.AddProfile(&m_First);
  EXPECT_TRUE(GetExtents());
  EXPECT_EQ(m_Extents, (Extents{0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f, 0.7f, 0.8f}));
}

TEST_F(CProfileListTest, MaximaOfHeightAndStatisticsHaveFloors) {
  m_First.SetExtents(-5, -4, -5, -4, -30000, -20000);
  m_First.SetStatistics(0, 0, 0, -9, -8);
  m_List.AddProfile(&m_First);
  EXPECT_TRUE(GetExtents());
  EXPECT_EQ(m_Extents, (Extents{-5, -4, -5, -4, -30000, -10000, -9, 0}));
}

TEST_F(CProfileListTest, ExtentsLeaveErrorThreeWhereAPositionIsNoIndexOfTheProfile) {
  m_First.AddPoint({});
  m_Second.AddPoint({});
  m_List.AddProfile(&m_First);
  EXPECT_TRUE(GetExtents());
  EXPECT_EQ(GetLastErrorCode(), 0);
  m_List.AddProfile(&m_Second);  // position 1, one sounding
  EXPECT_TRUE(GetExtents());
  EXPECT_EQ(GetLastErrorCode(), 3);
}

// A host's own profile, whose answer changes from call to call.
class RestlessProfile : public CProfile {
 public:
  float GetMinX() const override { return m_Answers++ == 0 ? -50.0f : -60.0f; }
  int Answers() const { return m_Answers; }

 private:
  mutable int m_Answers = 0;
};

TEST_F(CProfileListTest, AStoredValueIsReadAgainWhereItCounts) {
  RestlessProfile profile;
  m_List.AddProfile(&profile);
  EXPECT_TRUE(GetExtents());
  EXPECT_EQ(profile.Answers(), 2);
  EXPECT_EQ(m_Extents[0], -60.0);
}

TEST_F(CProfileListTest, ACopyHasACursorOfItsOwn) {
  m_List.AddProfile(&m_First);
  m_List.AddProfile(&m_Second);
  m_List.GetNextProfile();
  CProfileList copy = m_List;
  EXPECT_EQ(copy.GetNextProfile(), &m_Second);
  EXPECT_EQ(m_List.GetNextProfile(), &m_Second);
}

}  // namespace
