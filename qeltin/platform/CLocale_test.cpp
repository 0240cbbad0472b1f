#include "qeltin/platform/CLocale.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>

namespace {

using qeltin::detail::StrtodInCLocale;

TEST(CLocale, StrtodTakesAPointAndStopsAtAComma) {
  EXPECT_EQ(StrtodInCLocale("1.5"), 1.5);
  EXPECT_EQ(StrtodInCLocale("1,5"), 1.0);
  EXPECT_EQ(StrtodInCLocale("0x1p4"), 16.0);
}

TEST(CLocale, StrtodLeavesErrno) {
  errno = 0;
  EXPECT_TRUE(std::isinf(StrtodInCLocale("1e999")));
  EXPECT_EQ(errno, 0);
}

}  // namespace
