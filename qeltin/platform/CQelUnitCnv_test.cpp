#include "qeltin/platform/CQelUnitCnv.h"

#include <gtest/gtest.h>

namespace {

TEST(CQelUnitCnv, AUnitOfWhichNothingWasSaidIsTheInternalOne) {
  CQelUnitCnv const converter;
  EXPECT_EQ(converter.ToInternalUnit(1, 1.0, 1.0, 0.0), 1.0);
  EXPECT_EQ(converter.ToInternalUnit(-7, 12.5, 1.0, 0.0), 12.5);
}

TEST(CQelUnitCnv, EachUnitHasAFactorOfItsOwn) {
  CQelUnitCnv converter;
  converter.SetFactor(1, 0.3048);
  converter.SetFactor(2, 1852.0);
  EXPECT_EQ(converter.ToInternalUnit(1, 1.0, 1.0, 0.0), 0.3048);
  EXPECT_EQ(converter.ToInternalUnit(2, 1.0, 1.0, 0.0), 1852.0);
  EXPECT_EQ(converter.ToInternalUnit(3, 1.0, 1.0, 0.0), 1.0);
  converter.SetFactor(1, 0.5);
  EXPECT_EQ(converter.ToInternalUnit(1, 1.0, 1.0, 0.0), 0.5);
}

TEST(CQelUnitCnv, ALengthIsScaledAndThenMoved) {
  CQelUnitCnv converter;
  converter.SetFactor(1, 0.25);
  EXPECT_EQ(converter.ToInternalUnit(1, 8.0, 3.0, -1.0), 5.0);
}

}  // namespace
