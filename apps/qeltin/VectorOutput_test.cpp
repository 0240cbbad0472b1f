#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "apps/qeltin/CommandTest.h"

namespace qeltin::cli::testing {
namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

constexpr char const* ALL_ENDINGS[] = {"gpkg", "geojson", "json", "shp", "dxf", "csv"};
constexpr char const* SHAPE_PARTS[] = {"shp", "shx", "dbf", "prj", "cpg"};

// What every command that writes vector files promises about them.
class VectorOutput : public CommandTest {
 protected:
  VectorOutput() {
    MustRun({"sample", "--points", "3000", "-o", "s.xyz", "-q"});
    MustRun({"build", "s.xyz", "-o", "s.tin", "--keep-order", "-q"});
  }

  void SetUp() override {
    Ran const ran = Run({"isolines", "missing.tin", "--level", "1", "-o", "out.gpkg"});
    if (ran.err.find("built without GDAL") != std::string::npos) GTEST_SKIP() << ran.err;
  }

  static std::vector<std::string> Isolines(std::string const& output,
                                           std::vector<std::string> const& options = {}) {
    std::vector<std::string> arguments = {"isolines", "s.tin", "--interval", "1", "-o", output};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return arguments;
  }

  Ran Draw(std::string const& output, std::vector<std::string> const& options = {}) const {
    return Run(Isolines(output, options));
  }

