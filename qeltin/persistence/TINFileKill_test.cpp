// Saves, and rewrites of older versions, that are cut short: the file under the name is the old one
// whole or the new one whole.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "qeltin/persistence/TINFile.h"
#include "testing/InAChild.h"
#include "testing/MakeSurvey.h"
#include "testing/NativeFileWriter.h"
#include "testing/TemporaryFolder.h"

namespace {

using namespace qeltin::testing;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr char const* NAME = "surface.tin";

void Build(TIN& tin, int points) {
  std::vector<TPoint> const survey = MakeSurvey(Survey::Swaths, points, 3);
  Extent const extent = ExtentOf(survey);
  tin.Init(points, extent.min, extent.max);
  for (TPoint const& p : survey) tin.LoadPoint(p.x, p.y, p.z);
  tin.Triangulate();
}

// A folder with an old file, and a piece of work that makes a new one of it.
class CutShort : public ::testing::Test {
 protected:
  // Has the work done, to learn how long it takes at least and what the new file is.
  void Learn(std::string const& old, std::function<void()> const& work) {
    m_Old = old;
    m_Work = work;
    m_Duration = Seconds(1e9);
    for (int i = 0; i < 3; ++i) {
      m_Folder.Put(NAME, m_Old);
      Clock::time_point const start = Clock::now();
      m_Work();
      m_Duration = std::min<Seconds>(m_Duration, Clock::now() - start);
    }
    m_New = m_Folder.Get(NAME);
    ASSERT_NE(m_Old, m_New);
  }

  // Kills children at so many moments of the work and a little beyond, and looks at what they left.
  // Every second one is killed soon after it has begun to write, which is `writing` of the work.
  // Returns how many were in the middle of it.
  int KillAtManyMoments(int kills, double writing) {
    Dice dice(TestSeed());
    int kept = 0;
    int replaced = 0;
    int unfinished = 0;
    for (int i = 0; i < kills; ++i) {
      m_Folder.Put(NAME, m_Old);
      bool const begun = i % 2 == 1;
      KillOne(begun, m_Duration * dice.Between(0.0, begun ? writing : 1.2));
      std::string const left = m_Folder.Get(NAME);
      EXPECT_TRUE(left == m_Old || left == m_New)
          << "kill " << i << ": " << left.size() << " bytes";
      (left == m_Old ? kept : replaced) += 1;
      unfinished += m_Folder.Entries() - 1;
      RemoveTheRest();
    }
    std::printf(
        "[ SUMMARY  ] %d kills: %d times the old file, %d times the new one, %d unfinished\n",
        kills, kept, replaced, unfinished);
    return unfinished;
  }

  TemporaryFolder m_Folder;
  std::string m_Old;
  std::string m_New;
  std::function<void()> m_Work;

 private:
  bool IsOld() const { return std::filesystem::file_size(m_Folder.Path(NAME)) == m_Old.size(); }

  // Kills a child after a delay from its start, or from when it has begun to write.
  void KillOne(bool begun, Seconds delay) {
    int ready[2];
    EXPECT_EQ(pipe(ready), 0);
    pid_t const child = fork();
    if (child == 0) {
      static_cast<void>(write(ready[1], "!", 1) == 1);
      m_Work();
      for (;;) pause();
    }
    char sign = 0;
    EXPECT_EQ(read(ready[0], &sign, 1), 1);
    while (begun && m_Folder.Entries() == 1 && IsOld()) {
    }
    std::this_thread::sleep_for(delay);
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    close(ready[0]);
    close(ready[1]);
  }

  void RemoveTheRest() {
    for (auto const& entry : std::filesystem::directory_iterator(m_Folder.Path())) {
      if (entry.path().filename() != NAME) std::filesystem::remove(entry.path());
    }
  }

  Seconds m_Duration{};
};

TEST_F(CutShort, ASaveThatIsKilledLeavesOneFileWhole) {
  TIN tin;
  Build(tin, 30'000);
  Learn(NativeVersion3(SquareModel()),
        [&] { TINFile().SaveTIN(m_Folder.Wide(NAME).c_str(), tin); });
  EXPECT_GT(m_New.size(), 2'000'000U);
  EXPECT_GT(KillAtManyMoments(200, 1.0), 0);
}

TEST_F(CutShort, ARewriteThatIsKilledLeavesOneFileWhole) {
  TIN tin;
  Build(tin, 4'000);
  int unfinished = 0;
  for (int version : {0, 1, 2}) {
    Learn(NativeFile(version, ModelOf(tin)), [&] {
      TIN loaded;
      TINFile().LoadTIN(m_Folder.Wide(NAME).c_str(), loaded);
    });
    unfinished += KillAtManyMoments(70, 0.04);
  }
  EXPECT_GT(unfinished, 0);
}

TEST_F(CutShort, ADiskThatIsFullAtAnySizeLeavesTheOldFileWhole) {
  TIN tin;
  Build(tin, 10'000);
  std::wstring const name = m_Folder.Wide(NAME);
  Learn(NativeVersion1(ModelOf(tin)), [&] { TINFile().SaveTIN(name.c_str(), tin); });
  m_Folder.Put(NAME, m_Old);
  Dice dice(TestSeed());
  for (int i = 0; i < 50; ++i) {
    auto const limit = static_cast<rlim_t>(dice.Below(static_cast<int>(m_New.size())));
    bool const save = i % 2 == 0;
    int const status = InAChild([&] {
      std::signal(SIGXFSZ, SIG_IGN);
      rlimit const sizes = {limit, limit};
      setrlimit(RLIMIT_FSIZE, &sizes);
      TINFile file;
      TIN loaded;
      if (save) return file.SaveTIN(name.c_str(), tin) ? file.LastError() : 0;
      return file.LoadTIN(name.c_str(), loaded) != 0 ? file.LastError() : 0;
    });
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), EFBIG) << limit;
    ASSERT_EQ(m_Folder.Get(NAME), m_Old);
    ASSERT_EQ(m_Folder.Entries(), 1);
  }
}

TEST_F(CutShort, AFolderThatMayNotBeWrittenLeavesTheOldFileWhole) {
  TIN tin;
  Build(tin, 100);
  std::wstring const name = m_Folder.Wide(NAME);
  std::string const old = NativeVersion2(SquareModel());
  m_Folder.Put(NAME, old);
  ASSERT_EQ(chmod(m_Folder.Path().c_str(), 0555), 0);
  ASSERT_EQ(chmod(m_Folder.Path(NAME).c_str(), 0666), 0);
  constexpr int UNABLE = 255;
  for (bool save : {true, false}) {
    int const status = InAChild([&] {
      constexpr uid_t NOBODY = 65534;
      if (geteuid() == 0 && setresuid(NOBODY, NOBODY, NOBODY) != 0) return UNABLE;
      TINFile file;
      TIN loaded;
      if (save) return file.SaveTIN(name.c_str(), tin) ? file.LastError() : 0;
      return file.LoadTIN(name.c_str(), loaded) == 1 ? file.LastError() : 0;
    });
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == UNABLE)
      GTEST_SKIP() << "root may write anywhere, and cannot step back";
    EXPECT_EQ(WEXITSTATUS(status), EACCES);
    EXPECT_EQ(m_Folder.Get(NAME), old);
    EXPECT_EQ(m_Folder.Entries(), 1);
  }
}

}  // namespace
