#include <cstdint>
#include <cstring>

#include "apps/qeltin/CommandTest.h"

namespace qeltin::cli::testing {
namespace {

using ::testing::HasSubstr;
using Json = nlohmann::json;

constexpr char SQUARE[] = "0 0 1\n10 0 2\n10 10 3\n0 10 4\n";

class Build : public CommandTest {
 protected:
  // Builds out.tin anew from `text` and returns what the command tells.
  Json BuildText(std::string const& text, std::vector<std::string> const& options = {}) const {
    m_Folder.Put("in.xyz", text);
    std::vector<std::string> arguments = {"build",   "in.xyz", "-o",
                                          "out.tin", "--json", "--overwrite"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return MustRun(arguments).Json();
  }

  std::string Survey(std::string const& pattern, int points) const {
    std::string const name = pattern + ".xyz";
    MustRun({"sample", "--pattern", pattern, "--points", std::to_string(points), "-o", name, "-q"});
    return name;
  }
};

TEST_F(Build, TellsCountsAndBoxes) {
  Json const told = BuildText(SQUARE);
  EXPECT_EQ(told["file"], "out.tin");
  EXPECT_EQ(told["points_read"], 4);
  EXPECT_EQ(told["points_in_surface"], 4);
  EXPECT_EQ(told["duplicates"], 0);
  EXPECT_EQ(told["refused"], 0);
  EXPECT_EQ(told["triangles"], 10);
  EXPECT_EQ(told["visible_triangles"], 2);
  EXPECT_EQ(told["bounds"], (Json{{"min", {0, 0, 1}}, {"max", {10, 10, 4}}}));
  EXPECT_EQ(told["world_bounds"], (Json{{"min", {-100, -100, -29}}, {"max", {110, 110, 34}}}));
  for (char const* const stage : {"read", "build", "write"}) EXPECT_GE(told["seconds"][stage], 0.0);
}

TEST_F(Build, TellsPeopleTheSame) {
  m_Folder.Put("in.xyz", std::string(SQUARE) + "10 10 5\n");
  Ran const ran = MustRun({"build", "in.xyz", "-o", "out.tin"});
  EXPECT_EQ(ran.out,
            "points read        5\n"
            "points in surface  4\n"
            "duplicates         1\n"
            "triangles          10\n"
            "visible triangles  2\n"
            "bounds from        0 0 1\n"
            "bounds to          10 10 5\n");
  EXPECT_EQ(ran.err, "");
  EXPECT_EQ(MustRun({"build", "in.xyz", "-o", "out.tin", "--overwrite", "-q"}).out, "");
}

TEST_F(Build, PointsWithin1000thOfAVertexAreDuplicates) {
  Json const told = BuildText(std::string(SQUARE) + "10.0009 9.9991 7\n0.0011 0 7\n0 0 1\n");
  EXPECT_EQ(told["points_read"], 7);
  EXPECT_EQ(told["points_in_surface"], 5);
  EXPECT_EQ(told["duplicates"], 2);
}

TEST_F(Build, CommasAndWindowsLineEndsAndEmptyLinesAreRead) {
  EXPECT_EQ(BuildText("0,0,1\r\n10,0,2\r\n\r\n10,10,3\r\n0,10,4")["points_read"], 4);
  EXPECT_EQ(BuildText(" 0\t0  1 \n\n10 0 2\n  \n10 10 +3e0\n")["points_read"], 3);
}

TEST_F(Build, SeveralInputsMakeOneSurface) {
  m_Folder.Put("a.xyz", "0 0 1\n10 0 2\n");
  m_Folder.Put("b.txt", "10,10,3\n0,10,4\n");
  Json const told = MustRun({"build", "a.xyz", "b.txt", "-o", "out.tin", "--json"}).Json();
  EXPECT_EQ(told["points_in_surface"], 4);
}

TEST_F(Build, StandardInputIsAnInput) {
  Ran const ran = Qeltin({"build", "-", "-o", "out.tin", "--json"}).Input(SQUARE).Run();
  EXPECT_EQ(ran.Json()["points_in_surface"], 4) << ran.err;
  ExpectError(Qeltin({"build", "-", "-o", "new.tin"}).Input("1 2 3\nx\n").Run(),
              "standard input: line 2: the text is not x y z");
}

TEST_F(Build, AStoredSurfaceGivesItsDataPointsWithoutSeedCorners) {
  BuildText(SQUARE);
  m_Folder.Put("more.xyz", "5 5 9\n20 0 9\n");
  Json const told = MustRun({"build", "out.tin", "more.xyz", "-o", "new.tin", "--json"}).Json();
  EXPECT_EQ(told["points_read"], 6);
  EXPECT_EQ(told["points_in_surface"], 6);
  EXPECT_EQ(told["bounds"], (Json{{"min", {0, 0, 1}}, {"max", {20, 10, 9}}}));
}

TEST_F(Build, KeepOrderWritesTheSameBytesOnEveryRun) {
  for (std::string const pattern : {"swaths", "lines", "grid", "random"}) {
    std::string const survey = Survey(pattern, 5000);
    MustRun({"build", survey, "--keep-order", "-o", "first.tin", "--overwrite"});
    std::string const first = m_Folder.Get("first.tin");
    for (int run = 0; run < 3; ++run) {
      MustRun({"build", survey, "--keep-order", "-o", "again.tin", "--overwrite"});
      EXPECT_TRUE(first == m_Folder.Get("again.tin")) << pattern;
    }
  }
}

TEST_F(Build, KeepOrderKeepsThePointsInTheOrderOfTheFiles) {
  BuildText(SQUARE, {"--keep-order"});
  std::string const bytes = m_Folder.Get("out.tin");
  std::vector<double> heights;
  for (std::size_t i = 0; i < 8; ++i) {
    double z = 0.0;
    std::memcpy(&z, bytes.data() + 116 + 24 * i + 16, sizeof z);
    heights.push_back(z);
  }
  EXPECT_EQ(heights, (std::vector<double>{0, 0, 0, 0, 1, 2, 3, 4}));  // seed corners first
}

TEST_F(Build, KeepOrderHidesWhatReachedBeyondTheBoundsAsTheyGrew) {
  std::string const survey = Survey("lines", 5000);
  Json const shuffled = MustRun({"build", survey, "-o", "a.tin", "--json"}).Json();
  Json const kept = MustRun({"build", survey, "-o", "b.tin", "--keep-order", "--json"}).Json();
  EXPECT_EQ(kept["points_in_surface"], shuffled["points_in_surface"]);
  EXPECT_LT(kept["visible_triangles"], shuffled["visible_triangles"]);
  EXPECT_EQ(kept["bounds"], shuffled["bounds"]);
}

TEST_F(Build, KeepOrderReachesTenWidthsBelowTheDataAndAHundredAndTenAbove) {
  Json const told = BuildText(SQUARE, {"--keep-order"});
  EXPECT_EQ(told["world_bounds"]["min"][0], -100);
  EXPECT_EQ(told["world_bounds"]["max"][0], 1110);
}

TEST_F(Build, KeepOrderMayHideEveryTriangle) {
  Json const told = BuildText("0 0 1\n5 10 2\n10 0 3\n", {"--keep-order"});
  EXPECT_EQ(told["points_in_surface"], 3);
  EXPECT_EQ(told["visible_triangles"], 0);
}

TEST_F(Build, BoundsLeaveOutWhatLiesOutsideThem) {
  std::string const text = std::string(SQUARE) + "10.5 5 9\n5 -0.5 9\n1e6 1e6 9\n";
  for (std::vector<std::string> options : {std::vector<std::string>{}, {"--keep-order"}}) {
    options.insert(options.end(), {"--bounds", "-2,0,10,12"});
    Json const told = BuildText(text, options);
    EXPECT_EQ(told["points_read"], 7);
    EXPECT_EQ(told["refused"], 3);
    EXPECT_EQ(told["points_in_surface"], 4);  // those on the edge of the box are in
    EXPECT_EQ(told["duplicates"], 0);
  }
}

TEST_F(Build, BoundsAreThoseOfTheSurface) {
  Json const told = BuildText(SQUARE, {"--bounds", "-2,0,10,12"});
  EXPECT_EQ(told["visible_triangles"], 2);
  EXPECT_EQ(told["bounds"], (Json{{"min", {-2, 0, 1}}, {"max", {10, 12, 4}}}));
  EXPECT_EQ(told["world_bounds"]["min"][0], -2 - 10 * 12);
}

TEST_F(Build, BoundsThatLeaveTooLittleAreAnError) {
  m_Folder.Put("in.xyz", SQUARE);
  ExpectError(Run({"build", "in.xyz", "-o", "out.tin", "--bounds", "-1,-1,11,5"}),
              "in.xyz: 2 of 4 points lie outside the bounds: a surface needs three points, and "
              "there are 2");
  EXPECT_EQ(m_Folder.Entries(), 1);
}

TEST_F(Build, PrecisionShortensWhatIsPrinted) {
  Json const told = BuildText("0.126 0 1\n10 0 2\n10 10.333 3\n", {"--precision", "1"});
  EXPECT_EQ(told["bounds"], (Json{{"min", {0.1, 0, 1}}, {"max", {10, 10.3, 3}}}));
}

TEST_F(Build, RefusesWhatIsNoSurveyInOneLine) {
  struct Case {
    std::string text;
    std::string error;  // after "in.xyz: "
  };
  std::vector<Case> const cases = {
      {"", "is empty"},
      {"\n \n", "holds no points"},
      {"Easting Northing Depth\n0 0 1\n1 0 1\n0 1 1\n",
       "line 1: \"Easting Northing Depth\" is not a point"},
      {"5 5 5\n", "a surface needs three points, and there are 1"},
      {"5 5 5\n6 6 6\n", "a surface needs three points, and there are 2"},
      {"5 5 5\n5 5 5\n5 5 6\n5.0002 5 6\n", "all 4 points lie in one place: there is no surface"},
      {"0 5 1\n1 5 2\n7 5 3\n", "all 3 points lie on one line: there is no surface"},
      {"5 0 1\n5 1 2\n5 7 3\n", "all 3 points lie on one line: there is no surface"},
      {"0.1 0.3 1\n0.2 0.6 1\n0.7 2.1 3\n", "all 3 points lie on one line: there is no surface"},
      {"0 0 1\n1 0 1\n0 1 1\nthe end\n", "line 4: \"the end\" is not x y z"},
      {"0,0,1\n1,0,1\n0,1,1\n1 1 1\n", "line 4: \"1 1 1\" is not x,y,z"},
      {"0 0 1\n1 0 1\n0 1 1\n1,1,1\n", "line 4: \"1,1,1\" is not x y z"},
      {"0 0 1\n1 0\n0 1 1\n", "line 2: \"1 0\" holds less than x y z"},
      {"0 0 1\n1 0\n", "line 2: \"1 0\" is not x y z"},
      {"0 0 1 9\n1 0 1 9\n0 1 1 9\n", "line 1: \"0 0 1 9\" holds more than x y z"},
      {"0 0 1\n1 0 1m\n", "line 2: \"1 0 1m\" holds more than x y z"},
      {"0,0,1,\n1,0,1,\n", "line 1: \"0,0,1,\" holds more than x,y,z"},
      {"0 0 1\n1 0 nan\n0 1 1\n", "line 2: \"1 0 nan\" holds what is no ordinary number"},
      {"0 0 1\n1 inf 2\n0 1 1\n", "line 2: \"1 inf 2\" holds what is no ordinary number"},
      {"0 0 1\n1e101 0 1\n0 1 1\n", "a coordinate is not a number, or beyond 1e100"},
      {"\xEF\xBB\xBF"
       "0 0 1\n1 0 1\n0 1 1\n",
       "line 1: the byte order mark before \"0 0 1\" is not a point"},
      {"0 0 1\n1 0 \x1b[31m\n", "line 2: \"1 0 ?[31m\" is not x y z"},
  };
  for (Case const& c : cases) {
    m_Folder.Put("in.xyz", c.text);
    ExpectError(Run({"build", "in.xyz", "-o", "out.tin"}), "in.xyz: " + c.error);
    EXPECT_EQ(m_Folder.Entries(), 1) << c.text;
  }
}

TEST_F(Build, LenientReadsAStreamOfTriplesUpToTheFirstJunk) {
  m_Folder.Put("in.xyz", "0 0 1 10 0 2\n10\n10 3\nthe end\n0 10 4\n");
  Ran const ran = MustRun({"build", "in.xyz", "-o", "out.tin", "--lenient", "--json"});
  EXPECT_EQ(ran.Json()["points_in_surface"], 3);
  EXPECT_EQ(ran.err, "qeltin: in.xyz: line 4 is not x y z: the 3 points before it are kept\n");
  m_Folder.Put("in.xyz", "a header\n0 0 1\n10 0 2\n0 10 4\n");
  ExpectError(Run({"build", "in.xyz", "-o", "new.tin", "--lenient"}),
              "in.xyz: line 1: \"a header\" is not a point");
}

TEST_F(Build, NamesTheInputThatIsWrong) {
  m_Folder.Put("good.xyz", SQUARE);
  m_Folder.Put("bad.xyz", "1 2 3\n4 5 x\n");
  m_Folder.Put("text.tin", SQUARE);
  m_Folder.Put("text.ttm", SQUARE);
  auto const build = [&](std::string const& second) {
    return Run({"build", "good.xyz", second, "-o", "out.tin"});
  };
  ExpectError(build("missing.xyz"), "missing.xyz: No such file or directory");
  ExpectError(build("missing.tin"), "missing.tin: No such file or directory");
  ExpectError(build("bad.xyz"), "bad.xyz: line 2: \"4 5 x\" is not x y z");
  ExpectError(build("text.tin"),
              "text.tin: is not a surface file, although its name ends like one");
  ExpectError(build("text.ttm"),
              "text.ttm: is not a Trimble terrain model, although its name ends like one");
  ExpectError(build("."), ".: is a folder");
  EXPECT_EQ(m_Folder.Entries(), 4);
}

TEST_F(Build, ATextThatIsAStoredSurfaceIsToldSo) {
  BuildText(SQUARE);
  std::filesystem::rename(m_Folder.Path("out.tin"), m_Folder.Path("out.dat"));
  ExpectError(Run({"build", "out.dat", "-o", "new.tin"}),
              "out.dat: is a stored surface: its name must end in .tin");
}

TEST_F(Build, NamesOfAnyBytesAreReached) {
  m_Folder.Put("Mündung \xff.xyz", SQUARE);
  Ran const ran = MustRun({"build", "Mündung \xff.xyz", "-o", "水深 \xfe.tin", "--json"});
  EXPECT_EQ(ran.Json()["points_in_surface"], 4);
  EXPECT_TRUE(m_Folder.Has("水深 \xfe.tin"));
}

}  // namespace
}  // namespace qeltin::cli::testing
