#include "qeltin/persistence/TINFile.h"

#include <gtest/gtest.h>

#include <bit>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "testing/Formula.h"
#include "testing/MakeSurvey.h"
#include "testing/NativeFileWriter.h"
#include "testing/TINPeer.h"
#include "testing/TemporaryFolder.h"
#include "testing/VerifySurface.h"

namespace {

using namespace qeltin::testing;
using Fault = TINFile::Fault;

// A file of its own, and what comes of loading it.
class Loaded {
 public:
  explicit Loaded(std::string const& bytes) {
    m_Folder.Put("surface.tin", bytes);
    result = file.LoadTIN(Name().c_str(), tin);
  }
  std::wstring Name() const { return m_Folder.Wide("surface.tin"); }
  std::string Bytes() const { return m_Folder.Get("surface.tin"); }
  int Entries() const { return m_Folder.Entries(); }
  TArray<TPoint>& Points() const { return *TINPeer::Points(tin); }
  TArray<TTriangle>& Triangles() const { return *TINPeer::Triangles(tin); }

  TIN tin;
  TINFile file;
  unsigned int result = 0;

 private:
  TemporaryFolder m_Folder;
};

bool IsEmpty(TIN const& tin) {
  TPoint min(1), max(1), worldMin(1), worldMax(1);
  tin.GetBounds(min, max);
  tin.GetWorldBounds(worldMin, worldMax);
  TPoint const zero;
  return TINPeer::Points(tin) == nullptr && TINPeer::Triangles(tin) == nullptr && min == zero &&
         max == zero && worldMin == zero && worldMax == zero;
}

void ExpectModel(TIN const& tin, NativeModel const& expected) {
  NativeModel const model = ModelOf(tin);
  EXPECT_TRUE(SameBits(model.min, expected.min));
  EXPECT_TRUE(SameBits(model.max, expected.max));
  EXPECT_TRUE(SameBits(model.worldMin, expected.worldMin));
  EXPECT_TRUE(SameBits(model.worldMax, expected.worldMax));
  ASSERT_EQ(model.points.size(), expected.points.size());
  for (std::size_t i = 0; i < model.points.size(); ++i) {
    ASSERT_TRUE(SameBits(model.points[i], expected.points[i])) << "point " << i;
  }
  ASSERT_EQ(model.triangles.size(), expected.triangles.size());
  for (std::size_t i = 0; i < model.triangles.size(); ++i) {
    NativeTriangle const& t = model.triangles[i];
    NativeTriangle const& e = expected.triangles[i];
    for (int k = 0; k < 3; ++k) {
      ASSERT_EQ(t.corners[k], e.corners[k]) << "triangle " << i;
      ASSERT_EQ(t.adjacent[k], e.adjacent[k]) << "triangle " << i;
      ASSERT_TRUE(SameBits(t.circle[k], e.circle[k])) << "triangle " << i;
    }
    ASSERT_EQ(t.flags, e.flags) << "triangle " << i;
  }
}

// With the circles that CalcTri gives.
NativeModel WithCircles(NativeModel model) {
  for (NativeTriangle& t : model.triangles) {
    TTriangle triangle(&model.points[t.corners[0]], &model.points[t.corners[1]],
                       &model.points[t.corners[2]]);
    triangle.CalcTri();
    t.circle[0] = triangle.m_CentreX;
    t.circle[1] = triangle.m_CentreY;
    t.circle[2] = triangle.m_RadiusSq;
  }
  return model;
}

NativeModel WithFlags(NativeModel model, unsigned char flags) {
  for (NativeTriangle& t : model.triangles) t.flags = flags;
  return model;
}

NativeModel SurveyModel(int points) {
  TIN tin;
  std::vector<IPoint> survey;
  for (TPoint const& p : MakeSurvey(Survey::Swaths, points, 5)) survey.push_back({p.x, p.y, p.z});
  tin.Create(&survey);
  return ModelOf(tin);
}

std::string Saved(TIN const& tin) {
  TemporaryFolder folder;
  TINFile file;
  EXPECT_TRUE(file.SaveTIN(folder.Wide("a.tin").c_str(), tin));
  EXPECT_EQ(file.LastError(), 0);
  EXPECT_EQ(folder.Entries(), 1);
  return folder.Get("a.tin");
}

// --- The current version
// --------------------------------------------------------------------------

TEST(TINFile, Version3IsLoadedFieldByField) {
  Loaded const l(NativeVersion3(SquareModel()));
  EXPECT_EQ(l.result, 4U);
  ExpectModel(l.tin, WithCircles(SquareModel()));
  EXPECT_EQ(l.Points().m_iCapacity, 1004);
  EXPECT_EQ(l.Triangles().m_iCapacity, 2002);
  EXPECT_EQ(l.file.LastError(), 0);
  EXPECT_EQ(l.file.LastFault(), Fault::NONE);
}

TEST(TINFile, Version3IsWrittenByteForByte) {
  std::string const bytes = NativeVersion3(SquareModel());
  EXPECT_EQ(bytes.size(), 120U + 24 * 4 + 26 * 2);
  Loaded const l(bytes);
  EXPECT_EQ(l.Bytes(), bytes);  // reading does not touch it
  EXPECT_EQ(Saved(l.tin), bytes);
}

TEST(TINFile, ALargeSurfaceIsWrittenInItsLiveOrder) {
  TIN tin;
  std::vector<TPoint> const points = MakeSurvey(Survey::Clusters, 20'000, TestSeed());
  Extent const extent = ExtentOf(points);
  tin.Init(static_cast<int>(points.size()), extent.min, extent.max);
  for (TPoint const& p : points) tin.LoadPoint(p.x, p.y, p.z);
  tin.Triangulate();  // shuffles the index table
  std::string const bytes = NativeVersion3(ModelOf(tin));
  EXPECT_EQ(Saved(tin), bytes);

  Loaded const l(bytes);
  EXPECT_EQ(l.result, static_cast<unsigned>(tin.GetNumberOfPoints()));
  ExpectModel(l.tin, WithCircles(ModelOf(tin)));
  EXPECT_TRUE(VerifySurface(l.tin).Ok()) << VerifySurface(l.tin);
}

TEST(TINFile, ASurfaceWithoutPoolsSavesAs120Bytes) {
  TIN const tin;
  std::string const bytes = Saved(tin);
  EXPECT_EQ(bytes.size(), 120U);
  EXPECT_EQ(bytes, NativeVersion3(NativeModel()));
}

TEST(TINFile, AVersion3FileWithoutPointsAnswers0) {
  NativeModel model = SquareModel();
  model.points.clear();
  model.triangles.clear();
  Loaded const l(NativeVersion3(model));
  EXPECT_EQ(l.result, 0U);
  EXPECT_EQ(l.file.LastFault(), Fault::NONE);
  EXPECT_EQ(l.Points().m_iCapacity, 1000);
  EXPECT_EQ(l.Triangles().m_iCapacity, 2000);
  ExpectModel(l.tin, model);
}

TEST(TINFile, TheSecondByteAfterATriangleIsDropped) {
  std::string bytes = NativeVersion3(SquareModel());
  bytes.back() = '\xFF';
  Loaded const l(bytes);
  ExpectModel(l.tin, WithCircles(SquareModel()));
  EXPECT_EQ(Saved(l.tin), NativeVersion3(SquareModel()));
}

TEST(TINFile, TheByteAfterTheFlagsIsCarriedFromVersions0And2IntoVersion3) {
  NativeModel model = SquareModel();
  model.triangles[0].reserved = 0xAB;
  model.triangles[1].reserved = 0xCD;
  EXPECT_EQ(Loaded(NativeFile(0, model)).Bytes(), NativeVersion3(model));
  EXPECT_EQ(Loaded(NativeFile(2, model)).Bytes(), NativeVersion3(model));
  Loaded const l(NativeVersion3(model));
  EXPECT_EQ(l.tin.GetTriangle(0, true)->m_Reserved, 0);
}

TEST(TINFile, AVertexThatIsNoLongerLiveIsWrittenAsMinus1) {
  Loaded const l(NativeVersion3(SquareModel()));
  l.Points().Remove(l.tin.GetPoint(0));  // the last point takes its place
  NativeModel expected = SquareModel();
  expected.points = {SquareModel().points[3], SquareModel().points[1], SquareModel().points[2]};
  expected.triangles[0].corners[0] = -1;
  expected.triangles[1].corners[0] = -1;
  expected.triangles[1].corners[2] = 0;
  EXPECT_EQ(Saved(l.tin), NativeVersion3(expected));
}

TEST(TINFile, ANeighbourThatIsNoLongerLiveIsWrittenAsMinus1) {
  Loaded const l(NativeVersion3(SquareModel()));
  l.Triangles().Remove(l.tin.GetTriangle(0, true));
  NativeModel expected = SquareModel();
  expected.triangles.erase(expected.triangles.begin());
  expected.triangles[0].adjacent[0] = -1;
  EXPECT_EQ(Saved(l.tin), NativeVersion3(expected));
}

TEST(TINFile, ACopyOfASurfaceRefersToAnotherPoolAndIsWrittenWithMinus1) {
  Loaded const l(NativeVersion3(SquareModel()));
  TIN const copy(l.tin);
  NativeModel expected = SquareModel();
  for (NativeTriangle& t : expected.triangles) {
    for (int k = 0; k < 3; ++k) t.corners[k] = t.adjacent[k] = -1;
  }
  EXPECT_EQ(Saved(copy), NativeVersion3(expected));
}

TEST(TINFile, NotANumberSurvivesARoundTrip) {
  NativeModel model = SquareModel();
  model.points[1] = TPoint(std::nan(""), INFINITY, -0.0);
  Loaded const l(NativeVersion3(model));
  EXPECT_TRUE(std::isnan(l.tin.GetTriangle(0, true)->m_RadiusSq));
  EXPECT_EQ(Saved(l.tin), NativeVersion3(model));
}

// --- Older versions
// -------------------------------------------------------------------------------

TEST(TINFile, Version2IsLoadedFieldByField) {
  Loaded const l(NativeVersion2(SquareModel()));
  ExpectModel(l.tin, WithCircles(SquareModel()));
  EXPECT_EQ(l.Points().m_iCapacity, 1004);
  EXPECT_EQ(l.Triangles().m_iCapacity, 2002);
}

TEST(TINFile, Version2Answers1WhateverItsNumberOfPoints) {
  EXPECT_EQ(Loaded(NativeVersion2(SquareModel())).result, 1U);
  EXPECT_EQ(Loaded(NativeVersion2(NativeModel())).result, 1U);
}

TEST(TINFile, Version1HasNoFlags) {
  Loaded const l(NativeVersion1(SquareModel()));
  EXPECT_EQ(l.result, 4U);
  ExpectModel(l.tin, WithFlags(WithCircles(SquareModel()), 0));
}

TEST(TINFile, Version1WithoutPointsAnswers0AndIsRewritten) {
  Loaded const l(NativeVersion1(NativeModel()));
  EXPECT_EQ(l.result, 0U);
  EXPECT_EQ(l.Bytes(), NativeVersion3(NativeModel()));
}

TEST(TINFile, LoadingVersion1TurnsItIntoVersion3) {
  Loaded l(NativeVersion1(SquareModel()));
  EXPECT_EQ(l.Bytes(), NativeVersion3(WithFlags(SquareModel(), 0)));
  EXPECT_EQ(l.Entries(), 1);
  EXPECT_EQ(l.file.LoadTIN(l.Name().c_str(), l.tin), 4U);
  ExpectModel(l.tin, WithFlags(WithCircles(SquareModel()), 0));
}

TEST(TINFile, LoadingVersion2TurnsItIntoVersion3) {
  Loaded const l(NativeVersion2(SquareModel()));
  EXPECT_EQ(l.Bytes(), NativeVersion3(SquareModel()));
}

TEST(TINFile, Version0KeepsPoolsCirclesAndFlags) {
  Loaded const l(NativeFile(0, SquareModel()));
  EXPECT_EQ(l.result, 4U);
  ExpectModel(l.tin, SquareModel());  // the circles of the file, not those of the corners
  EXPECT_EQ(l.Points().m_iCapacity, 8);
  EXPECT_EQ(l.Triangles().m_iCapacity, 4);
  EXPECT_EQ(l.Points().m_pIndex[0], 7);
  EXPECT_EQ(l.Points().m_pIndex[7], 0);
  EXPECT_EQ(l.Points().m_pData[0], TPoint(-1e30, -2e30, -3e30));  // free slots too
}

TEST(TINFile, SavingVersion0DropsTheFreeSlots) {
  Loaded l(NativeFile(0, SquareModel()));
  EXPECT_EQ(l.Bytes(), NativeVersion3(SquareModel()));
  EXPECT_EQ(l.file.LoadTIN(l.Name().c_str(), l.tin), 4U);
  EXPECT_EQ(l.Points().m_iCapacity, 1004);
  EXPECT_EQ(l.Triangles().m_iCapacity, 2002);
  ExpectModel(l.tin, WithCircles(SquareModel()));
}

TEST(TINFile, Version0PoolsMayBeEmpty) {
  Loaded const l(NativeFile(0, NativeModel()));
  EXPECT_EQ(l.result, 0U);
  EXPECT_EQ(l.file.LastFault(), Fault::NONE);
  EXPECT_EQ(l.Points().m_iCapacity, 10);  // the least that a pool has
}

TEST(TINFile, AMissingNeighbourComesBackAsNullInEveryVersion) {
  for (int version = 0; version <= 3; ++version) {
    Loaded const l(NativeFile(version, SquareModel()));
    TTriangle const& first = *l.tin.GetTriangle(0, true);
    EXPECT_EQ(first.m_pAdjacent[0], nullptr) << version;
    EXPECT_EQ(first.m_pAdjacent[1], nullptr) << version;
    EXPECT_EQ(first.m_pAdjacent[2], l.tin.GetTriangle(1, true)) << version;
  }
}

TEST(TINFile, EveryVersionOfASurveyIsTheSameSurface) {
  NativeModel const model = SurveyModel(3000);
  for (int version = 0; version <= 3; ++version) {
    Loaded const l(NativeFile(version, model));
    NativeModel const expected = version == 1 ? WithFlags(model, 0) : model;
    ExpectModel(l.tin, expected);
    EXPECT_EQ(l.Bytes(), NativeVersion3(expected)) << version;
  }
}

TEST(TINFile, APointKeyThatAppearsTwiceMeansTheFirst) {
  for (int version : {1, 2}) {
    NativeModel model = SquareModel();
    model.points.push_back(TPoint(0.5, 0.5, 0.5));
    NativeKeys const keys = {{10, 20, 30, 40, 20}, {}};
    Loaded const l(version == 1 ? NativeVersion1(model, keys) : NativeVersion2(model, keys));
    EXPECT_EQ(l.tin.GetNumberOfPoints(), 5);
    EXPECT_EQ(l.tin.GetTriangle(0, true)->m_pVertex[1], l.tin.GetPoint(1));
  }
}

TEST(TINFile, ATriangleKeyThatAppearsTwiceMeansTheFirst) {
  NativeModel model = SquareModel();
  model.triangles.push_back(model.triangles[1]);
  Loaded const l(NativeVersion2(model, {{}, {5, 6, 6}}));
  EXPECT_EQ(l.tin.GetNumberOfTriangles(), 3);
  EXPECT_EQ(l.tin.GetTriangle(0, true)->m_pAdjacent[2], l.tin.GetTriangle(1, true));
}

TEST(TINFile, KeysComeInAnyOrder) {
  Loaded const l(NativeVersion2(SquareModel(), {{0xFFFFFFFF, 7, 0, 9}, {0x80000000, 3}}));
  ExpectModel(l.tin, WithCircles(SquareModel()));
}

TEST(TINFile, ATriangleUnderKey0IsTheNeighbourOfThoseWithNone) {
  Loaded const l(NativeVersion2(SquareModel(), {{}, {0, 8}}));
  TTriangle* const first = l.tin.GetTriangle(0, true);
  EXPECT_EQ(first->m_pAdjacent[0], first);
  EXPECT_EQ(l.tin.GetTriangle(1, true)->m_pAdjacent[1], first);
}

TEST(TINFile, AReferenceWithAnUpperHalfMatchesNothing) {
  std::string bytes = NativeVersion2(SquareModel());
  std::size_t const record = 116 + 28 * 4 + 4;
  Patch<std::uint32_t>(bytes, record + 4 + 4, 1);        // corner 0 of triangle 0
  Patch<std::uint32_t>(bytes, record + 28 + 16 + 4, 1);  // its neighbour 2
  Loaded const l(bytes);
  TTriangle const& first = *l.tin.GetTriangle(0, true);
  EXPECT_EQ(first.m_pVertex[0], l.Points().m_pData);
  EXPECT_EQ(first.m_Flags, 0x41 | TRI_OUTSIDE);
  EXPECT_EQ(first.m_pAdjacent[2], nullptr);
}

// --- What is no file of ours
// ----------------------------------------------------------------------

TEST(TINFile, AMissingFileAnswers0AndEmptiesTheSurface) {
  Loaded l(NativeVersion3(SquareModel()));
  EXPECT_EQ(l.file.LoadTIN(L"/missing/surface.tin", l.tin), 0U);
  EXPECT_TRUE(IsEmpty(l.tin));
  EXPECT_EQ(l.file.LastError(), ENOENT);
  EXPECT_EQ(l.file.LastFault(), Fault::WRONG_MAGIC);
}

TEST(TINFile, AWrongMagicAnswers0AndEmptiesTheSurface) {
  for (std::size_t at = 0; at < 12; ++at) {
    std::string bytes = NativeVersion1(SquareModel());
    bytes[at] = '!';
    Loaded const l(bytes);
    EXPECT_EQ(l.result, 0U);
    EXPECT_TRUE(IsEmpty(l.tin));
    EXPECT_EQ(l.Bytes(), bytes);
    EXPECT_EQ(l.file.LastFault(), Fault::WRONG_MAGIC);
  }
}

TEST(TINFile, AnotherVersionAnswers0AndEmptiesTheSurface) {
  for (std::int32_t version : {4, -1, 256, 0x7FFFFFFF}) {
    std::string bytes = NativeVersion3(SquareModel());
    Patch(bytes, 12, version);
    Loaded const l(bytes);
    EXPECT_EQ(l.result, 0U);
    EXPECT_TRUE(IsEmpty(l.tin));
    EXPECT_EQ(l.Bytes(), bytes);
    EXPECT_EQ(l.file.LastFault(), Fault::UNKNOWN_VERSION);
  }
}

TEST(TINFile, AVersionThatIsCutOffIsNoVersion) {
  Loaded const l(NativeVersion1(SquareModel()).substr(0, 15));
  EXPECT_EQ(l.result, 0U);
  EXPECT_EQ(l.file.LastFault(), Fault::UNKNOWN_VERSION);
  EXPECT_EQ(l.Bytes().size(), 15U);
}

TEST(TINFile, ANativeFileIsNoTrimbleModel) {
  Loaded l(NativeVersion3(SquareModel()));
  EXPECT_EQ(l.file.LoadTrimbleTINModel(l.Name().c_str(), l.tin), 0U);
  EXPECT_EQ(l.file.LastFault(), Fault::WRONG_MAGIC);
  EXPECT_TRUE(IsEmpty(l.tin));
}

// --- GetInfo
// --------------------------------------------------------------------------------------

std::int32_t LowHalf(double value) {
  return static_cast<std::int32_t>(std::bit_cast<std::uint64_t>(value));
}

TINFile::TINInfo Look(std::string const& bytes, int type) {
  TemporaryFolder folder;
  folder.Put("a", bytes);
  return TINFile().GetInfo(type, folder.Wide("a").c_str());
}

void ExpectUnidentified(TINFile::TINInfo const& info) {
  EXPECT_EQ(info.minimum, TPoint());
  EXPECT_EQ(info.maximum, TPoint());
  EXPECT_EQ(info.count, -1);
}

TEST(TINFile, GetInfoReadsTheBoundsAndTheLowHalfOfTheThirdBox) {
  NativeModel model = SquareModel();
  model.worldMin.x = 0.1;
  TINFile::TINInfo const info = Look(NativeVersion3(model), 32);
  EXPECT_EQ(info.minimum, model.min);
  EXPECT_EQ(info.maximum, model.max);
  EXPECT_EQ(info.count, LowHalf(0.1));
}

TEST(TINFile, GetInfoExchangesTheCornersOfVersion0) {
  NativeModel model = SquareModel();
  model.worldMax.x = 0.3;
  TINFile::TINInfo const info = Look(NativeFile(0, model), 32);
  EXPECT_EQ(info.minimum, model.max);
  EXPECT_EQ(info.maximum, model.min);
  EXPECT_EQ(info.count, LowHalf(0.3));
}

TEST(TINFile, GetInfoDoesNotLookAtTheVersion) {
  std::string bytes = NativeVersion3(SquareModel());
  Patch<std::int32_t>(bytes, 12, 99);
  EXPECT_EQ(Look(bytes, 32).maximum, SquareModel().max);
}

TEST(TINFile, GetInfoOnAFileOfNeitherFormatAnswersZerosAndMinus1) {
  for (int type : {32, 0, 1, -1}) {
    ExpectUnidentified(Look("no such thing", type));
    ExpectUnidentified(Look(std::string(500, 'x'), type));
    ExpectUnidentified(Look("", type));
    TINFile file;
    ExpectUnidentified(file.GetInfo(type, L"/missing/surface"));
    EXPECT_EQ(file.LastError(), ENOENT);
  }
}

TEST(TINFile, GetInfoReadsTheHeadOfATrimbleModel) {
  std::string bytes(149, '\xAB');
  bytes.replace(2, 16, "TNL TIN DTM FILE");
  Patch(bytes, 73, 1.5);   // minimum y
  Patch(bytes, 81, 2.5);   // minimum x
  Patch(bytes, 89, 3.5);   // maximum y
  Patch(bytes, 97, 4.5);   // maximum x
  Patch(bytes, 113, 777);  // vertices
  for (int type : {0, 1, 31, 33}) {
    TINFile::TINInfo const info = Look(bytes, type);
    EXPECT_EQ(info.minimum, TPoint(2.5, 1.5, 0));
    EXPECT_EQ(info.maximum, TPoint(4.5, 3.5, 0));
    EXPECT_EQ(info.count, 777);
  }
  ExpectUnidentified(Look(bytes, 32));
  ExpectUnidentified(Look(bytes.substr(0, 148), 1));
}

TEST(TINFile, CopiesShareAnOpenStream) {
  TemporaryFolder folder;
  folder.Put("a", NativeVersion3(SquareModel()));
  TINFile one;
  one.GetInfo(32, folder.Wide("a").c_str());
  TINFile two(one);
  TINFile three;
  three = two;
  TIN tin;
  EXPECT_EQ(one.LoadTIN(folder.Wide("a").c_str(), tin), 4U);
  EXPECT_EQ(two.LoadTIN(folder.Wide("a").c_str(), tin), 4U);
}

}  // namespace
