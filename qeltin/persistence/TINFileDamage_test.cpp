// Native files that are cut off, damaged or made to do harm, and saves that cannot succeed.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <thread>

#include "qeltin/persistence/TINFile.h"
#include "testing/ExpectInside.h"
#include "testing/InAChild.h"
#include "testing/MakeSurvey.h"
#include "testing/NativeFileWriter.h"
#include "testing/TINPeer.h"
#include "testing/TemporaryFolder.h"

namespace {

using namespace qeltin::testing;
using Fault = TINFile::Fault;

constexpr std::size_t COUNT_AT = 112;               // of the points, in every version
constexpr std::size_t TRIANGLES_AT = 116 + 24 * 4;  // the square's number of triangles, version 3
constexpr std::size_t TRIANGLE_0_AT = TRIANGLES_AT + 4;

class Loaded {
 public:
  explicit Loaded(std::string const& bytes) {
    m_Folder.Put("surface.tin", bytes);
    result = file.LoadTIN(m_Folder.Wide("surface.tin").c_str(), tin);
  }
  std::string Bytes() const { return m_Folder.Get("surface.tin"); }

  TIN tin;
  TINFile file;
  unsigned int result = 0;

 private:
  TemporaryFolder m_Folder;
};

void ExpectRefused(std::string const& bytes) {
  Loaded const l(bytes);
  EXPECT_EQ(l.result, 0U);
  EXPECT_EQ(TINPeer::Points(l.tin), nullptr);
  EXPECT_EQ(TINPeer::Triangles(l.tin), nullptr);
  TPoint min(1);
  TPoint max(1);
  l.tin.GetBounds(min, max);
  EXPECT_EQ(min, TPoint());
  EXPECT_EQ(max, TPoint());
  EXPECT_EQ(l.file.LastFault(), Fault::UNSOUND_TABLES);
  EXPECT_EQ(l.Bytes(), bytes);  // not rewritten
}

// --- Cut off
// --------------------------------------------------------------------------------------

TEST(TINFileDamage, APointThatIsCutOffRepeatsTheLastOne) {
  // The third point lacks a byte.
  Loaded const l(NativeVersion3(SquareModel()).substr(0, 116 + 3 * 24 - 1));
  EXPECT_EQ(l.result, 4U);
  EXPECT_EQ(*l.tin.GetPoint(1), SquareModel().points[1]);
  EXPECT_EQ(*l.tin.GetPoint(2), SquareModel().points[1]);
  EXPECT_EQ(*l.tin.GetPoint(3), SquareModel().points[1]);
  EXPECT_EQ(l.tin.GetNumberOfTriangles(), 0);  // a count that could not be read
  EXPECT_EQ(l.file.LastFault(), Fault::TRUNCATED);
}

TEST(TINFileDamage, ATriangleThatIsCutOffRepeatsWhatItLacks) {
  std::string const bytes = NativeVersion3(SquareModel());
  // The corners of the second triangle are there, its neighbours and flags are not.
  Loaded const l(bytes.substr(0, TRIANGLE_0_AT + 26 + 12 + 11));
  TTriangle const& t = *l.tin.GetTriangle(1, true);
  EXPECT_EQ(t.m_pVertex[1], l.tin.GetPoint(2));
  EXPECT_EQ(t.m_pVertex[2], l.tin.GetPoint(3));
  EXPECT_EQ(t.m_pAdjacent[0], nullptr);
  EXPECT_EQ(t.m_pAdjacent[1], nullptr);
  EXPECT_EQ(t.m_pAdjacent[2], l.tin.GetTriangle(1, true));  // that of the first triangle: itself
  EXPECT_EQ(t.m_Flags, 0x41);
}

TEST(TINFileDamage, AKeyedTriangleThatIsCutOffHasTheLastCornersAndNoNeighbours) {
  std::string const bytes = NativeVersion2(SquareModel());
  Loaded const l(bytes.substr(0, bytes.size() - 54 + 27));  // one byte of its corners is missing
  EXPECT_EQ(l.result, 1U);
  TTriangle const& t = *l.tin.GetTriangle(1, true);
  EXPECT_EQ(t.m_pVertex[0], l.tin.GetPoint(0));
  EXPECT_EQ(t.m_pVertex[1], l.tin.GetPoint(1));
  EXPECT_EQ(t.m_pVertex[2], l.tin.GetPoint(2));
  EXPECT_EQ(t.m_pAdjacent[0], nullptr);
  EXPECT_EQ(t.m_pAdjacent[2], nullptr);  // the first triangle has one there
  EXPECT_EQ(t.m_Flags, 0);
  EXPECT_EQ(l.file.LastFault(), Fault::TRUNCATED);
}

TEST(TINFileDamage, AHeadThatIsCutOffHasNoPoints) {
  Loaded const l(NativeVersion3(SquareModel()).substr(0, COUNT_AT + 3));
  EXPECT_EQ(l.result, 0U);
  EXPECT_EQ(l.tin.GetNumberOfPoints(), 0);
  TPoint min;
  TPoint max;
  l.tin.GetWorldBounds(min, max);
  EXPECT_EQ(max, SquareModel().worldMax);  // what is there is loaded
}

TEST(TINFileDamage, AFileMayEndAnywhere) {
  for (int version = 0; version <= 3; ++version) {
    std::string const bytes = NativeFile(version, SquareModel());
    for (std::size_t size = 0; size < bytes.size(); ++size) {
      Loaded const l(bytes.substr(0, size));
      ASSERT_NO_FATAL_FAILURE(ExpectInside(l.tin)) << "version " << version << ", " << size;
      ASSERT_NE(l.file.LastFault(), Fault::NONE) << "version " << version << ", " << size;
    }
  }
}

// --- Made to do harm
// ------------------------------------------------------------------------------

TEST(TINFileDamage, CountsThatNoFileOfThatLengthMeansAreRefused) {
  for (int version = 0; version <= 3; ++version) {
    for (std::int32_t count : {-1, -2147483647 - 1, 2147483647, 2147482000, 3'000'000}) {
      std::string bytes = NativeFile(version, SquareModel());
      Patch(bytes, COUNT_AT, count);
      SCOPED_TRACE(::testing::Message() << "version " << version << ", count " << count);
      ExpectRefused(bytes);
    }
  }
  for (std::int32_t count : {-1, 2147483647, 1'000'000}) {
    std::string bytes = NativeVersion3(SquareModel());
    Patch(bytes, TRIANGLES_AT, count);
    ExpectRefused(bytes);
    bytes = NativeVersion2(SquareModel());
    Patch(bytes, 116 + 28 * 4, count);
    ExpectRefused(bytes);
  }
}

TEST(TINFileDamage, BothPoolsTogetherMayTakeNoMoreThanTheFileJustifies) {
  std::string bytes = NativeVersion3(SquareModel());
  Patch(bytes, COUNT_AT, 2'300'000);  // 64.4 MB of the 64 MiB; the points repeat
  Loaded const fits(bytes);
  EXPECT_EQ(fits.result, 2'300'000U);
  EXPECT_EQ(fits.file.LastFault(), Fault::TRUNCATED);
  Patch(bytes, COUNT_AT, 2'397'000);
  ExpectRefused(bytes);  // no room is left for the least triangle pool
}

TEST(TINFileDamage, ALiveCountAboveTheCapacityIsRefused) {
  std::string bytes = NativeFile(0, SquareModel());
  Patch(bytes, COUNT_AT, 9);  // of 8 slots
  ExpectRefused(bytes);
  bytes = NativeFile(0, SquareModel());
  Patch(bytes, COUNT_AT + 4, -8);
  ExpectRefused(bytes);
  Patch(bytes, COUNT_AT + 4, 2147483647);
  ExpectRefused(bytes);
}

TEST(TINFileDamage, OrdinalsOutsideTheirTable) {
  for (std::int32_t ordinal : {-2, 4, 2147483647, -2147483647 - 1}) {
    std::string bytes = NativeVersion3(SquareModel());
    Patch(bytes, TRIANGLE_0_AT + 4, ordinal);       // corner 1
    Patch(bytes, TRIANGLE_0_AT + 12 + 8, ordinal);  // neighbour 2
    Loaded const l(bytes);
    EXPECT_EQ(l.result, 4U);
    TTriangle const& t = *l.tin.GetTriangle(0, true);
    EXPECT_EQ(t.m_pVertex[1], TINPeer::Points(l.tin)->m_pData);
    EXPECT_EQ(t.m_Flags, 0x41 | TRI_OUTSIDE);
    EXPECT_EQ(t.m_pAdjacent[2], nullptr);
    EXPECT_EQ(l.tin.GetTriangle(1, true)->m_Flags, 0x02);
  }
}

TEST(TINFileDamage, ATriangleWithoutPointsGetsAFreeSlot) {
  NativeModel model = SquareModel();
  model.points.clear();
  Loaded const l(NativeVersion3(model));
  EXPECT_EQ(l.result, 0U);
  EXPECT_EQ(l.tin.GetNumberOfTriangles(), 2);
  EXPECT_EQ(*l.tin.GetTriangle(0, true)->m_pVertex[0], TPoint());
  ExpectInside(l.tin);
}

TEST(TINFileDamage, KeysThatNameNothing) {
  for (int version : {1, 2}) {
    NativeModel model = SquareModel();
    model.triangles[0].corners[1] = 77;
    model.triangles[0].adjacent[2] = 77;
    Loaded const l(NativeFile(version, model));
    TTriangle const& t = *l.tin.GetTriangle(0, true);
    EXPECT_EQ(t.m_pVertex[1], TINPeer::Points(l.tin)->m_pData);
    EXPECT_EQ(t.m_Flags, (version == 1 ? 0 : 0x41) | TRI_OUTSIDE);
    EXPECT_EQ(t.m_pAdjacent[2], nullptr);
    ExpectInside(l.tin);
  }
}

TEST(TINFileDamage, AddressesOutsideTheirPool) {
  NativePools pools = ReversedPools(SquareModel());
  std::string const bytes = NativeVersion0(SquareModel(), pools);
  std::size_t const slots = 120 + 28 * 8 + 16;   // of the triangles
  std::size_t const triangle0 = slots + 3 * 80;  // in the last of four slots
  std::uint64_t const points = pools.pointAddress;
  for (std::uint64_t address : {points - 24, points + 24 * 8, points + 1, std::uint64_t{0}}) {
    std::string patched = bytes;
    Patch(patched, triangle0, address);
    Loaded const l(patched);
    TTriangle const& t = *l.tin.GetTriangle(0, true);
    EXPECT_EQ(t.m_pVertex[0], TINPeer::Points(l.tin)->m_pData);
    EXPECT_EQ(t.m_Flags, 0x41 | TRI_OUTSIDE);
    ExpectInside(l.tin);
  }
  std::uint64_t const triangles = pools.triangleAddress;
  for (std::uint64_t address : {triangles - 80, triangles + 80 * 4, triangles + 8, triangles}) {
    std::string patched = bytes;
    Patch(patched, triangle0 + 24, address);  // the last one is a slot, but a free one
    Loaded const l(patched);
    EXPECT_EQ(l.tin.GetTriangle(0, true)->m_pAdjacent[0], nullptr);
    ExpectInside(l.tin);
  }
}

TEST(TINFileDamage, TheUpperHalfOfAnAddressDoesNotCount) {
  NativePools pools = ReversedPools(SquareModel());
  std::string bytes = NativeVersion0(SquareModel(), pools);
  std::size_t const triangle0 = 120 + 28 * 8 + 16 + 3 * 80;
  Patch<std::uint32_t>(bytes, triangle0 + 4, 0xDEADBEEF);
  Loaded const l(bytes);
  EXPECT_EQ(l.tin.GetTriangle(0, true)->m_pVertex[0], l.tin.GetPoint(0));
}

TEST(TINFileDamage, AnIndexTableThatNamesALiveSlotTwiceOrNoneIsRefused) {
  for (std::int32_t slot : {-1, 8, 2147483647, 6}) {
    NativePools pools = ReversedPools(SquareModel());
    pools.pointIndex[2] = slot;  // slot 6 is that of point 1
    ExpectRefused(NativeVersion0(SquareModel(), pools));
  }
  for (std::int32_t slot : {-1, 4, 3}) {
    NativePools pools = ReversedPools(SquareModel());
    pools.triangleIndex[1] = slot;
    ExpectRefused(NativeVersion0(SquareModel(), pools));
  }
}

TEST(TINFileDamage, AFreePartThatIsUnsoundIsMadeAnew) {
  NativePools pools = ReversedPools(SquareModel());
  pools.pointIndex = {7, 6, 5, 4, 0, 0, 99, -1};
  pools.triangleIndex = {3, 2, 3, 2};
  Loaded const l(NativeVersion0(SquareModel(), pools));
  EXPECT_EQ(l.result, 4U);
  int const* const index = TINPeer::Points(l.tin)->m_pIndex;
  EXPECT_EQ(std::vector<int>(index, index + 8), (std::vector<int>{7, 6, 5, 4, 0, 1, 2, 3}));
  ExpectInside(l.tin);
}

TEST(TINFileDamage, NoDamageLeadsOutsideThePools) {
  Dice dice(TestSeed());
  NativeModel const square = SquareModel();
  for (int i = 0; i < 2000; ++i) {
    int const version = i % 4;
    std::string bytes = NativeFile(version, square);
    for (int n = 1 + dice.Below(4); n > 0; --n) {
      std::size_t const at =
          12 + static_cast<std::size_t>(dice.Below(static_cast<int>(bytes.size()) - 12));
      static constexpr unsigned char LIKELY[] = {0, 1, 2, 3, 0x7F, 0x80, 0xFF};
      bytes[at] = static_cast<char>(dice.OneIn(2) ? LIKELY[dice.Below(7)] : dice.Below(256));
    }
    if (dice.OneIn(4))
      bytes.resize(static_cast<std::size_t>(dice.Below(static_cast<int>(bytes.size()))));
    Loaded const l(bytes);
    ASSERT_NO_FATAL_FAILURE(ExpectInside(l.tin)) << "version " << version;
  }
}

TEST(TINFileDamage, MemoryThatTheSystemRefusesIsNoFaultOfTheFile) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer ends the program where memory is refused";
#endif
  TemporaryFolder folder;
  for (int version : {1, 3}) {
    std::string bytes = NativeFile(version, SquareModel());
    Patch(bytes, COUNT_AT, 2'000'000);  // 56 MB
    folder.Put("a.tin", bytes);
    int const status = InAChild([&] {
      rlimit const data = {40'000'000, 40'000'000};
      setrlimit(RLIMIT_DATA, &data);
      TIN tin;
      TINFile file;
      bool const refused = file.LoadTIN(folder.Wide("a.tin").c_str(), tin) == 0 &&
                           file.LastFault() == Fault::NONE && tin.GetNumberOfPoints() == 0;
      return refused ? file.LastError() : 0;
    });
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), ENOMEM);
    EXPECT_EQ(folder.Get("a.tin"), bytes);  // not rewritten
  }
}

