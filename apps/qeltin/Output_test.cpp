#include <sys/stat.h>

#include "apps/qeltin/CommandTest.h"

namespace qeltin::cli::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

// What every command that writes promises about its output.
class Output : public CommandTest {
 protected:
  Output() { MustRun({"sample", "--points", "3000", "-o", "s.xyz", "-q"}); }

  // One command a kind of output, which writes some 80 kB or more to `name`.
  std::vector<std::vector<std::string>> Writers(std::string const& name) const {
    return {{"sample", "--points", "3000", "-o", name},
            {"build", "s.xyz", "-o", name},
            {"height", "s.xyz", "--points", "s.xyz", "-o", name}};
  }

  static std::vector<std::string> WithOverwrite(std::vector<std::string> arguments) {
    arguments.push_back("--overwrite");
    return arguments;
  }
};

TEST_F(Output, AnExistingFileIsReplacedOnlyWithOverwrite) {
  for (auto const& writer : Writers("out.tin")) {
    m_Folder.Put("out.tin", "old");
    ExpectError(Run(writer), "out.tin: exists already (--overwrite replaces it)");
    EXPECT_EQ(m_Folder.Get("out.tin"), "old");
    EXPECT_EQ(Run(WithOverwrite(writer)).status, 0);
    EXPECT_GT(m_Folder.Get("out.tin").size(), 80000u);
    EXPECT_EQ(m_Folder.Entries(), 2);
  }
}

TEST_F(Output, AMissingFolderIsToldBeforeTheWorkStarts) {
  for (auto const& writer : Writers("no/out.tin")) {
    ExpectError(Run(writer), "no/out.tin: the folder \"no\" does not exist");
  }
  ExpectError(Run({"build", "missing.xyz", "-o", "no/out.tin"}),
              "no/out.tin: the folder \"no\" does not exist");
  ExpectError(Run({"build", "s.xyz", "-o", "s.xyz/out.tin"}),
              "s.xyz/out.tin: the folder \"s.xyz\" does not exist");
}

TEST_F(Output, AFolderIsNoOutput) {
  fs::create_directory(m_Folder.Path("out.tin"));
  for (auto const& writer : Writers("out.tin")) {
    ExpectError(Run(WithOverwrite(writer)), "out.tin: is a folder");
  }
}

TEST_F(Output, AFolderThatMayNotBeWrittenIsToldBeforeTheWorkStarts) {
  fs::create_directory(m_Folder.Path("locked"));
  fs::permissions(m_Folder.Path("locked"), fs::perms::owner_read | fs::perms::owner_exec);
  for (auto const& writer : Writers("locked/out.tin")) {
    ExpectError(Qeltin(writer).WithoutOverride().Run(),
                "locked/out.tin: cannot write in its folder: Permission denied");
  }
  fs::permissions(m_Folder.Path("locked"), fs::perms::owner_all);
}

TEST_F(Output, AFileThatMayNotBeWrittenIsNotReplaced) {
  m_Folder.Put("out.tin", "old");
  fs::permissions(m_Folder.Path("out.tin"), fs::perms::owner_read);
  for (auto const& writer : Writers("out.tin")) {
    ExpectError(Qeltin(WithOverwrite(writer)).WithoutOverride().Run(),
                "out.tin: Permission denied");
  }
  EXPECT_EQ(m_Folder.Get("out.tin"), "old");
}

TEST_F(Output, AFullDiskIsToldAndLeavesTheOldFile) {
  m_Folder.Put("out.tin", "old");
  for (rlim_t const limit : {rlim_t{1}, rlim_t{4096}, rlim_t{70000}}) {
    for (auto const& writer : Writers("out.tin")) {
      ExpectError(Qeltin(WithOverwrite(writer)).FileLimit(limit).Run(), "out.tin: File too large");
      EXPECT_EQ(m_Folder.Get("out.tin"), "old");
      EXPECT_EQ(m_Folder.Entries(), 2);
    }
  }
}

TEST_F(Output, AFullStandardOutputIsTold) {
  int const full = open("/dev/full", O_WRONLY | O_CLOEXEC);
  std::string const message = "standard output: No space left on device";
  ExpectError(Qeltin({"sample"}).OutTo(full).Run(), message);
  ExpectError(Qeltin({"info", "s.xyz"}).OutTo(full).Run(), message);
  ExpectError(Qeltin({"info", "s.xyz", "--json"}).OutTo(full).Run(), message);
  ExpectError(Qeltin({"height", "s.xyz", "--at", "1,2", "-q"}).OutTo(full).Run(), message);
  ExpectError(Qeltin({"build", "s.xyz", "-o", "s.tin"}).OutTo(full).Run(), message);
  close(full);
}

TEST_F(Output, TextGoesStraightIntoADevice) {
  ExpectError(Run({"sample", "-o", "/dev/full"}), "/dev/full: No space left on device");
  MustRun({"sample", "-o", "/dev/null"});
  MustRun({"height", "s.xyz", "--at", "1,2", "-o", "/dev/null"});
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(Output, ASurfaceGoesIntoNoDevice) {
  fs::create_symlink("/dev/full", m_Folder.Path("full.tin"));
  ExpectError(Run({"build", "s.xyz", "-o", "full.tin", "--overwrite"}),
              "full.tin: is not an ordinary file");
}

TEST_F(Output, ALinkIsFollowedAndStays) {
  fs::create_directory(m_Folder.Path("store"));
  m_Folder.Put("store/real.tin", "old");
  fs::create_symlink("store/real.tin", m_Folder.Path("out.tin"));
  for (auto const& writer : Writers("out.tin")) {
    EXPECT_EQ(Run(writer).status, 1);
    EXPECT_EQ(Run(WithOverwrite(writer)).status, 0);
    EXPECT_TRUE(fs::is_symlink(m_Folder.Path("out.tin")));
    EXPECT_GT(m_Folder.Get("store/real.tin").size(), 80000u);
  }
}

TEST_F(Output, AReplacedFileKeepsItsPermissions) {
  for (auto const& writer : Writers("out.tin")) {
    m_Folder.Put("out.tin", "old");
    fs::permissions(m_Folder.Path("out.tin"), fs::perms(0640));
    EXPECT_EQ(Run(WithOverwrite(writer)).status, 0);
    EXPECT_EQ(fs::status(m_Folder.Path("out.tin")).permissions(), fs::perms(0640));
  }
}

TEST_F(Output, ANewFileTakesItsPermissionsFromTheUmask) {
  mode_t const before = umask(027);
  for (auto const& writer : Writers("new.tin")) {
    EXPECT_EQ(Run(writer).status, 0);
    EXPECT_EQ(fs::status(m_Folder.Path("new.tin")).permissions(), fs::perms(0640));
    fs::remove(m_Folder.Path("new.tin"));
  }
  umask(before);
}

TEST_F(Output, AnInputMayBeReplacedByItsOutput) {
  MustRun({"build", "s.xyz", "-o", "s.tin", "-q"});
  EXPECT_EQ(
      MustRun({"build", "s.tin", "-o", "s.tin", "--overwrite", "--json"}).Json()["points_read"],
      3000);
}

TEST_F(Output, AReaderThatGoesEndsTheCommandWithoutAWord) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  close(ends[0]);
  Ran const ran = Qeltin({"sample"}).OutTo(ends[1]).Run();
  EXPECT_EQ(ran.status, -SIGPIPE);
  EXPECT_EQ(ran.err, "");
  close(ends[1]);
}

}  // namespace
}  // namespace qeltin::cli::testing
