// Trimble terrain models: what a load makes of each layout.

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

void PatchRecordSize(std::string& bytes, std::size_t table, int size) {
  Patch(bytes, table + TRIMBLE_RECORD_SIZE_IN_TABLE, static_cast<std::int16_t>(size));
}

CQelUnitCnv Feet() {
  CQelUnitCnv converter;
  converter.SetFactor(1, 0.3048);
  converter.SetFactor(0, 7.0);  // of no meaning to a model
  return converter;
}

// --- What a model holds ---------------------------------------------------------------------

TEST(TINFileTrimble, EveryLayoutIsLoadedFieldByField) {
  for (TrimbleLayout const& layout : AllTrimbleLayouts()) {
    Loaded l(TrimbleFile(TrimbleSquare(), layout));
    SCOPED_TRACE(::testing::Message()
                 << "sizes " << layout.plan << layout.height << layout.vertexNumber
                 << layout.triangleNumber << ", padding " << layout.padding);
    ExpectSquare(l);
  }
}

TEST(TINFileTrimble, YStandsBeforeXInEachTable) {
  std::string bytes = TrimbleFile(TrimbleSquare());
  Patch(bytes, TRIMBLE_HEADER_END, 77.0);
  Patch(bytes, TRIMBLE_HEADER_END + 8, 55.0);
  Patch(bytes, bytes.size() - 20, 33.0);
  Patch(bytes, bytes.size() - 12, 11.0);
  Loaded l(bytes);
  EXPECT_EQ(*l.tin.GetPoint(0), TPoint(500 + 55, 9000 + 77, -9));
  EXPECT_EQ(l.Starts()[1].x, 500 + 11);
  EXPECT_EQ(l.Starts()[1].y, 9000 + 33);
}

TEST(TINFileTrimble, PoolsAndListsHaveRoomForMore) {
  Loaded l(TrimbleFile(TrimbleSquare()));
  EXPECT_EQ(TINPeer::Points(l.tin)->m_iCapacity, 1004);
  EXPECT_EQ(TINPeer::Triangles(l.tin)->m_iCapacity, 2002);
  EXPECT_EQ(TINPeer::Border(l.tin)->m_iCapacity, 102);
  EXPECT_EQ(TINPeer::StartPoints(l.tin)->m_iCapacity, 22);
}

TEST(TINFileTrimble, CirclesAreCalculated) {
  Loaded l(TrimbleFile(TrimbleSquare()));
  for (int i = 0; i < 2; ++i) {
    TTriangle const& t = *l.tin.GetTriangle(i, true);
    TTriangle again = t;
    again.CalcTri();
    EXPECT_TRUE(SameBits(t.m_CentreX, again.m_CentreX));
    EXPECT_TRUE(SameBits(t.m_CentreY, again.m_CentreY));
    EXPECT_TRUE(SameBits(t.m_RadiusSq, again.m_RadiusSq));
    EXPECT_GT(t.m_RadiusSq, 0);
  }
}

TEST(TINFileTrimble, CornersAndNeighboursAreTakenAsTheyStand) {
  TrimbleModel model = TrimbleSquare();
  model.triangles = {{{1, 3, 2}, {1, 2, 2}}, {{4, 4, 4}, {2, 0, 0}}};  // counter-clockwise, flat
  Loaded l(TrimbleFile(model));
  EXPECT_EQ(l.Corner(0, 1), 2);
  EXPECT_EQ(l.Corner(0, 2), 1);
  EXPECT_EQ(l.Adjacent(0, 0), 0);  // itself
  EXPECT_EQ(l.Adjacent(0, 1), 1);
  EXPECT_EQ(l.Corner(1, 0), 3);
  EXPECT_EQ(l.Adjacent(1, 0), 1);
}

// --- Boxes ----------------------------------------------------------------------------------

TEST(TINFileTrimble, TheDataBoundsAreThoseOfThePoints) {
  Loaded l(TrimbleFile(TrimbleSquare()));
  TPoint min;
  TPoint max;
  l.tin.GetBounds(min, max);
  EXPECT_EQ(min, TPoint(500, 9001, -9));
  EXPECT_EQ(max, TPoint(504, 9008.5, 9.5));
}

