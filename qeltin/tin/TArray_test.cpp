#include "qeltin/tin/TArray.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

#include "qeltin/kernel/TPoint.h"
#include "qeltin/kernel/TTriangle.h"
#include "testing/MakeSurvey.h"
#include "testing/reference/Release.h"

namespace {

using qeltin::testing::Dice;
using qeltin::testing::TestSeed;
namespace stated = qeltin::testing::stated;

template <typename T>
std::vector<int> Index(TArray<T> const& pool) {
  return {pool.m_pIndex, pool.m_pIndex + pool.m_iCapacity};
}

std::vector<int> Identity(int size) {
  std::vector<int> numbers(static_cast<std::size_t>(size));
  std::iota(numbers.begin(), numbers.end(), 0);
  return numbers;
}

TEST(TArray, NewPoolIsEmptyWithItsSlotsInOrder) {
  TArray<TPoint> pool(5);
  EXPECT_EQ(pool.m_iCount, 0);
  EXPECT_EQ(pool.m_iCapacity, 5);
  EXPECT_EQ(Index(pool), Identity(5));
  EXPECT_TRUE(pool.IsAllocated());
  EXPECT_FALSE(pool.IsFull());
}

TEST(TArray, CapacityBelowOneBecomesTen) {
  for (int capacity : {0, -1, -2147483647 - 1}) {
    TArray<int> pool(capacity);
    EXPECT_EQ(pool.m_iCapacity, 10) << capacity;
    EXPECT_EQ(Index(pool), Identity(10));
  }
  EXPECT_EQ(TArray<int>(1).m_iCapacity, 1);
}

TEST(TArray, NewSlotsHoldDefaultElements) {
  TArray<TTriangle> pool(100000);  // past the size of a mapped block
  for (int i = 0; i < pool.m_iCapacity; i += 999) {
    TTriangle const& t = pool.m_pData[i];
    EXPECT_EQ(t.m_pVertex[2], nullptr);
    EXPECT_EQ(t.m_pAdjacent[0], nullptr);
    EXPECT_EQ(t.m_Flags, 0);
    EXPECT_EQ(t.m_RadiusSq, 0.0);
  }
}

TEST(TArray, AddTakesTheNextFreeSlotAndKeepsItsAddress) {
  TArray<int> pool(3);
  int* const first = pool.Add(70);
  int* const second = pool.Add(71);
  EXPECT_EQ(first, pool.m_pData);
  EXPECT_EQ(second, pool.m_pData + 1);
  EXPECT_EQ(pool.m_iCount, 2);
  EXPECT_EQ(*pool.At(0), 70);
  EXPECT_EQ(*pool.At(1), 71);
}

TEST(TArray, AddFollowsTheIndexAndNotTheSlotNumbers) {
  TArray<int> pool(3);
  std::swap(pool.m_pIndex[0], pool.m_pIndex[2]);
  EXPECT_EQ(pool.Add(70), pool.m_pData + 2);
  EXPECT_EQ(*pool.At(0), 70);
}

TEST(TArray, AddOnAFullPoolIsNullAndChangesNothing) {
  TArray<int> pool(2);
  pool.Add(70);
  pool.Add(71);
  EXPECT_TRUE(pool.IsFull());
  EXPECT_EQ(pool.Add(72), nullptr);
  EXPECT_EQ(pool.m_iCount, 2);
  EXPECT_EQ(pool.m_pData[0], 70);
  EXPECT_EQ(pool.m_pData[1], 71);
}

// --- Removal by the distance in bytes
// -------------------------------------------------------------

TEST(TArray, RemoveReleasesTheElementInSlotZero) {
  TArray<TPoint> pool(100);
  TPoint* const first = pool.Add(TPoint(1, 1, 1));
  pool.Add(TPoint(2, 2, 2));
  pool.Add(TPoint(3, 3, 3));
  pool.Remove(first);
  EXPECT_EQ(pool.m_iCount, 2);
  EXPECT_EQ(pool.m_pIndex[0], 2);
  EXPECT_EQ(pool.m_pIndex[1], 1);
  EXPECT_EQ(pool.m_pIndex[2], 0);
  EXPECT_EQ(*first, TPoint(1, 1, 1));
  EXPECT_EQ(pool.Add(TPoint(4, 4, 4)), first);
}

TEST(TArray, RemoveOfTheLastLiveSlotMovesNothing) {
  TArray<TPoint> pool(100);
  TPoint* const only = pool.Add(TPoint(1, 1, 1));
  pool.Remove(only);
  EXPECT_EQ(pool.m_iCount, 0);
  EXPECT_EQ(Index(pool), Identity(100));
}

TEST(TArray, RemoveFarIntoThePoolChangesNothing) {
  TArray<TPoint> pool(100);
  for (int i = 0; i < 50; ++i) pool.Add(TPoint(i, i, i));
  pool.Remove(pool.m_pData + 5);  // 120 bytes, not below the capacity of 100
  EXPECT_EQ(pool.m_iCount, 50);
  EXPECT_EQ(Index(pool), Identity(100));
}

TEST(TArray, RemoveAtAByteDistanceOfTheCapacityChangesNothing) {
  TArray<TPoint> pool(48);
  for (int i = 0; i < 48; ++i) pool.Add(TPoint(i, i, i));
  pool.Remove(pool.m_pData + 2);  // 48 bytes
  EXPECT_EQ(pool.m_iCount, 48);
  EXPECT_EQ(Index(pool), Identity(48));
  TArray<TPoint> larger(49);
  for (int i = 0; i < 49; ++i) larger.Add(TPoint(i, i, i));
  larger.Remove(larger.m_pData + 2);
  EXPECT_EQ(larger.m_iCount, 48);
  EXPECT_EQ(larger.m_pIndex[48], 48);
}

TEST(TArray, RemoveReleasesTheSlotOfThatByteNumber) {
  TArray<TPoint> pool(100);
  for (int i = 0; i < 50; ++i) pool.Add(TPoint(i, i, i));
  pool.Remove(pool.m_pData + 1);  // 24 bytes: slot 24 goes, slot 1 stays
  EXPECT_EQ(pool.m_iCount, 49);
  EXPECT_EQ(pool.m_pIndex[1], 1);
  EXPECT_EQ(pool.m_pIndex[24], 49);
  EXPECT_EQ(pool.m_pIndex[49], 24);
}

TEST(TArray, RemoveThatNamesAFreeSlotStillShortensTheLiveOrder) {
  TArray<TPoint> pool(100);
  for (int i = 0; i < 10; ++i) pool.Add(TPoint(i, i, i));
  pool.Remove(pool.m_pData + 1);  // slot 24 is not in use
  EXPECT_EQ(pool.m_iCount, 9);
  EXPECT_EQ(Index(pool), Identity(100));
}

TEST(TArray, RemoveSearchesTheLiveOrderAndNotTheSlots) {
  TArray<char> pool(4);  // of one byte, so that the distance is the slot
  for (char c : {'a', 'b', 'c', 'd'}) pool.Add(c);
  std::swap(pool.m_pIndex[0], pool.m_pIndex[3]);  // d b c a
  pool.Remove(pool.m_pData + 3);
  EXPECT_EQ(pool.m_iCount, 3);
  EXPECT_EQ(Index(pool), (std::vector<int>{0, 1, 2, 3}));
  pool.Remove(pool.m_pData + 1);
  EXPECT_EQ(pool.m_iCount, 2);
  EXPECT_EQ(Index(pool), (std::vector<int>{0, 2, 1, 3}));
}

TEST(TArray, RemoveOfAnElementBeforeTheBlockChangesNothing) {
  TArray<TPoint> pool(100);
  pool.Add(TPoint(1, 1, 1));
  pool.Remove(pool.m_pData - 1);
  EXPECT_EQ(pool.m_iCount, 1);
}

TEST(TArray, ManyReleasesDoWhatASearchFromTheBackDoes) {
  Dice dice(TestSeed());
  for (int run = 0; run < 30; ++run) {
    int const capacity = 100 + dice.Below(900);
    TArray<TPoint> pool(capacity);
    for (int i = dice.Below(capacity); i >= 0; --i) pool.Add(TPoint(i, i, i));
    if (dice.OneIn(2)) pool.Shuffle();
    for (int i = 0; i < 300 && pool.m_iCount > 0; ++i) {
      TArray<TPoint> searched(pool);
      int const slot = dice.Below(capacity / 20);
      stated::Release(searched, searched.m_pData + slot);
      pool.Remove(pool.m_pData + slot);
      ASSERT_EQ(pool.m_iCount, searched.m_iCount);
      ASSERT_EQ(Index(pool), Index(searched));
      if (dice.OneIn(20)) pool.Shuffle();
      if (dice.OneIn(20)) std::swap(pool.m_pIndex[dice.Below(capacity)], pool.m_pIndex[0]);
      if (dice.OneIn(5)) pool.Add(TPoint(i, 0, 0));
    }
  }
}

TEST(TArray, RemoveFromAnEmptyPoolChangesNothing) {
  TArray<TPoint> pool(100);
  pool.Remove(pool.m_pData);
  EXPECT_EQ(pool.m_iCount, 0);
  EXPECT_EQ(Index(pool), Identity(100));
}

// --- Whole pools
// ----------------------------------------------------------------------------------

TEST(TArray, ResetFreesEverySlotInOrderAndKeepsTheElements) {
  TArray<TPoint> pool(50);
  for (int i = 0; i < 50; ++i) pool.Add(TPoint(i, i, i));
  pool.Shuffle();
  pool.Reset();
  EXPECT_EQ(pool.m_iCount, 0);
  EXPECT_EQ(Index(pool), Identity(50));
  EXPECT_EQ(pool.m_pData[49], TPoint(49, 49, 49));
}

TEST(TArray, CopyHasTheSameCountersElementsAndIndex) {
  TArray<TTriangle> pool(20);
  TPoint corner;
  for (int i = 0; i < 10; ++i) {
    TTriangle t(&corner, &corner, &corner);
    t.m_pAdjacent[1] = pool.m_pData;
    t.m_RadiusSq = i;
    pool.Add(t);
  }
  std::swap(pool.m_pIndex[2], pool.m_pIndex[7]);
  TArray<TTriangle> const copy(pool);
  EXPECT_EQ(copy.m_iCount, 10);
  EXPECT_EQ(copy.m_iCapacity, 20);
  EXPECT_EQ(Index(copy), Index(pool));
  EXPECT_NE(copy.m_pData, pool.m_pData);
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(copy.At(i)->m_RadiusSq, pool.At(i)->m_RadiusSq);
    EXPECT_EQ(copy.At(i)->m_pVertex[0], &corner);
    EXPECT_EQ(copy.At(i)->m_pAdjacent[1], pool.m_pData);
  }
}

