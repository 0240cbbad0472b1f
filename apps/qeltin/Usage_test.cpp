#include <fstream>
#include <regex>
#include <set>

#include "apps/qeltin/CommandTest.h"

namespace qeltin::cli::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class Usage : public CommandTest {};

std::vector<std::string> const COMMANDS = {
    "sample", "build", "info",     "height",   "convert",  "grid",    "volume", "filter",
    "smooth", "merge", "decimate", "isolines", "contours", "profile", "render", "view",
};

TEST_F(Usage, HelpGoesToStandardOutput) {
  std::vector<std::vector<std::string>> calls = {{}};
  for (std::string const& command : COMMANDS) calls.push_back({command});
  for (std::vector<std::string>& call : calls) {
    for (std::string const flag : {"-h", "--help"}) {
      call.push_back(flag);
      Ran const ran = MustRun(call);
      call.pop_back();
      EXPECT_THAT(ran.out, HasSubstr("Usage: qeltin"));
      EXPECT_EQ(ran.err, "");
    }
  }
}

TEST_F(Usage, VersionIsThatOfTheLibrary) {
  EXPECT_EQ(MustRun({"--version"}).out, "qeltin " QELTIN_VERSION "\n");
}

TEST_F(Usage, WrongUsageIsStatus2AndLeavesNothing) {
  m_Folder.Put("s.xyz", "0 0 1\n1 0 1\n0 1 1\n");
  std::vector<std::vector<std::string>> const mistakes = {
      {},
      {"bogus"},
      {"--bogus"},
      {"sample", "--points", "0"},
      {"sample", "--points", "many"},
      {"sample", "--points", "-5"},
      {"sample", "--seed", "x"},
      {"sample", "--pattern", "spiral"},
      {"sample", "extra"},
      {"sample", "-o"},
      {"sample", "--json"},
      {"build"},
      {"build", "s.xyz"},
      {"build", "-o", "s.tin"},
      {"build", "s.xyz", "-o", "s.xyz", "--overwrite"},
      {"build", "s.xyz", "-o", "s"},
      {"build", "s.xyz", "-o", ""},
      {"build", "s.xyz", "-o", "s.tin", "--bounds", "0,0,1"},
      {"build", "s.xyz", "-o", "s.tin", "--bounds", "0,0,1,1,1"},
      {"build", "s.xyz", "-o", "s.tin", "--bounds", "0,0,0,1"},
      {"build", "s.xyz", "-o", "s.tin", "--bounds", "0,1,1,0"},
      {"build", "s.xyz", "-o", "s.tin", "--precision", "18"},
      {"info"},
      {"info", "s.xyz", "s.xyz"},
      {"info", "s.xyz", "--precision", "-1"},
      {"info", "s.xyz", "--class"},
      {"info", "s.xyz", "--class", ""},
      {"info", "s.xyz", "--class", "x"},
      {"info", "s.xyz", "--class", "256"},
      {"info", "s.xyz", "--class", "-1"},
      {"info", "s.xyz", "--class", "2,"},
      {"info", "s.xyz", "--class", "2 3"},
      {"info", "s.xyz", "--class", "2.5"},
      {"convert"},
      {"convert", "s.xyz"},
      {"convert", "s.xyz", "s.tin", "more"},
      {"convert", "s.xyz", "-", "--json"},
      {"convert", "s.xyz", "s.ttm"},
      {"convert", "s.xyz", "s.tin", "--bounds", "0,0,1,1"},
      {"grid"},
      {"grid", "s.xyz", "-o", "g.asc"},
      {"grid", "s.xyz", "--cell", "1"},
      {"grid", "s.xyz", "--cell", "1", "-o", "g"},
      {"volume"},
      {"volume", "s.xyz"},
      {"volume", "s.xyz", "--inside"},
      {"height"},
      {"height", "s.xyz"},
      {"height", "s.xyz", "--at"},
      {"height", "-", "--points", "-"},
      {"height", "s.xyz", "--at", "1"},
      {"height", "s.xyz", "--at", "1,2,3"},
      {"height", "s.xyz", "--at", "1,x"},
      {"height", "s.xyz", "--at", "1,nan"},
      {"height", "s.xyz", "--at", "1,2", "3,4"},
      {"height", "s.xyz", "--at", "1,2", "--points", "s.xyz"},
      {"filter", "s.xyz", "-o", "s.tin"},
      {"filter", "s.xyz", "--max-edge", "5"},
      {"filter", "s.xyz", "--max-edge", "5", "-o", "s.xyz", "--overwrite"},
      {"filter", "s.xyz", "--max-edge", "0", "-o", "s.tin"},
      {"smooth", "s.xyz"},
      {"smooth", "-o", "s.tin"},
      {"smooth", "s.xyz", "-o", "s"},
      {"smooth", "s.xyz", "--inside", "-o", "s.tin"},
      {"render"},
      {"render", "s.xyz"},
      {"render", "-o", "p.png"},
      {"render", "s.xyz", "-o", "p.jpg"},
      {"render", "s.xyz", "-o", "p.png", "--size", "0x0"},
      {"render", "s.xyz", "-o", "p.png", "--contours", "0"},
      {"render", "s.xyz", "-o", "p.png", "--lines"},
      {"merge", "s.xyz", "s.xyz"},
      {"merge", "s.xyz", "-o", "s.tin"},
      {"merge", "s.xyz", "s.xyz", "-o", "s.ttm"},
  };
  for (auto const& arguments : mistakes) {
    Ran const ran = Run(arguments);
    EXPECT_EQ(ran.status, 2) << ::testing::PrintToString(arguments);
    EXPECT_THAT(ran.err, StartsWith("qeltin: error: "));
    EXPECT_EQ(ran.out, "");
  }
  EXPECT_EQ(m_Folder.Entries(), 1);
}

// Returns every word of the text that starts with --.
std::set<std::string> LongOptions(std::string const& text) {
  std::set<std::string> options;
  std::regex const option("--[a-z][a-z-]*");
  for (std::sregex_iterator it(text.begin(), text.end(), option), end; it != end; ++it) {
    options.insert(it->str());
  }
  return options;
}

TEST_F(Usage, TheManualTellsEveryOption) {
  std::filesystem::path const source =
      std::filesystem::path(QELTIN_DATA_DIR).parent_path().parent_path();
  std::ifstream manual(source / "docs/man/qeltin.1");
  std::string const text{std::istreambuf_iterator<char>(manual), {}};
  ASSERT_NE(text, "");
  for (std::string const& command : COMMANDS) {
    for (std::string const& option : LongOptions(MustRun({command, "--help"}).out)) {
      EXPECT_THAT(text, HasSubstr("Fl " + option.substr(1))) << command;
    }
  }
}

TEST_F(Usage, AFileMayBeNamedLikeACommand) {
  m_Folder.Put("info", "0 0 1\n1 0 1\n0 1 1\n");
  EXPECT_EQ(MustRun({"info", "info", "--json"}).Json()["points"], 3);
}

TEST_F(Usage, AClosedStandardStreamIsNotTakenForAFile) {
  m_Folder.Put("s.xyz", "0 0 1\n1 0 1\n0 1 1\n");
  Ran const ran = Qeltin({"build", "s.xyz", "-o", "s.tin", "-q"}).OutTo(-1).Run();
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_THAT(m_Folder.Get("s.tin"), StartsWith("QEL2000 TIN"));
  ExpectError(Qeltin({"info", "s.xyz"}).OutTo(-1).Run(), "standard output: Bad file descriptor");
}

}  // namespace
}  // namespace qeltin::cli::testing