  // What another program finds in the file.
  std::string OgrInfo(std::string const& name) const {
    std::string const command = "ogrinfo -al -so '" + m_Folder.Path(name).string() + "' 2>&1";
    std::FILE* const pipe = popen(command.c_str(), "r");
    std::string text;
    char block[4096];
    while (std::size_t const size = fread(block, 1, sizeof block, pipe)) text.append(block, size);
    EXPECT_EQ(pclose(pipe), 0) << text;
    return text;
  }
};

TEST_F(VectorOutput, OtherProgramsReadLinesWithHeightsAndFields) {
  auto const lines = Draw("probe.csv", {"--json"}).Json()["lines"].get<int>();
  std::string const count = "Feature Count: " + std::to_string(lines) + "\n";
  for (std::string const ending : {"gpkg", "geojson", "json", "shp"}) {
    MustRun(Isolines("out." + ending, {"-q"}));
    EXPECT_THAT(OgrInfo("out." + ending),
                AllOf(HasSubstr("Geometry: 3D Line String\n"), HasSubstr(count),
                      HasSubstr("\nline: Integer"), HasSubstr("\nlevel: Real")));
  }
  MustRun(Isolines("out.dxf", {"-q"}));
  EXPECT_THAT(OgrInfo("out.dxf"), HasSubstr(count));
  EXPECT_THAT(m_Folder.Get("out.dxf"), HasSubstr("\nisolines\n"));
}

TEST_F(VectorOutput, TablesAndLayersAreNamedAfterTheContent) {
  MustRun(Isolines("a.gpkg", {"-q"}));
  EXPECT_THAT(OgrInfo("a.gpkg"), HasSubstr("Layer name: isolines\n"));
  MustRun(Isolines("a.geojson", {"-q"}));
  EXPECT_THAT(OgrInfo("a.geojson"), HasSubstr("Layer name: isolines\n"));
}

TEST_F(VectorOutput, TheCrsIsTold) {
  for (std::string const ending : {"gpkg", "geojson", "shp"}) {
    MustRun(Isolines("utm." + ending, {"--crs", "EPSG:32618", "-q"}));
    EXPECT_THAT(OgrInfo("utm." + ending), HasSubstr("WGS 84 / UTM zone 18N"));
    MustRun(Isolines("plane." + ending, {"-q"}));
    EXPECT_THAT(OgrInfo("plane." + ending), Not(HasSubstr("UTM")));
  }
  EXPECT_THAT(OgrInfo("plane.gpkg"), HasSubstr("Undefined Cartesian SRS"));
  EXPECT_FALSE(m_Folder.Has("plane.prj"));
}

TEST_F(VectorOutput, XStaysBeforeYWhateverTheRegisterSays) {
  m_Folder.Put("degrees.xyz", "8 50 0\n9 50 0\n9 51 2\n8 51 2\n");
  for (std::string const ending : {"gpkg", "geojson", "shp"}) {
    MustRun({"isolines", "degrees.xyz", "--level", "1", "-o", "d." + ending, "--crs", "EPSG:4326",
             "-q"});
    EXPECT_THAT(OgrInfo("d." + ending), HasSubstr("Extent: (8.000000, 50.500000) - (9.000000, "));
  }
  EXPECT_THAT(m_Folder.Get("d.geojson"), HasSubstr("urn:ogc:def:crs:OGC:1.3:CRS84"));
}

TEST_F(VectorOutput, AFormatWithoutACrsIsNoted) {
  for (std::string const ending : {"dxf", "csv"}) {
    Ran const ran = MustRun(Isolines("out." + ending, {"--crs", "EPSG:32618"}));
    EXPECT_THAT(ran.err, HasSubstr("qeltin: out." + ending + ": " + ending +
                                   " files do not tell their CRS\n"));
  }
}

TEST_F(VectorOutput, AGeoJsonWithoutACrsIsNoted) {
  EXPECT_THAT(MustRun(Isolines("out.json")).err,
              HasSubstr("out.json: without --crs other programs take x and y for degrees\n"));
}

TEST_F(VectorOutput, ACrsThatIsNoneIsWrongUsage) {
  for (std::string const crs : {"EPSG:99999999", "EPSG:", "EPSG:1x", "32618", "utm", ""}) {
    EXPECT_EQ(Draw("out.gpkg", {"--crs", crs}).status, 2) << crs;
  }
  EXPECT_THAT(Draw("out.gpkg", {"--crs", "EPSG:99999999"}).err, HasSubstr("EPSG:99999999"));
  EXPECT_EQ(m_Folder.Entries(), 2);
}

TEST_F(VectorOutput, AnUnknownEndingIsToldBeforeTheWorkStarts) {
  for (std::string const name : {"out.xyz", "out", "out.gpkg2", ".gpkg", "out.kml"}) {
    ExpectError(Run({"isolines", "missing.tin", "--level", "1", "-o", name}),
                name +
                    ": the name of a vector file ends in .gpkg, .geojson, .json, .shp, .dxf or "
                    ".csv");
  }
  EXPECT_EQ(m_Folder.Entries(), 2);
}

TEST_F(VectorOutput, TheEndingMayBeInUpperCase) {
  for (std::string const ending : {"GPKG", "GeoJSON", "SHP", "DXF", "CSV"}) {
    MustRun(Isolines("OUT." + ending, {"-q"}));
    if (ending != "CSV") {
      EXPECT_THAT(OgrInfo("OUT." + ending), HasSubstr("Feature Count: "));
    }
  }
}

TEST_F(VectorOutput, EqualInputGivesEqualBytes) {
  for (std::string const ending : ALL_ENDINGS) {
    MustRun(Isolines("one." + ending, {"--overwrite", "-q"}));
    MustRun(Isolines("two." + ending, {"--overwrite", "-q"}));
    EXPECT_EQ(m_Folder.Get("one." + ending), m_Folder.Get("two." + ending)) << ending;
  }
  EXPECT_EQ(m_Folder.Get("one.dbf"), m_Folder.Get("two.dbf"));
  EXPECT_EQ(m_Folder.Get("one.dbf").substr(1, 3), "\x46\x01\x01");  // 1970, not today
  EXPECT_THAT(m_Folder.Get("one.gpkg"), HasSubstr("1970-01-01T00:00:00.000Z"));
}

TEST_F(VectorOutput, NothingButTheOutputIsLeft) {
  MustRun(Isolines("out.gpkg", {"-q"}));
  EXPECT_EQ(m_Folder.Entries(), 3);
  MustRun(Isolines("out.shp", {"-q", "--crs", "EPSG:32618"}));
  EXPECT_EQ(m_Folder.Entries(), 3 + 5);
  for (std::string const part : SHAPE_PARTS) EXPECT_TRUE(m_Folder.Has("out." + part)) << part;
}

TEST_F(VectorOutput, AnExistingFileIsReplacedOnlyWithOverwrite) {
  for (std::string const ending : ALL_ENDINGS) {
    std::string const name = "out." + ending;
    m_Folder.Put(name, "old");
    ExpectError(Draw(name), name + ": exists already (--overwrite replaces it)");
    EXPECT_EQ(m_Folder.Get(name), "old");
    MustRun(Isolines(name, {"--overwrite", "-q"}));
    EXPECT_NE(m_Folder.Get(name), "old");
  }
}

TEST_F(VectorOutput, APartOfAShapefileIsReplacedOnlyWithOverwrite) {
  m_Folder.Put("out.dbf", "old");
  ExpectError(Draw("out.shp"), "out.dbf: exists already (--overwrite replaces it)");
  EXPECT_EQ(m_Folder.Get("out.dbf"), "old");
  EXPECT_EQ(m_Folder.Entries(), 3);
}

TEST_F(VectorOutput, NoPartOfAReplacedShapefileIsLeft) {
  for (std::string const part : {"shp", "shx", "dbf", "prj", "cpg", "qix", "sbn", "sbx"}) {
    m_Folder.Put("out." + part, "old");
  }
  fs::permissions(m_Folder.Path("out.dbf"), fs::perms(0640));
  MustRun(Isolines("out.shp", {"--overwrite", "-q"}));
  EXPECT_EQ(m_Folder.Entries(), 2 + 4);
  for (std::string const part : {"shp", "shx", "dbf", "cpg"}) {
    EXPECT_NE(m_Folder.Get("out." + part), "old") << part;
  }
  EXPECT_EQ(fs::status(m_Folder.Path("out.dbf")).permissions(), fs::perms(0640));
}

TEST_F(VectorOutput, AFullDiskIsToldAndLeavesTheOldFiles) {
  for (std::string const ending : ALL_ENDINGS) m_Folder.Put("out." + ending, "old");
  for (std::string const part : SHAPE_PARTS) m_Folder.Put("out." + part, "old");
  int const entries = m_Folder.Entries();
  for (std::string const ending : ALL_ENDINGS) {
    for (rlim_t const limit : {rlim_t{1}, rlim_t{2000}}) {
      ExpectError(Qeltin(Isolines("out." + ending, {"--overwrite", "-q"})).FileLimit(limit).Run(),
                  "out." + ending + ": File too large");
      EXPECT_EQ(m_Folder.Get("out." + ending), "old");
      EXPECT_EQ(m_Folder.Entries(), entries);
    }
  }
  for (std::string const part : SHAPE_PARTS) EXPECT_EQ(m_Folder.Get("out." + part), "old");
}

TEST_F(VectorOutput, AFailureHalfwayThroughReplacingPutsEveryPartBack) {
  for (std::string const part : SHAPE_PARTS) m_Folder.Put("out." + part, "old " + part);
  // The last step fails: while the work goes on, a folder takes the place of the file.
  MustRun({"sample", "--points", "3000", "-o", "long.xyz", "-q"});
  Running running =
      Qeltin({"isolines", "-", "--interval", "1", "-o", "out.shp", "--overwrite"}).Start();
  for (int i = 0; i < 1000 && m_Folder.Entries() < 9; ++i) usleep(5'000);
  fs::remove(m_Folder.Path("out.shp"));
  fs::create_directories(m_Folder.Path("out.shp/full"));
  running.Say(m_Folder.Get("long.xyz"));
  running.EndInput();
  ExpectError(running.Wait(), "out.shp: Is a directory");
  for (std::string const part : {"shx", "dbf", "prj", "cpg"}) {
    EXPECT_EQ(m_Folder.Get("out." + part), "old " + part);
  }
  EXPECT_EQ(m_Folder.Entries(), 8);
}

TEST_F(VectorOutput, AnErrorLeavesNoFile) {
  m_Folder.Put("bad.xyz", "0 0 1\nx\n");
  for (std::string const ending : ALL_ENDINGS) {
    EXPECT_EQ(Run({"isolines", "bad.xyz", "--level", "1", "-o", "out." + ending}).status, 1);
    EXPECT_EQ(m_Folder.Entries(), 3);
  }
}

TEST_F(VectorOutput, AMissingFolderIsToldBeforeTheWorkStarts) {
  for (std::string const ending : ALL_ENDINGS) {
    ExpectError(Run({"isolines", "missing.tin", "--level", "1", "-o", "no/out." + ending}),
                "no/out." + ending + ": the folder \"no\" does not exist");
  }
}

TEST_F(VectorOutput, NumbersInTextsReadBackToTheSameBits) {
  MustRun(Isolines("out.csv", {"-q"}));
  MustRun(Isolines("out.geojson", {"-q"}));
  MustRun(Isolines("out.gpkg", {"-q"}));
  std::istringstream rows(m_Folder.Get("out.csv"));
  std::string row;
  std::getline(rows, row);
  EXPECT_EQ(row, "line,x,y,z,level");
  std::string const bytes = m_Folder.Get("out.gpkg");
  auto const json = nlohmann::json::parse(m_Folder.Get("out.geojson"));
  int points = 0;
  for (auto const& feature : json["features"]) {
    for (auto const& p : feature["geometry"]["coordinates"]) {
      ASSERT_TRUE(std::getline(rows, row));
      double line = 0;
      double x = 0;
      double y = 0;
      double z = 0;
      double level = 0;
      ASSERT_EQ(std::sscanf(row.c_str(), "%lf,%lf,%lf,%lf,%lf", &line, &x, &y, &z, &level), 5);
      EXPECT_EQ(p, nlohmann::json({x, y, z}));
      EXPECT_EQ(feature["properties"], nlohmann::json({{"line", line}, {"level", level}}));
      // A GeoPackage holds the bits themselves.
      double const xyz[3] = {x, y, z};
      char image[sizeof xyz];
      std::memcpy(image, xyz, sizeof xyz);
      if (++points % 50 == 1) {
        EXPECT_NE(bytes.find(std::string(image, sizeof image)), std::string::npos) << row;
      }
    }
  }
  EXPECT_GT(points, 1000);
}

TEST_F(VectorOutput, PrecisionShortensTheNumbersOfTexts) {
  m_Folder.Put("ramp.xyz", "0 0 0\n3 0 3\n3 1 3\n0 1 0\n");
  MustRun({"isolines", "ramp.xyz", "--level", "1.0625", "-o", "r.csv", "--precision", "2", "-q"});
  EXPECT_THAT(m_Folder.Get("r.csv"), HasSubstr("\n1,1.06,1.00,1.06,1.06\n"));
}

TEST_F(VectorOutput, InterruptedWorkLeavesNothing) {
  for (std::string const ending : {"gpkg", "shp", "geojson"}) {
    Running running = Qeltin({"isolines", "-", "--level", "1", "-o", "out." + ending}).Start();
    running.Say("0 0 1\n1 0 1\n0 1 1\n");
    for (int i = 0; i < 1000 && m_Folder.Entries() < 3; ++i) usleep(5'000);
    EXPECT_EQ(m_Folder.Entries(), 3);
    running.Signal(SIGINT);
    EXPECT_EQ(running.Wait().status, 130);
    EXPECT_EQ(m_Folder.Entries(), 2);
  }
}

TEST_F(VectorOutput, ADatabaseThatReplacesAnotherIsANewOne) {
  MustRun(Isolines("out.gpkg", {"-q"}));
  std::string const first = m_Folder.Get("out.gpkg");
  MustRun(Isolines("out.gpkg", {"--overwrite", "-q"}));
  EXPECT_EQ(m_Folder.Get("out.gpkg"), first);
}

}  // namespace
}  // namespace qeltin::cli::testing