TEST(TINFileTrimble, TheWorldBoxReaches10ExtentsBeyondTheBoundsOfTheHeader) {
  Loaded l(TrimbleFile(TrimbleSquare()));
  TPoint min(1);
  TPoint max(1);
  l.tin.GetWorldBounds(min, max);
  EXPECT_EQ(min, TPoint(490 - 10 * 30, 8900 - 10 * 200, 0));
  EXPECT_EQ(max, TPoint(520 + 10 * 30, 9100 + 10 * 200, 0));
}

TEST(TINFileTrimble, WithoutPointsTheBoundsOfTheHeaderStayWithHeight0) {
  std::string bytes = TrimbleFile(TrimbleSquare());
  bytes[TRIMBLE_PLAN_SIZE_AT] = 5;
  Loaded l(bytes);
  TPoint min(1);
  TPoint max(1);
  l.tin.GetBounds(min, max);
  EXPECT_EQ(min, TPoint(490, 8900, 0));
  EXPECT_EQ(max, TPoint(520, 9100, 0));
}

TEST(TINFileTrimble, ANumberThatIsNoneWidensNothingUnlessItIsTheFirst) {
  TrimbleModel model = TrimbleSquare();
  model.points[2].z = std::nan("");
  Loaded l(TrimbleFile(model));
  TPoint min;
  TPoint max;
  l.tin.GetBounds(min, max);
  EXPECT_EQ(min, TPoint(500, 9001, -9));
  EXPECT_EQ(max, TPoint(504, 9008.5, 9));
  model.points[0].x = std::nan("");
  Loaded first(TrimbleFile(model));
  first.tin.GetBounds(min, max);
  EXPECT_TRUE(std::isnan(min.x) && std::isnan(max.x));
}

// --- Units ----------------------------------------------------------------------------------

TEST(TINFileTrimble, WithoutAFlagOrAConverterNothingIsScaled) {
  CQelUnitCnv feet = Feet();
  Loaded unflagged(TrimbleFile(TrimbleSquare()), &feet);
  ExpectSquare(unflagged);
  TrimbleModel model = TrimbleSquare();
  model.headerUnits = model.tableUnits = 1;
  Loaded unconverted(TrimbleFile(model));
  ExpectSquare(unconverted);
}

TEST(TINFileTrimble, AFlagOtherThan1IsNone) {
  CQelUnitCnv feet = Feet();
  for (int flag : {2, 3, 0x81, 0xFF}) {
    TrimbleModel model = TrimbleSquare();
    model.headerUnits = model.tableUnits = static_cast<unsigned char>(flag);
    Loaded l(TrimbleFile(model), &feet);
    ExpectSquare(l);
  }
}

TEST(TINFileTrimble, TheHeaderFlagScalesOriginAndBoundsAndNotTheTables) {
  TrimbleModel model = TrimbleSquare();
  model.headerUnits = 1;
  CQelUnitCnv feet = Feet();
  Loaded l(TrimbleFile(model), &feet);
  EXPECT_EQ(*l.tin.GetPoint(1), TPoint(0.0 + 500 * 0.3048, 8.5 + 9000 * 0.3048, 9));
  EXPECT_EQ(l.Starts()[1].x, 3 + 500 * 0.3048);
  double const lowX = 490 * 0.3048;
  double const highX = 520 * 0.3048;
  double const lowY = 8900 * 0.3048;
  double const highY = 9100 * 0.3048;
  TPoint min;
  TPoint max;
  l.tin.GetWorldBounds(min, max);
  EXPECT_EQ(min, TPoint(lowX - 10 * (highX - lowX), lowY - 10 * (highY - lowY), 0));
  EXPECT_EQ(max, TPoint(highX + 10 * (highX - lowX), highY + 10 * (highY - lowY), 0));
}

TEST(TINFileTrimble, TheTableFlagScalesTheTablesAndNotTheHeader) {
  TrimbleModel model = TrimbleSquare();
  model.tableUnits = 1;
  CQelUnitCnv feet = Feet();
  Loaded l(TrimbleFile(model), &feet);
  EXPECT_EQ(*l.tin.GetPoint(2), TPoint(4 * 0.3048 + 500, 8.5 * 0.3048 + 9000, 9.5 * 0.3048));
  EXPECT_EQ(l.Starts()[0].y, 7 * 0.3048 + 9000);
  TPoint min;
  TPoint max;
  l.tin.GetWorldBounds(min, max);
  EXPECT_EQ(min, TPoint(490 - 10 * 30, 8900 - 10 * 200, 0));
}

