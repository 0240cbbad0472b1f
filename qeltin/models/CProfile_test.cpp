#include "qeltin/models/CProfile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

#include "qeltin/models/LastError.h"
#include "testing/MakeSurvey.h"

namespace {

using qeltin::detail::SetLastErrorCode;

constexpr double NOT_SET = -77.0;

// A profile along a straight line to the north from (1000, 2000), 100 long.
class CProfileTest : public ::testing::Test {
 protected:
  CProfileTest() {
    SetLastErrorCode(0);
    m_Profile.SetBase(1000, 2000, 5000);
    m_Profile.GetCenterLine()->AddCurvedPoint(1000, 2000, 0, 1);
    m_Profile.GetCenterLine()->AddCurvedPoint(1000, 2100, 0, 1);
    m_Profile.GetCenterLine()->Init(0.0, false);
  }

  // Adds soundings of the given distances and heights.
  void AddSoundings(std::initializer_list<std::pair<float, float>> soundings) {
    for (auto const& [distance, height] : soundings) {
      m_Profile.AddPoint({0.0f, distance, height, distance, 0.0f});
    }
  }

  double Area() const {
    double area = NOT_SET;
    EXPECT_TRUE(m_Profile.GetArea(&area));
    return area;
  }

  CProfile m_Profile;
  double x = NOT_SET;
  double y = NOT_SET;
  double z = NOT_SET;
  double w = NOT_SET;
};

TEST_F(CProfileTest, StartsAtZeroWithInfoCodeOne) {
  CProfile profile;
  EXPECT_EQ(profile.GetNumPoints(), 0);
  EXPECT_EQ(profile.GetNumLabels(), 0);
  EXPECT_EQ(profile.GetNumSegments(), -1);
  EXPECT_STREQ(profile.GetLineName(), L"");
  EXPECT_STREQ(profile.GetSecondName(), L"");
  EXPECT_STREQ(profile.GetVehicleName(), L"");
  EXPECT_EQ(profile.GetInfoCode(), 1);
  EXPECT_EQ(profile.GetInfoFlag(), 0);
  EXPECT_EQ(profile.GetMinZ(), 0.0f);
  EXPECT_EQ(profile.GetStatMax(), 0.0f);
}

TEST_F(CProfileTest, SegmentHasNoRangeTest) {
  LineSegmentEnd from{{1, 2}, 3, 4, 5, 6, 7};
  LineSegmentEnd to = from;
  EXPECT_EQ(m_Profile.GetNumSegments(), 1);
  EXPECT_TRUE(m_Profile.GetSegment(0, from, to));
  EXPECT_EQ(to.y, 2100);
  EXPECT_EQ(to.kp, 100);
  for (int const index : {2, -5, 1000}) {
    from.x = 3;
    EXPECT_TRUE(m_Profile.GetSegment(index, from, to));
    EXPECT_EQ(from.x, 0.0);
    EXPECT_EQ(from.reserved[1], 2);
  }
}

TEST_F(CProfileTest, PointsAreReadWithTheBasesAdded) {
  m_Profile.AddPoint({1.5f, 2.5f, -7.25f, 3.5f, 4.5f});
  EXPECT_TRUE(m_Profile.GetPointAndTime(0, &x, &y, &z, &w));
  EXPECT_EQ(x, 1001.5);
  EXPECT_EQ(y, 2002.5);
  EXPECT_EQ(z, -7.25);
  EXPECT_EQ(w, 5004.5);
  EXPECT_EQ(m_Profile.GetDistance(0), 3.5);
  EXPECT_EQ(m_Profile.GetPointRecord(0)->x, 1.5f);
  EXPECT_EQ(m_Profile.GetPointRecord(0)->time, 4.5f);
}

TEST_F(CProfileTest, SinglePrecisionIsWidenedBeforeTheBaseIsAdded) {
  CProfile profile;
  profile.SetBase(500000.125, 5900000.0625, 0);
  profile.AddPoint({0.1f, 0.2f, 0.3f, 0, 0});
  EXPECT_TRUE(profile.GetPoint(0, &x, &y, &z));
  EXPECT_EQ(x, double{0.1f} + 500000.125);
  EXPECT_EQ(y, double{0.2f} + 5900000.0625);
  EXPECT_EQ(z, double{0.3f});
}

TEST_F(CProfileTest, AddSoundingTakesTheBasesOff) {
  m_Profile.AddSounding(1000.1, 2000.2, -3.3, 4.4, 5005.5);
  ProfilePoint const& p = *m_Profile.GetPointRecord(0);
  EXPECT_EQ(p.x, static_cast<float>(1000.1 - 1000.0));
  EXPECT_EQ(p.y, static_cast<float>(2000.2 - 2000.0));
  EXPECT_EQ(p.z, -3.3f);
  EXPECT_EQ(p.distance, 4.4f);
  EXPECT_EQ(p.time, static_cast<float>(5005.5 - 5000.0));
}

TEST_F(CProfileTest, PointOutOfRangeIsFalseWithErrorThree) {
  m_Profile.AddPoint({});
  for (int const index : {1, 2, -1, std::numeric_limits<int>::max()}) {
    SetLastErrorCode(0);
    EXPECT_FALSE(m_Profile.GetPoint(index, &x, &y, &z));
    EXPECT_EQ(GetLastErrorCode(), 3);
    SetLastErrorCode(0);
    EXPECT_FALSE(m_Profile.GetPointAndTravel(index, &x, &y, &z, &w));
    EXPECT_EQ(GetLastErrorCode(), 3);
    SetLastErrorCode(0);
    EXPECT_FALSE(m_Profile.GetPointAndTime(index, &x, &y, &z, &w));
    EXPECT_EQ(GetLastErrorCode(), 3);
    SetLastErrorCode(0);
    EXPECT_EQ(m_Profile.GetTravel(index), 0.0);
    EXPECT_EQ(GetLastErrorCode(), 3);
  }
  EXPECT_EQ(x, NOT_SET);
  EXPECT_EQ(w, NOT_SET);
}

TEST_F(CProfileTest, ASuccessDoesNotClearTheErrorOfAnother) {
  CProfile other;
  EXPECT_FALSE(other.GetPoint(0, &x, &y, &z));
  m_Profile.AddPoint({});
  EXPECT_TRUE(m_Profile.GetPoint(0, &x, &y, &z));
  EXPECT_EQ(GetLastErrorCode(), 3);
}

TEST_F(CProfileTest, TravelIsThatOfThePointWithItsBases) {
  m_Profile.AddPoint({8, 30, -1, 0, 0});
  EXPECT_TRUE(m_Profile.GetPointAndTravel(0, &x, &y, &z, &w));
  EXPECT_EQ(x, 1008);
  EXPECT_EQ(y, 2030);
  EXPECT_EQ(z, -1);
  EXPECT_EQ(w, 30);
  EXPECT_EQ(m_Profile.GetTravel(0), 30);
}

TEST_F(CProfileTest, TravelOffTheLineIsFilledAndFalse) {
  m_Profile.AddPoint({8, 130, -1, 0, 0});
  EXPECT_FALSE(m_Profile.GetPointAndTravel(0, &x, &y, &z, &w));
  EXPECT_EQ(x, 1008);
  EXPECT_EQ(w, 130);
  EXPECT_EQ(m_Profile.GetTravel(0), 0.0);
  EXPECT_EQ(GetLastErrorCode(), 0);
}

TEST_F(CProfileTest, OffsetLeavesTheBasesOut) {
  m_Profile.AddPoint({8, 30, 0, 0, 0});
  EXPECT_EQ(m_Profile.GetOffset(0), 0.0);  // (8, 30) is far off the line
  m_Profile.AddPoint({1008, 2030, 0, 0, 0});
  EXPECT_EQ(m_Profile.GetOffset(1), 8.0);
  EXPECT_EQ(m_Profile.GetTravel(1), 0.0);  // with the bases it is off the line
}

TEST_F(CProfileTest, TravelAtIsReturnedWhetherOrNotThePlaceIsBesideTheLine) {
  EXPECT_EQ(m_Profile.GetTravelAt(990, 2050), 50);
  EXPECT_EQ(m_Profile.GetTravelAt(990, 1950), -50);
  EXPECT_EQ(m_Profile.GetTravelAt(990, 2150), 150);
  EXPECT_EQ(CProfile().GetTravelAt(1, 2), 0.0);
}

TEST_F(CProfileTest, AreaTakesEveryOtherInterval) {
  AddSoundings({{10, 1}, {20, 3}, {50, 100}, {60, 7}});
  double const start_cap = 10.0 * 1 / 2;
  double const end_cap = (100.0 - 60) * 7 / 2;
  double const body = (10.0 * 1 / 2 + 10.0 * 3 / 2) + (10.0 * 100 / 2 + 10.0 * 7 / 2);
  EXPECT_EQ(Area(), end_cap + start_cap + body);
}

TEST_F(CProfileTest, AreaOfAnOddNumberOfPointsLeavesTheLastOut) {
  AddSoundings({{0, 4}, {10, 4}, {20, 1000}});
  EXPECT_EQ(Area(), 80.0 * 1000 / 2 + 0 + (20.0 + 20.0));
}

TEST_F(CProfileTest, AreaOfOnePointIsItsTwoCaps) {
  AddSoundings({{25, -8}});
  EXPECT_EQ(Area(), 75.0 * 8 / 2 + 25.0 * 8 / 2);
}

TEST_F(CProfileTest, AreaCountsEveryTermAsPositive) {
  AddSoundings({{30, -2}, {10, 4}});
  EXPECT_EQ(Area(), 90.0 * 4 / 2 + 30.0 * 2 / 2 + (20.0 * 2 / 2 + 20.0 * 4 / 2));
}

TEST_F(CProfileTest, AreaSumsAnIntervalInSinglePrecision) {
  AddSoundings({{0, 33554432}, {1, 2}});
  double const end_cap = (100.0 - 1) * 2 / 2;
  EXPECT_EQ(Area(), end_cap + 0 + double{16777216.0f + 1.0f});
}

TEST_F(CProfileTest, AreaRoundsItsProductsToSinglePrecision) {
  AddSoundings({{10.1f, 1.7f}, {20.3f, 3.9f}});
  float const step = 20.3f - 10.1f;
  float const cap = 10.1f * 1.7f;
  float const first = step * 1.7f;
  float const second = step * 3.9f;
  double const end_cap = (100.0 - double{20.3f}) * double{3.9f} / 2;
  float const body = first / 2 + second / 2;
  EXPECT_EQ(Area(), end_cap + double{cap} / 2 + double{body});
}

TEST_F(CProfileTest, AreaWithoutACenterLineHasNoLength) {
  CProfile profile;
  profile.AddPoint({0, 0, 6, 10, 0});
  double area = NOT_SET;
  EXPECT_TRUE(profile.GetArea(&area));
  EXPECT_EQ(area, 30.0 + 30.0);
}

TEST_F(CProfileTest, StoredValuesAreNarrowed) {
  m_Profile.SetExtents(0.1, 0.2, 0.3, 0.4, 0.5, 0.6);
  m_Profile.SetStatistics(1.1, 1.2, 1.3, 1.4, 1.5);
  EXPECT_EQ(m_Profile.GetMinX(), 0.1f);
  EXPECT_EQ(m_Profile.GetMaxX(), 0.2f);
  EXPECT_EQ(m_Profile.GetMinY(), 0.3f);
  EXPECT_EQ(m_Profile.GetMaxY(), 0.4f);
  EXPECT_EQ(m_Profile.GetMinZ(), 0.5f);
  EXPECT_EQ(m_Profile.GetMaxZ(), 0.6f);
  EXPECT_EQ(m_Profile.GetStatX(), 1.1f);
  EXPECT_EQ(m_Profile.GetStatY(), 1.2f);
  EXPECT_EQ(m_Profile.GetStatZ(), 1.3f);
  EXPECT_EQ(m_Profile.GetStatMin(), 1.4f);
  EXPECT_EQ(m_Profile.GetStatMax(), 1.5f);
}

TEST_F(CProfileTest, ExtentsAreStoredAndDoNotFollowThePoints) {
  m_Profile.AddPoint({5, 6, 7, 0, 0});
  EXPECT_EQ(m_Profile.GetMaxX(), 0.0f);
  EXPECT_EQ(m_Profile.GetMaxZ(), 0.0f);
}

TEST_F(CProfileTest, ExtentsFromPointsHoldEverySoundingAsTheyAreRead) {
  qeltin::testing::Dice dice(qeltin::testing::TestSeed());
  m_Profile.SetBase(500000.3, 5900000.7, 0);
  for (int i = 0; i < 1000; ++i) {
    m_Profile.AddSounding(dice.Between(500000, 500900), dice.Between(5900000, 5900900),
                          dice.Between(-40, 3), 0, 0);
  }
  m_Profile.SetExtentsFromPoints();
  for (int i = 0; i < m_Profile.GetNumPoints(); ++i) {
    m_Profile.GetPoint(i, &x, &y, &z);
    ASSERT_TRUE(m_Profile.GetMinX() <= x && x <= m_Profile.GetMaxX()) << x;
    ASSERT_TRUE(m_Profile.GetMinY() <= y && y <= m_Profile.GetMaxY()) << y;
    ASSERT_TRUE(m_Profile.GetMinZ() <= z && z <= m_Profile.GetMaxZ()) << z;
  }
  EXPECT_LT(m_Profile.GetMaxX() - m_Profile.GetMinX(), 901);
  EXPECT_LT(m_Profile.GetMaxY() - m_Profile.GetMinY(), 902);
}

TEST_F(CProfileTest, ExtentsFromPointsAreExactWhereSinglePrecisionIs) {
  m_Profile.AddPoint({1, 20, -3, 0, 0});
  m_Profile.AddPoint({4, 5, 6, 0, 0});
  m_Profile.SetExtentsFromPoints();
  EXPECT_EQ(m_Profile.GetMinX(), 1001.0f);
  EXPECT_EQ(m_Profile.GetMaxX(), 1004.0f);
  EXPECT_EQ(m_Profile.GetMinY(), 2005.0f);
  EXPECT_EQ(m_Profile.GetMaxY(), 2020.0f);
  EXPECT_EQ(m_Profile.GetMinZ(), -3.0f);
  EXPECT_EQ(m_Profile.GetMaxZ(), 6.0f);
}

TEST_F(CProfileTest, ExtentsFromNoPointsAreZero) {
  m_Profile.SetExtents(1, 2, 3, 4, 5, 6);
  m_Profile.SetExtentsFromPoints();
  EXPECT_EQ(m_Profile.GetMinX(), 0.0f);
  EXPECT_EQ(m_Profile.GetMaxZ(), 0.0f);
}

TEST_F(CProfileTest, LabelIsReadWithoutBases) {
  m_Profile.AddLabel(1.5f, 2.5f, 3.5f, L"buoy");
  m_Profile.AddLabel(0, 0, 0, nullptr);
  wchar_t text[8];
  ASSERT_TRUE(m_Profile.GetLabel(0, &x, &y, &z, text, 8));
  EXPECT_EQ(x, 1.5);
  EXPECT_EQ(y, 2.5);
  EXPECT_EQ(z, 3.5);
  EXPECT_STREQ(text, L"buoy");
  ASSERT_TRUE(m_Profile.GetLabel(1, &x, &y, &z, text, 8));
  EXPECT_STREQ(text, L"");
}

TEST_F(CProfileTest, LabelOutOfRangeIsFalseWithoutErrorCode) {
  m_Profile.AddLabel(1, 2, 3, L"buoy");
  wchar_t text[8] = L"before";
  EXPECT_FALSE(m_Profile.GetLabel(1, &x, &y, &z, text, 8));
  EXPECT_FALSE(m_Profile.GetLabel(-1, &x, &y, &z, text, 8));
  EXPECT_EQ(x, NOT_SET);
  EXPECT_STREQ(text, L"before");
  EXPECT_EQ(GetLastErrorCode(), 0);
}

TEST_F(CProfileTest, LabelTextIsCutOffWithItsTerminatorInside) {
  m_Profile.AddLabel(1, 2, 3, L"buoy");
  wchar_t text[6] = {L'#', L'#', L'#', L'#', L'#', L'#'};
  ASSERT_TRUE(m_Profile.GetLabel(0, &x, &y, &z, text, 4));
  EXPECT_STREQ(text, L"buo");
  EXPECT_EQ(text[4], L'#');
  ASSERT_TRUE(m_Profile.GetLabel(0, &x, &y, &z, text, 5));
  EXPECT_STREQ(text, L"buoy");
  EXPECT_EQ(text[5], L'#');
  ASSERT_TRUE(m_Profile.GetLabel(0, &x, &y, &z, text, 1));
  EXPECT_STREQ(text, L"");
  text[0] = L'#';
  ASSERT_TRUE(m_Profile.GetLabel(0, &x, &y, &z, text, 0));
  ASSERT_TRUE(m_Profile.GetLabel(0, &x, &y, &z, nullptr, 0));
  EXPECT_EQ(text[0], L'#');
}

TEST_F(CProfileTest, SetInfoStoresWhatItIsGiven) {
  EXPECT_TRUE(m_Profile.SetInfo(1.5, 200, L"Vessel", L"Line 7", 2.5, 65535));
  EXPECT_EQ(m_Profile.GetInfoValue(), 1.5);
  EXPECT_EQ(m_Profile.GetInfoFlag(), 200);
  EXPECT_STREQ(m_Profile.GetVehicleName(), L"Vessel");
  EXPECT_STREQ(m_Profile.GetLineName(), L"Line 7");
  EXPECT_EQ(m_Profile.GetInfoTime(), 2.5);
  EXPECT_EQ(m_Profile.GetInfoCode(), 65535);
}

TEST_F(CProfileTest, SetInfoReplacesEmptyNames) {
  EXPECT_TRUE(m_Profile.SetInfo(0, 0, L"", L"", 0, 0));
  EXPECT_STREQ(m_Profile.GetVehicleName(), L"No Vehicle Name");
  EXPECT_STREQ(m_Profile.GetLineName(), L"No Line Name");
  EXPECT_TRUE(m_Profile.SetInfo(0, 0, nullptr, L"x", 0, 0));
  EXPECT_STREQ(m_Profile.GetVehicleName(), L"No Vehicle Name");
  EXPECT_STREQ(m_Profile.GetLineName(), L"x");
}

TEST_F(CProfileTest, ACopyKeepsItsLabelsWhenTheOriginalGoes) {
  auto* const original = new CProfile(m_Profile);
  original->AddLabel(1, 2, 3, L"a text that is too long for the short string");
  CProfile const copy = *original;
  delete original;
  wchar_t text[64];
  ASSERT_TRUE(copy.GetLabel(0, &x, &y, &z, text, 64));
  EXPECT_STREQ(text, L"a text that is too long for the short string");
}

}  // namespace
