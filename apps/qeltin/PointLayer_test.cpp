#include "apps/qeltin/CommandTest.h"
#include "testing/NativeFileWriter.h"

namespace qeltin::cli::testing {
namespace {

using qeltin::testing::Patch;
using ::testing::HasSubstr;
using Json = nlohmann::json;

std::string Feature(std::string const& shape, std::string const& coordinates,
                    std::string const& properties = "{}") {
  return R"({"type": "Feature", "properties": )" + properties + R"(, "geometry": {"type": ")" +
         shape + R"(", "coordinates": )" + coordinates + "}}";
}

std::string Collection(std::vector<std::string> const& features) {
  std::string text = R"({"type": "FeatureCollection", "features": [)";
  for (std::string const& feature : features) {
    text += (text.ends_with('[') ? "" : ",\n") + feature;
  }
  return text + "]}";
}

void PutBigEndian(std::string& bytes, std::size_t offset, std::size_t number) {
  for (std::size_t k = 0; k < 4; ++k) {
    bytes[offset + k] = static_cast<char>(number >> (24 - 8 * k) & 0xFF);
  }
}

// The head of both parts of a shapefile of points with z.
std::string ShapefileHead(std::size_t size) {
  std::string bytes(100, '\0');
  PutBigEndian(bytes, 0, 9994);
  PutBigEndian(bytes, 24, size / 2);
  Patch(bytes, 28, std::int32_t{1000});
  Patch(bytes, 32, std::int32_t{11});
  return bytes;
}

// The part that holds the places, and the one that tells where they stand.
std::pair<std::string, std::string> Shapefile(std::vector<TPoint> const& points) {
  constexpr std::size_t CONTENT = 28;
  std::string places = ShapefileHead(100 + (8 + CONTENT) * points.size());
  std::string index = ShapefileHead(100 + 8 * points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    std::string record(8 + CONTENT, '\0');
    PutBigEndian(record, 0, i + 1);
    PutBigEndian(record, 4, CONTENT / 2);
    Patch(record, 8, std::int32_t{11});
    Patch(record, 12, points[i]);
    std::string entry(8, '\0');
    PutBigEndian(entry, 0, places.size() / 2);
    PutBigEndian(entry, 4, CONTENT / 2);
    places += record;
    index += entry;
  }
  return {places, index};
}

class PointLayerInput : public CommandTest {
 protected:
  void SetUp() override {
    m_Folder.Put("probe.geojson", Collection({Feature("Point", "[1, 2, 3]")}));
    Ran const ran = Run({"info", "probe.geojson"});
    std::filesystem::remove(m_Folder.Path("probe.geojson"));
    if (ran.err.find("built without GDAL") != std::string::npos) {
      GTEST_SKIP() << "the command is built without GDAL";
    }
  }