TEST(TINFileDamage, TheKeysOfNeighboursCountAsMemory) {
  std::string bytes = NativeVersion1(SquareModel());
  std::size_t const at = COUNT_AT + 4 + 28 * 4;
  Patch(bytes, at, 590'000);  // 63.8 MB of the 64 MiB, with three keys each
  Loaded const fits(bytes);
  EXPECT_EQ(fits.tin.GetNumberOfTriangles(), 590'000);
  Patch(bytes, at, 640'000);
  ExpectRefused(bytes);
}

// --- Pipes
// ----------------------------------------------------------------------------------------

TEST(TINFileDamage, APipeIsLoadedAndNotRewritten) {
  for (int version : {1, 2, 3}) {
    TemporaryFolder folder;
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    std::thread writer([&] { folder.Put("pipe", NativeFile(version, SquareModel())); });
    TIN tin;
    TINFile file;
    EXPECT_NE(file.LoadTIN(folder.Wide("pipe").c_str(), tin), 0U);
    writer.join();
    EXPECT_EQ(tin.GetNumberOfPoints(), 4);
    EXPECT_EQ(file.LastFault(), Fault::NONE);
  }
}

// --- Saves that cannot succeed
// --------------------------------------------------------------------

TEST(TINFileDamage, AFullDeviceIsReportedAsTrueAndRemembered) {
  Loaded l(NativeVersion3(SquareModel()));
  EXPECT_TRUE(l.file.SaveTIN(L"/dev/full", l.tin));
  EXPECT_EQ(l.file.LastError(), ENOSPC);
}

TEST(TINFileDamage, AMissingFolderIsReportedAsTrueAndRemembered) {
  Loaded l(NativeVersion3(SquareModel()));
  EXPECT_TRUE(l.file.SaveTIN(L"/missing/surface.tin", l.tin));
  EXPECT_EQ(l.file.LastError(), ENOENT);
  TemporaryFolder folder;
  EXPECT_TRUE(l.file.SaveTIN(folder.Wide("a.tin").c_str(), l.tin));
  EXPECT_EQ(l.file.LastError(), 0);
}

// Runs `act` in a child with a limit on the size of files, and returns how the child ended.
template <typename Act>
int WithFileSizeLimit(rlim_t limit, bool signalled, Act act) {
  return InAChild([&] {
    std::signal(SIGXFSZ, signalled ? SIG_DFL : SIG_IGN);
    rlimit const sizes = {limit, limit};
    setrlimit(RLIMIT_FSIZE, &sizes);
    rlimit const none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
    return act();
  });
}

TEST(TINFileDamage, AFileThatGrowsTooLargeLeavesTheOldOne) {
  TemporaryFolder folder;
  folder.Put("a.tin", "old");
  Loaded const l(NativeVersion3(SquareModel()));
  int const status = WithFileSizeLimit(200, false, [&] {
    TINFile file;
    return file.SaveTIN(folder.Wide("a.tin").c_str(), l.tin) ? file.LastError() : 0;
  });
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), EFBIG);
  EXPECT_EQ(folder.Get("a.tin"), "old");
  EXPECT_EQ(folder.Entries(), 1);
}

TEST(TINFileDamage, AProcessKilledWhileItSavesLeavesTheOldFile) {
  TemporaryFolder folder;
  folder.Put("a.tin", "old");
  Loaded const l(NativeVersion3(SquareModel()));
  int const status = WithFileSizeLimit(200, true, [&] {
    TINFile().SaveTIN(folder.Wide("a.tin").c_str(), l.tin);
    return 0;
  });
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(folder.Get("a.tin"), "old");
}

TEST(TINFileDamage, ARewriteThatFailsChangesNothingElse) {
  TemporaryFolder folder;
  std::string const bytes = NativeVersion1(SquareModel());
  folder.Put("a.tin", bytes);
  int const status = WithFileSizeLimit(200, false, [&] {
    TIN tin;
    TINFile file;
    bool const loaded = file.LoadTIN(folder.Wide("a.tin").c_str(), tin) == 4;
    return loaded && tin.GetNumberOfTriangles() == 2 ? file.LastError() : 0;
  });
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), EFBIG);
  EXPECT_EQ(folder.Get("a.tin"), bytes);
  EXPECT_EQ(folder.Entries(), 1);
}

}  // namespace