TEST(TINFileTrimble, ValuesOf4BytesAreScaledInSinglePrecision) {
  CQelUnitCnv feet = Feet();
  float const factor = 0.3048F;
  for (int plan : {4, 8}) {
    for (int height : {4, 8}) {
      TrimbleModel model = TrimbleSquare();
      model.tableUnits = 1;
      model.points[1] = TPoint(0.1, 123.456, 7.7);
      model.starts[0] = {0.7, 3.3, 1};
      Loaded l(TrimbleFile(model, {plan, height, 2, 2, 0}), &feet);
      TPoint const& p = *l.tin.GetPoint(1);
      double const x = plan == 4 ? double{0.1F * factor} : 0.1 * 0.3048;
      double const y = plan == 4 ? double{123.456F * factor} : 123.456 * 0.3048;
      EXPECT_TRUE(SameBits(p.x, x + 500));
      EXPECT_TRUE(SameBits(p.y, y + 9000));
      EXPECT_TRUE(SameBits(p.z, height == 4 ? double{7.7F * factor} : 7.7 * 0.3048));
      double const startX = plan == 4 ? double{0.7F * factor} : 0.7 * 0.3048;
      EXPECT_TRUE(SameBits(l.Starts()[0].x, startX + 500));
    }
  }
}

TEST(TINFileTrimble, TheConverterOfASurfaceIsApplied) {
  TrimbleModel model = TrimbleSquare();
  model.tableUnits = 1;
  TemporaryFolder folder;
  folder.Put("a.ttm", TrimbleFile(model));
  CQelUnitCnv feet = Feet();
  TIN tin;
  tin.SetUnitConverter(&feet);
  EXPECT_TRUE(tin.Load(folder.Wide("a.ttm").c_str()));
  EXPECT_EQ(tin.GetPoint(1)->z, 9 * 0.3048);
}

// --- Numbers --------------------------------------------------------------------------------

TEST(TINFileTrimble, ABorderNumberOf0OrAboveTheTrianglesIsDropped) {
  for (int size : {2, 4}) {
    TrimbleModel model = TrimbleSquare();
    model.border = {0, 2, 3, -1, 1, 2, -32768, 32767};
    Loaded l(TrimbleFile(model, {8, 8, 4, size, 0}));
    EXPECT_EQ(l.Border(), (std::vector<int>{1, 0, 1}));
  }
}

