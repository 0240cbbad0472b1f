#include "apps/qeltin/CommandTest.h"
#include "qeltin/tin/TIN.h"
#include "testing/VerifySurface.h"

namespace qeltin::cli::testing {
namespace {

using Json = nlohmann::json;

constexpr char WEST[] = "0 0 1\n10 0 1\n10 10 1\n0 10 1\n";
constexpr char EAST[] = "10 0 2\n20 0 2\n20 10 2\n10 10 2\n";

class Merge : public CommandTest {
 protected:
  Merge() {
    Build("west", WEST);
    Build("east", EAST);
  }

  void Build(std::string const& name, std::string const& text) const {
    m_Folder.Put(name + ".xyz", text);
    MustRun({"build", name + ".xyz", "-o", name + ".tin", "--overwrite", "-q"});
  }

  Json Told(std::vector<std::string> surfaces) const {
    std::vector<std::string> arguments = {"merge", "-o", "out.tin", "--json", "--overwrite"};
    arguments.insert(arguments.end(), surfaces.begin(), surfaces.end());
    return MustRun(arguments).Json();
  }

  Json HeightAt(std::string const& place) const {
    return MustRun({"height", "out.tin", "--at", place, "--json", "-q"}).Json()["heights"][0]["z"];
  }

  void ExpectSound() const {
    TIN tin;
    ASSERT_TRUE(tin.Load(m_Folder.Wide("out.tin").c_str()));
    auto const report = qeltin::testing::VerifySurface(tin);
    EXPECT_TRUE(report.Ok()) << report;
    EXPECT_EQ(report.loosePoints, 0);
  }
};

TEST_F(Merge, TellsEachSurfaceAndTheResult) {
  Json const told = Told({"west.tin", "east.tin"});
  EXPECT_EQ(told["file"], "out.tin");
  EXPECT_EQ(told["before"][0], (Json{{"file", "west.tin"},
                                     {"points_in_surface", 4},
                                     {"triangles", 10},
                                     {"visible_triangles", 2},
                                     {"area", 100}}));
  EXPECT_EQ(told["before"][1]["file"], "east.tin");
  EXPECT_EQ(
      told["after"],
      (Json{{"points_in_surface", 6}, {"triangles", 14}, {"visible_triangles", 4}, {"area", 200}}));
  EXPECT_EQ(told["duplicates"], 2);
  EXPECT_EQ(told["bounds"], (Json{{"min", {0, 0, 1}}, {"max", {20, 10, 2}}}));
  ExpectSound();
}

TEST_F(Merge, TellsPeopleTheSame) {
  Ran const ran = MustRun({"merge", "west.tin", "east.tin", "-o", "out.tin"});
  EXPECT_EQ(ran.out,
            "points in surface  4 + 4 -> 6\n"
            "triangles          10 + 10 -> 14\n"
            "visible triangles  2 + 2 -> 4\n"
            "area               100 + 100 -> 200\n"
            "duplicates         2\n");
  EXPECT_EQ(ran.err, "");
  EXPECT_EQ(MustRun({"merge", "west.tin", "east.tin", "-o", "out.tin", "--overwrite", "-q"}).out,
            "");
}

TEST_F(Merge, HeightOfTheSurfaceNamedFirstStays) {
  for (int run = 0; run < 5; ++run) {
    Told({"west.tin", "east.tin"});
    EXPECT_EQ(HeightAt("10,5"), 1.0);
    Told({"east.tin", "west.tin"});
    EXPECT_EQ(HeightAt("10,5"), 2.0);
  }
}

// A surface of the library's own merge would lose them.
TEST_F(Merge, KeepsPointsOnALineOfAWorldBox) {
  Build("far", "-100 5 7\n-100 6 7\n-90 5 7\n");  // the box of west starts at x = -100
  Json const told = Told({"west.tin", "far.tin"});
  EXPECT_EQ(told["after"]["points_in_surface"], 7);
  EXPECT_EQ(told["bounds"]["min"][0], -100);
  ExpectSound();
}

TEST_F(Merge, KeepsWhatHeightsOfTheWorldBoxesWouldCutOff) {
  Build("high", "1000 0 50\n1010 0 51\n1000 10 52\n");
  Json const told = Told({"high.tin", "west.tin"});
  EXPECT_EQ(told["after"]["points_in_surface"], 7);
  EXPECT_EQ(Told({"west.tin", "high.tin"})["after"]["points_in_surface"], 7);
  ExpectSound();
}

TEST_F(Merge, EveryTriangleAmongThePointsIsVisible) {
  for (std::string const seed : {"1", "2", "3"}) {
    MustRun({"sample", "--points", "2000", "--seed", seed, "-o", seed + ".xyz", "-q"});
    MustRun({"build", seed + ".xyz", "-o", seed + ".tin", "-q"});
  }
  Json const merged = Told({"1.tin", "2.tin", "3.tin"});
  Json const built = MustRun({"build", "1.tin", "2.tin", "3.tin", "-o", "b.tin", "--json"}).Json();
  EXPECT_EQ(merged["after"]["visible_triangles"], built["visible_triangles"]);
  EXPECT_EQ(merged["after"]["points_in_surface"], built["points_in_surface"]);
  EXPECT_EQ(merged["bounds"], built["bounds"]);
  ExpectSound();
}

TEST_F(Merge, UnconnectedPointsOfAnInputAreLeftBehind) {
  Build("twice", std::string(WEST) + WEST);
  Json const told = Told({"twice.tin", "east.tin"});
  EXPECT_EQ(told["before"][0]["points_in_surface"], 4);
  EXPECT_EQ(told["duplicates"], 2);
  ExpectSound();
}

TEST_F(Merge, FilteredTrianglesAreVisibleAgain) {
  MustRun({"filter", "west.tin", "--max-edge", "20", "-o", "a.tin", "-q"});
  Build("gap", "30 0 2\n40 0 2\n40 10 2\n30 10 2\n");
  EXPECT_EQ(Told({"a.tin", "gap.tin"})["after"]["area"], 400);
}

TEST_F(Merge, TextsAreSurfacesToo) {
  EXPECT_EQ(Told({"west.xyz", "east.tin"})["after"]["points_in_surface"], 6);
}

TEST_F(Merge, ASurfaceWithItselfIsThatSurface) {
  Json const told = Told({"west.tin", "west.tin"});
  EXPECT_EQ(told["after"]["points_in_surface"], 4);
  EXPECT_EQ(told["duplicates"], 4);
  ExpectSound();
}

TEST_F(Merge, NamesTheInputThatIsWrong) {
  TIN tin(TPoint(0, 0), TPoint(1, 1), 3);
  tin.LoadPoint(0, 0, 0);
  ASSERT_TRUE(tin.SaveTin(m_Folder.Wide("points.tin").c_str()));
  TIN two(TPoint(0, 0), TPoint(1, 1), 3);
  two.AddPoint(0, 0, 0);
  two.AddPoint(1, 1, 0);
  ASSERT_TRUE(two.SaveTin(m_Folder.Wide("two.tin").c_str()));
  int const files = m_Folder.Entries();
  ExpectError(Run({"merge", "two.tin", "west.tin", "-o", "out.tin"}),
              "two.tin: a surface needs three points, and there are 2");
  ExpectError(Run({"merge", "west.tin", "missing.tin", "-o", "out.tin"}),
              "missing.tin: No such file or directory");
  ExpectError(Run({"merge", "west.tin", "points.tin", "-o", "out.tin"}),
              "points.tin: holds no triangles");
  EXPECT_EQ(m_Folder.Entries(), files);
}

}  // namespace
}  // namespace qeltin::cli::testing
