#include "qeltin/models/CQelTin.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

namespace {

TEST(CQelTin, HasNoStateAndCanBeAssigned) {
  static_assert(std::is_empty_v<CQelTin>);
  CQelTin a;
  CQelTin b;
  EXPECT_EQ(&(a = b), &a);
  EXPECT_EQ(&(a = std::move(b)), &a);
}

}  // namespace
