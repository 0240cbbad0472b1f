#include "apps/qeltin/CommandTest.h"
#include "apps/qeltin/gdal/GdalTool.h"

namespace qeltin::cli::testing {
namespace {

using Json = nlohmann::json;

using ::testing::StartsWith;
using Numbers = std::vector<double>;

constexpr char SQUARE[] = "[[1,1],[4,1],[4,3],[1,3],[1,1]]";   // 6
constexpr char ANOTHER[] = "[[5,5],[6,5],[6,6],[5,6],[5,5]]";  // 1

// Polygons are seen through their areas on a flat surface of 10 by 10 in cells of 1, on whose lines
// they run: no triangle is cut.
class VectorInput : public CommandTest {
 protected:
  VectorInput() {
    std::string text;
    for (int x = 0; x <= 10; ++x) {
      for (int y = 0; y <= 10; ++y) text += std::to_string(x) + ' ' + std::to_string(y) + " 1\n";
    }
    m_Folder.Put("flat.xyz", text);
    MustRun({"build", "flat.xyz", "-o", "flat.tin", "-q"});
  }

  Ran Measure(std::string const& file, std::vector<std::string> const& options = {}) const {
    std::vector<std::string> arguments = {"volume", "flat.tin", "--inside", file, "--json"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return Run(arguments);
  }

  Numbers Areas(std::string const& file, std::vector<std::string> const& options = {}) const {
    Ran const ran = Measure(file, options);
    EXPECT_EQ(ran.status, 0) << ran.err;
    Numbers areas;
    Json const result = ran.Json();
    for (Json const& polygon : result["polygons"]) areas.push_back(polygon["area"]);
    return areas;
  }

  // Puts features of these GeoJSON geometries into a file.
  void PutShapes(std::string const& file, std::vector<std::string> const& shapes) const {
    std::string text = R"({"type": "FeatureCollection", "features": [)";
    for (std::size_t i = 0; i < shapes.size(); ++i) {
      text += (i == 0 ? "\n" : ",\n") +
              (R"({"type": "Feature", "properties": {}, "geometry": )" + shapes[i] + "}");
    }
    m_Folder.Put(file, text + "\n]}\n");
  }

  static std::string Shape(std::string const& type, std::string const& coordinates) {
    return R"({"type": ")" + type + R"(", "coordinates": )" + coordinates + "}";
  }

  static std::string Rings(std::vector<std::string> const& rings) {
    std::string text;
    for (std::string const& ring : rings) text += (text.empty() ? "[" : ",") + ring;
    return text + "]";
  }
};

TEST_F(VectorInput, EachPolygonIsTaken) {
  PutShapes("p.geojson", {Shape("Polygon", Rings({SQUARE})), Shape("Polygon", Rings({ANOTHER}))});
  EXPECT_EQ(Areas("p.geojson"), Numbers({6, 1}));
}

TEST_F(VectorInput, CollectionsAreTakenApart) {
  std::string const many = Shape("MultiPolygon", Rings({Rings({SQUARE}), Rings({ANOTHER})}));
  PutShapes("p.geojson", {many, R"({"type": "GeometryCollection", "geometries": [)" + many + "]}"});
  EXPECT_EQ(Areas("p.geojson"), Numbers({6, 1, 6, 1}));
}

TEST_F(VectorInput, PointsAndShapelessFeaturesArePassedOver) {
  PutShapes("p.geojson", {Shape("Point", "[5, 5]"), "null", Shape("Polygon", Rings({SQUARE})),
                          Shape("Polygon", "[]")});
  EXPECT_EQ(Areas("p.geojson"), Numbers({6}));
  PutShapes("none.geojson", {Shape("Point", "[5, 5]")});
  ExpectError(Measure("none.geojson"), "none.geojson: holds no lines and no polygons");
}

TEST_F(VectorInput, ALineIsAPolygonWhetherItIsClosedOrNot) {
  PutShapes("p.geojson",
            {Shape("LineString", SQUARE), Shape("LineString", "[[5,5],[7,5],[7,6],[5,6]]")});
  EXPECT_EQ(Areas("p.geojson"), Numbers({6, 2}));
}

TEST_F(VectorInput, HolesAreLeftOut) {
  std::string const outer = "[[0,0],[10,0],[10,10],[0,10],[0,0]]";
  std::string const flat = "[[2,2],[3,2],[2,2]]";
  PutShapes("p.geojson", {Shape("Polygon", Rings({outer, SQUARE, ANOTHER})),
                          Shape("Polygon", Rings({outer, flat}))});
  EXPECT_EQ(Areas("p.geojson"), Numbers({93, 100}));
  EXPECT_EQ(Areas("p.geojson", {"--refine", "0.1"}), Numbers({93, 100}));
}

TEST_F(VectorInput, ThreeDistinctPlacesAreAskedOfTheOuterRing) {
  PutShapes("p.geojson", {Shape("Polygon", Rings({SQUARE})), Shape("LineString", "[[1,1],[2,2]]")});
  ExpectError(Measure("p.geojson"),
              "p.geojson: feature 1 of layer \"p\": a polygon needs three distinct places");
}

TEST_F(VectorInput, CurvesBecomeChords) {
  m_Folder.Put("p.csv",
               "id,WKT\n1,\"CURVEPOLYGON(CIRCULARSTRING(8 5,5 8,2 5,5 2,8 5))\"\n"
               "2,\"POLYGON((1 1,4 1,4 3,1 3,1 1))\"\n");
  Numbers const areas = Areas("p.csv", {"--refine", "0.02"});
  ASSERT_EQ(areas.size(), 2u);
  EXPECT_NEAR(areas[0], 28.274, 0.03);
  EXPECT_EQ(areas[1], 6.0);
}

TEST_F(VectorInput, AllLayersAndFormatsAreRead) {
  PutShapes("one.geojson", {Shape("Polygon", Rings({SQUARE}))});
  PutShapes("two.geojson", {Shape("Polygon", Rings({ANOTHER}))});
  GdalTool(m_Folder, "ogr2ogr p.gpkg one.geojson");
  GdalTool(m_Folder, "ogr2ogr -append p.gpkg two.geojson -nln other");
  EXPECT_EQ(Areas("p.gpkg"), Numbers({6, 1}));
  GdalTool(m_Folder, "ogr2ogr p.shp one.geojson");
  EXPECT_EQ(Areas("p.shp"), Numbers({6}));
  GdalTool(m_Folder, "ogr2ogr p.dxf one.geojson");
  EXPECT_EQ(Areas("p.dxf"), Numbers({6}));
  GdalTool(m_Folder, "mkdir folder && cp p.shp p.shx p.dbf folder");
  EXPECT_EQ(Areas("folder"), Numbers({6}));
}

TEST_F(VectorInput, WhatIsNoVectorFileIsToldOnOneLine) {
  std::string const start =
      "qeltin: error: p.dat: is neither a plain text of x y lines nor a vector file: ";
  for (std::string const& bytes : {std::string("nonsense\n"), std::string("RING 1 4\n1 1\n"),
                                   std::string("\0\1\2\3\n", 5), std::string(100000, 'x')}) {
    m_Folder.Put("p.dat", bytes);
    Ran const ran = Measure("p.dat");
    EXPECT_EQ(ran.status, 1);
    EXPECT_THAT(ran.err, StartsWith(start));
    EXPECT_EQ(ran.err.find('\n'), ran.err.size() - 1);
  }
}

TEST_F(VectorInput, ADamagedFileIsAnError) {
  PutShapes("p.geojson", {Shape("Polygon", Rings({SQUARE}))});
  GdalTool(m_Folder, "ogr2ogr p.gpkg p.geojson");
  GdalTool(m_Folder, "ogr2ogr p.shp p.geojson");
  for (std::string const file : {"p.geojson", "p.gpkg", "p.shp"}) {
    std::string const bytes = m_Folder.Get(file);
    m_Folder.Put(file, bytes.substr(0, bytes.size() * 2 / 3));
    Ran const ran = Measure(file);
    EXPECT_EQ(ran.status, 1) << file;
    EXPECT_THAT(ran.err, StartsWith("qeltin: error: " + file + ": "));
    EXPECT_EQ(ran.err.find('\n'), ran.err.size() - 1);
  }
}

}  // namespace
}  // namespace qeltin::cli::testing