TEST(TArray, ShuffleMovesTheLiveOrderAndNoElement) {
  constexpr int LIVE = 1000;
  TArray<TPoint> pool(LIVE + 100);
  for (int i = 0; i < LIVE; ++i) pool.Add(TPoint(i, 0, 0));
  pool.Shuffle();
  std::vector<int> index = Index(pool);
  EXPECT_NE(index, Identity(LIVE + 100));
  for (int i = LIVE; i < LIVE + 100; ++i) EXPECT_EQ(index[static_cast<std::size_t>(i)], i);
  std::sort(index.begin(), index.end());
  EXPECT_EQ(index, Identity(LIVE + 100));
  for (int i = 0; i < LIVE; ++i) EXPECT_EQ(pool.m_pData[i].x, i);
}

TEST(TArray, ShuffleGivesAnotherOrderEachTime) {
  TArray<int> first(1000);
  TArray<int> second(1000);
  for (int i = 0; i < 1000; ++i) {
    first.Add(i);
    second.Add(i);
  }
  first.Shuffle();
  second.Shuffle();
  EXPECT_NE(Index(first), Index(second));
}

TEST(TArray, ShuffleOfNoneOrOneElementIsHarmless) {
  TArray<int> pool(10);
  pool.Shuffle();
  pool.Add(7);
  pool.Shuffle();
  EXPECT_EQ(*pool.At(0), 7);
  EXPECT_EQ(Index(pool), Identity(10));
}

TEST(TArray, PoolThatMemoryIsRefusedForHasNoSlot) {
  TArray<TTriangle[1 << 20]> pool(2147483647);  // 160 petabytes
  EXPECT_FALSE(pool.IsAllocated());
  EXPECT_EQ(pool.m_iCapacity, 0);
  EXPECT_EQ(pool.m_iCount, 0);
  EXPECT_TRUE(pool.IsFull());
  pool.Reset();
  EXPECT_EQ(pool.m_iCount, 0);
}

}  // namespace