TEST(TINFileTrimble, ABorderNumberOf2BytesHasNoSign) {
  TrimbleModel model = TrimbleSquare();
  model.triangles.resize(40'000, model.triangles[0]);
  model.border = {39'999};
  Loaded l(TrimbleFile(model, {8, 8, 2, 2, 0}));
  EXPECT_EQ(l.Border(), std::vector<int>{39'998});
}

TEST(TINFileTrimble, ABorderRecordOfAnySizeIsANumber) {
  std::string const bytes = TrimbleFile(TrimbleSquare());
  std::size_t const at = bytes.size() - 2 * 20 - 2 * 4;
  for (int size : {1, 3, 6, 32767}) {
    std::string patched = bytes.substr(0, at);
    for (int number : {2, 1}) {
      patched += static_cast<char>(number);
      patched += std::string(std::min<std::size_t>(static_cast<std::size_t>(size), 4) - 1, '\0');
      if (size > 4) patched += std::string(static_cast<std::size_t>(size) - 4, '\x7F');
    }
    PatchRecordSize(patched, TRIMBLE_BORDER_AT, size);
    Loaded l(patched);
    EXPECT_EQ(l.Border(), (std::vector<int>{1, 0})) << size;
  }
}

TEST(TINFileTrimble, ANeighbourNumberBelow1OrAboveTheTrianglesIsNone) {
  for (int size : {2, 4}) {
    for (std::int32_t number : {0, -1, 3, 32767, -32768}) {
      TrimbleModel model = TrimbleSquare();
      model.triangles[0].adjacent[1] = number;
      Loaded l(TrimbleFile(model, {8, 8, 4, size, 0}));
      EXPECT_EQ(l.Adjacent(0, 1), -1) << number;
      EXPECT_EQ(l.Adjacent(0, 2), 1);
    }
  }
}

TEST(TINFileTrimble, ACornerOutsideItsTableIsSlot0AndHidesTheTriangle) {
  for (int size : {2, 4}) {
    for (std::int32_t number : {0, -1, 5, 32767, -32768}) {
      TrimbleModel model = TrimbleSquare();
      model.triangles[1].corners[2] = number;
      Loaded l(TrimbleFile(model, {8, 8, size, 4, 0}));
      EXPECT_EQ(l.Corner(1, 2), 0) << number;
      EXPECT_EQ(l.tin.GetTriangle(1, true)->m_Flags, TRI_OUTSIDE);
      EXPECT_EQ(l.tin.GetTriangle(0, true)->m_Flags, 0);
      ExpectInside(l.tin);
    }
  }
}

TEST(TINFileTrimble, AStartNumberIsNotChecked) {
  TrimbleModel model = TrimbleSquare();
  model.starts = {{1, 1, 0}, {2, 2, 99}, {3, 3, -2147483647 - 1}};
  Loaded l(TrimbleFile(model));
  std::vector<TArrayStartPoint> const starts = l.Starts();
  EXPECT_EQ(starts[0].triangle, -1);
  EXPECT_EQ(starts[1].triangle, 98);
  EXPECT_EQ(starts[2].triangle, 2147483647);
}

// --- Tables that are passed over ------------------------------------------------------------

void ExpectPassedOver(Loaded& l, int points, int triangles, std::size_t starts) {
  EXPECT_EQ(l.result, 4U);
  EXPECT_EQ(l.tin.GetNumberOfPoints(), points);
  EXPECT_EQ(l.tin.GetNumberOfTriangles(), triangles);
  EXPECT_EQ(l.Starts().size(), starts);
  EXPECT_EQ(l.Border().size(), static_cast<std::size_t>(triangles));
  EXPECT_EQ(l.file.LastFault(), Fault::NONE);
  ExpectInside(l.tin);
}

TEST(TINFileTrimble, ASizeByteOutOfRangeEmptiesTheTablesThatHaveTheField) {
  std::string const bytes = TrimbleFile(TrimbleSquare());
  for (int size : {0, 1, 2, 3, 5, 7, 9, 16, -8, -1}) {
    SCOPED_TRACE(size);
    std::string patched = bytes;
    patched[TRIMBLE_PLAN_SIZE_AT] = static_cast<char>(size);
    Loaded plan(patched);
    ExpectPassedOver(plan, 0, 2, 0);
    patched = bytes;
    patched[TRIMBLE_HEIGHT_SIZE_AT] = static_cast<char>(size);
    Loaded height(patched);
    ExpectPassedOver(height, 0, 2, 2);
  }
  for (int size : {0, 1, 3, 5, 8, -4, -1}) {
    SCOPED_TRACE(size);
    std::string patched = bytes;
    patched[TRIMBLE_VERTEX_NUMBER_SIZE_AT] = static_cast<char>(size);
    Loaded vertexNumber(patched);
    ExpectPassedOver(vertexNumber, 4, 0, 2);
    patched = bytes;
    patched[TRIMBLE_TRIANGLE_NUMBER_SIZE_AT] = static_cast<char>(size);
    Loaded triangleNumber(patched);
    ExpectPassedOver(triangleNumber, 4, 0, 0);
  }
}

TEST(TINFileTrimble, TrianglesWithoutPointsAreHidden) {
  std::string bytes = TrimbleFile(TrimbleSquare());
  bytes[TRIMBLE_HEIGHT_SIZE_AT] = 6;
  Loaded l(bytes);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(l.tin.GetTriangle(i, true)->m_Flags, TRI_OUTSIDE);
    EXPECT_EQ(*l.tin.GetTriangle(i, true)->m_pVertex[1], TPoint());
  }
}

TEST(TINFileTrimble, ARecordSizeBelowWhatItsFieldsNeedEmptiesTheTable) {
  std::string const bytes = TrimbleFile(TrimbleSquare());
  for (int shortBy : {1, 20, 24, 25, 1000}) {
    SCOPED_TRACE(shortBy);
    auto const patched = [&](std::size_t table, int fields) {
      std::string result = bytes;
      PatchRecordSize(result, table, fields - shortBy);
      return result;
    };
    Loaded vertices(patched(TRIMBLE_VERTICES_AT, 24));
    ExpectPassedOver(vertices, 0, 2, 2);
    Loaded triangles(patched(TRIMBLE_TRIANGLES_AT, 24));
    ExpectPassedOver(triangles, 4, 0, 2);
    Loaded starts(patched(TRIMBLE_STARTS_AT, 20));
    ExpectPassedOver(starts, 4, 2, 0);
  }
  for (int size : {0, -1, -32768}) {
    std::string patched = bytes;
    PatchRecordSize(patched, TRIMBLE_BORDER_AT, size);
    Loaded border(patched);
    EXPECT_TRUE(border.Border().empty());
    EXPECT_EQ(border.Starts().size(), 2U);
  }
}

TEST(TINFileTrimble, AModelWithoutVerticesAnswers0) {
  TrimbleModel model = TrimbleSquare();
  model.points.clear();
  TemporaryFolder folder;
  folder.Put("a.ttm", TrimbleFile(model));
  TIN tin;
  EXPECT_EQ(TINFile().LoadTrimbleTINModel(folder.Wide("a.ttm").c_str(), tin), 0U);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 2);
  EXPECT_EQ(tin.LoadTrimbleTinModel(folder.Wide("a.ttm").c_str()), 0);
  EXPECT_FALSE(tin.Load(folder.Wide("a.ttm").c_str()));
  EXPECT_EQ(TINPeer::LastTriangle(tin), nullptr);
}

// --- The lists ------------------------------------------------------------------------------

TEST(TINFileTrimble, EachLoadReplacesTheListsAndNothingElseDoes) {
  TemporaryFolder folder;
  folder.Put("square.ttm", TrimbleFile(TrimbleSquare()));
  TrimbleModel other = TrimbleSquare();
  other.border = {2};
  other.starts.clear();
  folder.Put("other.ttm", TrimbleFile(other));
  folder.Put("none.ttm", "none");
  folder.Put("native.tin", NativeVersion3(SquareModel()));
  TIN tin;
  EXPECT_TRUE(tin.Load(folder.Wide("square.ttm").c_str()));
  TArray<int> const* const border = TINPeer::Border(tin);
  TArray<TArrayStartPoint> const* const starts = TINPeer::StartPoints(tin);
  tin.Clear();
  EXPECT_FALSE(tin.Load(folder.Wide("none.ttm").c_str()));
  EXPECT_TRUE(tin.Load(folder.Wide("native.tin").c_str()));
  EXPECT_EQ(TINPeer::Border(tin), border);
  EXPECT_EQ(TINPeer::StartPoints(tin), starts);
  EXPECT_EQ(starts->m_iCount, 2);
  EXPECT_TRUE(tin.Load(folder.Wide("other.ttm").c_str()));
  EXPECT_EQ(TINPeer::Border(tin)->m_iCount, 1);
  EXPECT_EQ(TINPeer::StartPoints(tin)->m_iCount, 0);
}

TEST(TINFileTrimble, ACopyThatLoadsAModelOwnsItsLists) {
  TemporaryFolder folder;
  folder.Put("a.ttm", TrimbleFile(TrimbleSquare()));
  TIN tin;
  tin.Load(folder.Wide("a.ttm").c_str());
  TIN copy(tin);
  EXPECT_EQ(TINPeer::Border(copy), TINPeer::Border(tin));
  for (int i = 0; i < 2; ++i) copy.Load(folder.Wide("a.ttm").c_str());
  EXPECT_NE(TINPeer::Border(copy), TINPeer::Border(tin));
  EXPECT_EQ(TINPeer::Border(tin)->m_iCount, 2);
  EXPECT_EQ(TINPeer::StartPoints(tin)->m_iCount, 2);
}

// --- GetInfo --------------------------------------------------------------------------------

TEST(TINFileTrimble, GetInfoAnswersTheBoundsUnscaledAndTheVertices) {
  TrimbleModel model = TrimbleSquare();
  model.headerUnits = model.tableUnits = 1;
  TemporaryFolder folder;
  folder.Put("a.ttm", TrimbleFile(model));
  CQelUnitCnv feet = Feet();
  TINFile file;
  file.SetUnitConverter(&feet);
  TINFile::TINInfo const info = file.GetInfo(0, folder.Wide("a.ttm").c_str());
  EXPECT_EQ(info.minimum, TPoint(490, 8900, 0));
  EXPECT_EQ(info.maximum, TPoint(520, 9100, 0));
  EXPECT_EQ(info.count, 4);
}

}  // namespace
