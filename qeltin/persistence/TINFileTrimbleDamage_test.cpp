// Trimble terrain models that no maker writes: what is none, what is cut off, what cannot be meant.

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "qeltin/persistence/TINFile.h"
#include "qeltin/platform/CQelUnitCnv.h"
#include "testing/ExpectInside.h"
#include "testing/Formula.h"
#include "testing/LoadedTrimble.h"
#include "testing/MakeSurvey.h"
#include "testing/NativeFileWriter.h"
#include "testing/TINPeer.h"
#include "testing/TemporaryFolder.h"
#include "testing/TrimbleFileWriter.h"

namespace {

using namespace qeltin::testing;
using Fault = TINFile::Fault;

// --- Files that are none --------------------------------------------------------------------

void ExpectEmpty(TIN const& tin) {
  EXPECT_EQ(TINPeer::Points(tin), nullptr);
  EXPECT_EQ(TINPeer::Triangles(tin), nullptr);
  TPoint corners[4] = {TPoint(1), TPoint(1), TPoint(1), TPoint(1)};
  tin.GetBounds(corners[0], corners[1]);
  tin.GetWorldBounds(corners[2], corners[3]);
  for (TPoint const& corner : corners) EXPECT_EQ(corner, TPoint());
}

TEST(TINFileTrimbleDamage, AWrongMagicLeavesAnEmptySurface) {
  std::string const bytes = TrimbleFile(TrimbleSquare());
  for (std::size_t at = TRIMBLE_MAGIC_AT; at < TRIMBLE_MAGIC_AT + 16; ++at) {
    std::string patched = bytes;
    patched[at] = '_';
    Loaded const l(patched);
    EXPECT_EQ(l.result, 0U);
    ExpectEmpty(l.tin);
    EXPECT_EQ(l.file.LastFault(), Fault::WRONG_MAGIC);
  }
}

TEST(TINFileTrimbleDamage, AHeaderThatIsCutOffIsNone) {
  std::string const bytes = TrimbleFile(TrimbleSquare());
  for (std::size_t size : {0, 1, 18, 148}) {
    Loaded const l(bytes.substr(0, size));
    EXPECT_EQ(l.result, 0U);
    ExpectEmpty(l.tin);
  }
}

TEST(TINFileTrimbleDamage, AMissingFileEmptiesTheSurface) {
  Loaded l(TrimbleFile(TrimbleSquare()));
  EXPECT_EQ(l.file.LoadTrimbleTINModel(L"/missing/model.ttm", l.tin), 0U);
  EXPECT_EQ(l.file.LastError(), ENOENT);
  ExpectEmpty(l.tin);
}

// --- Damage ---------------------------------------------------------------------------------

TEST(TINFileTrimbleDamage, ATableThatIsCutOffRepeatsItsLastRecord) {
  std::string const bytes = TrimbleFile(TrimbleSquare());
  Loaded l(bytes.substr(0, TRIMBLE_HEADER_END + 3 * 24 - 1));  // a byte short of the third point
  EXPECT_EQ(l.result, 4U);
  EXPECT_EQ(l.file.LastFault(), Fault::TRUNCATED);
  EXPECT_EQ(*l.tin.GetPoint(1), TPoint(500, 9008.5, 9));
  EXPECT_EQ(*l.tin.GetPoint(2), TPoint(500, 9008.5, 9));
  EXPECT_EQ(*l.tin.GetPoint(3), TPoint(500, 9008.5, 9));
  // Nothing at all of the other tables: their records are zeros.
  EXPECT_EQ(l.tin.GetTriangle(1, true)->m_Flags, TRI_OUTSIDE);
  EXPECT_EQ(l.Adjacent(1, 0), -1);
  EXPECT_TRUE(l.Border().empty());
  ASSERT_EQ(l.Starts().size(), 2U);
  EXPECT_EQ(l.Starts()[1].x, 500);
  EXPECT_EQ(l.Starts()[1].triangle, -1);
}

TEST(TINFileTrimbleDamage, ABorderThatIsCutOffLosesItsEnd) {
  std::string bytes = TrimbleFile(TrimbleSquare());
  Patch<std::int32_t>(bytes, TRIMBLE_BORDER_AT, static_cast<std::int32_t>(bytes.size() - 4));
  Patch<std::int32_t>(bytes, bytes.size() - 4, 2);
  Loaded l(bytes);
  EXPECT_EQ(l.Border(), std::vector<int>{1});
  EXPECT_EQ(l.file.LastFault(), Fault::TRUNCATED);
}

TEST(TINFileTrimbleDamage, TablesMayStandAnywhereAndOverlap) {
  TrimbleModel model = TrimbleSquare();
  std::string bytes = TrimbleFile(model);
  std::string const vertices = bytes.substr(TRIMBLE_HEADER_END, 4 * 24);
  Patch(bytes, TRIMBLE_VERTICES_AT, static_cast<std::int32_t>(bytes.size() + 1000));
  bytes += std::string(1000, '\x11') + vertices;
  Loaded l(bytes);
  ExpectSquare(l);

  Patch<std::int32_t>(bytes, TRIMBLE_VERTICES_AT, 0);  // the header itself
  Loaded overlapping(bytes);
  EXPECT_EQ(overlapping.result, 4U);
  ExpectInside(overlapping.tin);
}

TEST(TINFileTrimbleDamage, ATableBeforeTheStartIsReadFromWhereTheReaderStands) {
  std::string bytes = TrimbleFile(TrimbleSquare());
  for (std::size_t table :
       {TRIMBLE_VERTICES_AT, TRIMBLE_TRIANGLES_AT, TRIMBLE_BORDER_AT, TRIMBLE_STARTS_AT}) {
    Patch<std::int32_t>(bytes, table, -1);
  }
  Loaded l(bytes);  // the tables follow each other and the header
  ExpectSquare(l);
}

void ExpectRefused(std::string const& bytes) {
  Loaded l(bytes);
  EXPECT_EQ(l.result, 0U);
  ExpectEmpty(l.tin);
  EXPECT_EQ(l.file.LastFault(), Fault::UNSOUND_TABLES);
  EXPECT_EQ(TINPeer::Border(l.tin), nullptr);
}

TEST(TINFileTrimbleDamage, CountsThatAFileOfThatSizeCannotMeanAreRefused) {
  for (std::size_t table :
       {TRIMBLE_VERTICES_AT, TRIMBLE_TRIANGLES_AT, TRIMBLE_BORDER_AT, TRIMBLE_STARTS_AT}) {
    for (std::uint32_t count : {20'000'000U, 0x7FFF'FFFFU, 0x8000'0000U, 0xFFFF'FFFFU}) {
      std::string bytes = TrimbleFile(TrimbleSquare());
      Patch(bytes, table + TRIMBLE_RECORDS_IN_TABLE, count);
      ExpectRefused(bytes);
    }
  }
}

TEST(TINFileTrimbleDamage, AllPoolsTogetherMayTakeNoMoreThanTheFileJustifies) {
  std::string bytes = TrimbleFile(TrimbleSquare());
  Patch(bytes, TRIMBLE_VERTICES_AT + TRIMBLE_RECORDS_IN_TABLE, 2'300'000);  // 64.4 MB of 64 MiB
  Loaded l(bytes);
  EXPECT_EQ(l.result, 2'300'000U);
  EXPECT_EQ(l.tin.GetNumberOfPoints(), 2'300'000);
  Patch(bytes, TRIMBLE_STARTS_AT + TRIMBLE_RECORDS_IN_TABLE, 80'000);  // 2.9 MB more
  ExpectRefused(bytes);
}

TEST(TINFileTrimbleDamage, NoDamageLeadsOutsideThePools) {
  Dice dice(TestSeed());
  std::vector<TrimbleLayout> const layouts = AllTrimbleLayouts();
  for (int i = 0; i < 2000; ++i) {
    std::string bytes = TrimbleFile(TrimbleSquare(), layouts[static_cast<std::size_t>(i) % 48]);
    for (int n = 1 + dice.Below(4); n > 0; --n) {
      std::size_t const at =
          18 + static_cast<std::size_t>(dice.Below(static_cast<int>(bytes.size()) - 18));
      static constexpr unsigned char LIKELY[] = {0, 1, 2, 3, 4, 8, 0x7F, 0x80, 0xFF};
      bytes[at] = static_cast<char>(dice.OneIn(2) ? LIKELY[dice.Below(9)] : dice.Below(256));
    }
    if (dice.OneIn(4)) {
      bytes.resize(static_cast<std::size_t>(dice.Below(static_cast<int>(bytes.size()))));
    }
    Loaded l(bytes);
    ASSERT_NO_FATAL_FAILURE(ExpectInside(l.tin));
    for (int border : TINPeer::Border(l.tin) != nullptr ? l.Border() : std::vector<int>()) {
      ASSERT_TRUE(border >= 0 && border < l.tin.GetNumberOfTriangles());
    }
  }
}

}  // namespace
