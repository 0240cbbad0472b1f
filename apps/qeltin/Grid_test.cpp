#include <cctype>
#include <cmath>
#include <limits>
#include <map>
#include <sstream>

#include "apps/qeltin/CommandTest.h"
#include "qeltin/products/TGrid.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli::testing {
namespace {

using ::testing::HasSubstr;
using Json = nlohmann::json;

// An ESRI ASCII grid, read back.
struct AsciiGrid {
  std::map<std::string, double> head;
  std::vector<double> cells;  // row by row from the north

  explicit AsciiGrid(std::string const& text) {
    std::istringstream in(text);
    std::string word;
    while (in >> word) {
      if (std::isalpha(static_cast<unsigned char>(word[0])) != 0) {
        in >> head[word];
      } else {
        cells.push_back(std::strtod(word.c_str(), nullptr));
      }
    }
  }

  int Columns() const { return static_cast<int>(head.at("ncols")); }
  int Rows() const { return static_cast<int>(head.at("nrows")); }

  // The value of column i in row j from the south; not-a-number where there is none.
  double At(int i, int j) const {
    double const value = cells[static_cast<std::size_t>((Rows() - 1 - j) * Columns() + i)];
    return value == head.at("NODATA_value") ? std::numeric_limits<double>::quiet_NaN() : value;
  }
};

class Grid : public CommandTest {
 protected:
  AsciiGrid Sample(std::string const& surface, std::string const& cell) const {
    MustRun({"grid", surface, "--cell", cell, "-o", "g.asc", "-q", "--overwrite"});
    return AsciiGrid(m_Folder.Get("g.asc"));
  }

  void BuildSurvey() const {
    MustRun({"sample", "--points", "3000", "--seed", "7", "-o", "s.xyz", "-q"});
    MustRun({"build", "s.xyz", "-o", "s.tin", "-q"});
  }

  // A plane with its corners in the middles of the sides of a box of 10 by 8. What lies on the edge
  // of a surface may or may not have a height, and few nodes of a lattice over the box do.
  void BuildPlane() const {
    m_Folder.Put("plane.xyz", "0 4 2\n5 0 1.5\n10 4 3\n5 8 3.5\n");
    MustRun({"build", "plane.xyz", "-o", "plane.tin", "-q"});
  }

