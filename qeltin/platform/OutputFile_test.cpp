#include "qeltin/platform/OutputFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "testing/TemporaryFolder.h"

namespace {

using qeltin::detail::OutputFile;
using qeltin::testing::TemporaryFolder;

TEST(OutputFile, AppearsUnderItsNameWhenPublished) {
  TemporaryFolder folder;
  OutputFile file;
  ASSERT_EQ(file.Open(folder.Path("a")), 0);
  EXPECT_EQ(write(file.Descriptor(), "new", 3), 3);
  EXPECT_FALSE(folder.Has("a"));
  EXPECT_EQ(folder.Entries(), 1);
  EXPECT_EQ(file.Publish(), 0);
  EXPECT_EQ(folder.Get("a"), "new");
  EXPECT_EQ(folder.Entries(), 1);
  EXPECT_EQ(file.Descriptor(), -1);
}

TEST(OutputFile, AbandonedLeavesNothing) {
  TemporaryFolder folder;
  folder.Put("a", "old");
  {
    OutputFile file;
    ASSERT_EQ(file.Open(folder.Path("a")), 0);
    EXPECT_EQ(write(file.Descriptor(), "new", 3), 3);
  }
  EXPECT_EQ(folder.Get("a"), "old");
  EXPECT_EQ(folder.Entries(), 1);
}

TEST(OutputFile, TwoWritersOfOneNameDoNotMix) {
  TemporaryFolder folder;
  OutputFile one;
  OutputFile two;
  ASSERT_EQ(one.Open(folder.Path("a")), 0);
  ASSERT_EQ(two.Open(folder.Path("a")), 0);
  EXPECT_EQ(write(one.Descriptor(), "one", 3), 3);
  EXPECT_EQ(write(two.Descriptor(), "second", 6), 6);
  EXPECT_EQ(two.Publish(), 0);
  EXPECT_EQ(one.Publish(), 0);
  EXPECT_EQ(folder.Get("a"), "one");
  EXPECT_EQ(folder.Entries(), 1);
}

TEST(OutputFile, AFolderThatCameInBetweenIsAnError) {
  TemporaryFolder folder;
  OutputFile file;
  ASSERT_EQ(file.Open(folder.Path("a")), 0);
  std::filesystem::create_directory(folder.Path("a"));
  EXPECT_EQ(file.Publish(), EISDIR);
  EXPECT_EQ(folder.Entries(), 1);
}

TEST(OutputFile, AHardLinkKeepsTheOldContents) {
  TemporaryFolder folder;
  folder.Put("a", "old");
  std::filesystem::create_hard_link(folder.Path("a"), folder.Path("b"));
  OutputFile file;
  ASSERT_EQ(file.Open(folder.Path("a")), 0);
  EXPECT_EQ(write(file.Descriptor(), "new", 3), 3);
  EXPECT_EQ(file.Publish(), 0);
  EXPECT_EQ(folder.Get("a"), "new");
  EXPECT_EQ(folder.Get("b"), "old");
}

// Runs `check` in a child without the privileges of the superuser and returns its exit status.
template <typename Check>
int AsOrdinaryUser(Check check) {
  pid_t const child = fork();
  if (child == 0) {
    constexpr unsigned NOBODY = 65534;
    if (getuid() == 0 && (setgid(NOBODY) != 0 || setuid(NOBODY) != 0)) _exit(99);
    _exit(check());
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(OutputFile, AReadOnlyFileIsRefusedInAWritableFolder) {
  TemporaryFolder folder;
  folder.Put("a", "old");
  ASSERT_EQ(chmod(folder.Path("").c_str(), 0777), 0);
  ASSERT_EQ(chmod(folder.Path("a").c_str(), 0444), 0);
  EXPECT_EQ(AsOrdinaryUser([&] { return OutputFile().Open(folder.Path("a")); }), EACCES);
  EXPECT_EQ(folder.Get("a"), "old");
  EXPECT_EQ(folder.Entries(), 1);
}

TEST(OutputFile, AReadOnlyFolderIsRefused) {
  TemporaryFolder folder;
  folder.Put("a", "old");
  ASSERT_EQ(chmod(folder.Path("a").c_str(), 0666), 0);
  ASSERT_EQ(chmod(folder.Path("").c_str(), 0555), 0);
  EXPECT_EQ(AsOrdinaryUser([&] { return OutputFile().Open(folder.Path("a")); }), EACCES);
  EXPECT_EQ(AsOrdinaryUser([&] { return OutputFile().Open(folder.Path("b")); }), EACCES);
  EXPECT_EQ(folder.Get("a"), "old");
  ASSERT_EQ(chmod(folder.Path("").c_str(), 0755), 0);
}

TEST(OutputFile, AFolderThatMayBeWrittenButNotListedIsFine) {
  TemporaryFolder folder;
  ASSERT_EQ(chmod(folder.Path("").c_str(), 0333), 0);
  auto const save = [&] {
    OutputFile file;
    int const error = file.Open(folder.Path("a"));
    return error != 0 ? error : file.Publish();
  };
  EXPECT_EQ(AsOrdinaryUser(save), 0);
  ASSERT_EQ(chmod(folder.Path("").c_str(), 0755), 0);
  EXPECT_TRUE(folder.Has("a"));
}

}  // namespace
