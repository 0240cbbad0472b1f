#include "qeltin/persistence/Ordinals.h"

#include <gtest/gtest.h>

#include "qeltin/kernel/TPoint.h"

namespace {

using qeltin::detail::Ordinals;

TEST(Ordinals, AnswerThePositionInLiveOrder) {
  TArray<TPoint> pool(100);
  for (int i = 0; i < 50; ++i) pool.Add(TPoint(i));
  pool.Shuffle();
  Ordinals<TPoint> const ordinals(&pool);
  ASSERT_TRUE(ordinals.IsAllocated());
  for (int i = 0; i < 50; ++i) EXPECT_EQ(ordinals.Of(pool.At(i)), i);
}

TEST(Ordinals, WhatIsNotLiveHasNone) {
  TArray<TPoint> pool(4);
  pool.Add(TPoint());
  TPoint const other;
  Ordinals<TPoint> const ordinals(&pool);
  EXPECT_EQ(ordinals.Of(nullptr), -1);
  EXPECT_EQ(ordinals.Of(&other), -1);
  EXPECT_EQ(ordinals.Of(pool.m_pData + 1), -1);  // a free slot
  EXPECT_EQ(ordinals.Of(pool.m_pData + 4), -1);  // behind the last one
  EXPECT_EQ(ordinals.Of(pool.m_pData - 1), -1);
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