  static bool IsInside(double x, double y) {
    return std::fabs(x - 5) / 5 + std::fabs(y - 4) / 4 < 1;
  }
};

void ExpectSame(double value, double expected, int i, int j) {
  if (std::isnan(expected)) {
    EXPECT_TRUE(std::isnan(value)) << i << ' ' << j;
  } else {
    EXPECT_EQ(value, expected) << i << ' ' << j;
  }
}

TEST_F(Grid, NodesAreThoseOfTheLibraryToTheLastBit) {
  BuildSurvey();
  AsciiGrid const raster = Sample("s.tin", "2.3,1.7");
  TIN const tin(m_Folder.Wide("s.tin").c_str());
  TGrid const grid(tin, 2.3, 1.7);
  ASSERT_EQ(raster.Columns(), grid.GetNumberOfNodesX());
  ASSERT_EQ(raster.Rows(), grid.GetNumberOfNodesY());
  ASSERT_EQ(raster.cells.size(), static_cast<std::size_t>(raster.Columns() * raster.Rows()));
  int heights = 0;
  for (int j = 0; j < raster.Rows(); ++j) {
    for (int i = 0; i < raster.Columns(); ++i) {
      TPoint const* const node = grid.GetNode(i, j);
      heights += node == nullptr ? 0 : 1;
      ExpectSame(raster.At(i, j), node == nullptr ? std::nan("") : node->z, i, j);
    }
  }
  EXPECT_GT(heights, raster.Columns() * raster.Rows() / 2);
}

TEST_F(Grid, CellsFinerThanAThousandthAreSampledInTheSameWay) {
  BuildPlane();
  AsciiGrid const raster = Sample("plane.tin", "0.0071,2.5");
  ASSERT_EQ(raster.Columns(), 1410);
  ASSERT_EQ(raster.Rows(), 5);
  TIN const tin(m_Folder.Wide("plane.tin").c_str());
  double y = 0.0;
  for (int j = 0; j < raster.Rows(); ++j, y += 2.5) {
    double x = 0.0;
    for (int i = 0; i < raster.Columns(); ++i, x += 0.0071) {
      double z = std::nan("");
      tin.GetZ(x, y, z);
      ExpectSame(raster.At(i, j), z, i, j);
    }
  }
}

TEST_F(Grid, HeightsAreThoseOfTheHeightCommand) {
  BuildSurvey();
  AsciiGrid const raster = Sample("s.tin", "11");
  TIN const tin(m_Folder.Wide("s.tin").c_str());
  TPoint min;
  TPoint max;
  tin.GetBounds(min, max);
  std::string places;
  double y = min.y;
  for (int j = 0; j < raster.Rows(); ++j, y += 11) {
    double x = min.x;
    for (int i = 0; i < raster.Columns(); ++i, x += 11) {
      char line[80];
      std::snprintf(line, sizeof line, "%.17g %.17g\n", x, y);
      places += line;
    }
  }
  Ran const ran = Qeltin({"height", "s.tin", "--points", "-", "-q"}).Input(places).Run();
  std::istringstream answers(ran.out);
  std::string line;
  for (int j = 0; j < raster.Rows(); ++j) {
    for (int i = 0; i < raster.Columns(); ++i) {
      ASSERT_TRUE(std::getline(answers, line));
      std::string const z = line.substr(line.rfind(',') + 1);
      ExpectSame(raster.At(i, j), z.empty() ? std::nan("") : std::stod(z), i, j);
    }
  }
}

TEST_F(Grid, TheCentreOfTheLowerLeftCellIsTheLowerCornerOfTheData) {
  BuildPlane();
  AsciiGrid const raster = Sample("plane.tin", "1.6");
  EXPECT_EQ(raster.head, (std::map<std::string, double>{{"ncols", 8},
                                                        {"nrows", 6},
                                                        {"xllcorner", -0.8},
                                                        {"yllcorner", -0.8},
                                                        {"cellsize", 1.6},
                                                        {"NODATA_value", -9999}}));
  for (int j = 0; j < 6; ++j) {
    for (int i = 0; i < 8; ++i) {
      double const x = 1.6 * i;
      double const y = 1.6 * j;
      ASSERT_EQ(!std::isnan(raster.At(i, j)), IsInside(x, y)) << i << ' ' << j;
      if (!IsInside(x, y)) continue;
      EXPECT_NEAR(raster.At(i, j), 1 + x / 10 + y / 4, 1e-12);
    }
  }
}

TEST_F(Grid, ARowOrColumnBeyondTheDataHasNoHeights) {
  BuildPlane();
  AsciiGrid const plane = Sample("plane.tin", "3");
  ASSERT_EQ(plane.Columns(), 5);  // to x = 12
  ASSERT_EQ(plane.Rows(), 4);     // to y = 9
  for (int j = 0; j < 4; ++j) EXPECT_TRUE(std::isnan(plane.At(4, j)));
  for (int i = 0; i < 5; ++i) EXPECT_TRUE(std::isnan(plane.At(i, 3)));
  EXPECT_NEAR(plane.At(2, 1), 2.35, 1e-12);
}

TEST_F(Grid, CellsThatAreNotSquareAreToldAsDxAndDy) {
  BuildPlane();
  AsciiGrid const raster = Sample("plane.tin", "2,4");
  EXPECT_EQ(raster.head.count("cellsize"), 0u);
  EXPECT_EQ(raster.head.at("dx"), 2.0);
  EXPECT_EQ(raster.head.at("dy"), 4.0);
  EXPECT_EQ(raster.head.at("xllcorner"), -1.0);
  EXPECT_EQ(raster.head.at("yllcorner"), -2.0);
}

TEST_F(Grid, ACellLargerThanTheSurfaceIsLoweredAndTold) {
  BuildPlane();
  Ran const ran = MustRun({"grid", "plane.tin", "--cell", "50", "-o", "g.asc", "--json"});
  EXPECT_EQ(ran.err, "qeltin: a cell is never larger than the surface: 10 by 8 is used\n");
  EXPECT_EQ(ran.Json()["cell"], (Json{10, 8}));
  EXPECT_EQ(ran.Json()["columns"], 2);
  EXPECT_EQ(ran.Json()["rows"], 2);
}

TEST_F(Grid, TheValueForNoDataNeverOccurs) {
  m_Folder.Put("deep.xyz", "0 0 -9999\n10 0 -9990\n10 8 -9999\n0 8 -10001\n5 20 -9999\n");
  MustRun({"build", "deep.xyz", "-o", "deep.tin", "-q"});
  AsciiGrid const raster = Sample("deep.tin", "1");
  EXPECT_EQ(raster.head.at("NODATA_value"), -99999.0);
  EXPECT_NEAR(raster.At(5, 4), -9997.25, 2.5);
  EXPECT_TRUE(std::isnan(raster.At(0, 20)));
}

TEST_F(Grid, HiddenTrianglesHaveNoHeights) {
  m_Folder.Put("points.xyz", "0 0 1\n1 0 1\n0 1 1\n1 1 1\n9 0 1\n9 1 1\n");
  MustRun({"build", "points.xyz", "-o", "s.tin", "-q"});
  TIN tin(m_Folder.Wide("s.tin").c_str());
  tin.FilterTriangles(2.0);
  ASSERT_TRUE(tin.SaveTin(m_Folder.Wide("s.tin").c_str()));
  AsciiGrid const raster = Sample("s.tin", "0.3");
  for (int i = 1; i < raster.Columns(); ++i) EXPECT_EQ(std::isnan(raster.At(i, 1)), i > 3) << i;
  tin.FilterTriangles(0.5);
  ASSERT_TRUE(tin.SaveTin(m_Folder.Wide("s.tin").c_str()));
  ExpectError(Run({"grid", "s.tin", "--cell", "1", "-o", "h.asc"}),
              "s.tin: has no visible triangle");
}

TEST_F(Grid, TheSummaryIsForPeople) {
  BuildPlane();
  Ran const ran =
      MustRun({"grid", "plane.tin", "--cell", "2,3", "-o", "g.asc", "--precision", "2"});
  EXPECT_EQ(ran.err, "");
  EXPECT_EQ(ran.out,
            "columns              6\nrows                 4\ncell                 2 by 3\n"
            "cells with a height  6\nlowest               1.95\nhighest              3.10\n");
}

TEST_F(Grid, JsonTellsWhereTheRasterLies) {
  BuildPlane();
  EXPECT_EQ(
      MustRun({"grid", "plane.xyz", "--cell", "2,3", "-o", "g.asc", "--json", "--precision", "2"})
          .Json(),
      (Json{{"file", "g.asc"},
            {"columns", 6},
            {"rows", 4},
            {"cell", {2, 3}},
            {"min", {-1, -1.5}},
            {"max", {11, 10.5}},
            {"crs", nullptr},
            {"nodata", -9999},
            {"heights", 6},
            {"lowest", 1.95},
            {"highest", 3.1}}));
}

TEST_F(Grid, BadCellsAreToldAndLeaveNothing) {
  BuildPlane();
  int const before = m_Folder.Entries();
  for (std::string const cell : {"0", "-1", "2,0", "-2,3"}) {
    ExpectError(Run({"grid", "plane.tin", "--cell", cell, "-o", "g.asc"}),
                "plane.tin: cells of " + cell + " have no size: --cell is above 0");
  }
  for (std::string const cell : {"nan", "inf", "wide", "2;3", "1,2,3", ""}) {
    EXPECT_EQ(Run({"grid", "plane.tin", "--cell", cell, "-o", "g.asc"}).status, 2) << cell;
  }
  ExpectError(Run({"grid", "plane.tin", "--cell", "1e-7", "-o", "g.asc"}),
              "plane.tin: cells of 1e-7 make a grid of 100000001 by 80000001: at most 1000000 a "
              "side and 1000000000 in all");
  EXPECT_EQ(m_Folder.Entries(), before);
}

TEST_F(Grid, TheNameOfTheOutputChoosesItsKind) {
  BuildPlane();
  for (std::string const output : {"g.png", "g", "", "asc", "-"}) {
    Ran const ran = Run({"grid", "plane.tin", "--cell", "1", "-o", output});
    EXPECT_EQ(ran.status, 2);
    EXPECT_THAT(ran.err, HasSubstr("the name of a grid ends in .tif, .tiff or .asc"));
  }
  EXPECT_EQ(Run({"grid", "plane.tin", "--cell", "1", "-o", "g.asc", "--deflate"}).status, 2);
  MustRun({"grid", "plane.tin", "--cell", "1", "-o", "G.ASC"});
}

TEST_F(Grid, AnExistingFileIsReplacedOnlyWithOverwrite) {
  BuildPlane();
  m_Folder.Put("g.asc", "old");
  m_Folder.Put("g.prj", "old");
  ExpectError(Run({"grid", "plane.tin", "--cell", "1", "-o", "g.asc"}),
              "g.asc: exists already (--overwrite replaces it)");
  EXPECT_EQ(m_Folder.Get("g.asc"), "old");
  Ran const ran = MustRun({"grid", "plane.tin", "--cell", "1", "-o", "g.asc", "--overwrite"});
  EXPECT_EQ(ran.err,
            "qeltin: g.prj: stands beside the grid from before, and programs will heed it\n");
}

TEST_F(Grid, AFullDiskIsToldAndLeavesNothing) {
  BuildSurvey();
  int const before = m_Folder.Entries();
  for (rlim_t const limit : {rlim_t{1}, rlim_t{70000}}) {
    ExpectError(Qeltin({"grid", "s.tin", "--cell", "0.7", "-o", "g.asc"}).FileLimit(limit).Run(),
                "g.asc: File too large");
  }
  EXPECT_EQ(m_Folder.Entries(), before);
}

TEST_F(Grid, ARealSurveyIsSampledAsTheLibraryDoes) {
  char const* const folder = std::getenv("QELTIN_SURVEYS");
  if (folder == nullptr) GTEST_SKIP() << "QELTIN_SURVEYS does not name the folder of real surveys";
  std::string const survey = std::string(folder) + "/sbes_opinicon_20k.xyz";
  MustRun({"build", survey, "-o", "s.tin", "-q"});
  AsciiGrid const raster = Sample("s.tin", "25");
  TIN const tin(m_Folder.Wide("s.tin").c_str());
  TGrid const grid(tin, 25, 25);
  ASSERT_EQ(raster.Columns(), grid.GetNumberOfNodesX());
  ASSERT_EQ(raster.Rows(), grid.GetNumberOfNodesY());
  for (int j = 0; j < raster.Rows(); ++j) {
    for (int i = 0; i < raster.Columns(); ++i) {
      TPoint const* const node = grid.GetNode(i, j);
      ExpectSame(raster.At(i, j), node == nullptr ? std::nan("") : node->z, i, j);
    }
  }
}

}  // namespace
}  // namespace qeltin::cli::testing
