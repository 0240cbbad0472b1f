#include <sys/stat.h>

#include <filesystem>

#include "apps/qeltin/CommandTest.h"

namespace qeltin::cli::testing {
namespace {

using Json = nlohmann::json;

// Polygons are seen through their areas on a flat surface of 10 by 10 in cells of 1, on whose lines
// they run: no triangle is cut.
class OutlineReader : public CommandTest {
 protected:
  OutlineReader() {
    std::string text;
    for (int x = 0; x <= 10; ++x) {
      for (int y = 0; y <= 10; ++y) text += std::to_string(x) + ' ' + std::to_string(y) + " 1\n";
    }
    m_Folder.Put("flat.xyz", text);
    MustRun({"build", "flat.xyz", "-o", "flat.tin", "-q"});
  }

  Ran Measure(std::string const& file) const {
    return Run({"volume", "flat.tin", "--inside", file, "--json"});
  }

  // Returns the areas of the polygons of a text that is put into `file`.
  std::vector<double> Areas(std::string const& text, std::string const& file = "p.txt") const {
    m_Folder.Put(file, text);
    Ran const ran = Measure(file);
    EXPECT_EQ(ran.status, 0) << ran.err;
    std::vector<double> areas;
    Json const result = ran.Json();
    for (Json const& polygon : result["polygons"]) areas.push_back(polygon["area"]);
    return areas;
  }

  void ExpectRefused(std::string const& text, std::string const& why) const {
    m_Folder.Put("p.txt", text);
    ExpectError(Measure("p.txt"), "p.txt: " + why);
  }

  using Areas_ = std::vector<double>;
};

TEST_F(OutlineReader, ARingMayBeClosedInTheFileOrNot) {
  EXPECT_EQ(Areas("1 1\n4 1\n4 3\n1 3\n"), Areas_({6}));
  EXPECT_EQ(Areas("1 1\n4 1\n4 3\n1 3\n1 1\n"), Areas_({6}));
  EXPECT_EQ(Areas("1 1\n1 3\n4 3\n4 1\n"), Areas_({6}));
}

TEST_F(OutlineReader, PlacesAreSeparatedByCommasBlanksOrTabsAndFurtherColumnsIgnored) {
  EXPECT_EQ(Areas("\xEF\xBB\xBF"
                  "1,1\r\n 4\t1 -7 corner\r\n4 , 3,,x\r\n1 3"),
            Areas_({6}));
}

TEST_F(OutlineReader, BlankLinesAndMarkedLinesPartPolygons) {
  EXPECT_EQ(
      Areas(
          "\n> one\n1 1\n4 1\n4 3\n1 3\n   \n\n5 5\n6 5\n6 6\n5 6\n>\n>two\n0 0\n2 0\n2 1\n0 1\n"),
      Areas_({6, 1, 2}));
}

TEST_F(OutlineReader, StandardInputIsATextOfPolygons) {
  Ran const ran =
      Qeltin({"volume", "flat.tin", "--inside", "-"}).Input("1 1\n4 1\n4 3\n1 3\n").Run();
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_THAT(ran.out, ::testing::HasSubstr("plan area     6\n"));
}

TEST_F(OutlineReader, AnyOtherLineIsAnErrorWithItsNumber) {
  for (std::string const bad : {"RING 1 4", "x y", "5", "5;4", "# 5 4", "5 nan", "5 1e999"}) {
    ExpectRefused("1 1\n\n" + bad + "\n4 1\n",
                  "line 3: \"" + bad + "\" does not start with x and y");
  }
  ExpectRefused("x y\n", "line 1: \"x y\" does not start with x and y");
}

TEST_F(OutlineReader, APolygonNeedsThreeDistinctPlaces) {
  ExpectRefused("1 1\n4 1\n", "line 1: a polygon needs three distinct places");
  ExpectRefused("1 1\n4 1\n4 3\n\n\n1 1\n4 1\n1 1\n4 1\n",
                "line 6: a polygon needs three distinct places");
  ExpectRefused("1 1\n", "line 1: a polygon needs three distinct places");
}

TEST_F(OutlineReader, ACoordinateBeyondReasonIsRefused) {
  ExpectRefused("1 1\n4 1e101\n4 3\n", "line 1: a coordinate is not a number, or beyond 1e100");
}

TEST_F(OutlineReader, AFileWithoutOutlinesIsRefused) {
  ExpectRefused("", "holds no lines and no polygons");
  ExpectRefused("\n>\n\n", "holds no lines and no polygons");
  ExpectError(Measure("missing.txt"), "missing.txt: No such file or directory");
}

TEST_F(OutlineReader, ATextUnderAnyNameIsKnownByItsFirstLine) {
  std::string const square = "1 1\n4 1\n4 3\n1 3\n";
  for (std::string const file : {"p", "p.csv", "p.dat", "p.shp", "P.TXT", "p.gpkg"}) {
    EXPECT_EQ(Areas(square, file), Areas_({6}));
    EXPECT_EQ(Areas("\n\n>\n" + square, file), Areas_({6}));
  }
  // A pipe cannot be looked at twice.
  std::filesystem::path const pipe = m_Folder.Path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  Running running = Qeltin({"volume", "flat.tin", "--inside", "pipe"}).Start();
  m_Folder.Put("pipe", square);
  EXPECT_EQ(running.Wait().status, 0);
}

TEST_F(OutlineReader, WhatAPolygonGoesAroundTwiceIsOut) {
  EXPECT_EQ(Areas("1 1\n4 1\n4 5\n2 5\n2 3\n6 3\n6 7\n1 7\n"), Areas_({22}));
}

}  // namespace
}  // namespace qeltin::cli::testing
