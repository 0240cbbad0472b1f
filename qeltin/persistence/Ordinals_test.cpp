#include "qeltin/persistence/Ordinals.h"

#include <gtest/gtest.h>

#include <utility>

#include "qeltin/kernel/TPoint.h"

namespace {

using qeltin::detail::Ordinals;

// Whether the live order is that of the slots, or another one.
class OrdinalsOf : public ::testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(Pool, OrdinalsOf, ::testing::Bool());

TEST(Ordinals, AnswerThePositionInLiveOrder) {
  TArray<TPoint> pool(100);
  for (int i = 0; i < 50; ++i) pool.Add(TPoint(i));
  pool.Shuffle();
  Ordinals<TPoint> const ordinals(&pool);
  ASSERT_TRUE(ordinals.IsAllocated());
  for (int i = 0; i < 50; ++i) EXPECT_EQ(ordinals.Of(pool.At(i)), i);
}

TEST_P(OrdinalsOf, WhatIsNotLiveHasNone) {
  TArray<TPoint> pool(4);
  pool.Add(TPoint());
  pool.Add(TPoint());
  bool const inSlotOrder = GetParam();
  if (!inSlotOrder) std::swap(pool.m_pIndex[0], pool.m_pIndex[1]);
  TPoint const other;
  Ordinals<TPoint> const ordinals(&pool);
  EXPECT_EQ(ordinals.Of(nullptr), -1);
  EXPECT_EQ(ordinals.Of(&other), -1);
  EXPECT_EQ(ordinals.Of(pool.m_pData), inSlotOrder ? 0 : 1);
  EXPECT_EQ(ordinals.Of(pool.m_pData + 1), inSlotOrder ? 1 : 0);
  EXPECT_EQ(ordinals.Of(pool.m_pData + 2), -1);  // a free slot
  EXPECT_EQ(ordinals.Of(pool.m_pData + 4), -1);  // behind the last one
  int volatile one = 1;
  EXPECT_EQ(ordinals.Of(pool.m_pData - one), -1);
  auto const* inside = reinterpret_cast<TPoint const*>(&pool.m_pData->y);
  EXPECT_EQ(ordinals.Of(inside), -1);
}

TEST(Ordinals, WithoutAPoolThereAreNone) {
  Ordinals<TPoint> const ordinals(nullptr);
  TPoint const p;
  EXPECT_TRUE(ordinals.IsAllocated());
  EXPECT_EQ(ordinals.Of(&p), -1);
  EXPECT_EQ(ordinals.Of(nullptr), -1);
}

}  // namespace
