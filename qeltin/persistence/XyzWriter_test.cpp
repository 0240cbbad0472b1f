#include "qeltin/persistence/XyzWriter.h"

#include <gtest/gtest.h>

#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include "testing/Formula.h"
#include "testing/TemporaryFolder.h"

namespace {

using qeltin::testing::FormulaInputs;
using qeltin::testing::TemporaryFolder;

std::string AsPrinted(TPoint const& p) {
  char line[1100];
  std::snprintf(line, sizeof line, "%f,%f,%f\n", p.x, p.y, p.z);
  return line;
}

TEST(XyzWriter, WritesWhatTheCRuntimePrints) {
  FormulaInputs in;
  TemporaryFolder folder;
  XyzWriter writer(folder.Wide("a").c_str());
  std::string expected;
  auto const write = [&](TPoint const& p) {
    writer.Write(p);
    expected += AsPrinted(p);
  };
  using Limits = std::numeric_limits<double>;
  write(TPoint(0.0, -0.0, Limits::infinity()));
  write(TPoint(-Limits::infinity(), std::nan(""), std::copysign(std::nan(""), -1.0)));
  write(TPoint(Limits::max(), -Limits::max(), Limits::denorm_min()));
  write(TPoint(0.0000005, 1.0000005, 2.5e-7));
  for (int i = 0; i < 5000; ++i) {
    write(in.AnyPoint());
    auto const high = static_cast<std::uint64_t>(in.Whole(0, 0xFFFF));  // of any size
    write(TPoint(std::bit_cast<double>(high << 48 | 12345), in.Number(), in.Number()));
  }
  EXPECT_TRUE(writer.Close());
  EXPECT_EQ(folder.Get("a"), expected);
}

TEST(XyzWriter, WithoutCloseTheFileStaysAsItWas) {
  TemporaryFolder folder;
  folder.Put("a", "old");
  { XyzWriter(folder.Wide("a").c_str()).Write(TPoint(1, 2, 3)); }
  EXPECT_EQ(folder.Get("a"), "old");
  EXPECT_EQ(folder.Entries(), 1);
}

TEST(XyzWriter, RemembersItsFirstError) {
  TemporaryFolder folder;
  XyzWriter missing(folder.Wide("missing/a").c_str());
  EXPECT_FALSE(missing.IsOpen());
  EXPECT_EQ(missing.Error(), ENOENT);
  XyzWriter full(L"/dev/full");
  EXPECT_TRUE(full.IsOpen());
  full.Write(TPoint(1, 2, 3));
  EXPECT_FALSE(full.Close());
  EXPECT_EQ(full.Error(), ENOSPC);
}

}  // namespace
