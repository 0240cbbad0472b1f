#include <cstdint>
#include <cstring>

#include "apps/qeltin/CommandTest.h"
#include "testing/LasFileWriter.h"

namespace qeltin::cli::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class Memory : public CommandTest {
 protected:
  static constexpr rlim_t LITTLE = 96 << 20;

  void SetUp() override {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer wants more memory than there is to be";
#endif
  }

  // Puts a text of half a million points.
  std::string PutLargeSurvey() const {
    MustRun({"sample", "--points", "500000", "--pattern", "random", "-o", "s.xyz", "-q"});
    return "s.xyz";
  }
};

TEST_F(Memory, TooLittleToBuildIsToldWithWhatIsWanted) {
  Ran const ran = Qeltin({"build", PutLargeSurvey(), "-o", "out.tin"}).MemoryLimit(LITTLE).Run();
  EXPECT_EQ(ran.status, 1);
  EXPECT_THAT(ran.err, StartsWith("qeltin: error: not enough memory: a surface of "));
  EXPECT_THAT(ran.err, HasSubstr(" points takes about 110 MB\n"));
  EXPECT_EQ(m_Folder.Entries(), 1);
}

TEST_F(Memory, TooLittleToLoadIsToldWithWhatIsWanted) {
  MustRun({"build", PutLargeSurvey(), "-o", "s.tin", "-q"});
  Ran const ran = Qeltin({"info", "s.tin"}).MemoryLimit(LITTLE).Run();
  ExpectError(ran, "s.tin: not enough memory to load it: that takes about 99 MB");
}

TEST_F(Memory, MoreThanThereIsIsToldBeforePointsAreRead) {
  // A file of 2,000,000,000 points, nearly all of it a hole that takes no room on the disk.
  constexpr std::uint32_t COUNT = 2'000'000'000;
  constexpr std::size_t COUNT_AT = 107;
  qeltin::testing::LasModel model;
  model.points.push_back({{1, 2, 3}});
  std::string bytes = qeltin::testing::LasFile(model);
  std::memcpy(bytes.data() + COUNT_AT, &COUNT, sizeof COUNT);
  m_Folder.Put("s.las", bytes);
  std::filesystem::resize_file(
      m_Folder.Path("s.las"),
      qeltin::testing::LasHeaderSize(2) + COUNT * qeltin::testing::LasRecordSize(0));
  Ran const ran = Qeltin({"build", "s.las", "-o", "out.tin"}).MemoryLimit(1 << 30).Run();
  EXPECT_EQ(ran.status, 1);
  EXPECT_THAT(
      ran.err,
      StartsWith("qeltin: s.las: a surface of its points takes about 440 GB of memory, and "));
  EXPECT_THAT(ran.err, HasSubstr(" are free\nqeltin: error: not enough memory: a surface of "
                                 "2000000000 points takes about 440 GB\n"));
}

TEST_F(Memory, IsGivenBackBeforeTheTrianglesTakeTheirs) {
  std::string const survey = PutLargeSurvey();
  long const little = MustRun({"sample", "--points", "1", "-o", "/dev/null", "-q"}).peak_kib;
  long const peak = MustRun({"build", survey, "-o", "out.tin", "-q"}).peak_kib;
  constexpr double POOLS_KIB = 500'000 * 196.0 / 1024;
  constexpr double COMMAND_KIB = 4096;  // what it takes for itself when it builds
  EXPECT_LT(static_cast<double>(peak - little), 1.1 * POOLS_KIB + COMMAND_KIB);
}

}  // namespace
}  // namespace qeltin::cli::testing
