#include "apps/qeltin/CommandTest.h"
#include "testing/NativeFileWriter.h"

namespace qeltin::cli::testing {
namespace {

using qeltin::testing::NativeFile;
using qeltin::testing::NativeModel;
using qeltin::testing::Patch;
using qeltin::testing::SquareModel;
using ::testing::HasSubstr;
using Json = nlohmann::json;

class Info : public CommandTest {
 protected:
  void BuildSquare() const {
    m_Folder.Put("in.xyz", "0 0 1.5\n10 0 2\n10 10 3\n0 10 4\n");
    MustRun({"build", "in.xyz", "-o", "s.tin", "-q"});
  }
};

TEST_F(Info, TellsAllAboutASurface) {
  BuildSquare();
  EXPECT_EQ(MustRun({"info", "s.tin", "--json"}).Json(),
            (Json{{"format", "tin"},
                  {"version", 3},
                  {"points", 8},
                  {"data_points", 4},
                  {"triangles", 10},
                  {"visible_triangles", 2},
                  {"bounds", {{"min", {0, 0, 1.5}}, {"max", {10, 10, 4}}}},
                  {"world_bounds", {{"min", {-100, -100, -23.5}}, {"max", {110, 110, 29}}}},
                  {"height_range", {1.5, 4}},
                  {"area", 100},
                  {"bytes", 120 + 24 * 8 + 26 * 10}}));
}

TEST_F(Info, TellsPeopleTheSame) {
  BuildSquare();
  Ran const ran = MustRun({"info", "s.tin"});
  EXPECT_EQ(ran.out,
            "format             native surface, version 3\n"
            "points             8\n"
            "data points        4\n"
            "triangles          10\n"
            "visible triangles  2\n"
            "bounds from        0 0 1.5\n"
            "bounds to          10 10 4\n"
            "world bounds from  -100 -100 -23.5\n"
            "world bounds to    110 110 29\n"
            "heights            1.5 to 4\n"
            "area               100\n"
            "bytes              572\n");
  EXPECT_EQ(ran.err, "");
}

TEST_F(Info, TellsWhatATextHolds) {
  m_Folder.Put("in.xyz", "0,0,1.5\n10,0,2\n10,10.25,-3\n");
  Ran const ran = MustRun({"info", "in.xyz", "--json"});
  EXPECT_EQ(ran.Json(), (Json{{"format", "xyz"},
                              {"form", "comma"},
                              {"points", 3},
                              {"bounds", {{"min", {0, 0, -3}}, {"max", {10, 10.25, 2}}}},
                              {"height_range", {-3, 2}},
                              {"bytes", 27}}));
  m_Folder.Put("in.xyz", "7 8 9\n");
  EXPECT_EQ(MustRun({"info", "in.xyz"}).out,
            "format       XYZ text, separated by blanks\n"
            "points       1\n"
            "bounds from  7 8 9\n"
            "bounds to    7 8 9\n"
            "heights      9 to 9\n"
            "bytes        6\n");
}

TEST_F(Info, PrecisionShortensWhatIsPrinted) {
  m_Folder.Put("in.xyz", "400000 0.126 -0.001\n");
  EXPECT_THAT(MustRun({"info", "in.xyz", "--precision", "2"}).out,
              HasSubstr("bounds from  400000.00 0.13 0.00\n"));
  EXPECT_THAT(MustRun({"info", "in.xyz"}).out, HasSubstr("bounds from  400000 0.126 -0.001\n"));
}

TEST_F(Info, TellsTheVersionBeforeTheFileIsRewritten) {
  for (int version = 0; version < 3; ++version) {
    m_Folder.Put("old.tin", NativeFile(version, SquareModel()));
    Ran const ran = MustRun({"info", "old.tin", "--json"});
    EXPECT_EQ(ran.Json()["version"], version);
    EXPECT_EQ(ran.Json()["points"], 4);
    EXPECT_EQ(ran.err, "qeltin: old.tin: was of version " + std::to_string(version) +
                           " and has been rewritten as version 3\n");
    EXPECT_EQ(MustRun({"info", "old.tin", "--json"}).Json()["version"], 3);
  }
}

TEST_F(Info, TheAreaOfSmallTrianglesFarFromTheOriginKeepsItsDigits) {
  m_Folder.Put("in.xyz", "400000 5900000 1\n400000.125 5900000 1\n400000.125 5900000.25 1\n");
  MustRun({"build", "in.xyz", "-o", "s.tin", "-q"});
  EXPECT_EQ(MustRun({"info", "s.tin", "--json"}).Json()["area"], 0.015625);
}

TEST_F(Info, ASurfaceWithoutVisibleTrianglesHasNoHeights) {
  NativeModel model = SquareModel();
  for (auto& triangle : model.triangles) triangle.flags = TRI_OUTSIDE;
  m_Folder.Put("hidden.tin", NativeFile(3, model));
  Json const told = MustRun({"info", "hidden.tin", "--json"}).Json();
  EXPECT_EQ(told["visible_triangles"], 0);
  EXPECT_EQ(told["height_range"], nullptr);
  EXPECT_EQ(told["area"], 0);
}

TEST_F(Info, AFileCutShortIsRefusedAndNotRewritten) {
  for (int version = 0; version <= 3; ++version) {
    std::string const whole = NativeFile(version, SquareModel());
    for (std::size_t const size : {whole.size() - 1, whole.size() / 2, std::size_t{20}}) {
      m_Folder.Put("cut.tin", whole.substr(0, size));
      Ran const ran = Run({"info", "cut.tin"});
      EXPECT_EQ(ran.status, 1);
      EXPECT_THAT(ran.err, HasSubstr("cut.tin: is cut short: its counts ask for "));
      EXPECT_EQ(m_Folder.Get("cut.tin"), whole.substr(0, size));
    }
  }
}

TEST_F(Info, SaysWhatIsWrongWithAFile) {
  std::string const sound = NativeFile(3, SquareModel());
  auto const patched = [&sound](std::size_t offset, int value) {
    std::string bytes = sound;
    Patch(bytes, offset, value);
    return bytes;
  };
  struct Case {
    std::string name;
    std::string bytes;
    std::string error;
  };
  std::vector<Case> const cases = {
      {"empty.tin", "", "is empty"},
      {"empty.xyz", "", "is empty"},
      {"text.TIN", "0 0 1\n", "is not a surface file, although its name ends like one"},
      {"short.tin", "QEL2000", "is not a surface file, although its name ends like one"},
      {"new.tin", patched(12, 4), "is of version 4, and 0 to 3 are known"},
      {"negative.tin", patched(12, -1), "is of version -1, and 0 to 3 are known"},
      {"count.tin", patched(112, -1), "is damaged: a count below 0"},
      {"none.tin", NativeFile(3, NativeModel()), "holds no points"},
      {"text.ttm", "0 0 1\n", "is not a Trimble terrain model, although its name ends like one"},
      {"junk.xyz", "a b c\n", "line 1: \"a b c\" is not a point"},
      {"model.xyz", sound, "is a stored surface: its name must end in .tin"},
  };
  for (Case const& c : cases) {
    m_Folder.Put(c.name, c.bytes);
    ExpectError(Run({"info", c.name}), c.name + ": " + c.error);
  }
  ExpectError(Run({"info", "missing.tin"}), "missing.tin: No such file or directory");
  ExpectError(Run({"info", "missing.xyz"}), "missing.xyz: No such file or directory");
  ExpectError(Run({"info", "/"}), "/: is a folder");
}

}  // namespace
}  // namespace qeltin::cli::testing
