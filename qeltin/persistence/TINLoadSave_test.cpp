// The operations of TIN that load and save by file name.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include "qeltin/tin/TIN.h"
#include "testing/Formula.h"
#include "testing/MakeSurvey.h"
#include "testing/NativeFileWriter.h"
#include "testing/TINPeer.h"
#include "testing/TemporaryFolder.h"
#include "testing/TrimbleFileWriter.h"
#include "testing/VerifySurface.h"

namespace {

using namespace qeltin::testing;

constexpr double LARGEST_FLOAT = 3.4028234663852886e38;
constexpr char const* FIVE_POINTS = "0,0,1\n10,0,2\n10,20,3\n0,20,4\n4,8,-5.5\n";

struct Boxes {
  TPoint min;
  TPoint max;
  TPoint worldMin;
  TPoint worldMax;
};

Boxes BoxesOf(TIN const& tin) {
  Boxes boxes;
  tin.GetBounds(boxes.min, boxes.max);
  tin.GetWorldBounds(boxes.worldMin, boxes.worldMax);
  return boxes;
}

// The live points except the corners of the seed rectangle, which come first in a fresh surface.
std::vector<TPoint> DataPoints(TIN const& tin) {
  std::vector<TPoint> points;
  for (int i = 4; i < tin.GetNumberOfPoints(); ++i) points.push_back(*tin.GetPoint(i));
  std::sort(points.begin(), points.end());
  return points;
}

std::vector<std::string> SortedLines(std::string const& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t const end = text.find('\n', at);
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

bool IsNative(std::string const& bytes) { return bytes.starts_with("QEL2000 TIN"); }

// A surface of five points, and its folder.
struct Sample {
  Sample() {
    folder.Put("a.xyz", FIVE_POINTS);
    EXPECT_TRUE(tin.Load(folder.Wide("a.xyz").c_str()));
  }
  TemporaryFolder folder;
  TIN tin;
};

// --- Text
// -----------------------------------------------------------------------------------------

TEST(TINLoadSave, ATextOfTriplesBecomesASurface) {
  Sample s;
  EXPECT_EQ(s.tin.GetNumberOfPoints(), 9);
  EXPECT_EQ(DataPoints(s.tin),
            (std::vector<TPoint>{{0, 0, 1}, {0, 20, 4}, {4, 8, -5.5}, {10, 0, 2}, {10, 20, 3}}));
  EXPECT_EQ(TINPeer::Points(s.tin)->m_iCapacity, 5 + 1004);
  EXPECT_EQ(TINPeer::Triangles(s.tin)->m_iCapacity, 2 * 5 + 2000);
  double z = 0;
  EXPECT_TRUE(s.tin.GetZ(4, 8, z));
  EXPECT_EQ(z, -5.5);
  EXPECT_TRUE(VerifySurface(s.tin).Ok()) << VerifySurface(s.tin);
}

TEST(TINLoadSave, TheWorldBoxReachesATenthBeyondTheData) {
  TemporaryFolder folder;
  folder.Put("a", "0.1,0.2,0.3\n1.7,2.9,-3.3\n1.1,0.7,9.9\n");
  TIN tin;
  EXPECT_TRUE(tin.LoadXYZ(folder.Wide("a").c_str()));
  Boxes const b = BoxesOf(tin);
  TPoint const min(0.1, 0.2, -3.3);
  TPoint const max(1.7, 2.9, 9.9);
  EXPECT_TRUE(SameBits(b.min, min));
  EXPECT_TRUE(SameBits(b.max, max));
  EXPECT_TRUE(
      SameBits(b.worldMin, TPoint(min.x - 0.1 * (max.x - min.x), min.y - 0.1 * (max.y - min.y),
                                  min.z - 0.1 * (max.z - min.z))));
  EXPECT_TRUE(
      SameBits(b.worldMax, TPoint(max.x + 0.1 * (max.x - min.x), max.y + 0.1 * (max.y - min.y),
                                  max.z + 0.1 * (max.z - min.z))));
}

TEST(TINLoadSave, JunkAfterThreeTriplesIsIgnored) {
  TemporaryFolder folder;
  folder.Put("a", "0,0,1\n10,0,2\n10,20,3\nend of survey\n0,20,4\n");
  TIN tin;
  EXPECT_TRUE(tin.Load(folder.Wide("a").c_str()));
  EXPECT_EQ(DataPoints(tin).size(), 3U);
}

TEST(TINLoadSave, ATripleOfTheOtherFormEndsTheReading) {
  TemporaryFolder folder;
  folder.Put("a", "0,0,1\n10,0,2\n10,20,3\n0 20 4\n5,5,5\n");
  TIN tin;
  EXPECT_TRUE(tin.Load(folder.Wide("a").c_str()));
  EXPECT_EQ(DataPoints(tin).size(), 3U);
}

TEST(TINLoadSave, TheBlankFormIsLoadedToo) {
  TemporaryFolder folder;
  folder.Put("a", "0 0 1\r\n10 0 2\r\n10 20 3\r\n0\t20\t4\r\n");
  TIN tin;
  EXPECT_TRUE(tin.Load(folder.Wide("a").c_str()));
  EXPECT_EQ(DataPoints(tin).size(), 4U);
}

TEST(TINLoadSave, AHeaderLineMakesTheLoadFailAtOnce) {
  Sample s;
  Boxes const before = BoxesOf(s.tin);
  s.folder.Put("b", std::string("x,y,z\n") + FIVE_POINTS);
  EXPECT_FALSE(s.tin.Load(s.folder.Wide("b").c_str()));
  EXPECT_EQ(DataPoints(s.tin).size(), 5U);
  EXPECT_EQ(BoxesOf(s.tin).worldMin, before.worldMin);
  EXPECT_EQ(BoxesOf(s.tin).max, before.max);
}

TEST(TINLoadSave, ATextThatCannotBeOpenedChangesNothing) {
  Sample s;
  EXPECT_FALSE(s.tin.Load(L"/missing/a.xyz"));
  EXPECT_FALSE(s.tin.Load(s.folder.Path().wstring().c_str()));
  EXPECT_FALSE(s.tin.Load(nullptr));
  EXPECT_EQ(DataPoints(s.tin).size(), 5U);
}

TEST(TINLoadSave, OneOrTwoPointsOverwriteTheWorldBoxOnly) {
  Sample s;
  Boxes const before = BoxesOf(s.tin);
  s.folder.Put("b", "7,9,11\n6,8,12\n");
  EXPECT_FALSE(s.tin.Load(s.folder.Wide("b").c_str()));
  Boxes const after = BoxesOf(s.tin);
  EXPECT_EQ(after.worldMin, TPoint(6, 8, 11));
  EXPECT_EQ(after.worldMax, TPoint(7, 9, 12));
  EXPECT_EQ(after.min, before.min);
  EXPECT_EQ(after.max, before.max);
  EXPECT_EQ(DataPoints(s.tin).size(), 5U);
  s.folder.Put("b", "1,2,3\n");
  EXPECT_FALSE(s.tin.Load(s.folder.Wide("b").c_str()));
  EXPECT_EQ(BoxesOf(s.tin).worldMin, TPoint(1, 2, 3));
  EXPECT_EQ(BoxesOf(s.tin).worldMax, TPoint(1, 2, 3));
}

TEST(TINLoadSave, ATextReplacesWhatWasThere) {
  Sample s;
  s.tin.BuildPointMap();
  s.folder.Put("b", "1,1,1\n2,1,1\n1,2,1\n");
  EXPECT_TRUE(s.tin.LoadXYZ(s.folder.Wide("b").c_str()));
  EXPECT_EQ(TINPeer::Map(s.tin), nullptr);
  EXPECT_EQ(DataPoints(s.tin), (std::vector<TPoint>{{1, 1, 1}, {1, 2, 1}, {2, 1, 1}}));
  EXPECT_TRUE(VerifySurface(s.tin).Ok()) << VerifySurface(s.tin);
}

TEST(TINLoadSave, ADuplicatePointStaysInThePoolWithoutTriangles) {
  TemporaryFolder folder;
  folder.Put("a", "0,0,1\n10,0,2\n10,20,3\n10,20,3\n");
  TIN tin;
  EXPECT_TRUE(tin.Load(folder.Wide("a").c_str()));
  EXPECT_EQ(tin.GetNumberOfPoints(), 8);
  EXPECT_EQ(tin.GetNumberOfTriangles(), 8);
}

TEST(TINLoadSave, APointWhosePlaceIsNoNumberIsDropped) {
  TemporaryFolder folder;
  folder.Put("a", "0,0,1\n10,0,2\n10,20,3\nnan,5,4\n5,nan,4\n");
  TIN tin;
  EXPECT_TRUE(tin.Load(folder.Wide("a").c_str()));
  EXPECT_EQ(DataPoints(tin).size(), 3U);
}

TEST(TINLoadSave, NumbersBeyondMeasureDoNoHarm) {
  for (char const* text : {"nan,1,1\n2,2,2\n3,4,5\n", "inf,-inf,1\n2,2,2\n3,4,5\n",
                           "1e308,-1e308,1\n-1e308,1e308,2\n3,4,5\n", "1,1,1\n1,1,1\n1,1,1\n"}) {
    TemporaryFolder folder;
    folder.Put("a", text);
    TIN tin;
    EXPECT_TRUE(tin.Load(folder.Wide("a").c_str()));
    double z = 0;
    tin.GetZ(2, 2, z);
    EXPECT_TRUE(tin.Save(folder.Wide("b.tin").c_str()));
  }
}

TEST(TINLoadSave, TheOrderOfALargeTextDoesNotDecideTheOrderOfInsertion) {
  TemporaryFolder folder;
  std::string text;
  for (int i = 0; i < 3000; ++i) {
    text += std::to_string(i % 50) + " " + std::to_string(i / 50) + " " + std::to_string(i) + "\n";
  }
  folder.Put("a", text);
  TIN tin;
  EXPECT_TRUE(tin.Load(folder.Wide("a").c_str()));
  ASSERT_EQ(tin.GetNumberOfPoints(), 3004);
  bool sorted = true;
  for (int i = 5; i < 3004; ++i) sorted = sorted && tin.GetPoint(i - 1)->z < tin.GetPoint(i)->z;
  EXPECT_FALSE(sorted);
  EXPECT_TRUE(VerifySurface(tin).Ok()) << VerifySurface(tin);
}

TEST(TINLoadSave, TextIsSavedWithoutTheSeedCorners) {
  Sample s;
  EXPECT_TRUE(s.tin.Save(s.folder.Wide("b.xyz").c_str()));
  EXPECT_EQ(SortedLines(s.folder.Get("b.xyz")),
            (std::vector<std::string>{"0.000000,0.000000,1.000000", "0.000000,20.000000,4.000000",
                                      "10.000000,0.000000,2.000000", "10.000000,20.000000,3.000000",
                                      "4.000000,8.000000,-5.500000"}));
}

TEST(TINLoadSave, ADataPointOnAWorldCornerAtHeight0IsLeftOutToo) {
  TIN tin;
  tin.Init(10, TPoint(0, 0, 0), TPoint(1, 1, 1));  // the world box is -10 to 11
  tin.AddPoint(0.5, 0.5, 3);
  TemporaryFolder folder;
  TINPeer::Points(tin)->Add(TPoint(-10, 11, 0));
  TINPeer::Points(tin)->Add(TPoint(-10, 11, -0.0));
  TINPeer::Points(tin)->Add(TPoint(-10, 11, 1e-300));
  TINPeer::Points(tin)->Add(TPoint(-10, 5, 0));
  EXPECT_TRUE(tin.Save(folder.Wide("b").c_str()));
  EXPECT_EQ(SortedLines(folder.Get("b")), (std::vector<std::string>{"-10.000000,11.000000,0.000000",
                                                                    "-10.000000,5.000000,0.000000",
                                                                    "0.500000,0.500000,3.000000"}));
}

TEST(TINLoadSave, PointsAreSavedInLiveOrder) {
  Sample s;
  std::string expected;
  for (int i = 4; i < s.tin.GetNumberOfPoints(); ++i) {
    TPoint const& p = *s.tin.GetPoint(i);
    char line[100];
    std::snprintf(line, sizeof line, "%f,%f,%f\n", p.x, p.y, p.z);
    expected += line;
  }
  EXPECT_TRUE(s.tin.SaveXYZ(s.folder.Wide("b").c_str()));
  EXPECT_EQ(s.folder.Get("b"), expected);
}

TEST(TINLoadSave, ASurfaceWithoutPoolsSavesAsAnEmptyText) {
  TemporaryFolder folder;
  EXPECT_TRUE(TIN().Save(folder.Wide("b").c_str()));
  EXPECT_TRUE(folder.Has("b"));
  EXPECT_EQ(folder.Get("b"), "");
}

TEST(TINLoadSave, SavingTextIsTrueWhereTheFileCouldBeCreated) {
  Sample s;
  EXPECT_FALSE(s.tin.Save(L"/missing/b.xyz"));
  EXPECT_FALSE(s.tin.Save(nullptr));
  EXPECT_TRUE(s.tin.Save(L"/dev/full"));
}

// --- Dispatch by name
// -----------------------------------------------------------------------------

TEST(TINLoadSave, ANativeFileIsLoadedWhateverTheCaseOfItsName) {
  for (char const* name : {"a.tin", "a.TIN", "a.Tin", "atin", "tin"}) {
    TemporaryFolder folder;
    folder.Put(name, NativeVersion3(SquareModel()));
    TIN tin;
    EXPECT_TRUE(tin.Load(folder.Wide(name).c_str())) << name;
    EXPECT_EQ(tin.GetNumberOfPoints(), 4);
  }
}

TEST(TINLoadSave, OnlyALowerCaseNameIsSavedAsNative) {
  Sample s;
  for (auto const& [name, native] :
       {std::tuple("a.tin", true), std::tuple("atin", true), std::tuple("b.TIN", false),
        std::tuple("c.Tin", false), std::tuple("d.ttm", false), std::tuple("e.tin ", false)}) {
    EXPECT_TRUE(s.tin.Save(s.folder.Wide(name).c_str())) << name;
    EXPECT_EQ(IsNative(s.folder.Get(name)), native) << name;
  }
}

TEST(TINLoadSave, ATrimbleNameTakesTheTrimbleRouteWhateverItsCase) {
  for (char const* name : {"a.ttm", "a.TTM", "a.tTm"}) {
    Sample s;
    s.folder.Put(name, FIVE_POINTS);  // would do as text
    EXPECT_FALSE(s.tin.Load(s.folder.Wide(name).c_str())) << name;
    EXPECT_EQ(s.tin.GetNumberOfPoints(), 0);  // emptied, other than by a text that fails
    double z = 0;
    EXPECT_FALSE(s.tin.GetZ(4, 8, z));

    s.folder.Put(name, TrimbleFile(TrimbleSquare()));
    EXPECT_TRUE(s.tin.Load(s.folder.Wide(name).c_str())) << name;
    EXPECT_EQ(TINPeer::LastTriangle(s.tin), s.tin.GetTriangle(0, true));
    EXPECT_TRUE(s.tin.GetZ(502, 9001, z));  // the location is seated
    EXPECT_EQ(z, -3.5);
  }
}

TEST(TINLoadSave, AnyOtherNameIsText) {
  Sample s;
  for (char const* name : {"a.txt", "a", "ti", "x", "a.tim", "a.tin.xyz", "\xC3\xA9"}) {
    EXPECT_TRUE(s.tin.Save(s.folder.Wide(name).c_str())) << name;
    EXPECT_FALSE(IsNative(s.folder.Get(name)));
    TIN tin;
    EXPECT_TRUE(tin.Load(s.folder.Wide(name).c_str())) << name;
    EXPECT_EQ(DataPoints(tin).size(), 5U);
  }
}

TEST(TINLoadSave, ANameShorterThanThreeCharactersIsText) {
  TemporaryFolder folder;
  std::filesystem::path const before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  folder.Put("in", FIVE_POINTS);
  TIN tin;
  EXPECT_TRUE(tin.Load(L"in"));
  EXPECT_TRUE(tin.Save(L"n"));
  EXPECT_FALSE(tin.Load(L""));
  EXPECT_FALSE(tin.Save(L""));
  std::filesystem::current_path(before);
  EXPECT_EQ(SortedLines(folder.Get("n")).size(), 5U);
}

// --- Native
// ---------------------------------------------------------------------------------------

TEST(TINLoadSave, ANativeFileIsReadyForQueries) {
  TemporaryFolder folder;
  folder.Put("a.tin", NativeVersion3(SquareModel()));
  TIN tin;
  EXPECT_TRUE(tin.Load(folder.Wide("a.tin").c_str()));
  EXPECT_EQ(TINPeer::LastTriangle(tin), tin.GetTriangle(0, true));
  EXPECT_EQ(TINPeer::Location(tin).m_pTriangles, TINPeer::Triangles(tin));
  EXPECT_EQ(TINPeer::Location(tin).m_pCurrent, nullptr);
  double z = 0;
  EXPECT_TRUE(tin.GetZ(0.25, 0.75, z));
}

TEST(TINLoadSave, ASurfaceComesBackFromANativeFile) {
  Sample s;
  EXPECT_TRUE(s.tin.Save(s.folder.Wide("b.tin").c_str()));
  TIN tin;
  EXPECT_TRUE(tin.Load(s.folder.Wide("b.tin").c_str()));
  EXPECT_EQ(tin.GetNumberOfTriangles(), s.tin.GetNumberOfTriangles());
  EXPECT_TRUE(VerifySurface(tin).Ok()) << VerifySurface(tin);
  EXPECT_NE(tin.AddPoint(5, 5, 5), nullptr);
  EXPECT_TRUE(VerifySurface(tin).Ok()) << VerifySurface(tin);
}

TEST(TINLoadSave, LoadTinAnswersTheNumberOfPointsInEveryVersion) {
  for (int version = 0; version <= 3; ++version) {
    TemporaryFolder folder;
    folder.Put("a.tin", NativeFile(version, SquareModel()));
    TIN tin;
    EXPECT_EQ(tin.LoadTin(folder.Wide("a.tin").c_str()), 4) << version;
  }
}

TEST(TINLoadSave, ANativeFileWithoutPointsIsAFailure) {
  for (int version = 0; version <= 3; ++version) {
    TemporaryFolder folder;
    folder.Put("a.tin", NativeFile(version, NativeModel()));
    TIN tin;
    EXPECT_FALSE(tin.Load(folder.Wide("a.tin").c_str())) << version;
  }
}

TEST(TINLoadSave, ANativeFileThatFailsEmptiesTheSurface) {
  Sample s;
  s.tin.BuildPointMap();
  s.folder.Put("b.tin", "no such thing");
  EXPECT_FALSE(s.tin.Load(s.folder.Wide("b.tin").c_str()));
  EXPECT_EQ(s.tin.GetNumberOfPoints(), 0);
  EXPECT_EQ(BoxesOf(s.tin).worldMax, TPoint());
  EXPECT_EQ(TINPeer::LastTriangle(s.tin), nullptr);
  EXPECT_EQ(s.tin.GetTriangleWithPoint(TPoint(4, 8)), nullptr);
  EXPECT_EQ(s.tin.GetMap().GetNumberOfPoints(), 0);
}

TEST(TINLoadSave, DamagedSurfacesCanBeAskedAndSaved) {
  Dice dice(TestSeed());
  Sample s;
  for (int i = 0; i < 300; ++i) {
    TPoint const p(dice.Between(0, 10), dice.Between(0, 20), dice.Between(0, 9));
    s.tin.AddPoint(p);
  }
  std::string const sound = NativeVersion3(ModelOf(s.tin));
  for (int i = 0; i < 100; ++i) {
    std::string bytes = sound;
    for (int n = dice.Below(40); n >= 0; --n) {
      std::size_t const at =
          16 + static_cast<std::size_t>(dice.Below(static_cast<int>(bytes.size()) - 16));
      bytes[at] = static_cast<char>(dice.Below(256));
    }
    TemporaryFolder folder;
    folder.Put("a.tin", bytes);
    TIN tin;
    if (!tin.Load(folder.Wide("a.tin").c_str())) continue;
    for (int n = 0; n < 50; ++n) {
      double z = 0;
      tin.GetZ(dice.Between(-2, 12), dice.Between(-3, 23), z);
    }
    EXPECT_TRUE(tin.Save(folder.Wide("b.tin").c_str()));
    EXPECT_TRUE(tin.Save(folder.Wide("b.xyz").c_str()));
  }
}

// --- From a path
// ----------------------------------------------------------------------------------

TEST(TINLoadSave, ASurfaceIsMadeFromAPath) {
  Sample s;
  TIN const tin(s.folder.Wide("a.xyz").c_str());
  EXPECT_EQ(DataPoints(tin), DataPoints(s.tin));
}

TEST(TINLoadSave, ASurfaceFromAPathThatFailsHasSmallEmptyPools) {
  TIN const tin(L"/missing/a.xyz");
  EXPECT_EQ(TINPeer::Points(tin)->m_iCapacity, 7);
  EXPECT_EQ(TINPeer::Triangles(tin)->m_iCapacity, 16);
  EXPECT_EQ(tin.GetNumberOfPoints(), 0);
  Boxes const b = BoxesOf(tin);
  EXPECT_EQ(b.min, TPoint(LARGEST_FLOAT, LARGEST_FLOAT, LARGEST_FLOAT));
  EXPECT_EQ(b.worldMin, b.min);
  EXPECT_EQ(b.max, TPoint(-LARGEST_FLOAT, -LARGEST_FLOAT, -LARGEST_FLOAT));
  EXPECT_EQ(b.worldMax, b.max);
  EXPECT_EQ(TINPeer::Location(tin).m_pTriangles, TINPeer::Triangles(tin));
}

TEST(TINLoadSave, CreateFromAPathIsTrueWhateverTheLoadDid) {
  Sample s;
  s.tin.BuildPointMap();
  EXPECT_TRUE(s.tin.Create(L"/missing/a.xyz"));
  EXPECT_EQ(s.tin.GetNumberOfPoints(), 0);
  EXPECT_EQ(TINPeer::LastTriangle(s.tin), nullptr);
  EXPECT_EQ(TINPeer::Points(s.tin)->m_iCapacity, 7);
  EXPECT_TRUE(s.tin.Create(s.folder.Wide("a.xyz").c_str()));
  EXPECT_EQ(DataPoints(s.tin).size(), 5U);
}

}  // namespace
