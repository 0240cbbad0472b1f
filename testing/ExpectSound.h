#pragma once

#include <gtest/gtest.h>

#include "testing/VerifySurface.h"

namespace qeltin::testing {

// Expects a surface that the verifier has nothing to say against; what it has, a failure prints.
inline void ExpectSound(TIN const& tin, SurfaceRules const& rules = {}) {
  SurfaceReport const report = VerifySurface(tin, rules);
  EXPECT_TRUE(report.Ok()) << report;
}

}  // namespace qeltin::testing
