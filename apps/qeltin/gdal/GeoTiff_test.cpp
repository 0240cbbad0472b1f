#include <cmath>
#include <cstring>

#include "apps/qeltin/CommandTest.h"
#include "apps/qeltin/gdal/GdalTool.h"
#include "qeltin/products/TGrid.h"
#include "qeltin/tin/TIN.h"

namespace qeltin::cli::testing {
namespace {

using ::testing::HasSubstr;
using Json = nlohmann::json;

class GeoTiff : public CommandTest {
 protected:
  GeoTiff() {
    MustRun({"sample", "--points", "3000", "--seed", "7", "-o", "s.xyz", "-q"});
    MustRun({"build", "s.xyz", "-o", "s.tin", "-q"});
  }

  void Write(std::string const& output, std::vector<std::string> const& options = {}) const {
    std::vector<std::string> arguments = {"grid", "s.tin", "--cell", "2.5", "-o", output};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(MustRun(arguments).err, "");
  }

  Json Info(std::string const& file) const {
    return Json::parse(GdalTool(m_Folder, "gdalinfo -json " + file));
  }

  // Returns the cells, row by row from the north.
  std::vector<double> Cells(std::string const& file) const {
    GdalTool(m_Folder, "gdal_translate -q -of ENVI " + file + " cells.bin");
    std::string const bytes = m_Folder.Get("cells.bin");
    std::vector<double> cells(bytes.size() / sizeof(double));
    std::memcpy(cells.data(), bytes.data(), bytes.size());
    return cells;
  }
};

TEST_F(GeoTiff, StandsWhereTheNodesAre) {
  Write("g.tif", {"--crs", "EPSG:32631"});
  TIN const tin(m_Folder.Wide("s.tin").c_str());
  TGrid const grid(tin, 2.5, 2.5);
  TPoint min;
  TPoint max;
  grid.GetBounds(min, max);
  Json const info = Info("g.tif");
  EXPECT_EQ(info["size"], (Json{grid.GetNumberOfNodesX(), grid.GetNumberOfNodesY()}));
  double const top = min.y + (grid.GetNumberOfNodesY() - 0.5) * 2.5;
  EXPECT_EQ(info["geoTransform"], (Json{min.x - 1.25, 2.5, 0.0, top, 0.0, -2.5}));
  EXPECT_EQ(info["metadata"][""]["AREA_OR_POINT"], "Area");
  ASSERT_EQ(info["bands"].size(), 1u);
  EXPECT_EQ(info["bands"][0]["type"], "Float64");
  EXPECT_EQ(info["bands"][0]["noDataValue"], -9999.0);
  EXPECT_THAT(info["coordinateSystem"]["wkt"], HasSubstr("ID[\"EPSG\",32631]"));
  EXPECT_EQ(info["files"], (Json{"g.tif"}));
}

TEST_F(GeoTiff, HoldsTheHeightsOfTheLibraryToTheLastBit) {
  TIN const tin(m_Folder.Wide("s.tin").c_str());
  TGrid const grid(tin, 2.5, 2.5);
  Write("plain.tif");
  Write("small.tiff", {"--deflate"});
  for (std::string const file : {"plain.tif", "small.tiff"}) {
    std::vector<double> const cells = Cells(file);
    ASSERT_EQ(cells.size(),
              static_cast<std::size_t>(grid.GetNumberOfNodesX() * grid.GetNumberOfNodesY()));
    auto cell = cells.begin();
    for (int j = grid.GetNumberOfNodesY() - 1; j >= 0; --j) {
      for (int i = 0; i < grid.GetNumberOfNodesX(); ++i) {
        TPoint const* const node = grid.GetNode(i, j);
        ASSERT_EQ(*cell++, node == nullptr ? -9999.0 : node->z) << file << ' ' << i << ' ' << j;
      }
    }
  }
  EXPECT_EQ(Info("small.tiff")["metadata"]["IMAGE_STRUCTURE"]["COMPRESSION"], "DEFLATE");
  EXPECT_LT(m_Folder.Get("small.tiff").size(), m_Folder.Get("plain.tif").size());
}

TEST_F(GeoTiff, HasNoReferenceSystemUnlessOneIsNamed) {
  Write("g.tif");
  EXPECT_FALSE(Info("g.tif").contains("coordinateSystem") &&
               Info("g.tif")["coordinateSystem"]["wkt"] != "");
}

TEST_F(GeoTiff, EqualInputMakesEqualBytes) {
  Write("one.tif", {"--crs", "EPSG:32631"});
  Write("two.tif", {"--crs", "EPSG:32631"});
  EXPECT_EQ(m_Folder.Get("one.tif"), m_Folder.Get("two.tif"));
}

TEST_F(GeoTiff, AnUnknownReferenceSystemIsWrongUsage) {
  int const before = m_Folder.Entries();
  for (std::string const output : {"g.tif", "g.asc"}) {
    Ran const ran = Run({"grid", "s.tin", "--cell", "2", "-o", output, "--crs", "EPSG:99999999"});
    EXPECT_EQ(ran.status, 2);
    EXPECT_THAT(ran.err, HasSubstr("--crs EPSG:99999999: no such coordinate reference system"));
    for (std::string const crs : {"32631", "EPSG:", "EPSG:x", "epsg.io/32631"}) {
      EXPECT_EQ(Run({"grid", "s.tin", "--cell", "2", "-o", output, "--crs", crs}).status, 2);
    }
  }
  EXPECT_EQ(m_Folder.Entries(), before);
}

TEST_F(GeoTiff, AnAsciiGridHasItsReferenceSystemBesideIt) {
  Write("g.asc", {"--crs", "EPSG:32631"});
  Json const info = Info("g.asc -oo DATATYPE=Float64");
  EXPECT_EQ(info["size"], Info("g.asc")["size"]);
  EXPECT_THAT(info["coordinateSystem"]["wkt"], HasSubstr("WGS 84 / UTM zone 31N"));
  EXPECT_EQ(info["files"], (Json{"g.asc", "g.prj"}));
  Write("g.tif");
  EXPECT_EQ(info["geoTransform"], Info("g.tif")["geoTransform"]);
  EXPECT_EQ(info["bands"][0]["noDataValue"], -9999.0);
  std::filesystem::remove(m_Folder.Path("g.asc"));
  ExpectError(Run({"grid", "s.tin", "--cell", "2", "-o", "g.asc", "--crs", "EPSG:32631"}),
              "g.prj: exists already (--overwrite replaces it)");
}

TEST_F(GeoTiff, ATextWithCellsThatAreNotSquareIsReadByGdal) {
  MustRun({"grid", "s.tin", "--cell", "2,5", "-o", "g.asc", "-q"});
  MustRun({"grid", "s.tin", "--cell", "2,5", "-o", "g.tif", "-q"});
  EXPECT_EQ(Info("g.asc")["geoTransform"], Info("g.tif")["geoTransform"]);
}

TEST_F(GeoTiff, AFullDiskIsToldAndLeavesTheOldFile) {
  m_Folder.Put("g.tif", "old");
  int const before = m_Folder.Entries();
  for (rlim_t const limit : {rlim_t{1}, rlim_t{4096}, rlim_t{20000}}) {
    for (std::string const way : {"-q", "--deflate"}) {
      ExpectError(Qeltin({"grid", "s.tin", "--cell", "1", "-o", "g.tif", "--overwrite", way})
                      .FileLimit(limit)
                      .Run(),
                  "g.tif: File too large");
    }
  }
  EXPECT_EQ(m_Folder.Get("g.tif"), "old");
  EXPECT_EQ(m_Folder.Entries(), before);
}

TEST_F(GeoTiff, AnExistingFileIsReplacedOnlyWithOverwrite) {
  m_Folder.Put("g.tif", "old");
  ExpectError(Run({"grid", "s.tin", "--cell", "1", "-o", "g.tif"}),
              "g.tif: exists already (--overwrite replaces it)");
  m_Folder.Put("g.tif.aux.xml", "<old/>");
  EXPECT_EQ(
      MustRun({"grid", "s.tin", "--cell", "1", "-o", "g.tif", "--overwrite"}).err,
      "qeltin: g.tif.aux.xml: stands beside the grid from before, and programs will heed it\n");
}

TEST_F(GeoTiff, ARealSurveyHasTheExtentOfItsData) {
  char const* const folder = std::getenv("QELTIN_SURVEYS");
  if (folder == nullptr) GTEST_SKIP() << "QELTIN_SURVEYS does not name the folder of real surveys";
  std::string const survey = std::string(folder) + "/sbes_opinicon_20k.xyz";
  MustRun({"grid", survey, "--cell", "5", "-o", "g.tif", "-q", "--crs", "EPSG:26918"});
  Json const info = Info("g.tif -mm");
  EXPECT_EQ(info["size"], (Json{1262, 1161}));
  Json const corners = info["cornerCoordinates"];
  EXPECT_NEAR(corners["lowerLeft"][0].get<double>(), 391125.259 - 2.5, 1e-3);
  EXPECT_NEAR(corners["lowerLeft"][1].get<double>(), 4931570.104 - 2.5, 1e-3);
  EXPECT_GE(corners["upperRight"][0].get<double>(), 397427.957);
  EXPECT_GE(corners["upperRight"][1].get<double>(), 4937365.383);
  EXPECT_GE(info["bands"][0]["computedMin"].get<double>(), -11.30 - 1e-9);
  EXPECT_LE(info["bands"][0]["computedMax"].get<double>(), -0.25 + 1e-9);
}

}  // namespace
}  // namespace qeltin::cli::testing
