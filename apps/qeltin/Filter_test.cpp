#include "apps/qeltin/CommandTest.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli::testing {
namespace {

using Json = nlohmann::json;

// Two triangles of 50, and one to the far corner that is longer.
constexpr char KITE[] = "0 0 1\n10 0 2\n10 10 3\n0 10 4\n40 5 5\n";

class Filter : public CommandTest {
 protected:
  Filter() {
    m_Folder.Put("in.xyz", KITE);
    MustRun({"build", "in.xyz", "-o", "in.tin", "-q"});
  }

  Json Told(std::string const& limit) const {
    return MustRun(
               {"filter", "in.tin", "--max-edge", limit, "-o", "out.tin", "--json", "--overwrite"})
        .Json();
  }

  bool HasHeight(std::string const& file, std::string const& place) const {
    return MustRun({"height", file, "--at", place, "--json", "-q"}).Json()["hits"] == 1;
  }
};

TEST_F(Filter, TellsPointsTrianglesAndAreaBeforeAndAfter) {
  Json const told = Told("20");
  EXPECT_EQ(told["file"], "out.tin");
  EXPECT_EQ(
      told["before"],
      (Json{{"points_in_surface", 5}, {"triangles", 12}, {"visible_triangles", 3}, {"area", 250}}));
  EXPECT_EQ(
      told["after"],
      (Json{{"points_in_surface", 5}, {"triangles", 12}, {"visible_triangles", 2}, {"area", 100}}));
}

TEST_F(Filter, TellsPeopleTheSame) {
  Ran const ran = MustRun({"filter", "in.tin", "--max-edge", "20", "-o", "out.tin"});
  EXPECT_EQ(ran.out,
            "points in surface  5 -> 5\n"
            "triangles          12 -> 12\n"
            "visible triangles  3 -> 2\n"
            "area               250 -> 100\n");
  EXPECT_EQ(ran.err, "");
  EXPECT_EQ(
      MustRun({"filter", "in.tin", "--max-edge", "20", "-o", "out.tin", "--overwrite", "-q"}).out,
      "");
}

TEST_F(Filter, HidesInTheFileWhatIsLonger) {
  Told("20");
  EXPECT_TRUE(HasHeight("in.tin", "20,5"));
  EXPECT_FALSE(HasHeight("out.tin", "20,5"));
  EXPECT_TRUE(HasHeight("out.tin", "5,4"));
}

TEST_F(Filter, SideAsLongAsTheLimitStays) {
  m_Folder.Put("in.xyz", "0 0 1\n4 0 1\n0 3 1\n");
  MustRun({"build", "in.xyz", "-o", "in.tin", "--overwrite"});
  EXPECT_EQ(Told("5")["after"]["visible_triangles"], 1);
}

TEST_F(Filter, LargerLimitShowsAgainWhatAnEarlierFilterHid) {
  Told("20");
  Ran const ran = MustRun({"filter", "out.tin", "--max-edge", "1e3", "-o", "again.tin", "--json"});
  EXPECT_EQ(ran.Json()["before"]["visible_triangles"], 2);
  EXPECT_EQ(ran.Json()["after"]["visible_triangles"], 3);
}

TEST_F(Filter, WritesWhatTheLibraryWould) {
  MustRun({"sample", "--pattern", "random", "--points", "3000", "-o", "s.xyz", "-q"});
  MustRun({"build", "s.xyz", "-o", "s.tin", "-q"});
  MustRun({"filter", "s.tin", "--max-edge", "1.5", "-o", "out.tin", "-q"});
  TIN tin;
  ASSERT_TRUE(tin.Load(m_Folder.Wide("s.tin").c_str()));
  tin.FilterTriangles(1.5);
  ASSERT_TRUE(tin.SaveTin(m_Folder.Wide("library.tin").c_str()));
  EXPECT_TRUE(m_Folder.Get("out.tin") == m_Folder.Get("library.tin"));
}

TEST_F(Filter, TextIsBuiltFirst) {
  Ran const ran = MustRun({"filter", "in.xyz", "--max-edge", "20", "-o", "out.tin", "--json"});
  EXPECT_EQ(ran.Json()["after"]["visible_triangles"], 2);
}

TEST_F(Filter, LimitThatLeavesNothingIsAnError) {
  ExpectError(Run({"filter", "in.tin", "--max-edge", "9.5", "-o", "out.tin"}),
              "in.tin: no triangle would be visible: each has a side longer than 9.5 or reaches "
              "beyond the data");
  EXPECT_EQ(m_Folder.Entries(), 2);
}

TEST_F(Filter, NamesTheInputThatIsWrong) {
  TIN tin(TPoint(0, 0), TPoint(1, 1), 3);
  tin.LoadPoint(0, 0, 0);
  ASSERT_TRUE(tin.SaveTin(m_Folder.Wide("points.tin").c_str()));
  auto const filter = [this](std::string const& file) {
    return Run({"filter", file, "--max-edge", "20", "-o", "out.tin"});
  };
  ExpectError(filter("points.tin"), "points.tin: holds no triangles");
  ExpectError(filter("missing.tin"), "missing.tin: No such file or directory");
  EXPECT_EQ(m_Folder.Entries(), 3);
}

TEST_F(Filter, KeepsAnOutputThatExistsUnlessToldOtherwise) {
  m_Folder.Put("out.tin", "precious");
  ExpectError(Run({"filter", "in.tin", "--max-edge", "20", "-o", "out.tin"}),
              "out.tin: exists already (--overwrite replaces it)");
  EXPECT_EQ(m_Folder.Get("out.tin"), "precious");
  EXPECT_EQ(Told("20")["after"]["visible_triangles"], 2);
}

TEST_F(Filter, LimitMustBeANumberAbove0) {
  for (std::string const limit : {"0", "-1", "nan", "inf", "x", "", "5m", "1,2"}) {
    Ran const ran = Run({"filter", "in.tin", "--max-edge=" + limit, "-o", "out.tin"});
    EXPECT_EQ(ran.status, 2) << limit;
    EXPECT_FALSE(m_Folder.Has("out.tin"));
  }
}

}  // namespace
}  // namespace qeltin::cli::testing