  // Returns the points of a file of these features, as text.
  std::string Points(std::vector<std::string> const& features,
                     std::vector<std::string> const& options = {}) const {
    m_Folder.Put("in.geojson", Collection(features));
    std::vector<std::string> arguments = {"convert", "in.geojson", "-"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return MustRun(arguments).out;
  }
};

TEST_F(PointLayerInput, PointsAndMultipointsGiveTheirPlacesAndZ) {
  EXPECT_EQ(Points({Feature("Point", "[0.1, 0.2, 0.3]"),
                    Feature("MultiPoint", "[[482000.125, 5931000.25, -7], [4, 5, 6]]")}),
            "0.1,0.2,0.3\n482000.125,5931000.25,-7\n4,5,6\n");
}

TEST_F(PointLayerInput, AFieldMayHoldTheHeights) {
  std::vector<std::string> const features = {
      Feature("Point", "[1, 2]", R"({"depth": -5.5, "level": 3, "text": "-7.25"})"),
      Feature("MultiPoint", "[[3, 4], [5, 6]]", R"({"depth": 0.1, "level": 4, "text": "1e2"})")};
  EXPECT_EQ(Points(features, {"--z-field", "depth"}), "1,2,-5.5\n3,4,0.1\n5,6,0.1\n");
  EXPECT_EQ(Points(features, {"--z-field", "level"}), "1,2,3\n3,4,4\n5,6,4\n");
  EXPECT_EQ(Points(features, {"--z-field", "text"}), "1,2,-7.25\n3,4,100\n5,6,100\n");
}

TEST_F(PointLayerInput, FeaturesWithoutAShapeArePassedOver) {
  EXPECT_EQ(Points({R"({"type": "Feature", "properties": {}, "geometry": null})",
                    Feature("Point", "[1, 2, 3]")}),
            "1,2,3\n");
}

TEST_F(PointLayerInput, AShapefileIsRead) {
  auto const [places, index] = Shapefile({{0, 0, 1}, {10, 0, 2}, {10, 10.5, 3}});
  m_Folder.Put("in.shp", places);
  Ran const ran = Run({"info", "in.shp"});
  EXPECT_EQ(ran.status, 1);
  EXPECT_THAT(ran.err, HasSubstr("in.shx"));  // what is missing
  m_Folder.Put("in.shx", index);
  EXPECT_EQ(MustRun({"convert", "in.shp", "-"}).out, "0,0,1\n10,0,2\n10,10.5,3\n");
  EXPECT_EQ(MustRun({"build", "in.shp", "-o", "s.tin", "--json"}).Json()["points_in_surface"], 3);
}

TEST_F(PointLayerInput, InfoTellsWhatThereIs) {
  m_Folder.Put("in.geojson", Collection({Feature("Point", "[1, 2, 3]"),  //
                                         Feature("Point", "[0, 9, 1]")}));
  Json told = MustRun({"info", "in.geojson", "--json"}).Json();
  EXPECT_GT(told["bytes"], 0);
  told.erase("bytes");
  EXPECT_EQ(told, (Json{{"format", "vector"},
                        {"driver", "GeoJSON"},
                        {"layer", "in"},
                        {"points", 2},
                        {"bounds", {{"min", {0, 2, 1}}, {"max", {1, 9, 3}}}},
                        {"height_range", {1, 3}}}));
}

TEST_F(PointLayerInput, SeveralLayersNeedAChoice) {
  m_Folder.Put("in.gpx",
               R"(<gpx version="1.1" creator="x" xmlns="http://www.topografix.com/GPX/1/1">
<wpt lat="2" lon="1"><ele>3</ele></wpt>
<rte><rtept lat="5" lon="4"><ele>6</ele></rtept><rtept lat="8" lon="7"><ele>9</ele></rtept></rte>
</gpx>)");
  Ran const ran = Run({"convert", "in.gpx", "-", "--z-field", "ele"});
  ExpectError(ran,
              "in.gpx: has several layers of points, of which --layer chooses one: \"waypoints\", "
              "\"route_points\", \"track_points\"");
  EXPECT_EQ(MustRun({"convert", "in.gpx", "-", "--z-field", "ele", "--layer", "waypoints"}).out,
            "1,2,3\n");
  EXPECT_EQ(MustRun({"convert", "in.gpx", "-", "--z-field", "ele", "--layer", "route_points"}).out,
            "4,5,6\n7,8,9\n");
  ExpectError(Run({"info", "in.gpx", "--layer", "routes"}),
              "in.gpx: layer \"routes\" holds no points");
  ExpectError(Run({"info", "in.gpx", "--layer", "buoys"}), "in.gpx: has no layer \"buoys\"");
}

TEST_F(PointLayerInput, SaysWhatIsWrongWithAFile) {
  struct Case {
    std::string bytes;
    std::vector<std::string> options;
    std::string error;
  };
  std::string const flat = Feature("Point", "[1, 2]", R"({"depth": null, "name": "pier"})");
  std::vector<Case> const cases = {
      {"", {}, "is empty"},
      {"1 2 3\n", {}, "is no vector file that GDAL reads, although its name ends like one"},
      {Collection({Feature("LineString", "[[0, 0], [1, 1]]")}), {}, "has no layer of points"},
      {Collection({}), {}, "has no layer of points"},
      {Collection({flat}),
       {},
       "feature 0 of layer \"in\" has no height: its points have no z, and no --z-field is given"},
      {Collection({flat}), {"--z-field", "size"}, "has no field \"size\""},
      {Collection({flat}), {"--z-field", "depth"}, "feature 0 of layer \"in\" has no height"},
      {Collection({flat}),
       {"--z-field", "name"},
       "feature 0 of layer \"in\" has the height \"pier\""},
      {Collection({Feature("Point", "[1, 2, 3]"), Feature("LineString", "[[0, 0], [1, 1]]")}),
       {},
       "feature 1 of layer \"in\" is a Line String and no point"},
  };
  for (Case const& c : cases) {
    m_Folder.Put("in.geojson", c.bytes);
    std::vector<std::string> arguments = {"info", "in.geojson"};
    arguments.insert(arguments.end(), c.options.begin(), c.options.end());
    ExpectError(Run(arguments), "in.geojson: " + c.error);
  }
  ExpectError(Run({"info", "missing.gpkg"}), "missing.gpkg: No such file or directory");
}

}  // namespace
}  // namespace qeltin::cli::testing
