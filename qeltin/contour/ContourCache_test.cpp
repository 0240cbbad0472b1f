#include "qeltin/contour/ContourCache.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace {

class ContourCacheTest : public ::testing::Test {
 protected:
  ~ContourCacheTest() override { ContourCache::Get().Clear(); }

  ContourCache& m_Cache = ContourCache::Get();
};

Contour Straight(double level, int points) {
  Contour contour(level);
  for (int i = 0; i < points; ++i) contour.Line().AddBack({10.0 + i, level});
  return contour;
}

ContourList ListOf(std::vector<Contour> const& contours) {
  ContourList list;
  for (Contour const& contour : contours) list.Add(contour);
  return list;
}

TEST_F(ContourCacheTest, AnUnknownKeyAnswersFalseAndClearsTheList) {
  ContourList list = ListOf({Straight(1.0, 2)});
  EXPECT_FALSE(m_Cache.Get(L"nobody", list));
  EXPECT_TRUE(list.IsEmpty());
}

TEST_F(ContourCacheTest, OneMoreContourOfZerosComesBackFirst) {
  EXPECT_TRUE(m_Cache.Add(L"k", ListOf({Straight(5.0, 3)})));
  ContourList list;
  EXPECT_TRUE(m_Cache.Get(L"k", list));
  ASSERT_EQ(list.Size(), 2);
  EXPECT_EQ(list[0].Level(), 5.0);
  ASSERT_EQ(list[0].NumPoints(), 3);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(list[0][i], GTL::Point2D<double>(0, 0));
  EXPECT_EQ(list[1].Level(), 5.0);
  ASSERT_EQ(list[1].NumPoints(), 3);
  EXPECT_EQ(list[1][2], GTL::Point2D<double>(12.0, 5.0));
}

TEST_F(ContourCacheTest, EqualLevelsComeBackInReverse) {
  ContourList stored;
  stored.Add(std::deque<Contour>{Straight(1.0, 2), Straight(1.0, 3), Straight(2.0, 4)});
  m_Cache.Add(L"k", stored);
  ContourList list;
  m_Cache.Get(L"k", list);
  ASSERT_EQ(list.Size(), 4);
  EXPECT_EQ(list[0].NumPoints(), 3);
  EXPECT_EQ(list[1].NumPoints(), 2);
  EXPECT_EQ(list[2][0], GTL::Point2D<double>(0, 0));
  EXPECT_EQ(list[3][0], GTL::Point2D<double>(10.0, 2.0));
}

TEST_F(ContourCacheTest, StoringAgainStartsFromTheBeginning) {
  m_Cache.Add(L"k", ListOf({Straight(1.0, 2), Straight(2.0, 2)}));
  m_Cache.Add(L"k", ListOf({Straight(1.0, 2), Straight(2.0, 2)}));
  ContourList list;
  m_Cache.Get(L"k", list);
  EXPECT_EQ(list.Size(), 3);
}

TEST_F(ContourCacheTest, AShorterListLeavesTheRestOfTheLongerOne) {
  m_Cache.Add(L"k", ListOf({Straight(1.0, 2), Straight(2.0, 2), Straight(3.0, 2)}));
  m_Cache.Add(L"k", ListOf({Straight(7.0, 2)}));
  ContourList list;
  m_Cache.Get(L"k", list);
  ASSERT_EQ(list.Size(), 4);
  EXPECT_EQ(list[0].Level(), 2.0);
  EXPECT_EQ(list[1].Level(), 3.0);
  EXPECT_EQ(list[1][0], GTL::Point2D<double>(0, 0));
  EXPECT_EQ(list[2].Level(), 3.0);
  EXPECT_EQ(list[3].Level(), 7.0);
}

TEST_F(ContourCacheTest, LeftoversThatReadAsABillionPointsEndTheReading) {
  // Behind the short record, the low half of a coordinate is read as the number of points.
  double const low_half_is_most = std::bit_cast<double>(std::uint64_t{0x3ff000007fffffff});
  Contour longer(1.0);
  for (int i = 0; i < 8; ++i) longer.Line().AddBack({low_half_is_most, low_half_is_most});
  m_Cache.Add(L"k", ListOf({longer}));
  m_Cache.Add(L"k", ListOf({Straight(2.0, 1)}));
  ContourList list;
  EXPECT_TRUE(m_Cache.Get(L"k", list));
  ASSERT_EQ(list.Size(), 1);
  EXPECT_EQ(list[0].Level(), 2.0);
}

TEST_F(ContourCacheTest, AContourWithoutPointsIsARecordOfItsOwn) {
  m_Cache.Add(L"k", ListOf({Contour(4.0)}));
  ContourList list;
  m_Cache.Get(L"k", list);
  ASSERT_EQ(list.Size(), 2);
  EXPECT_TRUE(list[0].IsEmpty());
  EXPECT_TRUE(list[1].IsEmpty());
  EXPECT_EQ(list[1].Level(), 4.0);
}

TEST_F(ContourCacheTest, AnEmptyListComesBackEmpty) {
  EXPECT_TRUE(m_Cache.Add(L"k", ContourList()));
  ContourList list = ListOf({Straight(1.0, 2)});
  EXPECT_TRUE(m_Cache.Get(L"k", list));
  EXPECT_TRUE(list.IsEmpty());
}

TEST_F(ContourCacheTest, ClearForgetsOneKey) {
  m_Cache.Add(L"a", ListOf({Straight(1.0, 2)}));
  m_Cache.Add(L"b", ListOf({Straight(2.0, 2)}));
  m_Cache.Clear(L"nobody");
  m_Cache.Clear(L"a");
  ContourList list;
  EXPECT_FALSE(m_Cache.Get(L"a", list));
  EXPECT_TRUE(m_Cache.Get(L"b", list));
  m_Cache.Clear();
  EXPECT_FALSE(m_Cache.Get(L"b", list));
}

TEST_F(ContourCacheTest, BoxesAreBuiltAnew) {
  Contour contour = Straight(1.0, 2);
  contour.Line().SetPoint(0, {11.0, 50.0});
  m_Cache.Add(L"k", ListOf({contour}));
  ContourList list;
  m_Cache.Get(L"k", list);
  GTL::Extents3D<double> box;
  list[1].Line().GetExtents(box);
  EXPECT_EQ(box.GetMax().y, 50.0);
}

TEST(ContourCache, IsMadeByGetAlone) {
  EXPECT_FALSE(std::is_default_constructible_v<ContourCache>);
  EXPECT_EQ(&ContourCache::Get(), &ContourCache::Get());
}

}  // namespace
